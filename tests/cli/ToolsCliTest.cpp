// `orvella watermark | meta | image`, run as the user runs them and checked on the
// files they write, through exiftool and libvips. Their refusals are in RefusalCliTest.cpp.
#include <QRegularExpression>

#include "imaging/ImagingFixtures.h"
#include "metadata/MetaFixtures.h"

using testsupport::exiftool;
using testsupport::orvellaOut;

TEST(ToolsCli, WatermarkPrintsOneStatusLinePerFile) {
    const QString dir = testsupport::freshDir("cli-watermark");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "a.png");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "b.jpg");
    fixtures::save(fixtures::solid(20, 10, {255, 0, 0}), dir + "mark.png");
    testsupport::writeFile(dir + "notes.jpg", "plain words");
    EXPECT_EQ(
        orvellaOut(1, {"watermark", "text", "--out", dir + "out", "--set", "tfFontSize=30", "--set",
                       "tvWaterMarkText=Orvella", dir + "a.png", dir + "b.jpg", dir + "notes.jpg"}),
        dir + "a.png: OK\n" + dir + "b.jpg: OK\n" + dir + "notes.jpg: NOK\n");
    EXPECT_EQ(fixtures::loader(dir + "out/b.jpg"), "jpegload");
    EXPECT_EQ(fixtures::load(dir + "out/a.png").max(), 192);  // white text at half opacity

    EXPECT_EQ(orvellaOut(0, {"watermark", "image", "--out", dir + "marked", "--set",
                             "tfWaterMarkImageFilePath=" + dir + "mark.png", "--set",
                             "scImageWaterMarkPos=0", "--set", "tfImageTransparancy=0", "--set",
                             "tfFontSize=40", dir + "a.png"}),
              dir + "a.png: OK\n");
    EXPECT_EQ(fixtures::pixel(dir + "marked/a.png", 20, 10), (fixtures::Pixel{255, 0, 0}));
    EXPECT_EQ(fixtures::pixel(dir + "marked/a.png", 60, 40), (fixtures::Pixel{128, 128, 128}));
}

TEST(ToolsCli, ImageEffectsWriteCopiesOfEveryPhotoOfAFolder) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-image"));
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "a.jpg");
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "b.PNG");
    QString out = orvellaOut(
        0, {"image", "effect", "4", "--out", dir + "sepia", dir + "a.jpg", dir + "b.PNG"});
    EXPECT_TRUE(out.contains("OK  " + dir + "a.jpg -> ")) << out.toStdString();
    EXPECT_TRUE(out.contains("skipped: " + dir + "b.PNG")) << out.toStdString();
    const fixtures::Pixel px = fixtures::pixel(dir + "sepia/a.jpg", 20, 15);
    EXPECT_GT(px[0], px[2] + 20);  // sepia: warm
    EXPECT_FALSE(QFile::exists(dir + "sepia/b.PNG"));
    out = orvellaOut(0, {"image", "derive", "4", "20", "--out", dir + "small", dir});
    EXPECT_EQ(out.count("OK  "), 2) << out.toStdString();
    EXPECT_EQ(fixtures::sizeOf(dir + "small/a.jpg").second, 20);
}

// get prints one line per name (one reader for all: "IPTC Description" repeats the value before
// it), tree indents two spaces per level, set-comment prints OK (Failed is in FaultsCliTest.cpp),
// complete "Keldra", batch a log line per success with its time and the failures on stderr.
TEST(ToolsCli, MetaReadsAndWritesComments) {
    const QString dir = testsupport::freshDir("cli-meta");
    const QString photo = metafixtures::makeImage(dir + "harbour.jpg");
    metafixtures::tag(photo, {"-UserComment= Sunset", "-IPTC:City=Lyon"});
    testsupport::writeFile(dir + "notes.jpg", "plain words");
    EXPECT_EQ(orvellaOut(0, {"meta", "get", photo, "IPTC Description", "IPTC City",
                             "IPTC Description", "Show Filename", "EXIF User Comment"}),
              "\nLyon\nLyon\nharbour.jpg\n Sunset\n");
    const QString tree = orvellaOut(0, {"meta", "tree", photo});
    EXPECT_TRUE(tree.startsWith("Exif:\n") && tree.contains("\n  Photo:\n") &&
                tree.contains("\n    User Comment:  Sunset\n") &&
                tree.contains("\nIPTC:\n  Application2:\n    City: Lyon\n"))
        << tree.toStdString();
    // A file that cannot be read prints one empty line per name, and no tree.
    EXPECT_EQ(orvellaOut(0, {"meta", "get", dir + "notes.jpg", "EXIF User Comment", "IPTC City"}),
              "\n\n");
    EXPECT_EQ(orvellaOut(0, {"meta", "tree", dir + "missing.jpg"}), "");
    EXPECT_EQ(orvellaOut(0, {"meta", "set-comment", photo, "From the command line"}), "OK\n");
    EXPECT_EQ(exiftool(photo, "UserComment"), "From the command line");
    EXPECT_EQ(orvellaOut(0, {"meta", "complete", photo, dir + "out.jpg"}), "Keldra\n");
    orvellaOut(1, {"meta", "complete", dir + "notes.jpg", dir + "n.jpg"});

    const QString batch = dir + "batch/";
    QDir().mkpath(batch + "folder");
    for (const QString name : {"folder/a.jpg", "folder/ro.jpg", "c.tif"})
        fixtures::save(fixtures::solid(30, 20, {90, 90, 90}), batch + name);
    ASSERT_TRUE(QFile::setPermissions(batch + "folder/ro.jpg", QFile::ReadOwner));
    QString err;
    QString out = orvellaOut(
        1, {"meta", "batch", "--comment", "Sea fog", batch + "folder", batch + "c.tif"}, &err);
    static const QRegularExpression kTime("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\t",
                                          QRegularExpression::MultilineOption);
    EXPECT_EQ(out.count(kTime), 2) << out.toStdString();
    EXPECT_EQ(out.remove(kTime), "File Editing\tEdit meta data\tOK\ta.jpg\ta.jpg\t" + batch +
                                     "folder/a.jpg\t" + batch + "folder/a.jpg\n" +
                                     "File Editing\tEdit meta data\tOK\tc.tif\tc.tif\t" + batch +
                                     "c.tif\t" + batch + "c.tif\n");
    EXPECT_TRUE(err.contains(batch + "folder/ro.jpg: the file is read-only")) << err.toStdString();
    EXPECT_EQ(exiftool(batch + "c.tif", "UserComment"), "Sea fog");
}
