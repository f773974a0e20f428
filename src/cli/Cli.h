#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <functional>
#include <vector>

class SettingsStore;

// The command line: `orvella COMMAND [ARGS...]`. It parses arguments, builds settings and calls
// the core, nothing more.
class SettingsStore;

namespace cli {

struct Io {
    QTextStream& out;
    QTextStream& err;
    bool errIsTerminal = false;
};

// Exit codes: 0 done, 1 a failure, 2 wrong usage or a refusal (an alert that stopped a run).
enum Exit { kOk = 0, kFailed = 1, kUsage = 2 };

struct Command {
    QString name;     // "meta", "image", "generate", "settings"
    QString summary;  // one line for `orvella --help`
    QString help;     // the whole text for `orvella NAME --help`
    std::function<int(const QStringList& args, Io& io)> run;  // args after the command name
};

// Each command group lives in its own source file.
Command metaCommand();
Command imageCommand();
Command generateCommand();
Command settingsCommand();
Command watermarkCommand();
Command updateCheckCommand();
Command presetCommand();
Command supportCommand();

// The batch and EXIF-completion verbs of `orvella meta` (args after the verb).
int metaBatch(const QStringList& args, Io& io);
int metaComplete(const QStringList& args, Io& io);

// Starts `orvella generate KIND` from a preset (a file that exists, else a stored name); returns
// the exit code to stop with, or 0.
int loadPresetForGenerate(const QString& kind, const QString& nameOrFile, SettingsStore& settings,
                          Io& io);

const std::vector<Command>& commands();

// Applies one `--set NAME=VALUE` to settings of `kind`. False with the message to print when the
// text is not NAME=VALUE, the name is no setting of the kind (the nearest names are suggested:
// "unknown setting tfBigCropWidht; did you mean tfBigCropWidth?") or the value does not fit.
bool applySetting(SettingsStore& settings, const QString& kind, const QString& assignment,
                  QString* error);

// The photo files named on a command line: a folder stands for its photos, in the order the
// window would list them; a file stands for itself.
QStringList expandFolders(const QStringList& inputs);

// Runs the command line on argv[1..]; returns the exit code.
int run(const QStringList& arguments, Io& io);

}  // namespace cli
