#include <QFileInfo>

#include "cli/Cli.h"
#include "services/SupportFolders.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella support set ROOT\n"
    "       orvella support show\n"
    "       orvella support import patterns|watermarks FILE...\n"
    "\n"
    "The support folder keeps background patterns and watermark images:\n"
    "ROOT/Keldra_SupportFiles/Patterns and ROOT/Keldra_SupportFiles/Watermarks.\n"
    "\n"
    "  set      makes ROOT the support root: creates the folders, fills a new Patterns folder\n"
    "           with the built-in patterns (an existing one is kept as it is) and prints the\n"
    "           three paths\n"
    "  show     prints the root, patterns and watermarks paths, one per line\n"
    "  import   copies PNG and JPEG files into the patterns or watermarks folder and prints the\n"
    "           files written\n"
    "\n"
    "Exit codes: 0 done, 1 no usable support folder or a file not copied, 2 wrong usage.\n";

int usage(Io& io, const QString& message) {
    io.err << "orvella support: " << message << "\n";
    return kUsage;
}

void printPaths(Io& io) {
    io.out << SupportFolders::rootPath() << "\n"
           << SupportFolders::patternsPath() << "\n"
           << SupportFolders::watermarksPath() << "\n";
}

int noRoot(Io& io) {
    if (SupportFolders::hasRoot()) {
        io.err << SupportFolders::kGoneLine1 << "\n" << SupportFolders::kGoneLine2 << "\n";
    } else {
        io.err << "orvella support: no support folder is set; choose one with `orvella support "
                  "set ROOT`\n";
    }
    return kFailed;
}

}  // namespace

Command supportCommand() {
    return {QStringLiteral("support"),
            QStringLiteral("choose and show the support folder, import patterns and watermarks"),
            QString::fromUtf8(kHelp), [](const QStringList& args, Io& io) {
                const QString verb = args.value(0);
                if (verb == u"set") {
                    if (args.size() != 2) return usage(io, "set needs ROOT");
                    QString error;
                    if (!SupportFolders::setLibraryDestination(args[1], &error))
                        return usage(io, error);
                    // Folders that could not be made leave nothing to show.
                    for (const QString& folder :
                         {SupportFolders::patternsPath(), SupportFolders::watermarksPath()}) {
                        if (!QFileInfo(folder).isDir()) {
                            io.err << "orvella support: cannot create " << folder << "\n";
                            return int(kFailed);
                        }
                    }
                    printPaths(io);
                    return int(kOk);
                }
                if (verb == u"show") {
                    if (args.size() != 1) return usage(io, "show takes no arguments");
                    if (SupportFolders::rootPath().isEmpty()) return noRoot(io);
                    printPaths(io);
                    return int(kOk);
                }
                if (verb == u"import") {
                    const QString what = args.value(1);
                    if ((what != u"patterns" && what != u"watermarks") || args.size() < 3)
                        return usage(io, "import needs patterns or watermarks and FILE...");
                    const bool watermarks = what == u"watermarks";
                    if (SupportFolders::importNeedsRoot(watermarks) ||
                        SupportFolders::rootPath().isEmpty())
                        return noRoot(io);
                    QStringList failures;
                    for (const QString& written :
                         SupportFolders::importImages(watermarks, args.mid(2), &failures))
                        io.out << written << "\n";
                    for (const QString& failure : failures)
                        io.err << "orvella support: " << failure << "\n";
                    return int(failures.isEmpty() ? kOk : kFailed);
                }
                io.err << kHelp;
                return int(kUsage);
            }};
}

}  // namespace cli
