// Starting the window as the desktop does: files on the command line, one window per user, no
// display.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QThread>

#include "support/TestSupport.h"

using namespace testsupport;

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
        process.kill();
        process.waitForFinished();
    }
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
    for (const QString name : {"a.png", "b.jpg", "more/c.PNG", "more/d.tif"}) makePhoto(dir + name);
    writeFile(dir + "more/notes.txt", "not a photo");

    {
        Start window(runtime, runtime, {dir + "a.png"});
        ASSERT_TRUE(listening(socket, window.process))
            << window.process.readAllStandardError().toStdString();
        for (const auto& [args, printed] : std::vector<std::pair<QStringList, std::string>>{
                 {{"b.jpg", "more"}, "orvella: 3 photos added to the open window\n"},
                 {{"more/d.tif"}, "orvella: 1 photo added to the open window\n"},
                 {{"more/notes.txt", "saved.orvprj"},
                  "orvella: 0 photos added to the open window\n"},
                 {{}, ""}}) {
            Start later(runtime, dir, args);
            EXPECT_EQ(later.finish(), std::make_pair(0, printed)) << args.join(' ');
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
    makePhoto(dir + "a.png");
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) env.remove(name);
    const QString noDisplay = "no display: run orvella --help for the command line\n";
    for (const auto& [args, code, says] :
         {std::tuple{QStringList{}, 1, noDisplay},
          std::tuple{QStringList{dir + "a.png"}, 1, noDisplay},
          std::tuple{QStringList{dir}, 1, noDisplay},
          std::tuple{QStringList{dir + "gone.png"}, 2,
                     "orvella: unknown command \"" + dir + "gone.png\""},
          std::tuple{QStringList{"--version"}, 0, QString()}}) {
        QString err;
        EXPECT_EQ(orvella(args, nullptr, &err, &env), code) << args.join(' ');
        EXPECT_TRUE(err.startsWith(says)) << err;
    }
}
