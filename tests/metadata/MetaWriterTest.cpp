#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using metafixtures::makeImage;
using metafixtures::tag;

namespace {

const QString kComment = QStringLiteral("EXIF User Comment");

QString vipsheader(const QString& file, const char* field) {
    QString out;
    testsupport::runProgram(QStringLiteral("vipsheader"),
                            {QStringLiteral("-f"), QString::fromLatin1(field), file}, &out);
    return out.trimmed();
}

// Nothing but the fixtures themselves: no temporary file left behind.
void expectOnlyFiles(const QString& dir, QStringList expected) {
    QStringList found = QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    found.sort();
    expected.sort();
    EXPECT_EQ(found, expected);
}

}  // namespace

TEST(MetaWriter, CreatesTheExifBlockWhenMissing) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/write-new"));
    struct Case {
        const char* name;
        const char* options;
    } cases[] = {{"stripped.jpg", "strip"}, {"plain.png", ""}, {"plain.tif", "strip"}};
    QStringList names;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        names << QString::fromLatin1(c.name);
        const QString file =
            makeImage(dir + QString::fromLatin1(c.name), 48, 32, QString::fromLatin1(c.options));
        ASSERT_EQ(testsupport::exiftool(file, QStringLiteral("UserComment")), QString());
        mMeta meta;
        EXPECT_EQ(meta.hSetExifData(file, QStringLiteral("Written by Orvella")),
                  QStringLiteral("OK"));
        EXPECT_EQ(testsupport::exiftool(file, QStringLiteral("UserComment")),
                  QStringLiteral("Written by Orvella"));
        EXPECT_EQ(meta.hGetExifUc(file, kComment), QStringLiteral("Written by Orvella"));
        // The pixels are still there and still decode.
        EXPECT_EQ(vipsheader(file, "width"), QStringLiteral("48"));
        EXPECT_EQ(vipsheader(file, "height"), QStringLiteral("32"));
    }
    expectOnlyFiles(dir, names);
}

TEST(MetaWriter, ReplacesTheCommentAndKeepsEverythingElse) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/write-replace"));
    const QString file = makeImage(dir + QStringLiteral("photo.jpg"));
    tag(file, {QStringLiteral("-UserComment=Old words"),
               QStringLiteral("-DateTimeOriginal=2020:01:02 03:04:05"),
               QStringLiteral("-IPTC:City=Lyon"), QStringLiteral("-XMP-dc:Creator=Ann")});
    struct Case {
        const char* comment;
        const char* read;
    } cases[] = {
        {"Café in Zürich — 東京", "Café in Zürich — 東京"},
        {" Sunset", " Sunset"},
        {"   ", ""},
        {"", ""},
        {"Plain again", "Plain again"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.comment);
        mMeta meta;
        ASSERT_EQ(meta.hSetExifData(file, QString::fromUtf8(c.comment)), QStringLiteral("OK"));
        EXPECT_EQ(meta.hGetExifUc(file, kComment), QString::fromUtf8(c.read));
        if (*c.read) {
            EXPECT_EQ(testsupport::exiftool(file, QStringLiteral("UserComment")),
                      QString::fromUtf8(c.comment));
        }
        EXPECT_EQ(meta.hGetExifUc(file, QStringLiteral("EXIF Creation Date")),
                  QStringLiteral("2020:01:02 03:04:05"));
        EXPECT_EQ(meta.hGetSomeIPTC(file, QStringLiteral("IPTC City")), QStringLiteral("Lyon"));
        EXPECT_EQ(testsupport::exiftool(file, QStringLiteral("XMP-dc:Creator")),
                  QStringLiteral("Ann"));
    }
    expectOnlyFiles(dir, {QStringLiteral("photo.jpg")});
}

TEST(MetaWriter, KeepsTheFilePermissions) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/write-perms"));
    const QString file = makeImage(dir + QStringLiteral("photo.jpg"));
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(file, permissions));
    const auto before = QFile::permissions(file);
    EXPECT_EQ(mMeta().hSetExifData(file, QStringLiteral("Kept")), QStringLiteral("OK"));
    EXPECT_EQ(QFile::permissions(file), before);
}

TEST(MetaWriter, ThroughASymbolicLinkTheLinkStays) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/write-link"));
    const QString file = makeImage(dir + QStringLiteral("photo.jpg"));
    const QString link = dir + QStringLiteral("link.jpg");
    ASSERT_TRUE(QFile::link(file, link));
    EXPECT_EQ(mMeta().hSetExifData(link, QStringLiteral("Via the link")), QStringLiteral("OK"));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(testsupport::exiftool(file, QStringLiteral("UserComment")),
              QStringLiteral("Via the link"));
    expectOnlyFiles(dir, {QStringLiteral("photo.jpg"), QStringLiteral("link.jpg")});
}
