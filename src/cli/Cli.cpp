#include "cli/Cli.h"

#include <QFileInfo>

#include "collection/PhotoCollection.h"
#include "presets/SettingsStore.h"

namespace cli {

const std::vector<Command>& commands() {
    static const std::vector<Command> all = {
        metaCommand(),      imageCommand(),       generateCommand(), settingsCommand(),
        watermarkCommand(), updateCheckCommand(), presetCommand(),   supportCommand(),
        projectCommand(),   publishCommand()};
    return all;
}

namespace {

void printUsage(QTextStream& s) {
    s << "Orvella " ORVELLA_VERSION " turns a selection of photos into a small static web site.\n\n"
      << "Usage: orvella [PHOTO|FOLDER|PROJECT]...   open the window, with these photos added\n"
      << "       orvella COMMAND [ARGS...]           run a command\n"
      << "       orvella COMMAND --help              describe a command\n\n"
      << "Commands:\n";
    for (const Command& c : commands()) s << "  " << c.name.leftJustified(14) << c.summary << "\n";
    s << "\nOptions:\n"
      << "  --help      print this help\n"
      << "  --version   print the version\n"
      << "  --verbose   also print the diagnostic log on stderr\n";
}

}  // namespace

bool applySetting(SettingsStore& settings, const QString& kind, const QString& assignment,
                  QString* error) {
    const qsizetype eq = assignment.indexOf(u'=');
    if (eq <= 0) {
        *error = "--set needs NAME=VALUE, not \"" + assignment + "\"";
        return false;
    }
    const QString name = assignment.left(eq);
    const ControlSpec* control = settings.registry().find(name);
    if (!control || control->outputKind != kind) {
        const QStringList near = settings.registry().nearestNames(name, kind);
        *error = "unknown setting " + name +
                 (near.isEmpty() ? QString("; `orvella settings %1` lists them").arg(kind)
                                 : "; did you mean " + near.first() + "?");
        return false;
    }
    return settings.set(name, assignment.mid(eq + 1), error);
}

QStringList expandFolders(const QStringList& inputs) {
    QStringList files;
    for (const QString& input : inputs) {
        if (QFileInfo(input).isDir())
            files += PhotoCollection::photoFilesInFolder(input);
        else
            files.append(input);
    }
    return files;
}

int run(const QStringList& arguments, Io& io) {
    if (arguments.isEmpty() || arguments.first() == u"--help" || arguments.first() == u"-h" ||
        arguments.first() == u"help") {
        printUsage(io.out);
        return arguments.isEmpty() ? kUsage : kOk;
    }
    if (arguments.first() == u"--version") {
        io.out << "orvella " ORVELLA_VERSION "\n";
        return kOk;
    }
    for (const Command& c : commands()) {
        if (c.name != arguments.first()) continue;
        const QStringList rest = arguments.mid(1);
        if (rest.contains(QStringLiteral("--help")) || rest.contains(QStringLiteral("-h"))) {
            io.out << c.help;
            return kOk;
        }
        return c.run(rest, io);
    }
    io.err << "orvella: unknown command \"" << arguments.first() << "\"\n\n";
    printUsage(io.err);
    return kUsage;
}

}  // namespace cli
