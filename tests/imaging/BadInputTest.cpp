#include <QRandomGenerator>

#include "ImagingFixtures.h"

// Every kind of photo that cannot be used, under names the imaging code accepts, through every
// operation: the failure result, nothing written, nothing changed, no crash.
TEST(BadInput, EveryOperationFailsQuietlyAndWritesNothing) {
    const QString dir = testsupport::freshDir("bad-input"),
                  out = testsupport::freshDir("bad-input/out");
    testsupport::writeFile(dir + "zero.jpg", {});
    QByteArray noise(20000, '\0');
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    testsupport::writeFile(dir + "noise.jpg", noise);
    testsupport::writeFile(dir + "text.png", "this is not a picture\n");
    fixtures::save(fixtures::coordinates(600, 400), dir + "truncated.jpg");
    QFile::resize(dir + "truncated.jpg", QFileInfo(dir + "truncated.jpg").size() / 3);
    QDir().mkpath(dir + "folder.jpg");
    fixtures::save(vips::VImage::black(20000, 20000), dir + "huge.png[bitdepth=1]");  // 400 MP
    testsupport::writeFile(dir + "zerosided.gif", QByteArray("GIF89a\0\0\x64\0\0\0\0;", 14));
    testsupport::writeFile(dir + "a.psd", "never read");
    testsupport::writeFile(dir + "b.PDF", "never read");
    const std::pair<QString, QString> cases[] = {
        {"zero.jpg", "Failed"},      {"noise.jpg", "Failed"},     {"text.png", "Failed"},
        {"truncated.jpg", "Failed"}, {"folder.jpg", "Failed"},    {"missing.jpg", "Failed"},
        {"huge.png", "Failed"},      {"zerosided.gif", "Failed"}, {"a.psd", "Not Supported"},
        {"b.PDF", "Not Supported"}};
    for (const auto& [name, result] : cases) {
        SCOPED_TRACE(name);
        const QString source = dir + name;
        KLImageHandling images;
        for (int mode = 0; mode <= 7; ++mode)
            EXPECT_EQ(images.resizeImage(source, 200, mode, out), result);
        EXPECT_EQ(images.cropImage(source, 100, 100, out, "myCropThumb", 4), result);
        EXPECT_EQ(images.hHandleImages("800", "600", source, out, "slide.jpg"), result);
        EXPECT_EQ(images.hHandleRgImages("960", source, out, "grid.jpg"), result);
        KLColorConversions colours;
        EXPECT_EQ(colours.convertColorTo(source, out, "4"), "OK");
        EXPECT_EQ(colours.enhanceColorTo(source, out, "1", 0.5f), "OK");
        EXPECT_EQ(colours.hApplyGaussianBlur(source, 3.0f), "OK");
        const QByteArray bytes = testsupport::readFile(source);  // a frame leaves it as it was
        EXPECT_EQ(images.addBorderToImage2(source, Qt::red, 10), result);
        EXPECT_EQ(testsupport::readFile(source), bytes);
        // a conversion writes nothing but still removes the working file
        const QString work = dir + "work." + QFileInfo(source).suffix();
        for (const QString format : {"png", "tiff", "bmp", "gif", "jpeg", "jp2", "pdf"}) {
            if (!QFile::copy(source, work)) break;  // a folder or a missing file has no copy
            KLImageHandling::hSaveAsFileType(work, format, "5", out);
            EXPECT_FALSE(QFile::exists(work)) << format;
        }
        EXPECT_TRUE(fixtures::isEmptyDir(out)) << QDir(out).entryList().join(' ').toStdString();
    }
}
