#include "ImagingFixtures.h"
#include "imaging/KLWatermark.h"

using fixtures::Pixel;

namespace {

constexpr int W = 400, H = 300;
constexpr double kGrey = 128;

// A white full block, which fills its ink box: inside it the stamp covers every pixel completely.
WatermarkSettings blockText(int size = 40) {
    WatermarkSettings s;
    s.text = QString("\u2588");
    s.font = QString("DejaVu Sans");
    s.fontSize = size;
    return s;
}

QString greyPhoto(const QString& dir, const QString& name = QString("grey.png")) {
    fixtures::save(fixtures::solid(W, H, {kGrey, kGrey, kGrey}), dir + name);
    return dir + name;
}

// Stamps the text (or, with `image`, the image) of `s` on the photo into a folder of its own;
// returns the copy.
QString stamp(const WatermarkSettings& s, const QString& photo, bool image = false) {
    static int calls = 0;
    const QString out = testsupport::freshDir(QString("watermark/out%1").arg(++calls));
    EXPECT_EQ(image ? KLWatermark(s).setWatermarkImage(photo, out)
                    : KLWatermark(s).setWatermarkText(photo, out),
              "OK");
    return out + QFileInfo(photo).fileName();
}

struct Box {
    int left, top, right, bottom;  // inclusive; right -1 when nothing is on
    int width() const { return right - left + 1; }
    int height() const { return bottom - top + 1; }
};

// The box of the pixels that are on in the one-band mask.
Box boxOf(const vips::VImage& on) {
    const vips::VImage xy = vips::VImage::xyz(W, H);
    return {int(on.ifthenelse(xy[0], W).min()), int(on.ifthenelse(xy[1], H).min()),
            int(on.ifthenelse(xy[0] + 1, 0).max()) - 1, int(on.ifthenelse(xy[1] + 1, 0).max()) - 1};
}

// The box of the pixels of the photo that differ from the grey by more than `threshold`.
Box changedBox(const QString& path, double threshold = 8) {
    return boxOf(((fixtures::load(path) - kGrey).abs() > threshold).bandor());
}

}  // namespace

// The text lands where the grid says, turned about its centre, with its offsets.
TEST(Watermark, TextLandsOnTheGridAndTheOffsetsTurnWithTheAngle) {
    const QString photo = greyPhoto(testsupport::freshDir("watermark/place"));
    WatermarkSettings s = blockText();
    const auto boxAt = [&](int position, int dx, int dy, int angle) {
        std::tie(s.position, s.xOffset, s.yOffset, s.angle) = std::tuple(position, dx, dy, angle);
        return changedBox(stamp(s, photo));
    };
    const Box corner = boxAt(0, 0, 0, 0);
    ASSERT_EQ(std::pair(corner.left, corner.top), std::pair(0, 0));
    const int tw = corner.width(), th = corner.height();
    ASSERT_TRUE(tw > 10 && th > 20);
    const std::array<int, 5> cases[] = {// position, dx, dy: left, top
                                        {8, 0, 0, W - tw, H - th},
                                        {2, 0, 0, W - tw, 0},
                                        {4, 10, 0, int((W - tw) * 0.5 + 10), H - (H - th) / 2 - th},
                                        {7, 5, 5, int((W - tw) * 0.5 + 5), H - th - 5},
                                        {6, 15, 20, 15, H - th - 20}};
    for (const auto& [position, dx, dy, left, top] : cases) {
        const Box box = boxAt(position, dx, dy, 0);
        EXPECT_EQ(std::tuple(box.left, box.top, box.width(), box.height()),
                  std::tuple(left, top, tw, th));
    }
    // Turned by 30 degrees: a larger box, which dx = 10 moves 10 down and dy = 10 moves 10 right
    // (up and left when turned by -30). Rows: dx, dy, angle: right, down.
    const Box turned = boxAt(4, 0, 0, 30);
    EXPECT_GT(turned.height(), th + 5);
    const std::array<int, 5> moves[] = {
        {10, 0, 30, 0, 10}, {10, 0, -30, 0, -10}, {0, 10, 30, 10, 0}, {0, 10, -30, -10, 0}};
    for (const auto& [dx, dy, angle, right, down] : moves) {
        const Box moved = boxAt(4, dx, dy, angle);
        EXPECT_NEAR(moved.left - turned.left, right, 1) << dx << " " << dy << " " << angle;
        EXPECT_NEAR(moved.top - turned.top, down, 1) << dx << " " << dy << " " << angle;
    }
    // Outside the grid: the copy is written, unchanged.
    for (const int outside : {9, -1}) EXPECT_EQ(boxAt(outside, 0, 0, 0).right, -1) << outside;
}

// The opacity is the alpha of the stamped colour and of its shadow: black at the default offsets
// (2 right, 2 up on the canvas) and blur. Kept on purpose: 0 and over 100 are opaque, below 0 is
// 0.1.
TEST(Watermark, OpacityOfTheTextAndItsShadow) {
    for (const auto& [percent, opacity] : std::vector<std::pair<int, double>>{
             {0, 1.0}, {40, 0.4}, {100, 1.0}, {101, 1.0}, {-5, 0.1}, {1, 0.01}})
        EXPECT_DOUBLE_EQ(KLWatermark::opacity(percent), opacity) << percent;
    const QString photo = greyPhoto(testsupport::freshDir("watermark/opacity"));
    WatermarkSettings s = blockText(60);
    s.fontTransparency = 40;
    const QString plain = stamp(s, photo);
    EXPECT_NEAR((fixtures::load(plain).max() - kGrey) / (255 - kGrey), 0.4, 0.01);
    s.shadow = true;
    const vips::VImage image = fixtures::load(stamp(s, photo));
    const Box text = changedBox(plain), shadow = boxOf(image[0] < kGrey - 8);
    // To the right and up.
    EXPECT_TRUE(shadow.right > text.right && shadow.top < text.top && shadow.bottom <= text.bottom);
    // Darkest where the shadow is not under the text: grey at 1 - 0.4 of the full shadow.
    EXPECT_NEAR(image[0].min(), kGrey * 0.6, 3);
}

TEST(Watermark, SizeZeroIsTwentyFourAndNoChosenFontIsTheSecondOfTheList) {
    const QString photo = greyPhoto(testsupport::freshDir("watermark/fonts"));
    WatermarkSettings s = blockText();
    s.text = QString("Orvella Qg");
    s.fontList = {"DejaVu Serif", "DejaVu Sans Mono"};
    const auto stamped = [&](int size, const QString& font) {
        std::tie(s.fontSize, s.font) = std::tuple(size, font);
        return testsupport::readFile(stamp(s, photo));
    };
    EXPECT_EQ(stamped(0, "DejaVu Sans"), stamped(24, "DejaVu Sans"));
    EXPECT_NE(stamped(25, "DejaVu Sans"), stamped(24, "DejaVu Sans"));
    EXPECT_EQ(stamped(24, ""), stamped(24, "DejaVu Sans Mono"));
    EXPECT_NE(stamped(24, ""), stamped(24, "DejaVu Serif"));
}

// A red mark of 20 x 10 drawn 40 points wide (the size comes from the font size field).
TEST(Watermark, ImageStampPlacesTheMarkWhereAsked) {
    const QString dir = testsupport::freshDir("watermark/image"), photo = greyPhoto(dir);
    fixtures::save(fixtures::solid(20, 10, {255, 0, 0}), dir + "mark.png");
    WatermarkSettings s;
    s.imagePath = dir + "mark.png";
    s.fontSize = 40;
    // Position, dx, dy, angle: the box; a quarter turn is 10 x 20, drawn 40 wide, so 80 high, and
    // may shift the mark by one of its pixels (4 here).
    const std::array<int, 8> cases[] = {{8, -5, 5, 0, W - 45, H - 25, W - 45 + 39, H - 25 + 19},
                                        {4, 0, 0, 0, 180, 140, 219, 159},
                                        {0, 0, 0, 90, 0, 0, 39, 79}};
    for (const auto& [position, dx, dy, angle, left, top, right, bottom] : cases) {
        std::tie(s.imagePosition, s.imageXOffset, s.imageYOffset, s.imageAngle) =
            std::tuple(position, dx, dy, angle);
        const QString out = stamp(s, photo, true);
        const Box b = changedBox(out, 60);
        EXPECT_LE(std::max({std::abs(b.left - left), std::abs(b.top - top),
                            std::abs(b.right - right), std::abs(b.bottom - bottom)}),
                  angle ? 4 : 0)
            << position;
        EXPECT_EQ(fixtures::pixel(out, (b.left + b.right) / 2, (b.top + b.bottom) / 2),
                  (Pixel{255, 0, 0}));
    }
}

TEST(Watermark, StatusesFormatsMetadataAndOriginals) {
    const QString dir = testsupport::freshDir("watermark/formats"),
                  out = testsupport::freshDir("watermark/formats-out");
    for (const QString name : {"a.jpg", "b.tif", "c.png", "d.gif", "e.JPEG", "f.webp", "turned.jpg",
                               "p3.jpg[profile=p3]", "layers.png"})
        greyPhoto(dir, name);
    QFile::rename(dir + "layers.png", dir + "layers.psd");
    testsupport::writeFile(dir + "notes.jpg", "not an image at all");
    for (const QString name : {"a.jpg", "b.tif", "p3.jpg"})
        fixtures::tag(dir + name, {"-UserComment=Kept"});
    fixtures::tag(dir + "turned.jpg", {"-Orientation#=6"});
    const QMap<QString, QByteArray> before = testsupport::contentsUnder(dir);
    const std::tuple<QString, QString, std::string> cases[] = {
        // name, status, output's reader
        {"a.jpg", "OK", "jpegload"},         {"b.tif", "OK", "tiffload"},
        {"c.png", "OK", "pngload"},          {"d.gif", "OK", "gifload"},
        {"e.JPEG", "OK", "jpegload"},        {"p3.jpg", "OK", "jpegload"},
        {"turned.jpg", "OK", "jpegload"},    {"f.webp", "OK", "jpegload"},  // as f.jpeg
        {"layers.psd", "Not Supported", ""}, {"notes.jpg", "NOK", ""}};
    for (const auto& [name, status, loader] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(KLWatermark(blockText()).setWatermarkText(dir + name, out), status);
        WatermarkSettings image;
        image.imagePath = dir + "c.png";
        KLWatermark stamp(image);
        EXPECT_EQ(stamp.setWatermarkImage(dir + name, out), status);
        const QString made = stamp.lastOutputPath;
        EXPECT_EQ(QFile::exists(made) ? fixtures::loader(made) : "", loader);
    }
    // JPEG and TIFF keep their metadata, the profile stays, the photo is stamped upright.
    for (const QString name : {"a.jpg", "b.tif", "p3.jpg"})
        EXPECT_EQ(testsupport::exiftool(out + name, "UserComment"), "Kept") << name;
    EXPECT_EQ(testsupport::exiftool(out + "p3.jpg", "ProfileDescription"),
              testsupport::exiftool(dir + "p3.jpg", "ProfileDescription"));
    EXPECT_FALSE(testsupport::exiftool(dir + "p3.jpg", "ProfileDescription").isEmpty());
    EXPECT_EQ(fixtures::sizeOf(out + "turned.jpg"), fixtures::Size(H, W));
    EXPECT_LE(testsupport::exiftool(out + "turned.jpg", "Orientation#").toInt(), 1);
    // The photos' own folder is refused: nothing is written over an original.
    EXPECT_EQ(KLWatermark(blockText()).setWatermarkText(dir + "a.jpg", dir), "Failed");
    EXPECT_EQ(testsupport::contentsUnder(dir), before);
}
