#include <QFileInfo>

#include "cli/Cli.h"
#include "generators/OutputKinds.h"
#include "imaging/KLImageHandling.h"
#include "imaging/KLWatermark.h"
#include "presets/SettingsStore.h"
#include "presets/WatermarkControls.h"
#include "services/OutputFolders.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella watermark text --out DIR [--set NAME=VALUE]... FILE...\n"
    "       orvella watermark image --out DIR [--set NAME=VALUE]... FILE...\n"
    "\n"
    "Stamps a text (tvWaterMarkText) or an image (tfWaterMarkImageFilePath) onto a copy of each\n"
    "FILE, written into DIR under the same file name and in the same format; HEIF, AVIF, WebP and\n"
    "JPEG XL photos are written as JPEG, named NAME.jpeg. DIR is created when missing; it must\n"
    "not be the folder of any FILE (originals are never overwritten).\n"
    "Settings are the watermark panel's controls: `orvella settings watermark` lists them with\n"
    "their defaults. The image stamp is as wide as tfFontSize, in points.\n"
    "\n"
    "One line is printed per file, \"FILE: STATUS\", where STATUS is OK, NOK (not an image),\n"
    "Failed (no encoder for the type, or not written) or Not Supported (Photoshop, PDF).\n"
    "\n"
    "Exit status: 0 every file OK, 1 some file was not, 2 wrong usage or a refused output\n"
    "folder.\n";

int usage(Io& io, const QString& problem) {
    io.err << "orvella watermark: " << problem << "\n\n" << kHelp;
    return kUsage;
}

int stampFiles(const QStringList& args, Io& io) {
    const QString verb = args.value(0);
    if (verb != u"text" && verb != u"image") return usage(io, QStringLiteral("text or image?"));
    SettingsStore store(OutputKinds::registry());
    QString out;
    QStringList files;
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (args[i] == u"--out" || args[i] == u"--set") {
            if (i + 1 >= args.size()) return usage(io, args[i] + QStringLiteral(" needs a value"));
            const QString value = args[++i];
            if (args[i - 1] == u"--out") {
                out = value;
                continue;
            }
            QString error;
            if (!applySetting(store, QStringLiteral("watermark"), value, &error))
                return usage(io, error);
        } else {
            files.append(args[i]);
        }
    }
    if (out.isEmpty()) return usage(io, QStringLiteral("--out DIR is required"));
    if (files.isEmpty()) return usage(io, QStringLiteral("no files given"));
    const WatermarkSettings settings = watermarkSettingsFrom(store);
    if (verb == u"image" && !QFileInfo(settings.imagePath).isFile())
        return usage(io, QStringLiteral("the watermark image \"%1\" is not a file; "
                                        "set tfWaterMarkImageFilePath=PATH")
                             .arg(settings.imagePath));
    QString error;
    const QString folder = OutputFolders::prepare(out, files, &error);
    if (folder.isEmpty()) {
        io.err << "orvella watermark: " << error << "\n";
        return int(kUsage);
    }
    int failures = 0;
    for (const QString& file : files) {
        KLWatermark watermark(settings);
        const QString status = verb == u"text" ? watermark.setWatermarkText(file, folder)
                                               : watermark.setWatermarkImage(file, folder);
        io.out << file << ": " << status << "\n";
        io.out.flush();
        if (status == u"OK") continue;
        ++failures;
        int width = 0;
        int height = 0;
        QString reason;
        if (!PhotoDecoder::uprightSize(file, &width, &height, &reason))
            io.err << "orvella watermark: " << file << ": " << reason << "\n";
    }
    return failures == 0 ? int(kOk) : int(kFailed);
}

}  // namespace

Command watermarkCommand() {
    return {QStringLiteral("watermark"),
            QStringLiteral("stamp a text or an image onto copies of photos"),
            QString::fromUtf8(kHelp), stampFiles};
}

}  // namespace cli
