#include <gtest/gtest.h>

#include <QColor>
#include <QImage>

#include "ImagingFixtures.h"
#include "imaging/KLImageHandling.h"
#include "support/TestSupport.h"

using fixtures::Size;

namespace {

bool near(const std::vector<double>& p, std::vector<double> rgb, double tolerance) {
    for (size_t i = 0; i < rgb.size(); ++i)
        if (std::abs(p[i] - rgb[i]) > tolerance) return false;
    return true;
}

TEST(Frame, OnlyTheInnerHalfOfTheStrokeShows) {
    const QString dir = testsupport::freshDir(QStringLiteral("frame"));
    fixtures::save(fixtures::solid(200, 150, {100, 100, 100}), dir + "t.png");
    KLImageHandling images;
    ASSERT_EQ(images.addBorderToImage2(dir + "t.png", QColor(255, 0, 0), 10), "OK");
    EXPECT_EQ(images.storeResult, "OK");
    EXPECT_EQ(fixtures::sizeOf(dir + "t.png"), (Size{200, 150}));
    const struct {
        int x, y;
        bool frame;
    } probes[] = {{0, 0, true},     {4, 75, true},     {195, 75, true}, {100, 4, true},
                  {100, 145, true}, {199, 149, true},  {5, 75, false},  {194, 75, false},
                  {100, 5, false},  {100, 144, false}, {100, 75, false}};
    for (const auto& p : probes) {
        const auto px = fixtures::pixel(dir + "t.png", p.x, p.y);
        EXPECT_TRUE(near(
            px, p.frame ? std::vector<double>{255, 0, 0} : std::vector<double>{100, 100, 100}, 0))
            << p.x << "," << p.y << " = " << px[0] << " " << px[1] << " " << px[2];
    }
}

TEST(Frame, OddWidthBlendsTheLastHalfPixel) {
    const QString dir = testsupport::freshDir(QStringLiteral("frame-odd"));
    fixtures::save(fixtures::solid(60, 40, {0, 0, 0}), dir + "t.png");
    KLImageHandling images;
    ASSERT_EQ(images.addBorderToImage2(dir + "t.png", QColor(200, 100, 0), 5), "OK");
    EXPECT_TRUE(near(fixtures::pixel(dir + "t.png", 1, 20), {200, 100, 0}, 0));
    EXPECT_TRUE(near(fixtures::pixel(dir + "t.png", 2, 20), {100, 50, 0}, 1));
    EXPECT_TRUE(near(fixtures::pixel(dir + "t.png", 3, 20), {0, 0, 0}, 0));
}

TEST(Frame, JpegKeepsItsMetadataPngDoesNot) {
    const QString dir = testsupport::freshDir(QStringLiteral("frame-meta"));
    fixtures::save(fixtures::solid(120, 90, {50, 60, 70}), dir + "a.jpg");
    fixtures::save(fixtures::solid(120, 90, {50, 60, 70}), dir + "b.png");
    for (const QString name : {"a.jpg", "b.png"}) {
        ASSERT_EQ(testsupport::runProgram(
                      "exiftool", {"-q", "-overwrite_original", "-Artist=Keldra", dir + name}),
                  0);
        ASSERT_EQ(testsupport::exiftool(dir + name, "Artist"), "Keldra");
        KLImageHandling images;
        ASSERT_EQ(images.addBorderToImage2(dir + name, Qt::white, 4), "OK");
    }
    EXPECT_EQ(testsupport::exiftool(dir + "a.jpg", "Artist"), "Keldra");
    EXPECT_EQ(testsupport::exiftool(dir + "b.png", "Artist"), "");
    EXPECT_EQ(fixtures::load(dir + "a.jpg").get_string("vips-loader"), std::string("jpegload"));
    EXPECT_TRUE(near(fixtures::pixel(dir + "a.jpg", 0, 45), {255, 255, 255}, 12));
}

TEST(Frame, KeepsAlpha) {
    const QString dir = testsupport::freshDir(QStringLiteral("frame-alpha"));
    const vips::VImage rgba = fixtures::solid(40, 40, {10, 20, 30}).bandjoin_const({128});
    fixtures::save(
        rgba.copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)),
        dir + "a.png");
    KLImageHandling images;
    ASSERT_EQ(images.addBorderToImage2(dir + "a.png", Qt::blue, 4), "OK");
    EXPECT_TRUE(near(fixtures::pixel(dir + "a.png", 0, 20), {0, 0, 255, 255}, 0));
    EXPECT_TRUE(near(fixtures::pixel(dir + "a.png", 20, 20), {10, 20, 30, 128}, 0));
}

struct RotationCase {
    QString angle;
    int width, height;  // expected, +-1
};

TEST(Rotation, CanvasIsTheTurnedBoundingBox) {
    QImage red(200, 100, QImage::Format_ARGB32);
    red.fill(QColor(255, 0, 0));
    const RotationCase cases[] = {
        {"90", 100, 200}, {"45", 212, 212}, {"0", 200, 100}, {"180", 200, 100}, {"-90", 100, 200}};
    for (const RotationCase& c : cases) {
        KLImageHandling images;
        const QImage turned = images.hRotatePictureBase(red, c.angle);
        SCOPED_TRACE(c.angle.toStdString());
        EXPECT_EQ(images.degrees, c.angle.toFloat());
        EXPECT_NEAR(turned.width(), c.width, 1);
        EXPECT_NEAR(turned.height(), c.height, 1);
        const QColor centre = turned.pixelColor(turned.width() / 2, turned.height() / 2);
        EXPECT_EQ(centre.alpha(), 255);
        EXPECT_EQ(centre.red(), 255);
    }
}

TEST(Rotation, CornersOutsideTheTurnedImageAreTransparent) {
    QImage red(200, 100, QImage::Format_ARGB32);
    red.fill(QColor(255, 0, 0));
    KLImageHandling images;
    const QImage turned = images.hRotatePictureBase(red, "45");
    for (const QPoint p :
         {QPoint(0, 0), QPoint(turned.width() - 1, 0), QPoint(0, turned.height() - 1),
          QPoint(turned.width() - 1, turned.height() - 1)})
        EXPECT_EQ(turned.pixelColor(p).alpha(), 0) << p.x() << "," << p.y();
}

TEST(Rotation, QuarterTurnIsCounterClockwiseAndZeroKeepsPixels) {
    // a marker in the top-right corner of a landscape image
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(QColor(0, 0, 255));
    for (int y = 0; y < 20; ++y)
        for (int x = 180; x < 200; ++x) image.setPixelColor(x, y, QColor(0, 255, 0));
    KLImageHandling images;
    const QImage same = images.hRotatePictureBase(image, "0");
    ASSERT_EQ(same.size(), image.size());
    for (const QPoint p : {QPoint(0, 0), QPoint(190, 10), QPoint(100, 50), QPoint(199, 99)})
        EXPECT_EQ(same.pixelColor(p).rgba(), image.pixelColor(p).rgba()) << p.x() << "," << p.y();
    // turned counter-clockwise the top-right corner becomes the top-left corner
    const QImage turned = images.hRotatePictureBase(image, "90");
    ASSERT_EQ(turned.size(), QSize(100, 200));
    EXPECT_EQ(turned.pixelColor(10, 10).green(), 255);
    EXPECT_EQ(turned.pixelColor(90, 190).blue(), 255);
}

}  // namespace
