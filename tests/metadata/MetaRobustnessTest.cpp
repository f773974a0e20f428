#include <gtest/gtest.h>

#include <QDir>
#include <QRandomGenerator>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using namespace metafixtures;
using testsupport::exiftool;

namespace {

const QStringList kNames = {"EXIF User Comment", "EXIF Creation Date", "IPTC City",
                            "IPTC Keyword",      "IPTC Creator Title", "IPTC Description"};

}  // namespace

TEST(MetaRobustness, BadFilesReadEmptyAndAreNeverWritten) {
    const QString dir = testsupport::freshDir("meta/bad");
    const QString good = makeImage(dir + "good.jpg", 400, 300);
    tag(good, {"-UserComment=Present", "-IPTC:City=Lyon"});
    const QByteArray goodBytes = bytes(good);
    QByteArray noise(4096, '\0');
    QRandomGenerator(42).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    const std::pair<QString, QByteArray> contents[] = {{"zero.jpg", {}},
                                                       {"header-only.jpg", goodBytes.left(20)},
                                                       {"random.jpg", noise},
                                                       {"text.png", "not a picture"}};
    for (const auto& [name, data] : contents) writeBytes(dir + name, data);
    QDir().mkpath(dir + "x.jpg");
    for (const QString name :
         {"zero.jpg", "header-only.jpg", "random.jpg", "text.png", "x.jpg", "missing.jpg"}) {
        SCOPED_TRACE(name.toStdString());
        const QString file = dir + name;
        const QByteArray before = bytes(file);
        mMeta meta;
        for (const QString& item : kNames) {
            EXPECT_EQ(meta.hGetExifUc(file, item), QString());
            EXPECT_EQ(meta.hGetSomeIPTC(file, item), QString());
        }
        EXPECT_FALSE(meta.getMyImageSource(file));
        EXPECT_TRUE(meta.propTree(file).isEmpty());
        EXPECT_EQ(meta.hGetPixelFormat(file), QStringList());
        EXPECT_EQ(meta.hGetColorProfile(file), QString());
        EXPECT_EQ(meta.hSetExifData(file, "Never"), "Failed");
        EXPECT_EQ(bytes(file), before);
    }
    // Cut inside its image data: the header still reads, but nothing is written into it.
    const QString half = dir + "half.jpg";
    writeBytes(half, goodBytes.left(goodBytes.size() - 40));
    EXPECT_EQ(mMeta().hGetExifUc(half, "EXIF User Comment"), "Present");
    EXPECT_EQ(mMeta().hGetPixelFormat(half), (QStringList{"400", "300"}));
    EXPECT_EQ(mMeta().hSetExifData(half, "Never"), "Failed");
    EXPECT_EQ(bytes(half), goodBytes.left(goodBytes.size() - 40));
    // No temporary file is left behind by the failed writes.
    EXPECT_EQ(QDir(dir).entryList(QDir::Files | QDir::Hidden).size(), 6);
}

TEST(MetaRobustness, PngNamedJpgReadsAndStaysAPng) {
    const QString dir = testsupport::freshDir("meta/renamed");
    const QString disguised = dir + "disguised.jpg";
    ASSERT_TRUE(QFile::rename(makeImage(dir + "real.png", 21, 13), disguised));
    mMeta meta;
    EXPECT_EQ(meta.hGetPixelFormat(disguised), (QStringList{"21", "13"}));
    EXPECT_EQ(meta.hGetExifUc(disguised, "EXIF User Comment"), QString());
    EXPECT_EQ(meta.hSetExifData(disguised, "Still a PNG"), "OK");
    EXPECT_EQ(exiftool(disguised, "UserComment"), "Still a PNG");
    EXPECT_EQ(exiftool(disguised, "FileType"), "PNG");
}

TEST(MetaRobustness, EveryCameraPhotoReads) {
    const QStringList photos = testsupport::mateBackgroundJpegs();
    ASSERT_FALSE(photos.isEmpty()) << "mate-backgrounds is not installed";
    for (const QString& photo : photos) {
        SCOPED_TRACE(photo.toStdString());
        mMeta meta;
        EXPECT_EQ(meta.hGetExifUc(photo, "EXIF User Comment").trimmed(),
                  exiftool(photo, "UserComment").trimmed());
        EXPECT_EQ(meta.hGetExifUc(photo, "EXIF Creation Date"),
                  exiftool(photo, "EXIF:DateTimeOriginal"));
        EXPECT_EQ(meta.hGetSomeIPTC(photo, "IPTC City"), exiftool(photo, "IPTC:City"));
        for (const QString& item : kNames) meta.hGetSomeIPTC(photo, item);
        EXPECT_EQ(meta.hGetPixelFormat(photo).join("x"), exiftool(photo, "ImageSize"));
        EXPECT_FALSE(meta.hGetColorProfile(photo).isEmpty());
        meta.hiDoNothing(photo);
    }
}
