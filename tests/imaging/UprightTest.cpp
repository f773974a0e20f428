#include "ImagingFixtures.h"

using fixtures::Pixel;
using testsupport::freshDir;

// Stored 80 x 40 with red, green, blue and white corners. Tagged 6 the photo is seen turned a
// quarter clockwise, tagged 8 anticlockwise: every output is upright, 40 x 80, and keeps no
// orientation other than 1.
TEST(Upright, OrientationIsAppliedToThePixels) {
    const QString dir = freshDir("upright"), out = freshDir("upright/out");
    const vips::VImage xy = vips::VImage::xyz(80, 40), right = xy[0] >= 40;
    const vips::VImage quadrants =
        fixtures::srgb((xy[1] >= 20)
                           .ifthenelse(right.ifthenelse(Pixel{255, 255, 255}, Pixel{0, 0, 255}),
                                       right.ifthenelse(Pixel{0, 255, 0}, Pixel{255, 0, 0})));
    for (const auto& [tag, seen] : {std::pair{"6", "brwg"}, {"8", "gwrb"}, {"1", "rgbw"}}) {
        SCOPED_TRACE(tag);
        const QString name = QString("q") + tag + ".jpg";
        fixtures::save(quadrants, dir + name);
        fixtures::tag(dir + name, {QString("-Orientation#=") + tag});
        int w = 0, h = 0;
        ASSERT_TRUE(PhotoDecoder::uprightSize(dir + name, &w, &h));
        EXPECT_EQ(fixtures::Size(w, h),
                  *tag == '1' ? fixtures::Size(80, 40) : fixtures::Size(40, 80));
        ASSERT_EQ(KLImageHandling().resizeImage(dir + name, w, 0, out), "OK");
        const vips::VImage image = fixtures::load(out + name);
        EXPECT_EQ(fixtures::Size(image.width(), image.height()), fixtures::Size(w, h));
        std::string corners;  // top left to bottom right: "r", "g", "b" or "w"
        for (const auto& [atRight, atBottom] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}}) {
            const Pixel p = image.getpoint(atRight ? w - 3 : 2, atBottom ? h - 3 : 2);
            corners += p[2] > 200 ? (p[0] > 200 ? 'w' : 'b') : p[0] > 200 ? 'r' : 'g';
        }
        EXPECT_EQ(corners, seen);
        EXPECT_LE(testsupport::exiftool(out + name, "Orientation#").toInt(), 1);
    }
}

// CMYK, 16-bit and palette photos give 8-bit sRGB output of the right colour.
TEST(Upright, CmykSixteenBitAndPaletteGiveSrgb) {
    const QString dir = freshDir("colours"), out = freshDir("colours/out");
    const vips::VImage red = fixtures::solid(40, 30, {220, 20, 20});
    red.colourspace(VIPS_INTERPRETATION_RGB16).write_to_file((dir + "deep.png").toUtf8());
    red.write_to_file((dir + "palette.png").toUtf8(), vips::VImage::option()->set("palette", true));
    red.icc_transform("cmyk").write_to_file((dir + "cmyk.jpg").toUtf8());
    for (const QString name : {"deep.png", "palette.png", "cmyk.jpg"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(KLImageHandling().hHandleImages("20", "10", dir + name, out, name + ".jpeg"),
                  "OK");
        const vips::VImage image = fixtures::load(out + name + ".jpeg");
        EXPECT_EQ(std::pair(image.format(), image.bands()), std::pair(VIPS_FORMAT_UCHAR, 3));
        const Pixel p = image.getpoint(10, 5);
        EXPECT_TRUE(p[0] > 170 && p[1] < 80 && p[2] < 80) << p[0] << "," << p[1] << "," << p[2];
    }
}
