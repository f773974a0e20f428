#include <QEventLoop>
#include <QRegularExpression>

#include "cli/Cli.h"
#include "services/cAppUpdater.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella update-check [--url URL] [--build N]\n"
    "\n"
    "Asks for the version file of the latest release and prints its announcement when it offers\n"
    "a newer build than this program's; prints nothing otherwise, also when there is no network,\n"
    "no answer within 20 seconds, or an empty one.\n"
    "\n"
    "  --url URL   the version file (default: the setting UpdateCheckURL, else the maker's\n"
    "              address)\n"
    "  --build N   the build to compare with (default: this program's)\n"
    "\n"
    "The version file is text of \";\"-separated fields: version name; build number;\n"
    "announcement.\n"
    "\n"
    "Exit status: 0 whatever the answer, 2 wrong usage.\n";

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
                    if ((args[i] != u"--url" && args[i] != u"--build") || i + 1 >= args.size())
                        return usage(io, QStringLiteral("unexpected \"%1\"").arg(args[i]));
                    const QString value = args[++i];
                    if (args[i - 1] == u"--url") {
                        updater.url = QUrl::fromUserInput(value);
                        continue;
                    }
                    static const QRegularExpression number(QStringLiteral("^[+-]?\\d+$"));
                    if (!number.match(value).hasMatch())
                        return usage(io, QStringLiteral("--build needs a whole number"));
                    build = value.toInt();
                }
                QEventLoop loop;
                QObject::connect(&updater, &cAppUpdater::finished, &loop, &QEventLoop::quit);
                QObject::connect(
                    &updater, &cAppUpdater::newVersion,
                    [&io](const QString& announcement) { io.out << announcement << "\n"; });
                updater.getAppVersion(build);
                if (updater.isRunning()) loop.exec();
                return int(kOk);
            }};
}

}  // namespace cli
