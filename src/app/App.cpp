#include "app/App.h"

#include <QApplication>

#include "app/MainWindow.h"
#include "app/UpdateSheet.h"

int runApp(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Orvella"));
    QApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    MainWindow window;
    window.show();
    startUpdateCheck(&window);
    return app.exec();
}
