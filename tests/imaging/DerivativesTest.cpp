#include "ImagingFixtures.h"

using fixtures::Pixel;
using fixtures::Size;

// Sources are named by their size; a mode-8 case keeps the size of the case before it, and the
// small photo is kept with width and height exchanged in modes 6 and 7 (on purpose: stretched).
TEST(Resize, ModesWriteTheTargetSizeInTheSourceType) {
    const QString dir = testsupport::freshDir(QStringLiteral("resize"));
    QDir().mkpath(dir + "out");
    const struct {
        QString source;
        int size, mode;
        Size expected;
    } cases[] = {{"4000x3000.jpg", 800, 0, {800, 600}},    {"4000x3000.jpg", 500, 1, {666, 500}},
                 {"4000x3000.jpg", 800, 2, {800, 600}},    {"4000x3000.jpg", 10, 3, {400, 300}},
                 {"4000x3000.jpg", 1200, 5, {1200, 900}},  {"4000x3000.jpg", 1000, 6, {1000, 750}},
                 {"4000x3000.jpg", 500, 7, {666, 500}},    {"4000x3000.jpg", 3000, 7, {3000, 4000}},
                 {"3000x4000.jpg", 800, 1, {600, 800}},    {"3000x4000.jpg", 800, 2, {600, 800}},
                 {"3000x4000.jpg", 200, 4, {200, 266}},    {"3000x4000.jpg", 1000, 6, {750, 1000}},
                 {"3000x4000.jpg", 5000, 7, {4000, 3000}}, {"4000x3000.jpg", 200, 4, {266, 200}},
                 {"3000x4000.jpg", 999, 8, {266, 200}},    {"3000x3000.jpg", 300, 0, {300, 300}},
                 {"3000x3000.jpg", 800, 2, {800, 800}},    {"3000x3000.jpg", 200, 4, {200, 200}},
                 {"300x200.jpg", 500, 7, {200, 300}},      {"300x200.jpg", 500, 6, {200, 300}},
                 {"400x300.png", 100, 0, {100, 75}},       {"400x300.TIF", 100, 0, {100, 75}},
                 {"400x300.gif", 100, 0, {100, 75}}};
    KLImageHandling images;  // one object for all, for the mode-8 case
    for (const auto& c : cases) {
        SCOPED_TRACE(c.source.toStdString() + " mode " + std::to_string(c.mode));
        const QStringList side = QFileInfo(c.source).baseName().split('x');
        if (!QFile::exists(dir + c.source))
            fixtures::save(fixtures::solid(side[0].toInt(), side[1].toInt(), {90, 140, 200}),
                           dir + c.source);
        ASSERT_EQ(images.resizeImage(dir + c.source, c.size, c.mode, dir + "out/"), "OK");
        EXPECT_EQ(fixtures::sizeOf(dir + "out/" + c.source), c.expected);
        EXPECT_EQ(fixtures::loader(dir + "out/" + c.source), fixtures::loader(dir + c.source));
    }
    // a fresh object has no previous size to keep
    EXPECT_EQ(KLImageHandling().resizeImage(dir + "300x200.jpg", 200, -1, dir + "out/"), "Failed");
}

// A 200 x 150 box in a 266 x 200 image; the first pixel of the cut tells where it was. Thumbnail
// boxes are not shifted, big ones by (10, -20), which pushes some over the edge: they keep only
// the part on the image. One object for all: position 9 keeps the corner of the crop before.
TEST(Crop, PositionsCutTheBoxAtTheirCorner) {
    const QString dir = testsupport::freshDir(QStringLiteral("crop"));
    KLImageHandling images(CropShifts{0, 0, 10, -20});
    const struct {
        int position;
        bool big;
        int x, y;
        Size size;
    } cases[] = {{0, false, 0, 0, {200, 150}},   {1, false, 33, 0, {200, 150}},
                 {2, false, 66, 0, {200, 150}},  {3, false, 0, 25, {200, 150}},
                 {4, false, 33, 25, {200, 150}}, {5, false, 66, 25, {200, 150}},
                 {6, false, 0, 50, {200, 150}},  {7, false, 33, 50, {200, 150}},
                 {8, false, 66, 50, {200, 150}}, {9, false, 66, 50, {200, 150}},
                 {4, true, 43, 5, {200, 150}},   {8, true, 76, 30, {190, 150}},
                 {0, true, 10, 0, {200, 130}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "position " << c.position << (c.big ? " big" : ""));
        fixtures::save(fixtures::coordinates(266, 200), dir + "a.png");
        ASSERT_EQ(images.cropImage(dir + "a.png", 200, 150, dir,
                                   c.big ? "myCropBig" : "myCropThumb", c.position),
                  "OK");
        EXPECT_EQ(fixtures::sizeOf(dir + "a.png"), c.size);
        EXPECT_EQ(fixtures::decode(fixtures::pixel(dir + "a.png", 0, 0)), std::pair(c.x, c.y));
    }
}

// Red, green and blue bands across the long side: a quarter, a half and a quarter of it.
static vips::VImage bands(int width, int height) {
    const vips::VImage xy = vips::VImage::xyz(width, height);
    const vips::VImage t = width > height ? xy[0] * 4.0 / width : xy[1] * 4.0 / height;
    return fixtures::srgb((t < 1).ifthenelse(
        Pixel{255, 0, 0}, (t < 3).ifthenelse(Pixel{0, 255, 0}, Pixel{0, 0, 255})));
}

// 4000 x 2000 is scaled to 1200 x 600 and cut at x = 200: red ends at 100, blue starts at 700.
// 3000 x 4000 is scaled to 800 x 1066 and cut at y = 233; a .png name still gets a JPEG.
TEST(SlideImage, CoversTheBoxAndKeepsItsCentreAsJpeg) {
    const QString dir = testsupport::freshDir(QStringLiteral("slide"));
    for (const auto& [width, height, name, probes] :
         {std::tuple{4000, 2000, "wide.jpg", std::array{50, 400, 750}},
          std::tuple{3000, 4000, "tall.png", std::array{10, 300, 590}}}) {
        fixtures::save(bands(width, height), dir + "source.jpg");
        ASSERT_EQ(KLImageHandling().hHandleImages("800", "600", dir + "source.jpg", dir, name),
                  "OK");
        EXPECT_EQ(fixtures::sizeOf(dir + name), Size(800, 600));
        EXPECT_EQ(fixtures::loader(dir + name), "jpegload");
        for (int band = 0; band < 3; ++band) {  // red, green, blue along the long side
            const QPoint p = width > height ? QPoint(probes[band], 300) : QPoint(400, probes[band]);
            EXPECT_GT(fixtures::pixel(dir + name, p.x(), p.y())[band], 200) << name << band;
        }
    }
}

TEST(GridImage, ScalesByAWholePercent) {
    const QString dir = testsupport::freshDir(QStringLiteral("grid"));
    // 960 / 2500 is 38.4 %: the height is 2500 x 38 % = 950, not 960 (kept on purpose)
    for (const auto& [width, height, expected] :
         {std::tuple{4000, 3000, Size(960, 720)}, std::tuple{2500, 2500, Size(960, 950)}}) {
        fixtures::save(fixtures::solid(width, height, {1, 2, 3}), dir + "source.jpg");
        ASSERT_EQ(KLImageHandling().hHandleRgImages("960", dir + "source.jpg", dir, "g.png"), "OK");
        EXPECT_EQ(fixtures::sizeOf(dir + "g.png"), expected);
        EXPECT_EQ(fixtures::loader(dir + "g.png"), "jpegload");
    }
}
