// Starting the window as the desktop does: files on the command line, one window per user, no
// display, the About box.
#include <gtest/gtest.h>

#include <QAction>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLocalSocket>
#include <QMessageBox>
#include <QProcess>
#include <QTabWidget>
#include <QThread>

#include "app/MainWindow.h"
#include "support/TestSupport.h"

using testsupport::freshDir;

namespace {

// A start of the program in its own process, with the runtime folder that holds the window's
// socket.
struct Start {
    QProcess process;

    Start(const QString& runtime, const QString& workingDir, const QStringList& args) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_RUNTIME_DIR", runtime);
        process.setProcessEnvironment(env);
        process.setWorkingDirectory(workingDir);
        process.start(ORVELLA_BINARY, args);
        process.waitForStarted();
    }
    ~Start() {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
        }
    }
    // Waits for a later start to end; its exit code and standard output.
    std::pair<int, std::string> finish() {
        if (!process.waitForFinished(120000)) return {-1, "still running"};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                process.readAllStandardOutput().toStdString()};
    }
};

// True once a window listens on the socket (a socket left behind by a killed window refuses).
bool listening(const QString& socketPath, QProcess& window) {
    for (int attempt = 0; attempt < 1200; ++attempt) {
        if (window.state() == QProcess::NotRunning) return false;
        QLocalSocket probe;
        probe.connectToServer(socketPath);
        if (probe.waitForConnected(100)) return true;
        QThread::msleep(50);
    }
    return false;
}

void makePhotos(const QString& dir, const QStringList& names) {
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    for (const QString& name : names) {
        QDir(dir).mkpath(QFileInfo(name).path());
        ASSERT_TRUE(image.save(dir + name, "PNG")) << qPrintable(name);
    }
}

}  // namespace

// The first start opens the window; later ones hand it their photos (relative paths resolved
// where they were typed, folders by their photo files), print how many it added and end. A window
// killed without cleaning up leaves its socket behind; the next window replaces it.
TEST(WindowStartTest, LaterStartsHandTheirFilesToTheOpenWindow) {
    const QString dir = freshDir("app-window-start");
    const QString runtime = dir + "run";
    ASSERT_TRUE(QDir().mkpath(runtime));
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString socket = runtime + "/orvella.window";
    makePhotos(dir, {"a.png", "b.jpg", "more/c.PNG", "more/d.tif"});
    QFile note(dir + "more/notes.txt");
    ASSERT_TRUE(note.open(QIODevice::WriteOnly) && note.write("not a photo") > 0);
    note.close();

    {
        Start window(runtime, runtime, {dir + "a.png"});
        ASSERT_TRUE(listening(socket, window.process))
            << window.process.readAllStandardError().toStdString();
        struct Case {
            QStringList args;
            std::string printed;
        };
        for (const Case& c :
             std::vector<Case>{{{"b.jpg", "more"}, "orvella: 3 photos added to the open window\n"},
                               {{"more/d.tif"}, "orvella: 1 photo added to the open window\n"},
                               {{"more/notes.txt", "saved.orvprj"},
                                "orvella: 0 photos added to the open window\n"},
                               {{}, ""}}) {
            Start later(runtime, dir, c.args);
            EXPECT_EQ(later.finish(), std::make_pair(0, c.printed)) << qPrintable(c.args.join(' '));
            EXPECT_EQ(window.process.state(), QProcess::Running);
        }
    }  // killed: the socket stays behind

    ASSERT_TRUE(QFileInfo::exists(socket));
    Start window(runtime, runtime, {});
    ASSERT_TRUE(listening(socket, window.process))
        << window.process.readAllStandardError().toStdString();
    Start later(runtime, dir, {"a.png"});
    EXPECT_EQ(later.finish(),
              std::make_pair(0, std::string("orvella: 1 photo added to the open window\n")));
}

// Without a display the window is not tried; the command line still runs, and a name that is
// neither a command nor an existing file is an unknown command.
TEST(WindowStartTest, NoDisplayAndWhatOpensTheWindow) {
    const QString dir = freshDir("app-no-display");
    makePhotos(dir, {"a.png"});
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) env.remove(name);
    struct Case {
        QStringList args;
        int code;
        std::string err;
    };
    for (const Case& c : std::vector<Case>{
             {{}, 1, "no display: run orvella --help for the command line\n"},
             {{dir + "a.png"}, 1, "no display: run orvella --help for the command line\n"},
             {{dir}, 1, "no display: run orvella --help for the command line\n"},
             {{dir + "gone.png"},
              2,
              "orvella: unknown command \"" + (dir + "gone.png").toStdString() + "\""},
             {{"--version"}, 0, ""}}) {
        QProcess process;
        process.setProcessEnvironment(env);
        process.start(ORVELLA_BINARY, c.args);
        ASSERT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), c.code) << qPrintable(c.args.join(' '));
        const std::string err = process.readAllStandardError().toStdString();
        EXPECT_EQ(err.substr(0, c.err.size()), c.err) << err;
    }
}

// The About box names the version exactly as `orvella --version` prints it.
TEST(WindowStartTest, AboutBoxShowsTheVersion) {
    QString version;
    ASSERT_EQ(testsupport::runProgram(ORVELLA_BINARY, {"--version"}, &version), 0);
    MainWindow window;
    auto* about = window.findChild<QAction*>("actionAbout");
    ASSERT_NE(about, nullptr);
    about->trigger();
    auto* box = window.findChild<QMessageBox*>("aboutBox");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text().toStdString() + "\n", version.toStdString());
    box->close();
}

// The window fits a 1366 x 768 screen (less a panel and the title bar) whichever tab is shown;
// the settings scroll instead of growing the window.
TEST(WindowStartTest, FitsASmallLaptopScreen) {
    MainWindow window;
    auto* tabs = window.findChild<QTabWidget*>();
    ASSERT_NE(tabs, nullptr);
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        const QSize needed = window.minimumSizeHint().expandedTo(window.minimumSize());
        EXPECT_LE(needed.width(), 1366) << tabs->tabText(i).toStdString();
        EXPECT_LE(needed.height(), 700) << tabs->tabText(i).toStdString();
    }
}
