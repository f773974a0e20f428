#include <QDir>
#include <QFileInfo>

#include "cli/Cli.h"
#include "collection/PhotoCollection.h"
#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "projects/ProjectFile.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella project save FOLDER --name NAME --kind KIND [OPTIONS] [PHOTO|FOLDER]...\n"
    "       orvella project show FILE\n"
    "       orvella project build FILE --out DIR [--threads N] [--open]\n"
    "\n"
    "A project keeps a selection of photos with their captions and flags, and the settings of one\n"
    "output kind, in a folder: NAME.orvprj beside a \"photos\" folder with a copy of every photo.\n"
    "KIND is gallery, slideshow or grid.\n"
    "\n"
    "  save    writes FOLDER/NAME.orvprj with the kind's settings and copies the photos into\n"
    "          FOLDER/photos/ (a copy already there is kept; the project file is replaced);\n"
    "          photos and settings are taken as `orvella generate` takes them; prints the\n"
    "          project file's path\n"
    "  show    prints the project's kind (PhotoGallery, SlideShow or ResponsiveGrid), then one\n"
    "          line per photo: number, name, publish, highlight, pixels, orientation and\n"
    "          caption, separated by tabs (a tab, line break, carriage return or backslash in a\n"
    "          text is written \\t, \\n, \\r or \\\\)\n"
    "  build   writes the site of the project's kind into DIR from the project alone (its\n"
    "          photos from its \"photos\" folder, flags, captions, order and settings): the site\n"
    "          `orvella generate` writes of the same photos and settings; prints the first page\n"
    "\n"
    "  --name NAME           the project's name; an empty one takes the page file name setting\n"
    "  --kind KIND           the output kind whose settings the project keeps\n"
    "  --preset NAME|FILE    start from a preset of the kind; --set values override it\n"
    "  --set NAME=VALUE      change one setting (see `orvella settings KIND`)\n"
    "  --sort az|za          sort the photos by file name\n"
    "  --unpublish FILENAME  keep the photo unpublished (repeatable)\n"
    "  --highlight FILENAME  highlight the photo with that file name (repeatable)\n"
    "  --out DIR             the output folder of build (required)\n"
    "  --threads N           image workers (default 0: one per core)\n"
    "  --open                open the first page in the default browser\n"
    "\n"
    "Exit codes: 0 done, 1 a file could not be read or written (each is named on stderr),\n"
    "2 wrong usage or a refusal (not a project file, a photo name that leaves the project\n"
    "folder, a run without published photos), 3 the files were written but no page (the\n"
    "photos fill the gallery's pages exactly).\n";

const QString kPrefix = QStringLiteral("orvella project");

int usage(Io& io, const QString& message) {
    io.err << kPrefix << ": " << message << "\n";
    return kUsage;
}

// Texts of `show` stay on their line and in their column.
QString column(QString text) {
    text.replace(u'\\', QStringLiteral("\\\\"));
    text.replace(u'\t', QStringLiteral("\\t"));
    text.replace(u'\n', QStringLiteral("\\n"));
    text.replace(u'\r', QStringLiteral("\\r"));
    return text;
}

int save(const QStringList& args, Io& io) {
    QString folder, name, kindName;
    bool haveName = false;
    PhotoSelection selection;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        QString error;
        if (takeSelectionOption(args, i, selection, &error)) {
            if (!error.isEmpty()) return usage(io, error);
        } else if (a == u"--name") {
            if (i + 1 >= args.size()) return usage(io, "--name needs a project name");
            name = args[++i];
            haveName = true;
        } else if (a == u"--kind") {
            if (i + 1 >= args.size()) return usage(io, "--kind needs " + OutputKinds::names());
            kindName = args[++i];
        } else if (a.startsWith(u"--")) {
            return usage(io, "unknown option " + a);
        } else if (folder.isEmpty()) {
            folder = a;
        } else {
            selection.inputs.append(a);
        }
    }
    if (folder.isEmpty()) return usage(io, "the project FOLDER is required");
    if (!haveName) return usage(io, "--name NAME is required");
    if (kindName.isEmpty()) return usage(io, "--kind is required (" + OutputKinds::names() + ")");
    const OutputKind* kind = OutputKinds::find(kindName);
    const PresetLayout* layout = PresetLayouts::find(kindName);
    if (!kind || !layout)
        return usage(io, "unknown output kind \"" + kindName +
                             "\" (available: " + OutputKinds::names() + ")");

    SettingsStore settings(OutputKinds::registry());
    PhotoCollection collection;
    if (const int code = makeSelection(*kind, selection, settings, collection, io, kPrefix))
        return code;
    const ProjectFile::SaveResult saved = ProjectFile::save(
        QFileInfo(folder).absoluteFilePath(), ProjectFile::projectName(name, settings),
        collection.arrangedObjects(), settings, *layout);
    for (const QString& warning : saved.warnings) io.err << kPrefix << ": " << warning << "\n";
    if (!saved.ok) {
        io.err << kPrefix << ": " << saved.error << "\n";
        return saved.refused ? kUsage : kFailed;
    }
    io.out << saved.projectFile << "\n";
    return saved.warnings.isEmpty() && collection.skippedPhotos().isEmpty() ? kOk : kFailed;
}

// Opens a project file given on the command line; the exit code to stop with, or 0.
int openProject(const QString& file, ProjectFile::OpenResult* opened, Io& io) {
    const QFileInfo info(file);
    if (!info.isFile()) return usage(io, "no such project file: " + file);
    *opened = ProjectFile::open(info.absolutePath(), info.absoluteFilePath());
    if (opened->status != ProjectFile::OpenResult::Status::Opened) {
        io.err << kPrefix << ": " << opened->message << "\n";
        return kUsage;
    }
    for (const QString& warning : opened->warnings) io.err << kPrefix << ": " << warning << "\n";
    if (opened->missingPhotos())
        io.err << kPrefix << ": " << ProjectFile::kMissingTitle << ": "
               << ProjectFile::missingPhotosText().replace(QChar(13), u' ') << "\n";
    return kOk;
}

int show(const QStringList& args, Io& io) {
    if (args.size() != 1 || args.first().startsWith(u"--"))
        return usage(io, "show takes one project FILE");
    ProjectFile::OpenResult opened;
    if (const int code = openProject(args.first(), &opened, io)) return code;
    io.out << opened.layout->fileWord << "\n";
    int number = 0;
    for (const cCollectionViewItem& record : opened.records) {
        io.out << ++number << '\t' << column(record.myPhotoName) << '\t' << record.myPhotoSelect
               << '\t' << record.myPhotoHighLight << '\t' << column(record.myPhotoPxSize) << '\t'
               << column(record.myPhotoOrientation) << '\t' << column(record.myPhotoDescription)
               << "\n";
    }
    return opened.warnings.isEmpty() ? kOk : kFailed;
}

int build(const QStringList& args, Io& io) {
    QString file, out;
    RunOptions options;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        QString error;
        if (takeRunOption(args, i, &out, &options, &error)) {
            if (!error.isEmpty()) return usage(io, error);
        } else if (a.startsWith(u"--")) {
            return usage(io, "unknown option " + a);
        } else if (file.isEmpty()) {
            file = a;
        } else {
            return usage(io, "build takes one project FILE");
        }
    }
    if (file.isEmpty()) return usage(io, "the project FILE is required");
    if (out.isEmpty()) return usage(io, "--out DIR is required");
    ProjectFile::OpenResult opened;
    if (const int code = openProject(file, &opened, io)) return code;
    const OutputKind* kind = OutputKinds::find(opened.layout->kind);
    if (!kind) return usage(io, "this program has no " + opened.layout->kind);

    SettingsStore settings(OutputKinds::registry());
    ProjectFile::loadSettings(opened, settings);
    PhotoCollection collection;
    collection.setCellImageSize(0);
    collection.appendRecords(opened.records);
    const int code = writeSite(*kind, collection, settings, out, options, io, kPrefix);
    return code == kOk && !opened.warnings.isEmpty() ? int(kFailed) : code;
}

}  // namespace

Command projectCommand() {
    return {QStringLiteral("project"), QStringLiteral("save, show or build a project"),
            QString::fromUtf8(kHelp), [](const QStringList& args, Io& io) {
                const QString verb = args.value(0);
                if (verb == u"save") return save(args.mid(1), io);
                if (verb == u"show") return show(args.mid(1), io);
                if (verb == u"build") return build(args.mid(1), io);
                if (verb.isEmpty()) {
                    io.err << kHelp;
                    return int(kUsage);
                }
                return usage(io, "unknown verb \"" + verb + "\" (save, show or build)");
            }};
}

}  // namespace cli
