#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "support/TestSupport.h"

namespace {

int orvella(const QStringList& arguments, QString* out = nullptr, QString* err = nullptr) {
    return testsupport::runProgram(QStringLiteral(ORVELLA_BINARY), arguments, out, err);
}

QString makeJpeg(const QString& path, const QStringList& vipsOptions = {}) {
    EXPECT_EQ(testsupport::runProgram(QStringLiteral("vips"),
                                      QStringList{QStringLiteral("black"), path,
                                                  QStringLiteral("32"), QStringLiteral("24"),
                                                  QStringLiteral("--bands"), QStringLiteral("3")} +
                                          vipsOptions),
              0);
    return path;
}

void tag(const QString& file, const QStringList& assignments) {
    EXPECT_EQ(testsupport::runProgram(
                  QStringLiteral("exiftool"),
                  QStringList{QStringLiteral("-q"), QStringLiteral("-overwrite_original")} +
                      assignments + QStringList{file}),
              0);
}

QByteArray bytes(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

TEST(MetaCli, GetPrintsOneLinePerNameFromOneReader) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-meta/get"));
    const QString photo = makeJpeg(dir + QStringLiteral("harbour.jpg"));
    tag(photo, {QStringLiteral("-UserComment= Sunset"),
                QStringLiteral("-DateTimeOriginal=2019:07:14 18:03:22"),
                QStringLiteral("-IPTC:City=Lyon"), QStringLiteral("-IPTC:Keywords=Beach"),
                QStringLiteral("-IPTC:Keywords=Sea"), QStringLiteral("-IPTC:Keywords=Summer")});
    QString out;
    ASSERT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("get"), photo,
                       QStringLiteral("IPTC Description"), QStringLiteral("IPTC City"),
                       QStringLiteral("IPTC Description"), QStringLiteral("Show Filename"),
                       QStringLiteral("EXIF Creation Date"), QStringLiteral("EXIF User Comment"),
                       QStringLiteral("IPTC Keyword"), QStringLiteral("IPTC Headline"),
                       QStringLiteral("EXIF Creation Dat")},
                      &out),
              0);
    EXPECT_EQ(out, QStringLiteral("\nLyon\nLyon\nharbour.jpg\n2019:07:14 18:03:22\n Sunset\n"
                                  "Beach; Sea; Summer\n\n2019:07:14 18:03:22\n"));
}

TEST(MetaCli, UnreadableFilesPrintEmptyLines) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-meta/unreadable"));
    const QString garbage = dir + QStringLiteral("garbage.jpg");
    {
        QFile f(garbage);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("definitely not a jpeg");
    }
    for (const QString& file : {dir + QStringLiteral("missing.jpg"), garbage, dir}) {
        SCOPED_TRACE(file.toStdString());
        QString out;
        EXPECT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("get"), file,
                           QStringLiteral("EXIF User Comment"), QStringLiteral("IPTC City"),
                           QStringLiteral("EXIF Creation Date")},
                          &out),
                  0);
        EXPECT_EQ(out, QStringLiteral("\n\n\n"));
        EXPECT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("tree"), file}, &out), 0);
        EXPECT_EQ(out, QString());
    }
}

TEST(MetaCli, TreeIsIndentedTwoSpacesPerLevel) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-meta/tree"));
    const QString photo = makeJpeg(dir + QStringLiteral("photo.jpg"));
    tag(photo, {QStringLiteral("-UserComment=Quay"), QStringLiteral("-IPTC:City=Lyon"),
                QStringLiteral("-XMP-dc:Creator=Ann")});
    QString out;
    ASSERT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("tree"), photo}, &out), 0);
    const QStringList lines = out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_EQ(lines.first(), QStringLiteral("Exif:"));
    EXPECT_TRUE(lines.contains(QStringLiteral("IPTC:")));
    EXPECT_TRUE(lines.contains(QStringLiteral("XMP:")));
    EXPECT_TRUE(lines.contains(QStringLiteral("  Application2:")));
    EXPECT_TRUE(lines.contains(QStringLiteral("    City: Lyon")));
    EXPECT_TRUE(lines.contains(QStringLiteral("    User Comment: Quay"))) << out.toStdString();

    // A group line ends with ":" and is followed by a line one level deeper; a property line
    // has "name: value"; no line is more than one level deeper than the one before it.
    const QRegularExpression shape(QStringLiteral("^((?:  )*)(\\S[^\\n]*?):(?: (.*))?$"));
    int previousDepth = -1;
    bool previousWasGroup = true;
    for (const QString& line : lines) {
        const auto match = shape.match(line);
        ASSERT_TRUE(match.hasMatch()) << line.toStdString();
        const int depth = int(match.captured(1).size() / 2);
        if (previousWasGroup) {
            EXPECT_EQ(depth, previousDepth + 1) << line.toStdString();
        } else {
            EXPECT_LE(depth, previousDepth) << line.toStdString();
        }
        previousWasGroup = !line.contains(QStringLiteral(": ")) && line.endsWith(u':');
        previousDepth = depth;
    }
}

TEST(MetaCli, SetCommentWritesOrFailsWithoutTouchingTheFile) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-meta/set"));
    makeJpeg(dir + QStringLiteral("stripped.jpg[strip]"));
    const QString file = dir + QStringLiteral("stripped.jpg");
    ASSERT_EQ(testsupport::exiftool(file, QStringLiteral("EXIF:all")), QString());
    QString out;
    EXPECT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("set-comment"), file,
                       QStringLiteral("Written from the command line")},
                      &out),
              0);
    EXPECT_EQ(out, QStringLiteral("OK\n"));
    EXPECT_EQ(testsupport::exiftool(file, QStringLiteral("UserComment")),
              QStringLiteral("Written from the command line"));
    EXPECT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("get"), file,
                       QStringLiteral("EXIF User Comment")},
                      &out),
              0);
    EXPECT_EQ(out, QStringLiteral("Written from the command line\n"));

    const QString text = dir + QStringLiteral("notes.jpg");
    {
        QFile f(text);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("plain words");
    }
    for (const QString& bad : {text, dir + QStringLiteral("missing.jpg")}) {
        SCOPED_TRACE(bad.toStdString());
        const QByteArray before = bytes(bad);
        EXPECT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("set-comment"), bad,
                           QStringLiteral("x")},
                          &out),
                  1);
        EXPECT_EQ(out, QStringLiteral("Failed\n"));
        EXPECT_EQ(bytes(bad), before);
    }
    EXPECT_FALSE(QFile::exists(dir + QStringLiteral("missing.jpg")));
}

TEST(MetaCli, HelpAndUsage) {
    QString out, err;
    EXPECT_EQ(orvella({QStringLiteral("meta"), QStringLiteral("--help")}, &out), 0);
    for (const char* verb : {"meta get FILE NAME", "meta tree FILE", "meta set-comment FILE TEXT"})
        EXPECT_TRUE(out.contains(QString::fromLatin1(verb))) << verb;
    EXPECT_EQ(orvella({QStringLiteral("--help")}, &out), 0);
    EXPECT_TRUE(out.contains(QRegularExpression(QStringLiteral("\\n  meta +\\S"))));

    const QList<QStringList> misuses = {
        {QStringLiteral("meta")},
        {QStringLiteral("meta"), QStringLiteral("get"), QStringLiteral("/tmp/x.jpg")},
        {QStringLiteral("meta"), QStringLiteral("tree")},
        {QStringLiteral("meta"), QStringLiteral("set-comment"), QStringLiteral("/tmp/x.jpg")},
        {QStringLiteral("meta"), QStringLiteral("frobnicate")},
    };
    for (const QStringList& misuse : misuses) {
        SCOPED_TRACE(misuse.join(u' ').toStdString());
        EXPECT_EQ(orvella(misuse, &out, &err), 2);
        EXPECT_TRUE(err.contains(QStringLiteral("Usage: orvella meta")));
    }
}
