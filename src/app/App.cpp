#include "app/App.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QTextStream>
#include <cstdio>

#include "app/MainWindow.h"
#include "app/UpdateSheet.h"
#include "app/WindowInstance.h"

namespace {

// Without a display the platform plugin would abort the program; say what to do instead.
bool hasDisplay() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        if (!qEnvironmentVariableIsEmpty(name)) return true;
    return false;
#else
    return true;
#endif
}

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

}  // namespace

int runApp(int argc, char** argv) {
    if (!hasDisplay()) {
        std::fputs("no display: run orvella --help for the command line\n", stderr);
        return 1;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Orvella"));
    QApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    QApplication::setApplicationVersion(QStringLiteral(ORVELLA_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("orvella"));
    QIcon icon;
    for (const int size : {48, 128, 256})
        icon.addFile(QStringLiteral(":/icons/orvella-%1.png").arg(size), QSize(size, size));
    QApplication::setWindowIcon(icon);

    // Photos, folders and projects to open, from the desktop or the terminal.
    QStringList paths;
    for (const QString& argument : app.arguments().mid(1))
        paths.append(QDir::current().absoluteFilePath(argument));

    // A window is open already: it takes the files, and this start ends.
    QTextStream out(stdout);
    int added = WindowInstance::handOver(paths);
    WindowInstance instance;
    MainWindow* window = nullptr;
    if (added == WindowInstance::kNoWindow && !instance.listen([&window](const QStringList& more) {
            window->openFiles(more);
            bringToFront(*window);
            return MainWindow::photoFileCount(more);
        })) {
        // Another start began listening at the same moment: hand over once more.
        added = WindowInstance::handOver(paths);
    }
    if (added >= 0) {
        if (!paths.isEmpty())
            out << "orvella: " << added << (added == 1 ? " photo" : " photos")
                << " added to the open window\n";
        return 0;
    }
    if (added == WindowInstance::kNoAnswer) {
        std::fputs("orvella: the open window did not answer\n", stderr);
        return 1;
    }

    MainWindow mainWindow;
    window = &mainWindow;
    mainWindow.show();
    mainWindow.openFiles(paths);
    startUpdateCheck(&mainWindow);
    return app.exec();
}
