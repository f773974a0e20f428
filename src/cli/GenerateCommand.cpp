#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "cli/Cli.h"
#include "collection/PhotoCollection.h"
#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "services/TextValues.h"
#include "services/UserInterface.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella generate KIND --out DIR [OPTIONS] [PHOTO|FOLDER]...\n"
    "\n"
    "Writes a web site of the photos into DIR (created when missing). KIND is gallery (pages of\n"
    "thumbnails with a lightbox, a stylesheet, the images and a redirecting index.html),\n"
    "slideshow (one page showing one photo at a time, its stylesheet and the slide images) or "
    "grid\n"
    "(one page of the photos in a grid that fits the window, highlighted photos in larger cells,\n"
    "with a lightbox).\n"
    "Photos are taken in the order given; a folder adds its .png, .jpg, .jpeg, .tif and .tiff\n"
    "files sorted by name. Prints the path of the first page.\n"
    "\n"
    "Options:\n"
    "  --out DIR             the output folder (required)\n"
    "  --set NAME=VALUE      change one setting (see `orvella settings KIND`); popups take a\n"
    "                        title or an index, colours six hex digits, checkboxes 0 or 1\n"
    "  --sort az|za          sort the photos by file name\n"
    "  --unpublish FILENAME  leave out the photo with that file name (repeatable)\n"
    "  --highlight FILENAME  highlight the photo with that file name (repeatable); the grid\n"
    "                        gives it a larger cell\n"
    "  --threads N           image workers (default 0: one per core)\n"
    "  --open                open the first page in the default browser\n"
    "  --clean               first remove the files that earlier runs wrote into DIR and that\n"
    "                        this run does not write again (images of photos left out, pages\n"
    "                        no longer needed); only files recorded in DIR/.orvella-manifest\n"
    "                        as written by orvella, never other files\n"
    "  --rebuild             make every image again; without it an image whose photo and\n"
    "                        settings are unchanged since the run that made it is kept"
    "  --preset NAME|FILE    start from a preset: a path that exists is a preset file, anything\n"
    "                        else a stored preset of that kind (see `orvella preset`); --set\n"
    "                        values override it\n"
    "  --project FILE        not available yet\n"
    "\n"
    "Exit codes: 0 done, 1 a file could not be read or written (each is named on stderr),\n"
    "2 wrong usage or a run refused by an alert.\n";

// Alerts and progress on the terminal.
class TerminalUserInterface : public UserInterface {
  public:
    explicit TerminalUserInterface(Io& io) : io_(io) {}

    void alert(const QString& title, const QString& description, bool stopsRun) override {
        endBar();
        const QString text = description.trimmed();
        if (stopsRun) {
            io_.err << "orvella generate: " << title << " " << text << "\n";
            stopped = true;
        } else {
            io_.err << "warning: " << title << ": " << text << "\n";
        }
        io_.err.flush();
    }
    void progressStart() override {
        value_ = 0;
        drawn_ = -1;
        draw();
    }
    void progressStep(double increment) override {
        value_ += increment;
        draw();
    }
    void progressStop() override { endBar(); }
    void openUrl(const QString& url) override {
        // Not through QDesktopServices: the command line runs without a GUI application.
        if (!QProcess::startDetached(QStringLiteral("xdg-open"), {url}))
            io_.err << "warning: could not open " << url << "\n";
    }

    bool stopped = false;

  private:
    void draw() {
        if (!io_.errIsTerminal) return;
        const int percent = std::clamp(int(std::lround(value_)), 0, 100);
        if (percent == drawn_) return;
        drawn_ = percent;
        const int filled = percent * 30 / 100;
        io_.err << "\r[" << QString(filled, u'#') << QString(30 - filled, u'-') << "] " << percent
                << "%";
        io_.err.flush();
        barShown_ = true;
    }
    void endBar() {
        if (barShown_) io_.err << "\n";
        barShown_ = false;
        drawn_ = -1;
    }

    Io& io_;
    double value_ = 0;
    int drawn_ = -1;
    bool barShown_ = false;
};

int usage(Io& io, const QString& message) {
    io.err << "orvella generate: " << message << "\n";
    return kUsage;
}

int generate(const OutputKind& kind, const QStringList& args, Io& io) {
    QString out;
    QString sort;
    QStringList unpublish, highlight, inputs;
    bool open = false;
    bool clean = false;
    bool rebuild = false;
    int threads = 0;
    SettingsStore settings(OutputKinds::registry());
    QString preset;
    QStringList sets;

    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        auto value = [&](QString* target) {
            if (i + 1 >= args.size()) return false;
            *target = args[++i];
            return true;
        };
        QString v;
        if (a == u"--out") {
            if (!value(&out)) return usage(io, "--out needs a folder");
        } else if (a == u"--project") {
            return usage(io, a + " is not available yet");
        } else if (a == u"--preset") {
            if (!value(&preset) || preset.isEmpty()) return usage(io, "--preset needs NAME|FILE");
        } else if (a == u"--set") {
            if (!value(&v)) return usage(io, "--set needs NAME=VALUE");
            sets.append(v);
        } else if (a == u"--sort") {
            if (!value(&sort) || (sort != u"az" && sort != u"za"))
                return usage(io, "--sort takes az or za");
        } else if (a == u"--unpublish") {
            if (!value(&v)) return usage(io, "--unpublish needs a file name");
            unpublish.append(v);
        } else if (a == u"--highlight") {
            if (!value(&v)) return usage(io, "--highlight needs a file name");
            highlight.append(v);
        } else if (a == u"--threads") {
            static const QRegularExpression digits(QStringLiteral("^\\d+$"));
            if (!value(&v) || !digits.match(v).hasMatch())
                return usage(io, "--threads takes a whole number (0: one per core)");
            threads = TextValues::intValue(v);
        } else if (a == u"--open") {
            open = true;
        } else if (a == u"--clean") {
            clean = true;
        } else if (a == u"--rebuild") {
            rebuild = true;
        } else if (a.startsWith(u"--")) {
            return usage(io, "unknown option " + a);
        } else {
            inputs.append(a);
        }
    }
    if (out.isEmpty()) return usage(io, "--out DIR is required");
    // The defaults, then the preset, then the --set values.
    if (!preset.isEmpty())
        if (const int code = loadPresetForGenerate(kind.name, preset, settings, io)) return code;
    for (const QString& set : sets) {
        QString error;
        if (!applySetting(settings, kind.name, set, &error)) return usage(io, error);
    }

    QStringList paths;
    for (const QString& input : inputs) {
        const QFileInfo info(input);
        if (info.isDir())
            paths += PhotoCollection::photoFilesInFolder(input);
        else if (info.exists())
            paths.append(info.absoluteFilePath());
        else
            return usage(io, "no such file or folder: " + input);
    }

    PhotoCollection collection;
    collection.setCellImageSize(0);
    collection.appendPhotos(paths);
    // A photo that could not be read is named, the run goes on, and the exit code tells.
    for (const QString& skipped : collection.skippedPhotos())
        io.err << "orvella generate: skipped " << skipped << "\n";
    if (sort == u"az") collection.setSortingModeAz();
    if (sort == u"za") collection.setSortingModezA();

    auto setFlag = [&](const QStringList& names, const char* option, bool highlightFlag) {
        for (const QString& name : names) {
            bool found = false;
            const auto& records = collection.arrangedObjects();
            for (int row = 0; row < records.size(); ++row) {
                if (QFileInfo(records[row].path()).fileName() != name) continue;
                found = true;
                if (highlightFlag)
                    collection.setHighlight(row, true);
                else
                    collection.setSelect(row, false);
            }
            if (!found) {
                usage(io, QStringLiteral("%1: no photo named \"%2\"").arg(option, name));
                return false;
            }
        }
        return true;
    };
    if (!setFlag(unpublish, "--unpublish", false) || !setFlag(highlight, "--highlight", true))
        return kUsage;

    QString destination = QFileInfo(out).absoluteFilePath();
    if (!QDir().mkpath(destination)) {
        io.err << "orvella generate: cannot create the folder " << destination << "\n";
        return kFailed;
    }
    if (!destination.endsWith(u'/')) destination += u'/';

    TerminalUserInterface ui(io);
    const RunResult result = kind.run(collection.hGetPhotosFromArrayController(), settings, ui,
                                      RunOptions{destination, threads, open, clean, rebuild});
    if (!result.ok || ui.stopped) return kUsage;
    for (const QString& failure : result.failures)
        io.err << "orvella generate: " << failure << "\n";
    io.out << result.firstPage << "\n";
    return result.failures.isEmpty() && collection.skippedPhotos().isEmpty() ? kOk : kFailed;
}

}  // namespace

Command generateCommand() {
    return {QStringLiteral("generate"), "write a web site of photos (" + OutputKinds::names() + ")",
            QString::fromUtf8(kHelp), [](const QStringList& args, Io& io) {
                if (args.isEmpty()) {
                    io.err << kHelp;
                    return int(kUsage);
                }
                const OutputKind* kind = OutputKinds::find(args.first());
                if (!kind)
                    return usage(io, "unknown output kind \"" + args.first() +
                                         "\" (available: " + OutputKinds::names() + ")");
                return generate(*kind, args.mid(1), io);
            }};
}

}  // namespace cli
