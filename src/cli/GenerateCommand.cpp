#include <QDir>
#include <QElapsedTimer>
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
    "Photos are taken in the order given; a folder adds its .png, .jpg, .jpeg, .tif, .tiff,\n"
    ".heic, .heif, .avif, .webp and .jxl files sorted by name. Prints the path of the first\n"
    "page. A page name given with \".html\" is taken without it.\n"
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
    "  --no-wait             refuse at once while another run writes into DIR (by default a\n"
    "                        run waits for it)\n"
    "  --memory-budget MB    decoded pixels in the making at once (default 640); a photo\n"
    "                        waits for the photos before it rather than go beyond it\n"
    "  --clean               first remove the files that earlier runs wrote into DIR and that\n"
    "                        this run does not write again (images of photos left out, pages\n"
    "                        no longer needed); only files recorded in DIR/.orvella-manifest\n"
    "                        as written by orvella, never other files\n"
    "  --rebuild             make every image again; without it an image whose photo and\n"
    "                        settings are unchanged since the run that made it is kept\n"
    "  --preset NAME|FILE    start from a preset: a path that exists is a preset file, anything\n"
    "                        else a stored preset of that kind (see `orvella preset`); --set\n"
    "                        values override it\n"
    "  --project FILE        see `orvella project build`\n"
    "\n"
    "Ctrl-C or SIGTERM stop a run after the files being written: no page is written and the\n"
    "run record keeps what was made.\n"
    "\n"
    "Exit codes: 0 done, 1 a file could not be read or written (each is named on stderr),\n"
    "2 wrong usage or a run refused by an alert, 3 the files were written but no page (a\n"
    "gallery whose photos fill its pages exactly writes none; stderr says so and no page path\n"
    "is printed), 130 or 143 stopped by SIGINT or SIGTERM.\n";

// Alerts and progress on the terminal.
class TerminalUserInterface : public UserInterface {
  public:
    TerminalUserInterface(Io& io, const QString& prefix) : io_(io), prefix_(prefix) {}

    void alert(const QString& title, const QString& description, bool stopsRun) override {
        endBar();
        const QString text = description.trimmed();
        if (stopsRun) {
            io_.err << prefix_ << ": " << title << " " << text << "\n";
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
    void progressPhotos(int done, int total) override {
        if (done == 0) photoClock_.start();
        photosDone_ = done;
        photosTotal_ = total;
        // At most ten times a second, and the last photo always.
        if (done < total && drawnAt_.isValid() && drawnAt_.elapsed() < 100) return;
        drawn_ = -1;
        draw();
    }
    bool isCancelled() const override { return InterruptGuard::received() != 0; }
    void openUrl(const QString& url) override {
        // Not through QDesktopServices: the command line runs without a GUI application.
        if (!QProcess::startDetached(QStringLiteral("xdg-open"), {url}))
            io_.err << "warning: could not open " << url << "\n";
    }
    // Nobody answers on the command line: nothing is given up.
    SaveAnswer askToSave(const QString& question, const QString& detail) override {
        endBar();
        io_.err << prefix_ << ": " << question << " " << detail << " (not answered: cancelled)\n";
        return SaveAnswer::Cancel;
    }

    bool stopped = false;

  private:
    void draw() {
        if (!io_.errIsTerminal) return;
        const int percent = std::clamp(int(std::lround(value_)), 0, 100);
        if (percent == drawn_) return;
        drawn_ = percent;
        const int filled = percent * 30 / 100;
        io_.err << "\r\033[K[" << QString(filled, u'#') << QString(30 - filled, u'-') << "] "
                << percent << "%";
        if (photosTotal_ > 0)
            io_.err << "  " << photosDone_ << "/" << photosTotal_ << " photos" << timeLeft();
        io_.err.flush();
        drawnAt_.start();
        barShown_ = true;
    }
    // ", 1:23 left" from the pace of the photos made so far; nothing before there is one.
    QString timeLeft() const {
        if (photosDone_ <= 0 || photosDone_ >= photosTotal_ || !photoClock_.isValid()) return {};
        const qint64 seconds =
            photoClock_.elapsed() * (photosTotal_ - photosDone_) / photosDone_ / 1000;
        return QStringLiteral(", %1:%2 left")
            .arg(seconds / 60)
            .arg(seconds % 60, 2, 10, QChar(u'0'));
    }
    void endBar() {
        if (barShown_) {
            io_.err << "\n";
            io_.err.flush();  // before anything the command prints on stdout
        }
        barShown_ = false;
        drawn_ = -1;
        photosTotal_ = 0;
    }

    Io& io_;
    QString prefix_;
    double value_ = 0;
    int drawn_ = -1;
    bool barShown_ = false;
    int photosDone_ = 0;
    int photosTotal_ = 0;
    QElapsedTimer photoClock_, drawnAt_;
};

int usage(Io& io, const QString& message) {
    io.err << "orvella generate: " << message << "\n";
    return kUsage;
}

int generate(const OutputKind& kind, const QStringList& args, Io& io) {
    QString out;
    RunOptions options;
    PhotoSelection selection;

    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        QString error;
        if (takeSelectionOption(args, i, selection, &error) ||
            takeRunOption(args, i, &out, &options, &error)) {
            if (!error.isEmpty()) return usage(io, error);
        } else if (a == u"--project") {
            return usage(io,
                         a + ": a project is built with `orvella project build FILE --out DIR`");
        } else if (a == u"--clean") {
            options.clean = true;
        } else if (a == u"--rebuild") {
            options.rebuild = true;
        } else if (a.startsWith(u"--")) {
            return usage(io, "unknown option " + a);
        } else {
            selection.inputs.append(a);
        }
    }
    if (out.isEmpty()) return usage(io, "--out DIR is required");

    SettingsStore settings(OutputKinds::registry());
    PhotoCollection collection;
    const QString prefix = QStringLiteral("orvella generate");
    if (const int code = makeSelection(kind, selection, settings, collection, io, prefix))
        return code;
    return writeSite(kind, collection, settings, out, options, io, prefix);
}

}  // namespace

bool takeSelectionOption(const QStringList& args, int& i, PhotoSelection& selection,
                         QString* error) {
    const QString& a = args[i];
    auto value = [&](QString* target) {
        if (i + 1 >= args.size()) return false;
        *target = args[++i];
        return true;
    };
    QString v;
    if (a == u"--preset") {
        if (!value(&selection.preset) || selection.preset.isEmpty())
            *error = QStringLiteral("--preset needs NAME|FILE");
    } else if (a == u"--set") {
        if (!value(&v)) *error = QStringLiteral("--set needs NAME=VALUE");
        selection.sets.append(v);
    } else if (a == u"--sort") {
        if (!value(&selection.sort) || (selection.sort != u"az" && selection.sort != u"za"))
            *error = QStringLiteral("--sort takes az or za");
    } else if (a == u"--unpublish") {
        if (!value(&v)) *error = QStringLiteral("--unpublish needs a file name");
        selection.unpublish.append(v);
    } else if (a == u"--highlight") {
        if (!value(&v)) *error = QStringLiteral("--highlight needs a file name");
        selection.highlight.append(v);
    } else {
        return false;
    }
    return true;
}

bool takeRunOption(const QStringList& args, int& i, QString* out, RunOptions* options,
                   QString* error) {
    const QString& a = args[i];
    if (a == u"--out") {
        if (i + 1 >= args.size())
            *error = QStringLiteral("--out needs a folder");
        else
            *out = args[++i];
    } else if (a == u"--threads") {
        static const QRegularExpression digits(QStringLiteral("^\\d+$"));
        if (i + 1 >= args.size() || !digits.match(args[i + 1]).hasMatch())
            *error = QStringLiteral("--threads takes a whole number (0: one per core)");
        else
            options->threads = TextValues::intValue(args[++i]);
    } else if (a == u"--open") {
        options->openFirstPage = true;
    } else if (a == u"--no-wait") {
        options->waitForLock = false;
    } else if (a == u"--memory-budget") {
        static const QRegularExpression digits(QStringLiteral("^[1-9]\\d{0,6}$"));
        if (i + 1 >= args.size() || !digits.match(args[i + 1]).hasMatch())
            *error = QStringLiteral("--memory-budget takes a number of megabytes (at least 1)");
        else
            options->memoryBudget = args[++i].toLongLong() << 20;
    } else {
        return false;
    }
    return true;
}

int makeSelection(const OutputKind& kind, const PhotoSelection& selection, SettingsStore& settings,
                  PhotoCollection& collection, Io& io, const QString& prefix) {
    auto usage = [&](const QString& message) {
        io.err << prefix << ": " << message << "\n";
        return int(kUsage);
    };
    // The defaults, then the preset, then the --set values.
    if (!selection.preset.isEmpty())
        if (const int code = loadPresetForGenerate(kind.name, selection.preset, settings, io))
            return code;
    for (const QString& set : selection.sets) {
        QString error;
        if (!applySetting(settings, kind.name, set, &error)) return usage(error);
    }

    for (const QString& input : selection.inputs)
        if (!QFileInfo::exists(input)) return usage("no such file or folder: " + input);
    QStringList paths;
    for (const QString& file : expandFolders(selection.inputs))
        paths.append(QFileInfo(file).absoluteFilePath());

    collection.setCellImageSize(0);
    collection.appendPhotos(paths);
    // A photo that could not be read is named, the run goes on, and the exit code tells.
    for (const QString& skipped : collection.skippedPhotos())
        io.err << prefix << ": " << skipped << "\n";
    if (selection.sort == u"az") collection.setSortingModeAz();
    if (selection.sort == u"za") collection.setSortingModezA();

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
                usage(QStringLiteral("%1: no photo named \"%2\"").arg(option, name));
                return false;
            }
        }
        return true;
    };
    if (!setFlag(selection.unpublish, "--unpublish", false) ||
        !setFlag(selection.highlight, "--highlight", true))
        return kUsage;
    return kOk;
}

int writeSite(const OutputKind& kind, const PhotoCollection& collection,
              const SettingsStore& settings, const QString& out, RunOptions options, Io& io,
              const QString& prefix) {
    QString destination = QFileInfo(out).absoluteFilePath();
    if (!QDir().mkpath(destination)) {
        io.err << prefix << ": cannot create the folder " << destination << "\n";
        return kFailed;
    }
    if (!destination.endsWith(u'/')) destination += u'/';

    TerminalUserInterface ui(io, prefix);
    options.destination = destination;
    const InterruptGuard interrupts;
    const RunResult result =
        kind.run(collection.hGetPhotosFromArrayController(), settings, ui, options);
    if (!result.ok || ui.stopped) return kUsage;
    for (const QString& failure : result.failures) io.err << prefix << ": " << failure << "\n";
    // A signal that came after the last photo stopped nothing: the site is whole.
    if (const int signal = InterruptGuard::received(); signal && result.cancelled) {
        io.err << prefix << ": interrupted: no page was written; " << result.unfinished.size()
               << " photo(s) were not made; the run record holds the images that were\n";
        return 128 + signal;
    }
    if (!result.failures.isEmpty() || !collection.skippedPhotos().isEmpty()) {
        if (!result.firstPage.isEmpty()) io.out << result.firstPage << "\n";
        return kFailed;
    }
    if (result.firstPage.isEmpty()) {
        io.err << prefix << ": no page was written\n";
        return kNoPage;
    }
    // The last line on stdout is the first page.
    io.out << result.firstPage << "\n";
    return kOk;
}

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
