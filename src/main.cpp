#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>
#include <cstdio>
#ifdef __GLIBC__
#include <malloc.h>
#endif
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

// No arguments, or photos, folders and projects that exist: the window. A command, an option or
// anything else: the command line, which names what it does not know.
bool opensWindow(int argc, char** argv) {
    if (argc <= 1) return true;
    const QString first = QString::fromLocal8Bit(argv[1]);
    if (first.startsWith(u'-') || first == u"help") return false;
    for (const cli::Command& command : cli::commands())
        if (command.name == first) return false;
    return QFileInfo::exists(first);
}

}  // namespace

int main(int argc, char** argv) {
#ifdef __GLIBC__
    // Decoded photos are large, short-lived buffers on several threads. Left to itself glibc raises
    // its mmap threshold after the first frees and then keeps such buffers in per-thread arenas,
    // which made a gallery run hold about 60% more memory than it uses.
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
    if (opensWindow(argc, argv)) return runApp(argc, argv);

    qInstallMessageHandler(quietMessages);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Orvella"));
    QCoreApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    QStringList arguments = app.arguments().mid(1);
    verbose = arguments.removeAll(QStringLiteral("--verbose")) > 0;

    QTextStream out(stdout);
    QTextStream err(stderr);
    cli::Io io{out, err, ::isatty(STDERR_FILENO) != 0, verbose};
    const int code = cli::run(arguments, io);
    out.flush();
    err.flush();
    return code;
}
