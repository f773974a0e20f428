
#include "metadata/MetaFixtures.h"
#include "metadata/cEditMetaData.h"
#include "metadata/cXif.h"

using namespace metafixtures;
using testsupport::exiftool;

// A batch over a folder takes its JPEG and TIFF files by these exact extensions, sorted, not those
// of inner folders. What a batch writes, logs and reports is checked through the command line and
// the window.
TEST(BatchEditor, AFolderGivesItsPhotoFilesOnly) {
    const QString dir = testsupport::freshDir("meta/batch-folder");
    for (const QString name : {"photo.JPG", "inner/nested.jpg", "d.TIF", "scan.tiff", "notes.txt",
                               ".DS_Store", "b.Jpg", "c.png"})
        writeFile(dir + name, "x");
    EXPECT_EQ(cEditMetaData::filesOfFolder(dir),
              (QStringList{dir + "d.TIF", dir + "photo.JPG", dir + "scan.tiff"}));
}

TEST(ExifCompletion, FillsEveryKeyStampsTheCommentAndGammaAndKeepsTheInput) {
    const QString dir = testsupport::freshDir("meta/xif"), out = dir + "out/";
    const QString bare = makeImage(dir + "bare.jpg", 64, 48, "strip");
    const QString dated = makeImage(dir + "dated.jpg", 64, 48);
    tag(dated, {"-DateTimeOriginal=2021:06:05 04:03:02", "-FNumber=5.6", "-UserComment=Old"});
    const QByteArray bareBytes = readFile(bare);

    cXif xif;
    EXPECT_EQ(xif.writeXif(bare, out + "bare.jpg"), "Failed");  // no such folder
    QDir().mkpath(out);
    ASSERT_EQ(xif.writeXif(bare, out + "bare.jpg"), "Keldra");
    EXPECT_EQ(xif.rememberedValues.size(), cXif::keys().size());
    EXPECT_TRUE(xif.rememberedValues.join("").isEmpty());
    EXPECT_EQ(tags(out + "bare.jpg",
                   "UserComment ExposureTime# FNumber# ISO# ExposureProgram# DateTimeOriginal "
                   "CreateDate MeteringMode# Flash# FocalLength# ColorSpace# WhiteBalance# "
                   "ImageUniqueID ExifImageWidth ExifImageHeight ExifVersion FlashpixVersion "
                   "FileType ImageSize"),
              "Keldra|0|0|0|0|0|0|0|0|0|0|0|0|64|48|0232|0100|JPEG|64x48");
    EXPECT_NEAR(exiftool(out + "bare.jpg", "Gamma").toDouble(), 99.999, 1e-4);
    EXPECT_EQ(readFile(bare), bareBytes);

    // Values already there stay; the comment is stamped over.
    ASSERT_EQ(xif.writeXif(dated, out + "dated.jpg"), "Keldra");
    EXPECT_EQ(tags(out + "dated.jpg", "DateTimeOriginal FNumber UserComment"),
              "2021:06:05 04:03:02|5.6|Keldra");
    EXPECT_TRUE(xif.rememberedValues.contains("2021:06:05 04:03:02"));

    // Never over the input, never from a file that is not an image.
    EXPECT_EQ(xif.writeXif(dated, dated), "Failed");
    EXPECT_EQ(xif.writeXif(dated, dir + "../xif/dated.jpg"), "Failed");
    writeFile(dir + "notes.jpg", "plain words");
    EXPECT_EQ(xif.writeXif(dir + "notes.jpg", out + "notes.jpg"), "Failed");
    EXPECT_EQ(testsupport::contentsUnder(out).keys(), (QStringList{"bare.jpg", "dated.jpg"}));
    EXPECT_EQ(exiftool(dated, "UserComment"), "Old");
}
