#include "ImagingFixtures.h"

// A working file as the gallery leaves it: a JPEG, R = x and G = y.
static QString workingJpeg(const QString& path) {
    fixtures::save(fixtures::coordinates(240, 160), path);
    return path;
}

// Format and its reader (which metadata each keeps is read back from a gallery's images). Only
// the last extension goes, the working file is removed (also when nothing is written for a format
// it does not know, "jpg" and "webp") unless it is the output, the picture stays the right way up
// (a PDF page is rendered at 72 dpi).
TEST(SaveAs, EveryFormatWritesAFileItsReaderAccepts) {
    const std::pair<QString, std::string> cases[] = {
        {"png", "pngload"},   {"tiff", "tiffload"}, {"bmp", "magickload"}, {"gif", "gifload"},
        {"jpeg", "jpegload"}, {"jp2", "jp2kload"},  {"pdf", "pdfload"}};
    for (const auto& [format, loader] : cases) {
        SCOPED_TRACE(format);
        const QString dir = testsupport::freshDir(QString("saveas-") + format);
        QDir().mkpath(dir + "out");
        const QString work = workingJpeg(dir + "my.photo.jpg");
        const SaveAsResult r = KLImageHandling::hSaveAsFileType(work, format, "5", dir + "out/");
        const QString out = r.url.toLocalFile();
        EXPECT_EQ(out, dir + "out/my.photo." + format);
        EXPECT_EQ(r.baseName, "my.photo");
        EXPECT_FALSE(QFile::exists(work));
        const vips::VImage image = fixtures::load(out);
        EXPECT_EQ(image.get_string("vips-loader"), loader);
        EXPECT_NEAR(image.width(), 240, 1);
        EXPECT_NEAR(image.height(), 160, 1);
        const fixtures::Pixel p = image.getpoint(200, 10);
        EXPECT_TRUE(std::abs(p[0] - 200) < 12 && std::abs(p[1] - 10) < 12) << p[0] << " " << p[1];
    }
    const QString dir = testsupport::freshDir("saveas-delete");
    KLImageHandling::hSaveAsFileType(workingJpeg(dir + "a.jpg"), "jpg", "9", dir);
    KLImageHandling::hSaveAsFileType(workingJpeg(dir + "c.jpg"), "webp", "9", dir + "elsewhere/");
    EXPECT_TRUE(fixtures::isEmptyDir(dir));
    fixtures::save(fixtures::solid(50, 40, {1, 2, 3}), dir + "b.png");
    KLImageHandling::hSaveAsFileType(dir + "b.png", "png", "9", dir);
    EXPECT_EQ(fixtures::sizeOf(dir + "b.png"), fixtures::Size(50, 40));
}

// "1".."8" are tenths of JPEG quality, "9" and anything else 0.9. Transparent pixels go onto white
// where the format has no alpha, and stay transparent in PNG.
TEST(SaveAs, JpegQualityFromTheTitleTransparentPixelsOnWhiteWithoutAlpha) {
    const QString dir = testsupport::freshDir("saveas-quality");
    for (const auto& [title, quality] :
         {std::pair{"2", 20}, {"8", 80}, {"9", 90}, {"", 90}, {"x", 90}}) {
        const QString out = dir + "q" + title + "/";
        QDir().mkpath(out);
        KLImageHandling::hSaveAsFileType(workingJpeg(dir + "a.jpg"), "jpeg", title, out);
        EXPECT_EQ(testsupport::exiftool(out + "a.jpeg", "JPEGQualityEstimate").toInt(), quality)
            << title;
    }
    const vips::VImage alpha = (vips::VImage::xyz(60, 40)[0] >= 30).ifthenelse(255, 0);
    for (const QString format : {"jpeg", "bmp", "png"}) {
        fixtures::save(fixtures::srgb(fixtures::solid(60, 40, {200, 30, 30}).bandjoin(alpha)),
                       dir + "w.png");
        QDir().mkpath(dir + format);
        KLImageHandling::hSaveAsFileType(dir + "w.png", format, "8", dir + format + "/");
        const QString out = dir + format + "/w." + format;
        const fixtures::Pixel left = fixtures::pixel(out, 5, 20);
        if (format == "png")
            EXPECT_EQ(left.size() == 4 ? left[3] : -1, 0);
        else
            EXPECT_TRUE(left[0] > 245 && left[1] > 245 && left[2] > 245) << format;
        EXPECT_GT(fixtures::pixel(out, 50, 20)[0], 180) << format;
    }
}
