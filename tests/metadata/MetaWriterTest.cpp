#include <QRandomGenerator>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using namespace metafixtures;

// Photos without EXIF, a PNG named .jpg among them: the block is created, the format kept.
TEST(MetaWriter, CreatesTheExifBlockOrReplacesTheCommentAndKeepsEverythingElse) {
    const QString dir = testsupport::freshDir("meta/write");
    const std::pair<const char*, const char*> types[] = {
        {"a.jpg", "JPEG"}, {"b.png", "PNG"}, {"c.tif", "TIFF"}, {"png-named.jpg", "PNG"}};
    for (const auto& [name, type] : types) {
        SCOPED_TRACE(name);
        const QString file = dir + name;
        ASSERT_TRUE(QFile::rename(
            makeImage(dir + "new." + QString(type).toLower(), 48, 32, "strip"), file));
        EXPECT_EQ(mMeta().hGetExifUc(file, "EXIF User Comment"), QString());
        EXPECT_EQ(mMeta().hGetPixelFormat(file), (QStringList{"48", "32"}));
        EXPECT_EQ(mMeta().hSetExifData(file, "Written by Orvella"), "OK");
        EXPECT_EQ(tags(file, "UserComment FileType ImageSize"),
                  "Written by Orvella|" + std::string(type) + "|48x32");
    }

    // The comment is replaced (blanks only: none) and everything else kept. Written through a
    // link: the link stays a link, the photo keeps its permissions (not the default 0644).
    const QString file = makeImage(dir + "photo.jpg"), link = dir + "link.jpg";
    tag(file, {"-UserComment=Old words", "-DateTimeOriginal=2020:01:02 03:04:05", "-IPTC:City=Lyon",
               "-XMP-dc:Creator=Ann"});
    for (const QString comment : {"Café in Zürich — 東京", " Sunset", "   "}) {
        const QString expected = comment.trimmed().isEmpty() ? QString() : comment;
        ASSERT_EQ(mMeta().hSetExifData(file, comment), "OK");
        EXPECT_EQ(mMeta().hGetExifUc(file, "EXIF User Comment"), expected);
        EXPECT_EQ(tags(file, "UserComment DateTimeOriginal IPTC:City XMP-dc:Creator"),
                  (expected + "|2020:01:02 03:04:05|Lyon|Ann").toStdString());
    }
    ASSERT_TRUE(QFile::link(file, link));
    ASSERT_TRUE(
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    EXPECT_EQ(mMeta().hSetExifData(link, "Via the link"), "OK");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(tags(file, "UserComment"), "Via the link");
    EXPECT_FALSE(QFile::permissions(file) & QFile::ReadOther);
    EXPECT_EQ(testsupport::contentsUnder(dir).keys(),
              (QStringList{"a.jpg", "b.png", "c.tif", "link.jpg", "photo.jpg", "png-named.jpg"}));
}

// Bad files read empty and are never written. Cut inside its image data, a photo's header still
// reads, but nothing is written into it.
TEST(MetaWriter, BadFilesReadEmptyAndAreNeverWritten) {
    const QString dir = testsupport::freshDir("meta/bad");
    const QString good = makeImage(dir + "good.jpg", 400, 300);
    tag(good, {"-UserComment=Present", "-IPTC:City=Lyon"});
    const QByteArray goodBytes = readFile(good);
    QByteArray noise(4096, '\0');
    QRandomGenerator(42).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    writeFile(dir + "zero.jpg", {});
    writeFile(dir + "header-only.jpg", goodBytes.left(20));
    writeFile(dir + "random.jpg", noise);
    writeFile(dir + "half.jpg", goodBytes.left(goodBytes.size() - 40));
    QDir().mkpath(dir + "x.jpg");
    for (const QString name :
         {"zero.jpg", "header-only.jpg", "random.jpg", "x.jpg", "missing.jpg"}) {
        SCOPED_TRACE(name);
        const QString file = dir + name;
        const QByteArray before = readFile(file);
        mMeta meta;
        for (const QString item : {"EXIF User Comment", "EXIF Creation Date", "IPTC City",
                                   "IPTC Keyword", "IPTC Creator Title", "IPTC Description"})
            EXPECT_EQ(meta.hGetExifUc(file, item) + meta.hGetSomeIPTC(file, item), QString());
        EXPECT_TRUE(meta.propTree(file).isEmpty());
        EXPECT_EQ(meta.hGetPixelFormat(file).join("") + meta.hGetColorProfile(file), QString());
        EXPECT_EQ(meta.hSetExifData(file, "Never"), "Failed");
        EXPECT_EQ(readFile(file), before);
    }
    const QByteArray half = readFile(dir + "half.jpg");
    EXPECT_EQ(mMeta().hGetExifUc(dir + "half.jpg", "EXIF User Comment"), "Present");
    EXPECT_EQ(mMeta().hGetPixelFormat(dir + "half.jpg"), (QStringList{"400", "300"}));
    EXPECT_EQ(mMeta().hSetExifData(dir + "half.jpg", "Never"), "Failed");
    EXPECT_EQ(readFile(dir + "half.jpg"), half);
    EXPECT_EQ(testsupport::contentsUnder(dir).keys().size(), 5);
}
