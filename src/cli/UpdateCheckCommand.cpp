#include <QEventLoop>
#include <QRegularExpression>

#include "cli/Cli.h"
#include "services/cAppUpdater.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella update-check [--url URL] [--build N] [--timeout SECONDS]\n"
    "\n"
    "Asks for the version file of the latest release and prints its announcement when it offers\n"
    "a newer build than this program's; prints nothing otherwise. When no answer came (no\n"
    "network, an error, no complete reply within the deadline) or the reply is larger than 1 MB\n"
    "(of which no more is read), a line on stderr says so. Only the announcement of the reply\n"
    "is printed, without control characters.\n"
    "\n"
    "  --url URL           the version file (default: the setting UpdateCheckURL, else the\n"
    "                      maker's address)\n"
    "  --build N           the build to compare with (default: this program's)\n"
    "  --timeout SECONDS   the deadline of the whole check, however slowly the server answers\n"
    "                      (default 20)\n"
    "\n"
    "The version file is text of \";\"-separated fields: version name; build number;\n"
    "announcement.\n"
    "\n"
    "Exit status: 0 when the check was made or no answer came, 1 when the reply is too large,\n"
    "2 wrong usage.\n";

int usage(Io& io, const QString& problem) {
    io.err << "orvella update-check: " << problem << "\n\n" << kHelp;
    return kUsage;
}

}  // namespace

Command updateCheckCommand() {
    return {QStringLiteral("update-check"),
            QStringLiteral("tell whether a newer release is available"), QString::fromUtf8(kHelp),
            [](const QStringList& args, Io& io) {
                cAppUpdater updater;
                int build = cAppUpdater::currentBuild();
                for (qsizetype i = 0; i < args.size(); ++i) {
                    const QString& option = args[i];
                    if ((option != u"--url" && option != u"--build" && option != u"--timeout") ||
                        i + 1 >= args.size())
                        return usage(io, QStringLiteral("unexpected \"%1\"").arg(option));
                    const QString value = args[++i];
                    if (option == u"--url") {
                        updater.url = QUrl::fromUserInput(value);
                    } else if (option == u"--timeout") {
                        bool ok = false;
                        const double seconds = value.toDouble(&ok);
                        if (!ok || !(seconds > 0) || seconds > 3600)
                            return usage(io, QStringLiteral("--timeout needs seconds, up to 3600"));
                        updater.timeoutMs = std::max(1, int(seconds * 1000));
                    } else {
                        static const QRegularExpression number(QStringLiteral("^[+-]?\\d+$"));
                        if (!number.match(value).hasMatch())
                            return usage(io, QStringLiteral("--build needs a whole number"));
                        build = value.toInt();
                    }
                }
                QEventLoop loop;
                QObject::connect(&updater, &cAppUpdater::finished, &loop, &QEventLoop::quit);
                QObject::connect(
                    &updater, &cAppUpdater::newVersion,
                    [&io](const QString& announcement) { io.out << announcement << "\n"; });
                updater.getAppVersion(build);
                if (updater.isRunning()) loop.exec();
                if (updater.failure == cAppUpdater::Failure::None) return int(kOk);
                io.err << "orvella update-check: " << updater.url.toDisplayString() << ": "
                       << updater.err << "\n";
                return int(updater.failure == cAppUpdater::Failure::TooLarge ? kFailed : kOk);
            }};
}

}  // namespace cli
