#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>
#include <unistd.h>

#include "app/App.h"
#include "cli/Cli.h"

namespace {

bool verbose = false;

void quietMessages(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtInfoMsg && !verbose) return;
    if (type == QtDebugMsg && !verbose) return;
    (void)context;
    std::fprintf(stderr, "%s\n", qPrintable(message));
}

}  // namespace

int main(int argc, char** argv) {
    // No arguments: the window. Anything else: the command line.
    if (argc <= 1) return runApp(argc, argv);

    qInstallMessageHandler(quietMessages);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Orvella"));
    QCoreApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    QStringList arguments = app.arguments().mid(1);
    verbose = arguments.removeAll(QStringLiteral("--verbose")) > 0;

    QTextStream out(stdout);
    QTextStream err(stderr);
    cli::Io io{out, err, ::isatty(STDERR_FILENO) != 0};
    const int code = cli::run(arguments, io);
    out.flush();
    err.flush();
    return code;
}
