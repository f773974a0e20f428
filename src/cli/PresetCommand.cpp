#include <QFileInfo>

#include "cli/Cli.h"
#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "presets/cPresetManager.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella preset save KIND NAME [--preset NAME|FILE] [--set NAME=VALUE]...\n"
    "       orvella preset list KIND\n"
    "       orvella preset remove NAME\n"
    "       orvella preset export KIND --out FILE [--preset NAME|FILE] [--set NAME=VALUE]...\n"
    "       orvella preset import FILE NAME\n"
    "       orvella preset repair\n"
    "\n"
    "Presets keep every setting of an output kind under a name in the presets database.\n"
    "KIND is gallery, slideshow or grid.\n"
    "\n"
    "  save     stores the kind's settings (the defaults, then the preset given, then the --set\n"
    "           values) and prints the name stored: NAME, or NAME_[x] when the kind has a\n"
    "           preset of that name already\n"
    "  list     prints the names of the kind's presets, oldest first, one per line; a stored\n"
    "           preset that cannot be read is named on stderr instead, and the exit code is 1\n"
    "  remove   removes every preset of that name, whatever its kind\n"
    "  export   writes the settings to a preset file (an XML property list)\n"
    "  import   stores a preset file's settings as a preset of the file's kind and prints the\n"
    "           name stored\n"
    "  repair   moves a damaged presets database aside, renamed FILE.damaged-YYYY-MM-DD\n"
    "           beside it (nothing is overwritten), starts a new one and prints the name it was\n"
    "           moved to; a database without fault, or a locked one, is left where it is\n"
    "\n"
    "  --preset NAME|FILE   start from a preset: a path that exists is a preset file, anything\n"
    "                       else the name of a stored preset of that kind (the newest)\n"
    "  --set NAME=VALUE     change one setting (see `orvella settings KIND`)\n"
    "\n"
    "A database that cannot be read (damaged, not a file, unreadable, or locked by another\n"
    "program for 3 seconds) is named with its fault, and nothing is written to it.\n"
    "\n"
    "Exit codes: 0 done, 1 the database, a stored preset or a file failed, 2 wrong usage or a\n"
    "refusal (no such preset, a file that is not a preset file).\n";

int usage(Io& io, const QString& message) {
    io.err << "orvella preset: " << message << "\n";
    return kUsage;
}

int outcome(Io& io, const cPresetManager& manager, cPresetManager::Outcome result,
            const QString& message, const char* prefix = "orvella preset: ") {
    if (result == cPresetManager::Outcome::Ok) return kOk;
    io.err << prefix << message << "\n";
    if (result == cPresetManager::Outcome::Failed && manager.failure().movable())
        io.err << "`orvella preset repair` moves it aside and starts a new presets database.\n";
    return result == cPresetManager::Outcome::Failed ? kFailed : kUsage;
}

const PresetLayout* kindOf(const QString& word) {
    const PresetLayout* layout = PresetLayouts::find(word);
    return layout && layout->kind == word ? layout : nullptr;
}

QString kindWords() {
    QStringList words;
    for (const PresetLayout& layout : PresetLayouts::all()) words.append(layout.kind);
    return words.join(QStringLiteral(", "));
}

// Reads [--preset NAME|FILE] [--set NAME=VALUE]... (and --out FILE when `out` is given) into
// the settings: the defaults, then the preset, then the --set values in order.
int readSettings(const PresetLayout& layout, const QStringList& args, SettingsStore& settings,
                 Io& io, QString* out = nullptr) {
    QString preset;
    QStringList sets;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (i + 1 >= args.size() || (a != u"--preset" && a != u"--set" && (a != u"--out" || !out)))
            return usage(io, QStringLiteral("unexpected \"%1\"").arg(a));
        const QString value = args[++i];
        if (a == u"--preset")
            preset = value;
        else if (a == u"--out")
            *out = value;
        else
            sets.append(value);
    }
    if (!preset.isEmpty()) {
        QString message;
        cPresetManager manager;
        const auto result = manager.loadPreset(settings, layout, preset, &message);
        if (result != cPresetManager::Outcome::Ok) return outcome(io, manager, result, message);
    }
    for (const QString& set : sets) {
        const qsizetype eq = set.indexOf(u'=');
        if (eq <= 0) return usage(io, "--set needs NAME=VALUE, not \"" + set + "\"");
        const QString name = set.left(eq);
        const ControlSpec* control = settings.registry().find(name);
        if (!control || control->outputKind != layout.kind)
            return usage(io, "unknown " + layout.kind + " setting \"" + name + "\"");
        QString error;
        if (!settings.set(name, set.mid(eq + 1), &error)) return usage(io, error);
    }
    return kOk;
}

int save(const QStringList& args, Io& io) {
    if (args.size() < 2) return usage(io, "save needs KIND and NAME");
    const PresetLayout* layout = kindOf(args[0]);
    if (!layout) return usage(io, "unknown kind \"" + args[0] + "\" (" + kindWords() + ")");
    SettingsStore settings(OutputKinds::registry());
    if (const int code = readSettings(*layout, args.mid(2), settings, io)) return code;
    QString stored, message;
    cPresetManager manager;
    const auto result = manager.addPresetValuesToDB(settings, *layout, args[1], &stored, &message);
    if (result == cPresetManager::Outcome::Ok) io.out << stored << "\n";
    return outcome(io, manager, result, message);
}

int list(const QStringList& args, Io& io) {
    if (args.size() != 1) return usage(io, "list needs KIND");
    const PresetLayout* layout = kindOf(args[0]);
    if (!layout) return usage(io, "unknown kind \"" + args[0] + "\" (" + kindWords() + ")");
    cPresetManager manager;
    QList<cPresetManager::ListEntry> entries;
    QString message;
    const auto result = manager.listPresets(*layout, &entries, &message);
    if (result != cPresetManager::Outcome::Ok) return outcome(io, manager, result, message);
    int code = kOk;
    for (const auto& entry : entries) {
        if (entry.damage.isEmpty()) {
            io.out << cPresetManager::displayName(entry.nmPreset) << "\n";
        } else {
            io.err << "orvella preset: " << entry.damage << "\n";
            code = kFailed;
        }
    }
    return code;
}

int remove(const QStringList& args, Io& io) {
    if (args.size() != 1) return usage(io, "remove needs NAME");
    QString message;
    cPresetManager manager;
    return outcome(io, manager, manager.hRemovePreset(args[0], &message), message);
}

int repair(const QStringList& args, Io& io) {
    if (!args.isEmpty()) return usage(io, "repair takes no arguments");
    QString movedTo, message;
    cPresetManager manager;
    const auto result = manager.repairDatabase(&movedTo, &message);
    if (result != cPresetManager::Outcome::Ok) {
        io.err << "orvella preset: " << message << "\n";
        return kFailed;
    }
    if (movedTo.isEmpty())
        io.err << "orvella preset: " << message << "\n";
    else
        io.out << movedTo << "\n";
    return kOk;
}

int exportPreset(const QStringList& args, Io& io) {
    if (args.isEmpty()) return usage(io, "export needs KIND");
    const PresetLayout* layout = kindOf(args[0]);
    if (!layout) return usage(io, "unknown kind \"" + args[0] + "\" (" + kindWords() + ")");
    SettingsStore settings(OutputKinds::registry());
    QString out;
    if (const int code = readSettings(*layout, args.mid(1), settings, io, &out)) return code;
    if (out.isEmpty()) return usage(io, "export needs --out FILE");
    if (QFileInfo(out).isDir()) return usage(io, out + " is a folder");
    QString message;
    if (!cPresetManager::writePresetFile(
            out, cPresetManager::addPresetValuesToPLIST(settings, *layout), &message)) {
        io.err << "orvella preset: " << message << "\n";
        return kFailed;
    }
    io.out << QFileInfo(out).absoluteFilePath() << "\n";
    return kOk;
}

int importPreset(const QStringList& args, Io& io) {
    if (args.size() != 2) return usage(io, "import needs FILE and NAME");
    if (!QFileInfo(args[0]).isFile()) return usage(io, "no such file: " + args[0]);
    QString stored, message;
    cPresetManager manager;
    const auto result = manager.importPresetFile(args[0], args[1], &stored, &message);
    if (result == cPresetManager::Outcome::Ok) io.out << stored << "\n";
    return outcome(io, manager, result, message);
}

}  // namespace

Command presetCommand() {
    return {QStringLiteral("preset"),
            QStringLiteral("save, list, remove, export, import and repair presets of settings"),
            QString::fromUtf8(kHelp), [](const QStringList& args, Io& io) {
                const QString verb = args.value(0);
                const QStringList rest = args.mid(1);
                if (verb == u"save") return save(rest, io);
                if (verb == u"list") return list(rest, io);
                if (verb == u"remove") return remove(rest, io);
                if (verb == u"export") return exportPreset(rest, io);
                if (verb == u"import") return importPreset(rest, io);
                if (verb == u"repair") return repair(rest, io);
                io.err << kHelp;
                return int(kUsage);
            }};
}

// For `orvella generate KIND --preset NAME|FILE`.
int loadPresetForGenerate(const QString& kind, const QString& nameOrFile, SettingsStore& settings,
                          Io& io) {
    const PresetLayout* layout = kindOf(kind);
    if (!layout) return usage(io, "the " + kind + " has no presets");
    QString message;
    cPresetManager manager;
    const auto result = manager.loadPreset(settings, *layout, nameOrFile, &message);
    return outcome(io, manager, result, message, "orvella generate: ");
}

}  // namespace cli
