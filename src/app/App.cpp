#include "app/App.h"

#include <QApplication>
#include <QMainWindow>

int runApp(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Orvella"));
    QApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Orvella"));
    window.resize(1100, 750);
    window.show();
    return app.exec();
}
