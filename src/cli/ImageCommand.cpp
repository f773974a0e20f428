#include <QFileInfo>

#include "cli/Cli.h"
#include "imaging/KLColorConversions.h"
#include "imaging/KLImageHandling.h"
#include "services/OutputFolders.h"
#include "services/TextValues.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella image effect CODE --out DIR FILE...\n"
    "       orvella image enhance CODE VALUE --out DIR FILE...\n"
    "       orvella image derive MODE SIZE --out DIR FILE...\n"
    "\n"
    "Writes a recoloured or resized copy of each FILE into DIR under the same file name; a folder\n"
    "given as FILE stands for its photos, as in `orvella generate`. DIR is created when missing;\n"
    "it must not be the folder of any FILE (originals are never overwritten). One status line\n"
    "is printed per file.\n"
    "\n"
    "effect CODE      a fixed effect: 0 noir, 1 mono, 2 sepia 0.3, 3 sepia 0.6, 4 sepia 1,\n"
    "                 5 chrome, 6 invert, 7 process, 8 instant, 9 transfer, 10 fade, 11 invert\n"
    "enhance CODE V   an adjustment by the value V: 0 brightness (added, e.g. 0.0),\n"
    "                 1 exposure in stops (0.5), 2 gamma power (0.75), 3 hue angle in radians\n"
    "                 (0.0), 4-6 pixellate with V-pixel cells on a grid through (150,150),\n"
    "                 7 process, 8 instant, 9 transfer, 10 fade (V ignored)\n"
    "                 Copies are written only for the extensions tif, TIF, tiff, TIFF, jpg, JPG,\n"
    "                 jpeg, JPEG (best quality) and png; other files are skipped.\n"
    "derive MODE SIZE the derivative the gallery makes, one file after the other: mode 0 width,\n"
    "                 1 height, 2 and 5 longest side, 3 percent, 4 shortest side, 6 shrink by\n"
    "                 the longest side, 7 shrink by height; SIZE in pixels (percent for 3).\n"
    "                 HEIF, AVIF, WebP and JPEG XL photos are written as JPEG, NAME.jpeg.\n"
    "                 Used by the benchmark bench/derivatives.\n"
    "\n"
    "Exit status: 0 all done, 1 some file failed, 2 wrong usage or a refused output folder.\n";

struct Parsed {
    QStringList positional;
    QString out;
    QStringList files;
};

bool parse(const QStringList& args, int positionalCount, Parsed* parsed, QString* error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--out") {
            if (i + 1 >= args.size()) {
                *error = QStringLiteral("--out needs a folder");
                return false;
            }
            parsed->out = args[++i];
        } else if (parsed->positional.size() < positionalCount) {
            parsed->positional.append(args[i]);
        } else {
            parsed->files += expandFolders({args[i]});
        }
    }
    if (parsed->positional.size() < positionalCount)
        *error = QStringLiteral("missing arguments");
    else if (parsed->out.isEmpty())
        *error = QStringLiteral("--out DIR is required");
    else if (parsed->files.isEmpty())
        *error = QStringLiteral("no files given");
    return error->isEmpty();
}

int run(const QString& verb, const QStringList& args, Io& io) {
    const int positionalCount = verb == u"effect" ? 1 : 2;
    Parsed parsed;
    QString error;
    if (!parse(args, positionalCount, &parsed, &error)) {
        io.err << "orvella image " << verb << ": " << error << "\n\n" << kHelp;
        return kUsage;
    }
    const QString folder = OutputFolders::prepare(parsed.out, parsed.files, &error);
    if (folder.isEmpty()) {
        io.err << "orvella image " << verb << ": " << error << "\n";
        return kUsage;
    }

    int failures = 0;
    KLColorConversions colours;
    for (const QString& file : parsed.files) {
        const QString output = folder + (verb == u"derive" ? KLImageHandling::writtenFileName(file)
                                                           : QFileInfo(file).fileName());
        QString problem;
        if (verb == u"derive") {
            KLImageHandling images;
            const QString result =
                images.resizeImage(file, TextValues::intValue(parsed.positional[1]),
                                   TextValues::intValue(parsed.positional[0]), folder);
            if (result != u"OK") problem = images.lastError.isEmpty() ? result : images.lastError;
        } else if (!KLColorConversions::writesFileNamed(file)) {
            io.out << "skipped: " << file << " (copies are written only for tif, tiff, jpg, jpeg"
                   << " and lower-case png)\n";
            continue;
        } else {
            if (verb == u"effect")
                colours.convertColorTo(file, folder, parsed.positional[0]);
            else
                colours.enhanceColorTo(file, folder, parsed.positional[0],
                                       TextValues::floatValue(parsed.positional[1]));
            if (!colours.lastWritten) {
                int width = 0;
                int height = 0;
                problem = PhotoDecoder::uprightSize(file, &width, &height, &problem)
                              ? QStringLiteral("not written")
                              : problem;
            }
        }
        if (problem.isEmpty()) {
            io.out << "OK  " << file << " -> " << output << "\n";
        } else {
            io.out << "failed: " << file << " (" << problem << ")\n";
            ++failures;
        }
    }
    io.out.flush();
    return failures == 0 ? kOk : kFailed;
}

}  // namespace

Command imageCommand() {
    return {QStringLiteral("image"),
            QStringLiteral("apply a colour effect or enhancement to copies of photos"),
            QString::fromLatin1(kHelp), [](const QStringList& args, Io& io) {
                const QString verb = args.value(0);
                if (verb != u"effect" && verb != u"enhance" && verb != u"derive") {
                    io.err << "orvella image: unknown verb \"" << verb << "\"\n\n" << kHelp;
                    return int(kUsage);
                }
                return run(verb, args.mid(1), io);
            }};
}

}  // namespace cli
