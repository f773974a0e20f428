#include "ImagingFixtures.h"

// A working file as the gallery leaves it: a JPEG with EXIF and XMP, R = x and G = y.
static QString workingJpeg(const QString& path) {
    fixtures::save(fixtures::coordinates(240, 160), path);
    fixtures::tagArtist(path);
    return path;
}

TEST(SaveAs, EveryFormatWritesAFileItsReaderAccepts) {
    const struct {
        QString format;
        std::string loader;
        bool keepsXmp;
        bool keepsExif;
    } cases[] = {{"png", "pngload", true, true},      {"tiff", "tiffload", true, true},
                 {"bmp", "magickload", false, false}, {"gif", "gifload", false, false},
                 {"jpeg", "jpegload", false, false},  {"jp2", "jp2kload", false, false},
                 {"pdf", "pdfload", false, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.format.toStdString());
        const QString dir = testsupport::freshDir(QStringLiteral("saveas-") + c.format);
        QDir().mkpath(dir + "out");
        const QString work = workingJpeg(dir + "my.photo.jpg");
        const SaveAsResult r = KLImageHandling::hSaveAsFileType(work, c.format, "5", dir + "out/");
        EXPECT_EQ(r.url.toLocalFile(), dir + "out/my.photo." + c.format);
        EXPECT_EQ(r.baseName, "my.photo");  // only the last extension goes
        EXPECT_FALSE(QFile::exists(work));
        const vips::VImage image = fixtures::load(r.url.toLocalFile());
        EXPECT_EQ(image.get_string("vips-loader"), c.loader);
        EXPECT_NEAR(image.width(), 240, 1);  // a PDF page is rendered at 72 dpi
        EXPECT_NEAR(image.height(), 160, 1);
        const fixtures::Pixel p = image.getpoint(200, 10);  // right way up
        EXPECT_TRUE(std::abs(p[0] - 200) < 12 && std::abs(p[1] - 10) < 12) << p[0] << " " << p[1];
        EXPECT_EQ(testsupport::exiftool(r.url.toLocalFile(), "XMP-dc:Creator") == "Keldra",
                  c.keepsXmp);
        EXPECT_EQ(testsupport::exiftool(r.url.toLocalFile(), "EXIF:Artist") == "Keldra",
                  c.keepsExif);
    }
}

TEST(SaveAs, CompressionTitlesSetTheJpegQuality) {
    const QString dir = testsupport::freshDir(QStringLiteral("saveas-quality"));
    const QStringList photos = testsupport::mateBackgroundJpegs();
    std::vector<qint64> sizes;
    for (const QString title : {"1", "9", ""}) {
        QDir().mkpath(dir + "q" + title);
        if (photos.isEmpty() || !QFile::copy(photos.first(), dir + "a.jpg"))
            workingJpeg(dir + "a.jpg");
        KLImageHandling::hSaveAsFileType(dir + "a.jpg", "jpeg", title, dir + "q" + title + "/");
        sizes.push_back(QFileInfo(dir + "q" + title + "/a.jpeg").size());
    }
    ASSERT_GT(sizes[0], 0);
    EXPECT_GT(sizes[1], 2 * sizes[0]);
    EXPECT_EQ(sizes[2], sizes[1]);  // "9" and "" both mean 0.9
}

TEST(SaveAs, WorkingFileIsDeletedUnlessItIsTheOutput) {
    const QString dir = testsupport::freshDir(QStringLiteral("saveas-delete"));
    // "jpeg" writes a.jpeg beside a.jpg and removes the working file
    KLImageHandling::hSaveAsFileType(workingJpeg(dir + "a.jpg"), "jpeg", "9", dir);
    EXPECT_TRUE(QFile::exists(dir + "a.jpeg"));
    EXPECT_FALSE(QFile::exists(dir + "a.jpg"));
    // "jpg" and "webp" are no formats: nothing is written, the working file goes all the same
    QFile::remove(dir + "a.jpeg");
    KLImageHandling::hSaveAsFileType(workingJpeg(dir + "a.jpg"), "jpg", "9", dir);
    KLImageHandling::hSaveAsFileType(workingJpeg(dir + "c.jpg"), "webp", "9", dir + "elsewhere/");
    EXPECT_TRUE(fixtures::isEmptyDir(dir));
    // the same path in and out: the file is rewritten in place and stays
    fixtures::save(fixtures::solid(50, 40, {1, 2, 3}), dir + "b.png");
    KLImageHandling::hSaveAsFileType(dir + "b.png", "png", "9", dir);
    EXPECT_EQ(fixtures::sizeOf(dir + "b.png"), fixtures::Size(50, 40));
}
