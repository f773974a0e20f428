#include <cmath>

#include "ImagingFixtures.h"

using fixtures::Pixel;

// A colourful 320 x 320 image: red grows with x, green with y, blue fixed; alpha (x / 2) if asked.
static vips::VImage gradient(bool alpha = false) {
    const vips::VImage xy = vips::VImage::xyz(320, 320);
    const vips::VImage rgb = vips::VImage::bandjoin({xy[0] * 0.75, xy[1] * 0.75, xy[0] * 0 + 90});
    return fixtures::srgb(alpha ? rgb.bandjoin(xy[0] * 0.5) : rgb);
}

// Runs effect `code` (or enhancement `code` with `value`) on `source` into a folder of its own
// and returns the copy.
static vips::VImage applied(const QString& source, const QString& code, float value = NAN) {
    static int calls = 0;
    const QString out = testsupport::freshDir(QStringLiteral("fx-out-%1").arg(++calls));
    KLColorConversions colours;
    std::isnan(value) ? colours.convertColorTo(source, out, code)
                      : colours.enhanceColorTo(source, out, code, value);
    EXPECT_TRUE(colours.lastWritten) << code.toStdString();
    return fixtures::load(out + QFileInfo(source).fileName());
}

TEST(Effects, GreyEqualChannelsSepiaWarmsGreyInvertTwiceIsTheIdentity) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx"));
    fixtures::save(gradient(), dir + "g.png");
    fixtures::save(fixtures::solid(32, 32, {128, 128, 128}), dir + "grey.png");
    for (const QString code : {"0", "1"}) {
        const vips::VImage grey = applied(dir + "g.png", code);
        EXPECT_EQ((grey[0] - grey[1]).abs().max() + (grey[1] - grey[2]).abs().max(), 0)
            << code.toStdString();
    }
    double spread = 0;  // R > G > B, more so as the intensity grows
    for (const QString code : {"2", "3", "4"}) {
        const Pixel px = applied(dir + "grey.png", code).getpoint(16, 16);
        EXPECT_TRUE(px[0] > px[1] && px[1] > px[2]) << code.toStdString();
        EXPECT_GT(px[0] - px[2], spread) << code.toStdString();
        spread = px[0] - px[2];
    }
    fixtures::save(gradient(true), dir + "alpha.png");
    const vips::VImage once = applied(dir + "alpha.png", "6");
    EXPECT_EQ(once.getpoint(100, 200), (Pixel{255 - 75, 255 - 150, 255 - 90, 50}));  // alpha kept
    fixtures::save(once, dir + "once.png");
    EXPECT_EQ((applied(dir + "once.png", "11") - fixtures::load(dir + "alpha.png")).abs().max(), 0);
}

TEST(Enhance, ExposureOfOneStopDoublesLinearLight) {
    const QString dir = testsupport::freshDir(QStringLiteral("enh-exposure"));
    const Pixel in{60, 90, 120};
    fixtures::save(fixtures::solid(16, 16, in), dir + "a.png");
    const Pixel out = applied(dir + "a.png", "1", 1.0f).getpoint(8, 8);
    auto linear = [](double v) {
        v /= 255.0;
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    for (int band = 0; band < 3; ++band)
        EXPECT_NEAR(linear(out[band]) / linear(in[band]), 2.0, 0.04) << band;
}

TEST(Enhance, PixellateCellsAreConstantAndAlignedOnTheCentre) {
    const QString dir = testsupport::freshDir(QStringLiteral("enh-pixellate"));
    fixtures::save(gradient(), dir + "g.png");
    const vips::VImage out = applied(dir + "g.png", "6", 20.0f);
    auto constant = [&](int x, int y) {
        const vips::VImage cell = out.extract_area(x, y, 20, 20);
        return (cell - cell.getpoint(0, 0)).abs().max() == 0;
    };
    // cells of 20 start at the centre, 150: [150, 170) and [10, 30) are cells, [140, 160) is not
    EXPECT_TRUE(constant(150, 150) && constant(10, 10));
    EXPECT_FALSE(constant(140, 150) || constant(150, 140));
    // a cell holds the mean of its pixels: red 0.75 x (150..169) averages 119.6
    EXPECT_NEAR(out.getpoint(155, 155)[0], 119.6, 1);
}

TEST(Effects, UnknownCodeRunsThePreviousFilterOnItsOldPhotoBlurWritesNothing) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-reuse"));
    fixtures::save(fixtures::solid(8, 8, {10, 20, 30}), dir + "a.png");
    fixtures::save(fixtures::solid(8, 8, {200, 200, 200}), dir + "b.png");
    QDir().mkpath(dir + "out");
    KLColorConversions colours;
    colours.convertColorTo(dir + "a.png", dir + "out/", "6");
    colours.convertColorTo(dir + "b.png", dir + "out/", "12");
    EXPECT_EQ(fixtures::pixel(dir + "out/b.png", 0, 0), (Pixel{245, 235, 225}));  // a, inverted
    QFile::remove(dir + "out/b.png");
    colours.enhanceColorTo(dir + "b.png", dir + "out/", "99", 1.0f);  // both share the filter
    EXPECT_EQ(fixtures::pixel(dir + "out/b.png", 0, 0), (Pixel{245, 235, 225}));
    for (const QString name : {"a.png", "b.png"}) QFile::remove(dir + "out/" + name);
    for (const QString code : {"12", "-1", "", "x", "06"}) {  // a fresh object has none
        EXPECT_EQ(KLColorConversions().convertColorTo(dir + "a.png", dir + "out/", code), "OK");
        EXPECT_EQ(KLColorConversions().enhanceColorTo(dir + "a.png", dir + "out/", code, 1), "OK");
    }
    const QByteArray bytes = fixtures::bytesOf(dir + "a.png");
    EXPECT_EQ(colours.hApplyGaussianBlur(dir + "a.png", 5.0f), "OK");
    EXPECT_EQ(fixtures::bytesOf(dir + "a.png"), bytes);
    EXPECT_EQ(QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{"a.png", "b.png", "out"}));
    EXPECT_TRUE(QDir(dir + "out").isEmpty());
}

TEST(Effects, CopiesAreWrittenByTheExactExtension) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-ext"));
    QDir().mkpath(dir + "out");
    const std::pair<QString, std::string> cases[] = {
        // name, reader ("" when not written)
        {"p1.JPG", "jpegload"}, {"p2.jpeg", "jpegload"}, {"p3.JPEG", "jpegload"},
        {"p4.jpg", "jpegload"}, {"p5.png", "pngload"},   {"p6.PNG", ""},
        {"p7.tif", "tiffload"}, {"p8.TIFF", "tiffload"}, {"p9.Tif", ""},
        {"p10.Jpg", ""},        {"p11.gif", ""}};
    for (const auto& [name, loader] : cases) {
        SCOPED_TRACE(name.toStdString());
        fixtures::save(fixtures::solid(30, 20, {128, 128, 128}), dir + name);
        EXPECT_EQ(KLColorConversions().convertColorTo(dir + name, dir + "out/", "3"), "OK");
        ASSERT_EQ(QFile::exists(dir + "out/" + name), !loader.empty());
        if (loader.empty()) continue;
        EXPECT_EQ(fixtures::loader(dir + "out/" + name), loader);
        EXPECT_EQ(fixtures::sizeOf(dir + "out/" + name), fixtures::Size(30, 20));
        if (loader == "jpegload") {  // at best quality
            EXPECT_GE(testsupport::exiftool(dir + "out/" + name, "JPEGQualityEstimate").toInt(),
                      98);
        }
    }
}
