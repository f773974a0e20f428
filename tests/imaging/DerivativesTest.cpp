#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "ImagingFixtures.h"
#include "imaging/KLImageHandling.h"
#include "support/TestSupport.h"

using fixtures::Size;

namespace {

// Sources shared by the size tables: made once, JPEG like the photos users bring.
class Sources : public ::testing::Environment {
  public:
    static QString dir() { return QStringLiteral(ORVELLA_TEST_OUTPUT "/imaging-sources/"); }
    static QString path(int w, int h) {
        return dir() + QStringLiteral("src_%1x%2.jpg").arg(w).arg(h);
    }
    void SetUp() override {
        QDir().mkpath(dir());
        for (auto [w, h] : {std::pair{4000, 3000}, {3000, 4000}, {3000, 3000}, {300, 200}}) {
            if (!QFile::exists(path(w, h)))
                fixtures::save(fixtures::solid(w, h, {90, 140, 200}), path(w, h));
        }
    }
};
const auto* const kSources = ::testing::AddGlobalTestEnvironment(new Sources);

struct ModeCase {
    int width, height, size, mode;
    Size expected;
};

void PrintTo(const ModeCase& c, std::ostream* os) {
    *os << c.width << "x" << c.height << " mode " << c.mode << " S=" << c.size;
}

class ResizeModes : public ::testing::TestWithParam<ModeCase> {};

TEST_P(ResizeModes, WritesTheTargetSize) {
    const ModeCase& c = GetParam();
    const QString out = testsupport::freshDir(QStringLiteral("resize-mode"));
    KLImageHandling images;
    ASSERT_EQ(images.resizeImage(Sources::path(c.width, c.height), c.size, c.mode, out), "OK");
    EXPECT_EQ(images.newImgW, c.expected.width);
    EXPECT_EQ(images.newImgH, c.expected.height);
    const QString written = out + QFileInfo(Sources::path(c.width, c.height)).fileName();
    EXPECT_EQ(fixtures::sizeOf(written), c.expected);
    EXPECT_EQ(fixtures::load(written).get_string("vips-loader"), std::string("jpegload"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ResizeModes,
    ::testing::Values(
        // landscape
        ModeCase{4000, 3000, 800, 0, {800, 600}}, ModeCase{4000, 3000, 500, 1, {666, 500}},
        ModeCase{4000, 3000, 800, 2, {800, 600}}, ModeCase{4000, 3000, 10, 3, {400, 300}},
        ModeCase{4000, 3000, 200, 4, {266, 200}}, ModeCase{4000, 3000, 1200, 5, {1200, 900}},
        ModeCase{4000, 3000, 1000, 6, {1000, 750}}, ModeCase{4000, 3000, 5000, 6, {3000, 4000}},
        ModeCase{4000, 3000, 500, 7, {666, 500}}, ModeCase{4000, 3000, 3000, 7, {3000, 4000}},
        // portrait
        ModeCase{3000, 4000, 600, 0, {600, 800}}, ModeCase{3000, 4000, 800, 1, {600, 800}},
        ModeCase{3000, 4000, 800, 2, {600, 800}}, ModeCase{3000, 4000, 10, 3, {300, 400}},
        ModeCase{3000, 4000, 200, 4, {200, 266}}, ModeCase{3000, 4000, 1200, 5, {900, 1200}},
        ModeCase{3000, 4000, 1000, 6, {750, 1000}}, ModeCase{3000, 4000, 500, 7, {375, 500}},
        ModeCase{3000, 4000, 5000, 7, {4000, 3000}},
        // square: "longest" and "shortest" both go by the height
        ModeCase{3000, 3000, 300, 0, {300, 300}}, ModeCase{3000, 3000, 800, 2, {800, 800}},
        ModeCase{3000, 3000, 200, 4, {200, 200}}, ModeCase{3000, 3000, 1000, 6, {1000, 1000}},
        ModeCase{3000, 3000, 3000, 6, {3000, 3000}},
        // small photos are kept, with width and height exchanged (so the file is stretched)
        ModeCase{300, 200, 500, 7, {200, 300}}, ModeCase{300, 200, 500, 6, {200, 300}}));

TEST(Resize, UnknownModeKeepsThePreviousSize) {
    const QString out = testsupport::freshDir(QStringLiteral("resize-unknown-mode"));
    KLImageHandling images;
    ASSERT_EQ(images.resizeImage(Sources::path(4000, 3000), 200, 4, out), "OK");
    ASSERT_EQ(images.resizeImage(Sources::path(3000, 4000), 999, 8, out), "OK");
    EXPECT_EQ(fixtures::sizeOf(out + "src_3000x4000.jpg"), (Size{266, 200}));
    // a fresh object has no previous size to keep
    KLImageHandling fresh;
    EXPECT_EQ(fresh.resizeImage(Sources::path(4000, 3000), 200, -1, out), "Failed");
}

TEST(Resize, KeepsTheSourceTypeAndName) {
    const QString dir = testsupport::freshDir(QStringLiteral("resize-types"));
    for (const QString name : {"a.png", "b.TIF", "c.gif"}) {
        fixtures::save(fixtures::solid(400, 300, {10, 200, 30}), dir + name);
        KLImageHandling images;
        QDir().mkpath(dir + "out");
        ASSERT_EQ(images.resizeImage(dir + name, 100, 0, dir + "out/"), "OK") << name.toStdString();
        EXPECT_EQ(fixtures::sizeOf(dir + "out/" + name), (Size{100, 75}));
    }
    EXPECT_EQ(fixtures::load(dir + "out/a.png").get_string("vips-loader"), std::string("pngload"));
    EXPECT_EQ(fixtures::load(dir + "out/b.TIF").get_string("vips-loader"), std::string("tiffload"));
    EXPECT_EQ(fixtures::load(dir + "out/c.gif").get_string("vips-loader"), std::string("gifload"));
}

TEST(Resize, RealPhotosKeepTheirAspect) {
    const QStringList photos = testsupport::mateBackgroundJpegs();
    if (photos.isEmpty()) GTEST_SKIP() << "mate-backgrounds is not installed";
    const QString out = testsupport::freshDir(QStringLiteral("resize-real"));
    for (const QString& photo : photos.mid(0, 4)) {
        const Size source = fixtures::sizeOf(photo);
        KLImageHandling images;
        ASSERT_EQ(images.resizeImage(photo, 1200, 5, out), "OK");
        const Size big = fixtures::sizeOf(out + QFileInfo(photo).fileName());
        EXPECT_EQ(std::max(big.width, big.height), 1200);
        EXPECT_NEAR(double(big.width) / big.height, double(source.width) / source.height, 0.01);
    }
}

// ---- crop ----

struct CropCase {
    int position;
    int dx, dy;  // the shift setting
    QString kind;
    int x, y;  // expected corner
    Size size;
};

class CropPositions : public ::testing::TestWithParam<CropCase> {};

TEST_P(CropPositions, CutsTheBoxAtItsCorner) {
    const CropCase& c = GetParam();
    const QString dir = testsupport::freshDir(QStringLiteral("crop"));
    fixtures::save(fixtures::coordinates(266, 200), dir + "thumb.png");
    const bool thumb = c.kind == u"myCropThumb";
    const SettingsStore settings = testsupport::settingsWith(
        {{thumb ? "tfCropThumbXOffset" : "tfCropBigXOffset", QString::number(c.dx)},
         {thumb ? "tfCropThumbYOffset" : "tfCropBigYOffset", QString::number(c.dy)}});
    KLImageHandling images(&settings);
    ASSERT_EQ(images.cropImage(dir + "thumb.png", 200, 150, dir, c.kind, c.position), "OK");
    EXPECT_EQ(images.storeResult, "OK");
    EXPECT_EQ(images.myXWOffset, c.x);
    EXPECT_EQ(images.myYHOffset, c.y);
    EXPECT_EQ(fixtures::sizeOf(dir + "thumb.png"), c.size);
    // the cropped file's first pixel is the source pixel at the corner (y from the top)
    const auto [x, y] = fixtures::decode(fixtures::pixel(dir + "thumb.png", 0, 0));
    EXPECT_EQ(x, std::max(c.x, 0));
    EXPECT_EQ(y, std::max(c.y, 0));
}

INSTANTIATE_TEST_SUITE_P(
    Table, CropPositions,
    ::testing::Values(CropCase{0, 0, 0, "myCropThumb", 0, 0, {200, 150}},
                      CropCase{1, 0, 0, "myCropThumb", 33, 0, {200, 150}},
                      CropCase{2, 0, 0, "myCropThumb", 66, 0, {200, 150}},
                      CropCase{3, 0, 0, "myCropThumb", 0, 25, {200, 150}},
                      CropCase{4, 0, 0, "myCropThumb", 33, 25, {200, 150}},
                      CropCase{5, 0, 0, "myCropThumb", 66, 25, {200, 150}},
                      CropCase{6, 0, 0, "myCropThumb", 0, 50, {200, 150}},
                      CropCase{7, 0, 0, "myCropThumb", 33, 50, {200, 150}},
                      CropCase{8, 0, 0, "myCropThumb", 66, 50, {200, 150}},
                      CropCase{4, 5, -7, "myCropThumb", 38, 18, {200, 150}},
                      CropCase{8, -10, -20, "myCropBig", 56, 30, {200, 150}},
                      // a box pushed over the edge keeps only the part on the image
                      CropCase{8, 10, 0, "myCropBig", 76, 50, {190, 150}},
                      CropCase{0, -6, 0, "myCropThumb", -6, 0, {194, 150}}));

TEST(Crop, ThumbShiftDoesNotMoveBigCrops) {
    const QString dir = testsupport::freshDir(QStringLiteral("crop-kinds"));
    fixtures::save(fixtures::coordinates(266, 200), dir + "a.png");
    const SettingsStore settings = testsupport::settingsWith({{"tfCropThumbXOffset", "9"}});
    KLImageHandling images(&settings);
    ASSERT_EQ(images.cropImage(dir + "a.png", 200, 150, dir, "myCropBig", 4), "OK");
    EXPECT_EQ(images.myXWOffset, 33);
}

TEST(Crop, UnknownPositionKeepsThePreviousCorner) {
    const QString dir = testsupport::freshDir(QStringLiteral("crop-unknown"));
    fixtures::save(fixtures::coordinates(266, 200), dir + "a.png");
    fixtures::save(fixtures::coordinates(266, 200), dir + "b.png");
    KLImageHandling images;
    ASSERT_EQ(images.cropImage(dir + "a.png", 200, 150, dir, "myCropThumb", 4), "OK");
    ASSERT_EQ(images.cropImage(dir + "b.png", 100, 100, dir, "myCropThumb", 9), "OK");
    EXPECT_EQ(fixtures::decode(fixtures::pixel(dir + "b.png", 0, 0)), std::pair(33, 25));
}

TEST(Crop, JpegKeepsItsMetadata) {
    const QString dir = testsupport::freshDir(QStringLiteral("crop-meta"));
    fixtures::save(fixtures::solid(400, 300, {100, 100, 100}), dir + "a.jpg");
    ASSERT_EQ(testsupport::runProgram(
                  "exiftool", {"-q", "-overwrite_original", "-Artist=Keldra", dir + "a.jpg"}),
              0);
    KLImageHandling images;
    ASSERT_EQ(images.cropImage(dir + "a.jpg", 100, 100, dir, "myCropThumb", 4), "OK");
    EXPECT_EQ(fixtures::sizeOf(dir + "a.jpg"), (Size{100, 100}));
    EXPECT_EQ(testsupport::exiftool(dir + "a.jpg", "Artist"), "Keldra");
}

// ---- slide and grid images ----

TEST(SlideImage, WideSourceCoversTheBoxAndKeepsItsCentre) {
    const QString dir = testsupport::freshDir(QStringLiteral("slide-wide"));
    // red | green | blue thirds at x < 1000, 1000..2999, >= 3000
    const vips::VImage x = vips::VImage::xyz(4000, 2000)[0];
    const vips::VImage striped = (x < 1000).ifthenelse(
        std::vector<double>{255, 0, 0},
        (x < 3000).ifthenelse(std::vector<double>{0, 255, 0}, std::vector<double>{0, 0, 255}));
    fixtures::save(
        striped.cast(VIPS_FORMAT_UCHAR)
            .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)),
        dir + "wide.png");
    KLImageHandling images;
    ASSERT_EQ(images.hHandleImages("800", "600", dir + "wide.png", dir, "slide1.jpg"), "OK");
    EXPECT_EQ(images.newImgW, 1200);
    EXPECT_EQ(images.newImgH, 600);
    EXPECT_EQ(images.myXWOffset, 200);
    EXPECT_EQ(images.myYHOffset, 0);
    EXPECT_EQ(fixtures::sizeOf(dir + "slide1.jpg"), (Size{800, 600}));
    EXPECT_EQ(fixtures::load(dir + "slide1.jpg").get_string("vips-loader"),
              std::string("jpegload"));
    // scaled by 0.3: red ends at 300, blue starts at 900; the box starts at 200
    EXPECT_GT(fixtures::pixel(dir + "slide1.jpg", 50, 300)[0], 200);
    EXPECT_GT(fixtures::pixel(dir + "slide1.jpg", 400, 300)[1], 200);
    EXPECT_GT(fixtures::pixel(dir + "slide1.jpg", 750, 300)[2], 200);
}

TEST(SlideImage, TallSourceIsCutInTheMiddle) {
    const QString dir = testsupport::freshDir(QStringLiteral("slide-tall"));
    KLImageHandling images;
    ASSERT_EQ(images.hHandleImages("800", "600", Sources::path(3000, 4000), dir, "s.png"), "OK");
    EXPECT_EQ(images.newImgW, 800);
    EXPECT_EQ(images.newImgH, 1066);
    EXPECT_EQ(images.myXWOffset, 0);
    EXPECT_EQ(images.myYHOffset, 233);
    // always JPEG, whatever the name says
    EXPECT_EQ(fixtures::load(dir + "s.png").get_string("vips-loader"), std::string("jpegload"));
    EXPECT_EQ(fixtures::sizeOf(dir + "s.png"), (Size{800, 600}));
}

TEST(GridImage, WholePercentScale) {
    const QString dir = testsupport::freshDir(QStringLiteral("grid"));
    fixtures::save(fixtures::solid(3999, 3000, {1, 2, 3}), dir + "odd.png");
    const struct {
        QString source;
        Size expected;
        double factor;
    } cases[] = {{Sources::path(4000, 3000), {960, 720}, 24},
                 {dir + "odd.png", {960, 720}, 24},  // 960 / 3999 is 24.006 %: the same 24
                 {Sources::path(3000, 4000), {960, 1280}, 32}};
    for (const auto& c : cases) {
        KLImageHandling images;
        ASSERT_EQ(images.hHandleRgImages("960", c.source, dir, "g.jpg"), "OK");
        EXPECT_EQ(images.myScaleFactor, c.factor);
        EXPECT_EQ(fixtures::sizeOf(dir + "g.jpg"), c.expected) << c.source.toStdString();
    }
}

// ---- refused and bad sources ----

TEST(Refused, PhotoshopAndPdfAreNotRead) {
    const QString dir = testsupport::freshDir(QStringLiteral("refused"));
    for (const QString name : {"a.psd", "b.PDF"}) {
        QFile f(dir + name);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("not read at all");
        f.close();
        QDir().mkpath(dir + "out");
        KLImageHandling images;
        EXPECT_EQ(images.resizeImage(dir + name, 200, 4, dir + "out/"), "Not Supported");
        EXPECT_EQ(images.cropImage(dir + name, 10, 10, dir + "out/", "myCropThumb", 4),
                  "Not Supported");
        EXPECT_EQ(images.hHandleImages("80", "60", dir + name, dir + "out/", "s.jpg"),
                  "Not Supported");
        EXPECT_EQ(images.hHandleRgImages("80", dir + name, dir + "out/", "g.jpg"), "Not Supported");
        EXPECT_TRUE(QDir(dir + "out").isEmpty());
    }
}

}  // namespace
