#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <functional>
#include <vector>

#include "generators/common/GeneratorRun.h"

// The command line: `orvella COMMAND [ARGS...]`. It parses arguments, builds settings and calls
// the core, nothing more.
class SettingsStore;
class PhotoCollection;
struct OutputKind;

namespace cli {

struct Io {
    QTextStream& out;
    QTextStream& err;
    bool errIsTerminal = false;
    bool verbose = false;  // --verbose was given (it also shows the diagnostic log)
};

// Exit codes: 0 done, 1 a failure, 2 wrong usage or a refusal (an alert that stopped a run).
// kNoPage: the run wrote its files but no page (a gallery whose photos fill its pages exactly).
enum Exit { kOk = 0, kFailed = 1, kUsage = 2, kNoPage = 3 };

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
Command projectCommand();
Command publishCommand();

// The batch and EXIF-completion verbs of `orvella meta` (args after the verb).
int metaBatch(const QStringList& args, Io& io);
int metaComplete(const QStringList& args, Io& io);

// Starts `orvella generate KIND` from a preset (a file that exists, else a stored name); returns
// the exit code to stop with, or 0.
int loadPresetForGenerate(const QString& kind, const QString& nameOrFile, SettingsStore& settings,
                          Io& io);

// The photos of a run and what is done to them, as `generate` and `project save` take them.
struct PhotoSelection {
    QStringList inputs;  // photos and folders, in order
    QString sort;        // "", "az" or "za"
    QStringList unpublish, highlight;
    QString preset;
    QStringList sets;  // NAME=VALUE
};
// Takes args[i] (and its value, moving i past it) when it is --preset, --set, --sort,
// --unpublish or --highlight: true when taken, with `error` set when its value is wrong.
bool takeSelectionOption(const QStringList& args, int& i, PhotoSelection& selection,
                         QString* error);
// While it lives, SIGINT and SIGTERM ask the run to stop (through its UserInterface) instead of
// ending the process, so the files being written are finished and none is left half done. The
// second signal ends the process as usual.
class InterruptGuard {
  public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    // The signal received (SIGINT, SIGTERM), 0 for none.
    static int received();
};

// Takes args[i] (and its value, moving i past it) when it is --out DIR, --threads N, --open,
// --no-wait or --memory-budget MB, the options of a run that writes a site: true when taken, with
// `error` set when its value is wrong. `options->destination` is left to writeSite.
bool takeRunOption(const QStringList& args, int& i, QString* out, RunOptions* options,
                   QString* error);
// Settings of `kind` (defaults, then the preset, then the --set values) and the collection of the
// photos, sorted and flagged. 0, or the exit code to stop with; messages begin with `prefix`.
int makeSelection(const OutputKind& kind, const PhotoSelection& selection, SettingsStore& settings,
                  PhotoCollection& collection, Io& io, const QString& prefix);
// Writes the site of `kind` of the collection's published photos into `out` and prints its first
// page: what `generate` does once its photos and settings are made. Returns the exit code.
// `options.destination` is made from `out`.
int writeSite(const OutputKind& kind, const PhotoCollection& collection,
              const SettingsStore& settings, const QString& out, RunOptions options, Io& io,
              const QString& prefix);

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
