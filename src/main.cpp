#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>
#include <cstdio>
#include <cstring>
#include <vector>
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
// anything else: the command line, which names what it does not know. `arguments` are those after
// the program's name, --verbose left out.
bool opensWindow(const std::vector<char*>& arguments) {
    if (arguments.empty()) return true;
    const QString first = QString::fromLocal8Bit(arguments.front());
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
    // Diagnostics reach the terminal only with --verbose, in the window as on the command line.
    std::vector<char*> windowArguments{argv[0]};
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--verbose") == 0)
            verbose = true;
        else
            windowArguments.push_back(argv[i]);
    }
    qInstallMessageHandler(quietMessages);
    if (opensWindow({windowArguments.begin() + 1, windowArguments.end()})) {
        windowArguments.push_back(nullptr);
        return runApp(int(windowArguments.size()) - 1, windowArguments.data());
    }

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Orvella"));
    QCoreApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    QStringList arguments = app.arguments().mid(1);
    arguments.removeAll(QStringLiteral("--verbose"));

    QTextStream out(stdout);
    QTextStream err(stderr);
    cli::Io io{out, err, ::isatty(STDERR_FILENO) != 0, verbose};
    const int code = cli::run(arguments, io);
    out.flush();
    err.flush();
    return code;
}
