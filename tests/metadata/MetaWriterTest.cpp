#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using metafixtures::makeImage;
using testsupport::exiftool;

namespace {

// Every file of the folder: a write must leave no temporary file behind.
QStringList filesIn(const QString& dir) {
    return QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

}  // namespace

TEST(MetaWriter, CreatesTheExifBlockWhenMissing) {
    const QString dir = testsupport::freshDir("meta/write-new");
    for (const QString name : {"stripped.jpg", "stripped.png", "stripped.tif"}) {
        SCOPED_TRACE(name.toStdString());
        const QString file = makeImage(dir + name, 48, 32, "strip");
        ASSERT_EQ(exiftool(file, "UserComment"), QString());
        EXPECT_EQ(mMeta().hSetExifData(file, "Written by Orvella"), "OK");
        EXPECT_EQ(exiftool(file, "UserComment"), "Written by Orvella");
        EXPECT_EQ(exiftool(file, "ImageSize"), "48x32");
    }
    EXPECT_EQ(filesIn(dir), (QStringList{"stripped.jpg", "stripped.png", "stripped.tif"}));
}

TEST(MetaWriter, ReplacesTheCommentAndKeepsEverythingElse) {
    const QString dir = testsupport::freshDir("meta/write-replace");
    const QString file = makeImage(dir + "photo.jpg");
    metafixtures::tag(file, {"-UserComment=Old words", "-DateTimeOriginal=2020:01:02 03:04:05",
                             "-IPTC:City=Lyon", "-XMP-dc:Creator=Ann"});
    for (const QString comment : {"Café in Zürich — 東京", " Sunset", "   "}) {
        SCOPED_TRACE(comment.toStdString());
        const QString expected = comment.trimmed().isEmpty() ? QString() : comment;
        ASSERT_EQ(mMeta().hSetExifData(file, comment), "OK");
        EXPECT_EQ(mMeta().hGetExifUc(file, "EXIF User Comment"), expected);
        EXPECT_EQ(exiftool(file, "UserComment"), expected);
        EXPECT_EQ(exiftool(file, "DateTimeOriginal"), "2020:01:02 03:04:05");
        EXPECT_EQ(exiftool(file, "IPTC:City"), "Lyon");
        EXPECT_EQ(exiftool(file, "XMP-dc:Creator"), "Ann");
    }
    // Written through a link: the link stays a link, the photo keeps its permissions.
    const QString link = dir + "link.jpg";
    ASSERT_TRUE(QFile::link(file, link));
    ASSERT_TRUE(
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    const auto permissions = QFile::permissions(file);
    EXPECT_EQ(mMeta().hSetExifData(link, "Via the link"), "OK");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(exiftool(file, "UserComment"), "Via the link");
    EXPECT_EQ(QFile::permissions(file), permissions);
    EXPECT_EQ(filesIn(dir), (QStringList{"link.jpg", "photo.jpg"}));
}
