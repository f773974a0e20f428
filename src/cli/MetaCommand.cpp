#include <QFileInfo>

#include "cli/Cli.h"
#include "metadata/mMeta.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella meta get FILE NAME [NAME...]\n"
    "       orvella meta tree FILE\n"
    "       orvella meta set-comment FILE TEXT\n"
    "       orvella meta batch --comment TEXT FILE|FOLDER...\n"
    "       orvella meta complete IN OUT\n"
    "\n"
    "Reads and writes the photo metadata used in captions.\n"
    "\n"
    "  get FILE NAME...       print one line per caption item, in the order given, all\n"
    "                         read by one reader. A NAME is a caption item:\n"
    "                           \"Show Filename\", \"EXIF User Comment\",\n"
    "                           \"EXIF Creation Date\", \"IPTC Creator Title\",\n"
    "                           \"IPTC Caption\", \"IPTC Keyword\", \"IPTC City\",\n"
    "                           \"IPTC Caption Writer\", \"IPTC Copyrights\",\n"
    "                           \"IPTC Country\", \"IPTC Credits\", \"IPTC Headline\",\n"
    "                           \"IPTC Subject Code\", \"IPTC State Province\",\n"
    "                           \"IPTC Description\" (repeats the previous IPTC value,\n"
    "                           as captions do).\n"
    "                         A missing value, or a file that cannot be read, prints an\n"
    "                         empty line; line breaks inside a value print as spaces.\n"
    "  tree FILE              print every EXIF, IPTC and XMP property of FILE as a tree,\n"
    "                         two spaces of indent per level: groups as \"name:\",\n"
    "                         properties as \"name: value\". Prints nothing for a file\n"
    "                         that cannot be read.\n"
    "  set-comment FILE TEXT  write TEXT as the EXIF user comment of FILE (creating the\n"
    "                         EXIF block when missing); print \"OK\" or \"Failed\".\n"
    "  batch --comment TEXT FILE|FOLDER...\n"
    "                         write TEXT as the EXIF user comment of each FILE, and of the\n"
    "                         jpg, jpeg, tif, tiff, JPG, JPEG, TIF and TIFF files of each\n"
    "                         FOLDER (not its subfolders). One log line per file written,\n"
    "                         tab-separated: LogDate, LogProcess, LogAction, LogStatus, LogI,\n"
    "                         LogO, LogIpath, LogOpath. Read-only files and files that cannot\n"
    "                         be written are reported on stderr and left as they are.\n"
    "  complete IN OUT        write a copy of IN to OUT whose EXIF block holds every common\n"
    "                         EXIF key (0 where IN had none), the user comment \"Keldra\" and\n"
    "                         the gamma 99.999; print \"Keldra\". OUT must not be IN.\n"
    "\n"
    "Exit status: 0 done, 1 set-comment, batch or complete failed for some file, 2 wrong\n"
    "usage.\n";

int usage(Io& io, const QString& problem) {
    io.err << "orvella meta: " << problem << "\n\n" << kHelp;
    return kUsage;
}

// A value may hold line breaks (a caption over several lines); the output keeps one line per
// value so that the lines match the names asked for.
QString oneLine(QString value) {
    value.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    value.replace(u'\n', u' ');
    value.replace(u'\r', u' ');
    return value;
}

int get(const QStringList& args, Io& io) {
    if (args.size() < 2) return usage(io, QStringLiteral("get needs a file and at least one name"));
    const QString& file = args.first();
    mMeta meta;
    for (const QString& name : args.mid(1)) {
        QString value;
        if (name == u"Show Filename")
            value = QFileInfo(file).fileName();
        else if (name.startsWith(QStringLiteral("EXIF")))
            value = meta.hGetExifUc(file, name);
        else
            value = meta.hGetSomeIPTC(file, name);
        io.out << oneLine(value) << "\n";
    }
    return kOk;
}

void printTree(const QList<MetaTreeNode>& nodes, int depth, QTextStream& out) {
    for (const MetaTreeNode& node : nodes) {
        out << QString(depth * 2, u' ') << oneLine(node.key) << ":";
        if (node.children.isEmpty()) out << " " << oneLine(node.val);
        out << "\n";
        printTree(node.children, depth + 1, out);
    }
}

int tree(const QStringList& args, Io& io) {
    if (args.size() != 1) return usage(io, QStringLiteral("tree needs exactly one file"));
    mMeta meta;
    printTree(meta.propTree(args.first()), 0, io.out);
    return kOk;
}

int setComment(const QStringList& args, Io& io) {
    if (args.size() != 2) return usage(io, QStringLiteral("set-comment needs a file and a text"));
    const mMeta meta;
    const QString result = meta.hSetExifData(args[0], args[1]);
    io.out << result << "\n";
    if (result != u"OK") io.err << "orvella meta: " << args[0] << ": " << meta.writeError << "\n";
    return result == u"OK" ? kOk : kFailed;
}

}  // namespace

Command metaCommand() {
    return {QStringLiteral("meta"),
            QStringLiteral("read caption metadata, show the metadata tree, set the user comment"),
            QString::fromUtf8(kHelp), [](const QStringList& args, Io& io) {
                if (args.isEmpty()) return usage(io, QStringLiteral("which verb?"));
                const QString verb = args.first();
                const QStringList rest = args.mid(1);
                if (verb == u"get") return get(rest, io);
                if (verb == u"tree") return tree(rest, io);
                if (verb == u"set-comment") return setComment(rest, io);
                if (verb == u"batch") return metaBatch(rest, io);
                if (verb == u"complete") return metaComplete(rest, io);
                return usage(io, QStringLiteral("unknown verb \"%1\"").arg(verb));
            }};
}

}  // namespace cli
