// Projects in the window: the unsaved-changes flag, the question before quitting or opening
// (answered through the user-interface interface), the kind tab an opened project selects, the
// recent projects, and publishing.
#include <gtest/gtest.h>

#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include "app/MainWindow.h"
#include "app/ProjectActions.h"
#include "app/PublishDialog.h"
#include "collection/PhotoCollection.h"
#include "support/LocalServers.h"
#include "support/TestSupport.h"

using namespace testsupport;
using Answer = UserInterface::SaveAnswer;

namespace {

struct Window {
    MainWindow window;
    ProjectActions* projects = window.projectActions();
    PhotoCollection* collection = window.findChild<PhotoCollection*>();
    QTabWidget* tabs = window.findChild<QTabWidget*>();
    RecordingUserInterface ui;
    QString saveFolder, saveName = "Project";

    Window() {
        projects->setUserInterface(&ui);
        projects->saveDialog = [this]() -> std::optional<std::pair<QString, QString>> {
            if (saveFolder.isEmpty()) return std::nullopt;
            return std::pair{saveFolder, saveName};
        };
    }
    void type(const QString& control, const QString& text) {
        auto* edit = window.findChild<QLineEdit*>(control);
        ASSERT_TRUE(edit) << control;
        edit->setText(text);
        Q_EMIT edit->editingFinished();
    }
};

}  // namespace

TEST(ProjectWindow, UnsavedFlagFollowsPhotosAndSettings) {
    const QString dir = freshDir("app-project-flag");
    const QStringList photos = {makePhoto(dir + "a.png"), makePhoto(dir + "b.png"),
                                makePhoto(dir + "c.png")};
    Window w;
    ASSERT_TRUE(w.projects && w.collection && w.tabs);
    EXPECT_FALSE(w.projects->isModified());
    w.collection->appendPhotos(photos.mid(0, 2));
    EXPECT_TRUE(w.projects->isModified());
    w.saveFolder = dir + "saved";
    ASSERT_TRUE(w.projects->saveProject());
    EXPECT_FALSE(w.projects->isModified());

    for (const auto& [what, change] : std::vector<std::pair<const char*, std::function<void()>>>{
             {"adding", [&] { w.collection->appendPhotos({photos[2]}); }},
             {"removing", [&] { w.collection->hRemoveSelectedObject({0}); }},
             {"reordering", [&] { w.collection->acceptDrop({0}, 2); }},
             {"sorting", [&] { w.collection->setSortingModeAz(); }},
             {"editing a caption", [&] { w.collection->setDescription(0, "Harbour"); }},
             {"unpublishing", [&] { w.collection->setSelect(0, false); }},
             {"highlighting", [&] { w.collection->setHighlight(0, true); }},
             {"editing a setting", [&] { w.type("tfPageTitle", "Summer"); }},
             {"editing another kind's setting", [&] { w.type("tfSsWebPageTitle", "Slides"); }}}) {
        SCOPED_TRACE(what);
        change();
        EXPECT_TRUE(w.projects->isModified());
        ASSERT_TRUE(w.projects->saveProject());  // saving clears it
        EXPECT_FALSE(w.projects->isModified());
    }
    // Opening clears it too, and a cell image arriving is no change.
    w.collection->setDescription(0, "Changed after the save");
    EXPECT_TRUE(w.projects->isModified());
    ASSERT_TRUE(w.projects->openProjectFile(dir + "saved", dir + "saved/Project.orvprj"));
    EXPECT_FALSE(w.projects->isModified());
    w.collection->setCellImage(w.collection->arrangedObjects()[0].myPhotoURL,
                               QImage(4, 4, QImage::Format_RGB32));
    EXPECT_FALSE(w.projects->isModified());
    EXPECT_TRUE(w.ui.questions.isEmpty());
}

// Quitting (or opening another project) with changes asks; Save goes on only once saved.
TEST(ProjectWindow, QuittingWithChangesAsks) {
    const QString dir = freshDir("app-project-quit");
    const QStringList photos = {makePhoto(dir + "a.png")};
    for (const auto& [what, changed, answers, saveDialogGivesFolder, closes, written] :
         std::vector<std::tuple<const char*, bool, std::vector<Answer>, bool, bool, bool>>{
             {"no changes", false, {}, true, true, false},
             {"cancel", true, {Answer::Cancel}, true, false, false},
             {"don't save", true, {Answer::DontSave}, true, true, false},
             {"save, dialog cancelled", true, {Answer::Save}, false, false, false},
             {"save", true, {Answer::Save}, true, true, true}}) {
        SCOPED_TRACE(what);
        const QString folder = dir + what;
        Window w;
        w.window.show();
        if (changed) w.collection->appendPhotos(photos);
        w.ui.answers = answers;
        w.saveFolder = saveDialogGivesFolder ? folder : QString();
        EXPECT_EQ(w.window.close(), closes);
        EXPECT_EQ(w.ui.questions.size(), changed ? 1 : 0);
        EXPECT_TRUE(!changed || w.ui.questions[0].startsWith("Save changes to the project?\n"));
        EXPECT_EQ(QFileInfo::exists(folder + "/Project.orvprj"), written);
    }

    // Open Project… asks first; Cancel ends it before any dialog.
    Window w;
    w.collection->appendPhotos(photos);
    int folderDialogs = 0;
    w.projects->chooseProjectFolder = [&] {
        ++folderDialogs;
        return QString();
    };
    w.ui.answers = {Answer::Cancel, Answer::DontSave};
    w.projects->openProject();
    EXPECT_EQ(folderDialogs, 0);
    w.projects->openProject();
    EXPECT_EQ(w.ui.questions.size(), 2);
    EXPECT_EQ(folderDialogs, 1);
    EXPECT_EQ(w.collection->count(), 1);  // the folder dialog was cancelled: nothing changed
}

// A project opens with its kind's settings in that kind's tab, which is selected, whatever tab was
// selected before; a cancelled project-file dialog clears the stored dictionary.
TEST(ProjectWindow, OpenedProjectSelectsItsKind) {
    const QString dir = freshDir("app-project-open");
    const QStringList photos = {makePhoto(dir + "a.png"), makePhoto(dir + "b.png")};
    {
        Window w;
        w.collection->appendPhotos(photos);
        w.collection->setSelect(1, false);
        w.tabs->setCurrentIndex(1);
        w.type("tfSsWebPageTitle", "Harbour slides");
        w.saveFolder = dir + "slides";
        w.saveName = "Enter your project name here";  // the page file name names it
        w.type("tfHTMLfileName", "harbour");
        ASSERT_TRUE(w.projects->saveProject());
        EXPECT_TRUE(QFileInfo::exists(dir + "slides/harbour.orvprj"));
    }
    Window w;
    w.tabs->setCurrentIndex(0);
    w.collection->appendPhotos({photos[0], photos[0], photos[0]});
    w.collection->setSortingModeAz();
    w.projects->markSaved();
    ASSERT_TRUE(w.projects->openProjectFile(dir + "slides", dir + "slides/harbour.orvprj"));
    EXPECT_EQ(w.tabs->currentIndex(), 1);
    EXPECT_EQ(w.window.findChild<QLineEdit*>("tfSsWebPageTitle")->text(), "Harbour slides");
    ASSERT_EQ(w.collection->count(), 2);
    EXPECT_EQ(w.collection->arrangedObjects()[1].myPhotoSelect, 0);
    EXPECT_FALSE(w.projects->projectDictionary().isEmpty());

    w.projects->chooseProjectFolder = [&] { return dir + "slides"; };
    w.projects->chooseProjectFile = [](const QString&) { return QString(); };
    w.projects->openProject();
    EXPECT_TRUE(w.projects->projectDictionary().isEmpty());
    EXPECT_EQ(w.collection->count(), 2);
}

// The last five projects are offered again; one whose folder has gone is dropped with a message.
TEST(ProjectWindow, RecentProjects) {
    const QString dir = freshDir("app-project-recent");
    ProjectActions::setRecentProjects({});
    Window w;
    for (int i = 0; i < 7; ++i) {
        w.saveFolder = dir + QString::number(i);
        ASSERT_TRUE(w.projects->saveProject());
    }
    QStringList expected;
    for (int i = 6; i > 1; --i) expected << dir + QString::number(i) + "/Project.orvprj";
    EXPECT_EQ(ProjectActions::recentProjects(), expected);

    ASSERT_TRUE(QDir(dir + "5").removeRecursively());
    w.projects->openRecent(expected[1]);
    expected.removeAt(1);
    EXPECT_EQ(ProjectActions::recentProjects(), expected);
    ASSERT_EQ(w.ui.alerts.size(), 1u);
    EXPECT_EQ(w.ui.alerts[0].title, "The project is no longer there.");
    EXPECT_TRUE(w.ui.alerts[0].description.contains(dir + "5/Project.orvprj"));

    w.projects->openRecent(expected[2]);  // still there: opened, and first in the list again
    EXPECT_EQ(ProjectActions::recentProjects().first(), expected[2]);
    EXPECT_EQ(w.ui.alerts.size(), 1u);
    ProjectActions::setRecentProjects({});
}

// Publish… against OpenSSH's sshd on 127.0.0.1: the dialog opens on the output folder of the last
// run, an unknown host key is trusted through the window's question, the summary tells what was
// sent, and the folder's settings and the project remember where.
TEST(PublishWindow, PublishesTheOutputFolderAndRemembersWhere) {
    const QString dir = freshDir("app-publish");
    SshServer ssh(dir);
    ASSERT_EQ(ssh.error(), "");
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", ssh.home().toUtf8());
    writeFile(ssh.home() + "/.ssh/known_hosts", "");  // the server is not known yet
    const QString site = dir + "site/";
    writeFile(site + "images/a.jpg", "jpeg bytes");
    writeFile(site + "index.html", "<img src=images/a.jpg>");

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
        << dialog->summary();
    EXPECT_EQ(readFile(dir + "server/index.html"),
              "<img src=images/a.jpg>");  // every file: tests/publish
    EXPECT_TRUE(ui.alerts.empty());
    EXPECT_EQ(PublishDialog::destinationsFor(site).value(0), destination);

    // The project keeps the destination, and gets it back when opened.
    ProjectActions* projects = window.projectActions();
    EXPECT_EQ(projects->publishDestination(), destination);
    projects->saveDialog = [&] { return std::optional(std::pair{dir + "project", QString("P")}); };
    ASSERT_TRUE(projects->saveProject());
    EXPECT_TRUE(readFile(dir + "project/P.orvprj").contains("<key>publishDestination</key>"));
    projects->setPublishDestination({});
    ASSERT_TRUE(projects->openProjectFile(dir + "project", dir + "project/P.orvprj"));
    EXPECT_EQ(projects->publishDestination(), destination);
    qputenv("HOME", home);
}
