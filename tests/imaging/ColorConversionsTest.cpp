#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPoint>
#include <cmath>

#include "ImagingFixtures.h"
#include "imaging/KLColorConversions.h"
#include "support/TestSupport.h"

using fixtures::Size;

namespace {

// A colourful 320 x 320 PNG: red grows with x, green with y, blue fixed.
vips::VImage gradient() {
    const vips::VImage xy = vips::VImage::xyz(320, 320);
    return vips::VImage::bandjoin({xy[0] * 0.75, xy[1] * 0.75, xy[0] * 0 + 90})
        .cast(VIPS_FORMAT_UCHAR)
        .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

double toLinear(double v) {
    v /= 255.0;
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

TEST(Effects, GreyEffectsGiveEqualChannels) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-grey"));
    fixtures::save(gradient(), dir + "g.png");
    for (const QString code : {"0", "1"}) {
        const QString out = testsupport::freshDir(QStringLiteral("fx-grey-out"));
        KLColorConversions colours;
        ASSERT_EQ(colours.convertColorTo(dir + "g.png", out, code), "OK");
        ASSERT_TRUE(colours.lastWritten);
        for (const QPoint p : {QPoint(0, 0), QPoint(300, 20), QPoint(100, 250)}) {
            const auto px = fixtures::pixel(out + "g.png", p.x(), p.y());
            EXPECT_EQ(px[0], px[1]) << code.toStdString();
            EXPECT_EQ(px[1], px[2]) << code.toStdString();
        }
    }
}

TEST(Effects, SepiaOrdersRedGreenBlueOnGreyAndGrowsWithIntensity) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-sepia"));
    fixtures::save(fixtures::solid(32, 32, {128, 128, 128}), dir + "grey.png");
    double previousSpread = 0;
    for (const QString code : {"2", "3", "4"}) {
        const QString out = testsupport::freshDir(QStringLiteral("fx-sepia-out"));
        KLColorConversions colours;
        colours.convertColorTo(dir + "grey.png", out, code);
        const auto px = fixtures::pixel(out + "grey.png", 16, 16);
        EXPECT_GT(px[0], px[1]) << code.toStdString();
        EXPECT_GT(px[1], px[2]) << code.toStdString();
        EXPECT_GT(px[0] - px[2], previousSpread);
        previousSpread = px[0] - px[2];
    }
}

TEST(Effects, InvertTwiceIsTheIdentityAndBothCodesInvert) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-invert"));
    const QString once = testsupport::freshDir(QStringLiteral("fx-invert-1"));
    const QString twice = testsupport::freshDir(QStringLiteral("fx-invert-2"));
    fixtures::save(gradient(), dir + "g.png");
    KLColorConversions colours;
    colours.convertColorTo(dir + "g.png", once, "6");
    colours.convertColorTo(once + "g.png", twice, "11");
    EXPECT_EQ(fixtures::pixel(once + "g.png", 100, 200),
              (std::vector<double>{255 - 75, 255 - 150, 255 - 90}));
    EXPECT_EQ(fixtures::load(twice + "g.png").subtract(fixtures::load(dir + "g.png")).abs().max(),
              0);
}

TEST(Effects, PhotoLooksChangeTheImageAndKeepItsSize) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-looks"));
    fixtures::save(gradient(), dir + "g.png");
    for (const QString code : {"5", "7", "8", "9", "10"}) {
        const QString out = testsupport::freshDir(QStringLiteral("fx-looks-out"));
        KLColorConversions colours;
        colours.convertColorTo(dir + "g.png", out, code);
        ASSERT_EQ(fixtures::sizeOf(out + "g.png"), (Size{320, 320})) << code.toStdString();
        const double difference =
            fixtures::load(out + "g.png").subtract(fixtures::load(dir + "g.png")).abs().avg();
        EXPECT_GT(difference, 3) << code.toStdString();
        EXPECT_LT(difference, 80) << code.toStdString();  // a look, not a different picture
    }
}

TEST(Effects, AlphaIsKept) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-alpha"));
    const vips::VImage rgba = gradient().bandjoin(vips::VImage::xyz(320, 320)[0] * 0.5);
    fixtures::save(
        rgba.cast(VIPS_FORMAT_UCHAR)
            .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)),
        dir + "a.png");
    KLColorConversions colours;
    colours.convertColorTo(dir + "a.png", dir + "out/", "6");
    EXPECT_FALSE(colours.lastWritten);  // the output folder must exist: nothing is created
    QDir().mkpath(dir + "out");
    colours.convertColorTo(dir + "a.png", dir + "out/", "6");
    ASSERT_TRUE(colours.lastWritten);
    EXPECT_EQ(fixtures::pixel(dir + "out/a.png", 200, 10)[3], 100);
}

TEST(Enhance, ExposureOfOneStopDoublesLinearLight) {
    const QString dir = testsupport::freshDir(QStringLiteral("enh-exposure"));
    fixtures::save(fixtures::solid(16, 16, {60, 90, 120}), dir + "a.png");
    KLColorConversions colours;
    colours.enhanceColorTo(dir + "a.png", dir + "out/", "1", 1.0f);
    QDir().mkpath(dir + "out");
    colours.enhanceColorTo(dir + "a.png", dir + "out/", "1", 1.0f);
    const auto px = fixtures::pixel(dir + "out/a.png", 8, 8);
    const double in[] = {60, 90, 120};
    for (int band = 0; band < 3; ++band)
        EXPECT_NEAR(toLinear(px[band]) / toLinear(in[band]), 2.0, 0.04) << band;
}

TEST(Enhance, BrightnessGammaAndHue) {
    const QString dir = testsupport::freshDir(QStringLiteral("enh-misc"));
    fixtures::save(fixtures::solid(16, 16, {200, 100, 50}), dir + "a.png");
    const QString out = dir + "out/";
    QDir().mkpath(out);
    KLColorConversions colours;
    colours.enhanceColorTo(dir + "a.png", out, "0", 0.1f);  // + 0.1 of full scale
    const auto brighter = fixtures::pixel(out + "a.png", 0, 0);
    EXPECT_NEAR(brighter[0], 225.5, 0.6);
    EXPECT_NEAR(brighter[1], 125.5, 0.6);
    EXPECT_NEAR(brighter[2], 75.5, 0.6);
    colours.enhanceColorTo(dir + "a.png", out, "2", 2.0f);  // squared
    const auto squared = fixtures::pixel(out + "a.png", 0, 0);
    EXPECT_NEAR(squared[0], 255 * std::pow(200 / 255.0, 2), 0.6);
    EXPECT_NEAR(squared[2], 255 * std::pow(50 / 255.0, 2), 0.6);
    colours.enhanceColorTo(dir + "a.png", out, "3", 0.0f);  // no turn: unchanged
    EXPECT_EQ(fixtures::pixel(out + "a.png", 0, 0), (std::vector<double>{200, 100, 50}));
    colours.enhanceColorTo(dir + "a.png", out, "3", float(M_PI));  // half a turn: other hue
    const auto turned = fixtures::pixel(out + "a.png", 0, 0);
    EXPECT_LT(turned[0], turned[2]);  // orange turns bluish
}

TEST(Enhance, PixellateCellsAreConstantAndAlignedOnTheCentre) {
    const QString dir = testsupport::freshDir(QStringLiteral("enh-pixellate"));
    fixtures::save(gradient(), dir + "g.png");
    KLColorConversions colours;
    colours.enhanceColorTo(dir + "g.png", dir + "out/", "6", 20.0f);
    QDir().mkpath(dir + "out");
    colours.enhanceColorTo(dir + "g.png", dir + "out/", "6", 20.0f);
    const vips::VImage out = fixtures::load(dir + "out/g.png");
    ASSERT_EQ(out.width(), 320);
    // the cell [150, 170) x [150, 170) is one colour
    auto constant = [](const vips::VImage& cell) {
        return (cell - cell.getpoint(0, 0)).abs().max() == 0;
    };
    EXPECT_TRUE(constant(out.extract_area(150, 150, 20, 20)));
    EXPECT_TRUE(constant(out.extract_area(10, 10, 20, 20)));
    EXPECT_FALSE(constant(out.extract_area(140, 150, 20, 20)));
    // and its edges are cell boundaries
    EXPECT_NE(out.getpoint(149, 160), out.getpoint(150, 160));
    EXPECT_NE(out.getpoint(160, 149), out.getpoint(160, 150));
    EXPECT_EQ(out.getpoint(150, 160), out.getpoint(169, 160));
    EXPECT_NE(out.getpoint(169, 160), out.getpoint(170, 160));
    // the cell holds the mean of its pixels: red 0.75 x (150..169) averages 119.6
    EXPECT_NEAR(out.getpoint(155, 155)[0], 119.6, 1);
}

TEST(Reuse, UnknownCodeRunsThePreviousFilterOnItsOldPhoto) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-reuse"));
    fixtures::save(fixtures::solid(8, 8, {10, 20, 30}), dir + "a.png");
    fixtures::save(fixtures::solid(8, 8, {200, 200, 200}), dir + "b.png");
    const QString out = dir + "out/";
    QDir().mkpath(out);
    KLColorConversions colours;
    colours.convertColorTo(dir + "a.png", out, "6");
    EXPECT_EQ(colours.convertColorTo(dir + "b.png", out, "12"), "OK");
    // b.png holds the inverted a.png
    EXPECT_EQ(fixtures::pixel(out + "b.png", 0, 0), (std::vector<double>{245, 235, 225}));
    // the enhancement list shares the remembered filter
    colours.enhanceColorTo(dir + "b.png", out, "99", 1.0f);
    EXPECT_EQ(fixtures::pixel(out + "b.png", 0, 0), (std::vector<double>{245, 235, 225}));
}

TEST(Reuse, FreshObjectWithUnknownCodeWritesNothing) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-fresh"));
    fixtures::save(fixtures::solid(8, 8, {10, 20, 30}), dir + "a.png");
    const QString out = dir + "out/";
    QDir().mkpath(out);
    for (const QString code : {"12", "-1", "", "x", "06"}) {
        KLColorConversions fresh;
        EXPECT_EQ(fresh.convertColorTo(dir + "a.png", out, code), "OK");
        EXPECT_EQ(fresh.enhanceColorTo(dir + "a.png", out, code, 1.0f), "OK");
    }
    EXPECT_TRUE(QDir(out).isEmpty());
}

TEST(Blur, WritesNothing) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-blur"));
    fixtures::save(gradient(), dir + "g.png");
    QFile before(dir + "g.png");
    ASSERT_TRUE(before.open(QIODevice::ReadOnly));
    const QByteArray bytes = before.readAll();
    KLColorConversions colours;
    EXPECT_EQ(colours.hApplyGaussianBlur(dir + "g.png", 5.0f), "OK");
    QFile after(dir + "g.png");
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll(), bytes);
    EXPECT_EQ(QDir(dir).entryList(QDir::Files | QDir::Hidden), QStringList{"g.png"});
}

TEST(Writing, ByTheExactExtension) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-ext"));
    const struct {
        QString name;
        bool written;
        const char* loader;
    } cases[] = {
        {"p1.JPG", true, "jpegload"}, {"p2.jpeg", true, "jpegload"}, {"p3.JPEG", true, "jpegload"},
        {"p4.jpg", true, "jpegload"}, {"p5.png", true, "pngload"},   {"p6.PNG", false, ""},
        {"p7.tif", true, "tiffload"}, {"p8.TIFF", true, "tiffload"}, {"p9.Tif", false, ""},
        {"p10.Jpg", false, ""},       {"p11.gif", false, ""}};
    const QString out = dir + "out/";
    QDir().mkpath(out);
    for (const auto& c : cases) {
        fixtures::save(fixtures::solid(30, 20, {128, 128, 128}), dir + c.name);
        KLColorConversions colours;
        EXPECT_EQ(colours.convertColorTo(dir + c.name, out, "3"), "OK");
        EXPECT_EQ(colours.lastWritten, c.written) << c.name.toStdString();
        EXPECT_EQ(QFile::exists(out + c.name), c.written) << c.name.toStdString();
        EXPECT_EQ(KLColorConversions::writesFileNamed(c.name), c.written);
        if (c.written) {
            EXPECT_EQ(fixtures::load(out + c.name).get_string("vips-loader"),
                      std::string(c.loader));
            EXPECT_EQ(fixtures::sizeOf(out + c.name), (Size{30, 20}));
        }
    }
}

TEST(Writing, SepiaJpegAtBestQuality) {
    const QString dir = testsupport::freshDir(QStringLiteral("fx-quality"));
    fixtures::save(gradient(), dir + "photo.JPG");
    QDir().mkpath(dir + "out");
    KLColorConversions colours;
    colours.convertColorTo(dir + "photo.JPG", dir + "out/", "3");
    ASSERT_TRUE(colours.lastWritten);
    // exiftool estimates the quality from the quantisation tables
    const QString quality = testsupport::exiftool(dir + "out/photo.JPG", "JPEGQualityEstimate");
    if (!quality.isEmpty()) {
        EXPECT_GE(quality.toInt(), 98);
    }
}

TEST(DefaultValue, ByEnhancementIndex) {
    const struct {
        int index;
        const char* expected;
    } cases[] = {{0, "0.0"}, {1, "0.5"}, {2, "0.75"}, {3, "0.0"},
                 {4, "7.5"}, {5, "7.5"}, {9, "7.5"},  {-1, "7.5"}};
    for (const auto& c : cases)
        EXPECT_EQ(KLColorConversions::hSetDefaultValue(c.index, "7.5"), c.expected) << c.index;
}

}  // namespace
