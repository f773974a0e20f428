#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include "ImagingFixtures.h"
#include "services/cNSFileHandling.h"
#include "support/TestSupport.h"

using fixtures::Size;

namespace {

// A working file as the gallery leaves it: a JPEG with EXIF, in the thumbnail folder.
QString workingJpeg(const QString& dir, const QString& name = "a.jpg") {
    const vips::VImage xy = vips::VImage::xyz(240, 160);
    fixtures::save(
        vips::VImage::bandjoin({xy[0] / 2, xy[1], xy[0] * 0 + 60})
            .cast(VIPS_FORMAT_UCHAR)
            .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)),
        dir + name);
    testsupport::runProgram("exiftool", {"-q", "-overwrite_original", "-Artist=Keldra",
                                         "-XMP-dc:Creator=Keldra", dir + name});
    return dir + name;
}

struct FormatCase {
    QString format;
    const char* loader;  // "" when libvips is not the reader to ask
    bool keepsMetadata;
};

TEST(SaveAs, EveryFormatWritesAFileItsReaderAccepts) {
    const FormatCase cases[] = {{"png", "pngload", true},    {"tiff", "tiffload", true},
                                {"bmp", "", false},          {"gif", "gifload", false},
                                {"jpeg", "jpegload", false}, {"jp2", "jp2kload", false},
                                {"pdf", "", false}};
    cNSFileHandling files;
    for (const FormatCase& c : cases) {
        SCOPED_TRACE(c.format.toStdString());
        const QString dir = testsupport::freshDir(QStringLiteral("saveas-") + c.format);
        const QString work = workingJpeg(dir);
        QDir().mkpath(dir + "out");
        const SaveAsResult r = files.hSaveAsFileType(work, c.format, "5", dir + "out/");
        const QString out = dir + "out/a." + c.format;
        EXPECT_EQ(r.url.toLocalFile(), out);
        EXPECT_EQ(r.format, c.format);
        EXPECT_EQ(r.baseName, "a");
        ASSERT_TRUE(QFile::exists(out));
        EXPECT_FALSE(QFile::exists(work));
        if (c.format == u"bmp") {
            QImage bmp;
            ASSERT_TRUE(bmp.load(out, "BMP"));
            EXPECT_EQ(bmp.size(), QSize(240, 160));
            EXPECT_NEAR(qRed(bmp.pixel(200, 10)), 100, 6);
            EXPECT_NEAR(qGreen(bmp.pixel(200, 150)), 150, 6);
        } else if (c.format == u"pdf") {
            QFile pdf(out);
            ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
            EXPECT_TRUE(pdf.read(5) == "%PDF-");
            // poppler renders the page at 72 dpi: one point per pixel
            const vips::VImage page = fixtures::load(out);
            EXPECT_NEAR(page.width(), 240, 1);
            EXPECT_NEAR(page.height(), 160, 1);
        } else {
            EXPECT_EQ(fixtures::load(out).get_string("vips-loader"), std::string(c.loader));
            EXPECT_EQ(fixtures::sizeOf(out), (Size{240, 160}));
        }
        if (c.format != u"pdf") {
            // libvips 8.14 writes no EXIF block into TIFF: there the XMP carries the metadata
            if (c.format != u"tiff") {
                EXPECT_EQ(testsupport::exiftool(out, "Artist"), c.keepsMetadata ? "Keldra" : "");
            }
            EXPECT_EQ(testsupport::exiftool(out, "XMP-dc:Creator"),
                      c.keepsMetadata ? "Keldra" : "");
        }
    }
}

TEST(SaveAs, CompressionTitlesSetTheJpegQuality) {
    const QString dir = testsupport::freshDir(QStringLiteral("saveas-quality"));
    QDir().mkpath(dir + "q1");
    QDir().mkpath(dir + "q9");
    QDir().mkpath(dir + "qx");
    cNSFileHandling files;
    const QStringList photos = testsupport::mateBackgroundJpegs();
    auto work = [&] {
        if (photos.isEmpty()) return workingJpeg(dir);
        QFile::copy(photos.first(), dir + "a.jpg");
        return dir + "a.jpg";
    };
    files.hSaveAsFileType(work(), "jpeg", "1", dir + "q1/");
    files.hSaveAsFileType(work(), "jpeg", "9", dir + "q9/");
    files.hSaveAsFileType(work(), "jpeg", "", dir + "qx/");
    const qint64 low = QFileInfo(dir + "q1/a.jpeg").size();
    const qint64 high = QFileInfo(dir + "q9/a.jpeg").size();
    ASSERT_GT(low, 0);
    EXPECT_GT(high, 2 * low);
    // "9" and "" both mean 0.9
    EXPECT_EQ(QFileInfo(dir + "qx/a.jpeg").size(), high);
}

TEST(SaveAs, WorkingFileIsDeletedWhenTheOutputDiffers) {
    const QString dir = testsupport::freshDir(QStringLiteral("saveas-delete"));
    cNSFileHandling files;
    // "jpeg" writes a.jpeg beside a.jpg and removes the working file
    workingJpeg(dir);
    files.hSaveAsFileType(dir + "a.jpg", "jpeg", "9", dir);
    EXPECT_TRUE(QFile::exists(dir + "a.jpeg"));
    EXPECT_FALSE(QFile::exists(dir + "a.jpg"));
    // "jpg" is no format: nothing is written, the working file goes all the same
    QFile::remove(dir + "a.jpeg");
    workingJpeg(dir);
    const SaveAsResult r = files.hSaveAsFileType(dir + "a.jpg", "jpg", "9", dir);
    EXPECT_EQ(r.url.toLocalFile(), dir + "a.jpg");
    EXPECT_FALSE(QFile::exists(dir + "a.jpg"));
    EXPECT_TRUE(QDir(dir).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    // same path in and out: the file is rewritten in place and stays
    workingJpeg(dir, "b.png");
    fixtures::save(fixtures::solid(50, 40, {1, 2, 3}), dir + "b.png");
    files.hSaveAsFileType(dir + "b.png", "png", "9", dir);
    EXPECT_EQ(fixtures::sizeOf(dir + "b.png"), (Size{50, 40}));
    // an unknown format into another folder: nothing written, working file deleted
    workingJpeg(dir, "c.jpg");
    files.hSaveAsFileType(dir + "c.jpg", "webp", "9", dir + "elsewhere/");
    EXPECT_FALSE(QFile::exists(dir + "c.jpg"));
    EXPECT_FALSE(QFile::exists(dir + "elsewhere/c.webp"));
}

TEST(SaveAs, BaseNameDropsOnlyTheLastExtension) {
    const QString dir = testsupport::freshDir(QStringLiteral("saveas-name"));
    workingJpeg(dir, "my.photo.jpg");
    cNSFileHandling files;
    const SaveAsResult r = files.hSaveAsFileType(dir + "my.photo.jpg", "png", "9", dir);
    EXPECT_EQ(r.baseName, "my.photo");
    EXPECT_TRUE(QFile::exists(dir + "my.photo.png"));
}

}  // namespace
