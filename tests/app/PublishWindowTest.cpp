// Publish… in the window, against OpenSSH's sshd on 127.0.0.1: the dialog opens on the output
// folder of the last run, an unknown host key is trusted through the window's question, the
// summary tells what was sent, and the folder's settings and the project remember where.
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include "app/MainWindow.h"
#include "app/ProjectActions.h"
#include "app/PublishDialog.h"
#include "support/LocalServers.h"
#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::readFile;

TEST(PublishWindow, PublishesTheOutputFolderAndRemembersWhere) {
    const QString dir = freshDir("app-publish");
    testsupport::SshServer ssh(dir);
    ASSERT_EQ(ssh.error(), "");
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", ssh.home().toUtf8());
    testsupport::writeFile(ssh.home() + "/.ssh/known_hosts", "");  // the server is not known yet
    const QString site = dir + "site/";
    testsupport::writeFile(site + "images/a.jpg", "jpeg bytes");
    testsupport::writeFile(site + "index.html", "<img src=images/a.jpg>");

    MainWindow window;
    auto* row = window.findChild<QWidget*>("tfHTMLdestinationFolder");
    ASSERT_TRUE(row);
    auto* folder = row->findChild<QLineEdit*>();
    folder->setText(site);  // as Create leaves it
    Q_EMIT folder->editingFinished();
    window.findChild<QPushButton*>("publishButton")->click();
    auto* dialog = window.findChild<PublishDialog*>();
    ASSERT_TRUE(dialog);
    RecordingUserInterface ui;
    dialog->setUserInterface(&ui);
    QStringList asked;
    dialog->confirmHostKey = [&](const QString& key) {
        asked.append(key);
        return true;
    };
    const QString destination = ssh.destination(dir + "server");
    dialog->setDestination(destination);
    QEventLoop waiting;
    QObject::connect(dialog, &PublishDialog::done, &waiting, &QEventLoop::quit);
    QTimer::singleShot(120000, &waiting, &QEventLoop::quit);  // only if something hangs
    dialog->findChild<QPushButton*>("publishStart")->click();
    waiting.exec();

    EXPECT_EQ(asked, QStringList{"ssh-ed25519 " + ssh.fingerprint()});
    EXPECT_TRUE(dialog->summary().startsWith("Published to " + destination +
                                             ": 2 sent, 0 removed, 0 unchanged.\n"
                                             "The server holds the whole site."))
        << dialog->summary().toStdString();
    EXPECT_EQ(readFile(dir + "server/index.html"),
              "<img src=images/a.jpg>");  // every file: tests/publish
    EXPECT_TRUE(ui.alerts.empty());
    EXPECT_EQ(PublishDialog::destinationsFor(site).value(0), destination);

    // The project keeps the destination, and gets it back when opened.
    ProjectActions* projects = window.projectActions();
    EXPECT_EQ(projects->publishDestination(), destination);
    projects->saveDialog = [&] { return std::optional(std::pair{dir + "project", QString("P")}); };
    ASSERT_TRUE(projects->saveProject());
    const QByteArray saved = readFile(dir + "project/P.orvprj");
    EXPECT_TRUE(saved.contains("<key>publishDestination</key>")) << saved.toStdString();
    projects->setPublishDestination({});
    ASSERT_TRUE(projects->openProjectFile(dir + "project", dir + "project/P.orvprj"));
    EXPECT_EQ(projects->publishDestination(), destination);
    qputenv("HOME", home);
}
