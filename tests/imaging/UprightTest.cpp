#include "ImagingFixtures.h"

using fixtures::Pixel;

namespace {

// Stored 80 x 40: red top left, green top right, blue bottom left, white bottom right.
vips::VImage quadrants() {
    const vips::VImage xy = vips::VImage::xyz(80, 40);
    const vips::VImage right = xy[0] >= 40;
    const vips::VImage bottom = xy[1] >= 20;
    return fixtures::srgb(
        bottom.ifthenelse(right.ifthenelse(Pixel{255, 255, 255}, Pixel{0, 0, 255}),
                          right.ifthenelse(Pixel{0, 255, 0}, Pixel{255, 0, 0})));
}

// The strongest of red, green and blue at a point: "r", "g", "b" or "w".
std::string colourAt(const QString& path, int x, int y) {
    const Pixel p = fixtures::pixel(path, x, y);
    if (p[0] > 200 && p[1] > 200 && p[2] > 200) return "w";
    if (p[0] > 200) return "r";
    return p[1] > 200 ? "g" : "b";
}

}  // namespace

// Tagged 6 the photo is seen turned a quarter clockwise, tagged 8 anticlockwise: every output is
// upright, 40 x 80, and keeps no orientation other than 1.
TEST(Upright, OrientationIsAppliedToThePixels) {
    const QString dir = testsupport::freshDir(QStringLiteral("upright"));
    QDir().mkpath(dir + "out");
    for (const auto& [tag, corners] :
         {std::pair{"6", "b r w g"}, std::pair{"8", "g w r b"}, std::pair{"1", "r g b w"}}) {
        SCOPED_TRACE(tag);
        const QString photo = dir + "q" + tag + ".jpg";
        fixtures::save(quadrants(), photo);
        testsupport::runProgram(
            "exiftool", {"-q", "-overwrite_original", QString("-Orientation#=") + tag, photo});
        int w = 0, h = 0;
        ASSERT_TRUE(PhotoDecoder::uprightSize(photo, &w, &h));
        const bool turned = QString(tag) != "1";
        EXPECT_EQ(std::pair(w, h), turned ? std::pair(40, 80) : std::pair(80, 40));
        ASSERT_EQ(KLImageHandling().resizeImage(photo, w, 0, dir + "out/"), "OK");
        const QString out = dir + "out/q" + tag + ".jpg";
        const int ow = fixtures::sizeOf(out).first - 1, oh = fixtures::sizeOf(out).second - 1;
        EXPECT_EQ(colourAt(out, 2, 2) + " " + colourAt(out, ow - 2, 2) + " " +
                      colourAt(out, 2, oh - 2) + " " + colourAt(out, ow - 2, oh - 2),
                  corners);
        const QString orientation = testsupport::exiftool(out, "Orientation#");
        EXPECT_TRUE(orientation.isEmpty() || orientation == "1") << orientation.toStdString();
    }
}

// Transparent pixels go onto white where the format has no alpha, and stay transparent in PNG.
TEST(Upright, TransparentPixelsOnWhiteInJpeg) {
    const QString dir = testsupport::freshDir(QStringLiteral("transparent"));
    const vips::VImage xy = vips::VImage::xyz(60, 40);
    const vips::VImage alpha = (xy[0] >= 30).ifthenelse(255, 0);
    fixtures::save(fixtures::srgb(fixtures::solid(60, 40, {200, 30, 30}).bandjoin(alpha)),
                   dir + "t.png");
    for (const char* format : {"jpeg", "bmp", "png"}) {
        fixtures::save(fixtures::srgb(fixtures::solid(60, 40, {200, 30, 30}).bandjoin(alpha)),
                       dir + "w.png");
        QDir().mkpath(dir + format);
        KLImageHandling::hSaveAsFileType(dir + "w.png", format, "8", dir + format + "/");
        const QString out = dir + format + "/w." + format;
        const Pixel left = fixtures::pixel(out, 5, 20);
        if (QString(format) == "png")
            EXPECT_EQ(left.size() == 4 ? left[3] : -1, 0);
        else
            EXPECT_TRUE(left[0] > 245 && left[1] > 245 && left[2] > 245) << format;
        EXPECT_GT(fixtures::pixel(out, 50, 20)[0], 180) << format;
    }
}

// CMYK, 16-bit and palette photos give 8-bit sRGB output of the right colour.
TEST(Upright, CmykSixteenBitAndPaletteGiveSrgb) {
    const QString dir = testsupport::freshDir(QStringLiteral("colourspaces"));
    QDir().mkpath(dir + "out");
    const vips::VImage red = fixtures::solid(40, 30, {220, 20, 20});
    red.colourspace(VIPS_INTERPRETATION_RGB16).write_to_file((dir + "deep.png").toUtf8());
    red.write_to_file((dir + "palette.png").toUtf8(), vips::VImage::option()->set("palette", true));
    red.icc_transform("cmyk").write_to_file((dir + "cmyk.jpg").toUtf8());
    for (const char* name : {"deep.png", "palette.png", "cmyk.jpg"}) {
        ASSERT_EQ(KLImageHandling().hHandleImages("20", "10", dir + name, dir + "out/",
                                                  QString(name) + ".jpeg"),
                  "OK")
            << name;
        const vips::VImage out = fixtures::load(dir + "out/" + name + ".jpeg");
        EXPECT_EQ(out.format(), VIPS_FORMAT_UCHAR) << name;
        EXPECT_EQ(out.bands(), 3) << name;
        const Pixel p = out.getpoint(10, 5);
        EXPECT_TRUE(p[0] > 170 && p[1] < 80 && p[2] < 80) << name << " " << p[0] << "," << p[1];
    }
}
