// The batch and EXIF-completion verbs of `orvella meta`.

#include <QFileInfo>

#include "cli/Cli.h"
#include "metadata/cEditMetaData.h"
#include "metadata/cXif.h"

namespace cli {

namespace {

int usage(Io& io, const QString& problem) {
    io.err << "orvella meta: " << problem << "\n\nSee orvella meta --help\n";
    return kUsage;
}

}  // namespace

int metaBatch(const QStringList& args, Io& io) {
    QString comment;
    bool hasComment = false;
    QStringList targets;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--comment") {
            if (i + 1 >= args.size()) return usage(io, QStringLiteral("--comment needs a text"));
            comment = args[++i];
            hasComment = true;
        } else {
            targets.append(args[i]);
        }
    }
    if (!hasComment) return usage(io, QStringLiteral("batch needs --comment TEXT"));
    if (targets.isEmpty()) return usage(io, QStringLiteral("batch needs files or folders"));

    int failures = 0;
    cEditMetaData::Progress progress;
    progress.logged = [&io](const MetaLogRow& row) {
        io.out << row.columns().join(u'\t') << "\n";
        io.out.flush();
    };
    progress.failed = [&io, &failures](const QString& path, const QString& reason) {
        io.err << "orvella meta batch: " << path << ": " << reason << "\n";
        ++failures;
    };
    cEditMetaData editor;
    for (const QString& target : targets) {
        if (QFileInfo(target).isDir()) {
            editor.btEMDchooseFolder(target, comment, progress);
        } else {
            editor.btEMDchooseFile({target}, comment, progress);
        }
    }
    io.err.flush();
    return failures == 0 ? kOk : kFailed;
}

int metaComplete(const QStringList& args, Io& io) {
    if (args.size() != 2) return usage(io, QStringLiteral("complete needs IN and OUT"));
    const QFileInfo in(args[0]);
    const QFileInfo out(args[1]);
    if (in.absoluteFilePath() == out.absoluteFilePath() ||
        (out.exists() && in.canonicalFilePath() == out.canonicalFilePath())) {
        io.err << "orvella meta complete: OUT is IN; the input is never overwritten\n";
        return kUsage;
    }
    cXif xif;
    const QString result = xif.writeXif(args[0], args[1]);
    if (result != u"Keldra") {
        io.err << "orvella meta complete: " << args[0]
               << ": not written (not a photo whose EXIF can be written, or OUT not writable)\n";
        return kFailed;
    }
    io.out << result << "\n";
    return kOk;
}

}  // namespace cli
