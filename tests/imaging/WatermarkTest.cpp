#include <QCryptographicHash>
#include <cmath>

#include "ImagingFixtures.h"
#include "imaging/KLWatermark.h"

using fixtures::Pixel;

namespace {

constexpr int W = 400;
constexpr int H = 300;
constexpr double kGrey = 128;

// The full block fills its ink box: inside it the stamp covers every pixel completely.
const QString kBlock = QStringLiteral("\u2588");

WatermarkSettings blockText(int size = 40) {
    WatermarkSettings s;
    s.text = kBlock;
    s.font = QStringLiteral("DejaVu Sans");
    s.fontSize = size;
    s.fontColor = QColor(255, 255, 255);
    return s;
}

QString greyPhoto(const QString& dir, const QString& name = QStringLiteral("grey.png")) {
    fixtures::save(fixtures::solid(W, H, {kGrey, kGrey, kGrey}), dir + name);
    return dir + name;
}

// Every pixel as its largest distance from the grey, 1 band.
vips::VImage changes(const QString& path) {
    const vips::VImage d = (fixtures::load(path) - kGrey).abs();
    const vips::VImage m = (d[0] > d[1]).ifthenelse(d[0], d[1]);
    return (m > d[2]).ifthenelse(m, d[2]);
}

struct Box {
    int left = -1, top = -1, right = -1, bottom = -1;  // inclusive; -1 when nothing changed
    int width() const { return right - left + 1; }
    int height() const { return bottom - top + 1; }
};

// The box of the pixels that differ from the grey by more than `threshold`.
Box changedBox(const vips::VImage& change, double threshold = 8) {
    const vips::VImage mask = (change > threshold).cast(VIPS_FORMAT_UCHAR);
    size_t size = 0;
    auto* data = static_cast<uchar*>(mask.write_to_memory(&size));
    Box box;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x) {
            if (!data[size_t(y) * mask.width() + x]) continue;
            if (box.left < 0 || x < box.left) box.left = x;
            if (x > box.right) box.right = x;
            if (box.top < 0) box.top = y;
            box.bottom = y;
        }
    g_free(data);
    return box;
}

// The centre of the change, weighted by how much each pixel changed.
std::pair<double, double> centroid(const vips::VImage& change) {
    const vips::VImage xy = vips::VImage::xyz(change.width(), change.height());
    const double weight = change.avg();
    return {(change * xy[0]).avg() / weight, (change * xy[1]).avg() / weight};
}

QString stampText(const WatermarkSettings& settings, const QString& photo, const QString& out) {
    return KLWatermark(settings).setWatermarkText(photo, out);
}

QByteArray checksum(const QString& path) {
    return QCryptographicHash::hash(fixtures::bytesOf(path), QCryptographicHash::Sha256);
}

}  // namespace

TEST(Watermark, OpacityRuleAndAnchorFormulas) {
    for (const auto& [percent, opacity] : std::vector<std::pair<int, double>>{
             {0, 1.0}, {40, 0.4}, {100, 1.0}, {101, 1.0}, {150, 1.0}, {-5, 0.1}, {1, 0.01}})
        EXPECT_DOUBLE_EQ(KLWatermark::opacity(percent), opacity) << percent;
    int x = 0, y = 0;
    EXPECT_FALSE(KLWatermark::anchor(9, 400, 300, 40, 20, 0, 0, 0, &x, &y));
    EXPECT_FALSE(KLWatermark::anchor(-1, 400, 300, 40, 20, 0, 0, 0, &x, &y));
    struct Case {
        int position, dx, dy, angle, x, y;
    };
    // The canvas's y axis points up: row 0 is at the top (y = H - th).
    for (const Case& c : std::vector<Case>{{0, 0, 0, 0, 0, 280},
                                           {2, 0, 0, 0, 359, 280},
                                           {4, 10, 0, 0, 189, 140},
                                           {4, 10, 0, 30, 179, 130},
                                           {4, 10, 0, -30, 179, 150},
                                           {4, 3, 7, 45, 186, 137},
                                           {6, 0, 0, 0, 0, 0},
                                           {7, 5, 5, 0, 184, 5},
                                           {8, -7, 0, 0, 352, 0},
                                           {3, -1, 0, 0, -1, 140}}) {
        ASSERT_TRUE(KLWatermark::anchor(c.position, 400, 300, 41, 20, c.dx, c.dy, c.angle, &x, &y));
        EXPECT_EQ(std::pair(x, y), std::pair(c.x, c.y))
            << c.position << " " << c.dx << " " << c.dy << " " << c.angle;
    }
}

// The text lands where the grid says, with the offsets turning with the sign of the angle.
TEST(Watermark, TextLandsOnTheGridAndTheOffsetsTurnWithTheAngle) {
    const QString dir = testsupport::freshDir("watermark/place");
    const QString photo = greyPhoto(dir);
    int run = 0;
    auto stamped = [&](WatermarkSettings s) {
        const QString out = dir + QString::number(++run) + u'/';
        QDir().mkpath(out);
        EXPECT_EQ(stampText(s, photo, out), "OK");
        return changes(out + "grey.png");
    };
    WatermarkSettings s = blockText();
    s.position = 0;
    const Box corner = changedBox(stamped(s));
    ASSERT_EQ(std::pair(corner.left, corner.top), std::pair(0, 0));
    const int tw = corner.width(), th = corner.height();
    ASSERT_GT(tw, 10);
    ASSERT_GT(th, 20);

    struct Case {
        int position, dx, dy, left, top;
    };
    const int centreY = H - int((H - th) * 0.5) - th;
    for (const Case& c : std::vector<Case>{
             {8, 0, 0, W - tw, H - th},
             {2, 0, 0, W - tw, 0},
             {4, 10, 0, int((W - tw) * 0.5 + 10), centreY},
             {6, 15, 20, 15, H - th - 20},
         }) {
        s.position = c.position;
        s.xOffset = c.dx;
        s.yOffset = c.dy;
        const Box box = changedBox(stamped(s));
        EXPECT_EQ(std::tuple(box.left, box.top, box.width(), box.height()),
                  std::tuple(c.left, c.top, tw, th))
            << c.position;
    }

    // Turned by 30 degrees about its centre: a larger box, and dx = 10 moves it 10 down.
    s.position = 4;
    s.angle = 30;
    s.xOffset = 0;
    s.yOffset = 0;
    const vips::VImage turned = stamped(s);
    EXPECT_GT(changedBox(turned).height(), th + 5);
    s.xOffset = 10;
    const auto [x0, y0] = centroid(turned);
    const auto [x1, y1] = centroid(stamped(s));
    EXPECT_NEAR(x1 - x0, 0, 1);
    EXPECT_NEAR(y1 - y0, 10, 1);
    s.angle = -30;  // and up instead for a negative angle
    const auto [x2, y2] = centroid(stamped(s));
    EXPECT_NEAR(y2 - y0, -10, 1);
    EXPECT_NEAR(x2 - x0, 0, 1);

    // A position outside the grid: the copy is written, unchanged.
    s.position = 9;
    EXPECT_EQ(changedBox(stamped(s)).left, -1);
}

TEST(Watermark, OpacityIsTheAlphaOfTheStampedColourAndOfItsShadow) {
    const QString dir = testsupport::freshDir("watermark/opacity");
    const QString photo = greyPhoto(dir);
    for (const auto& [percent, alpha] :
         std::vector<std::pair<int, double>>{{0, 1.0}, {40, 0.4}, {150, 1.0}, {-5, 0.1}}) {
        const QString out = dir + QString::number(percent) + u'/';
        QDir().mkpath(out);
        WatermarkSettings s = blockText(60);
        s.fontTransparency = percent;
        ASSERT_EQ(stampText(s, photo, out), "OK");
        const double brightest = fixtures::load(out + "grey.png").max();
        EXPECT_NEAR((brightest - kGrey) / (255 - kGrey), alpha, 0.01) << percent;
    }

    // A black shadow at the default offsets (2 right, 2 up on the canvas) and blur.
    WatermarkSettings s = blockText(60);
    s.position = 4;
    const QString plain = dir + "plain/", shadowed = dir + "shadow/";
    QDir().mkpath(plain);
    QDir().mkpath(shadowed);
    ASSERT_EQ(stampText(s, photo, plain), "OK");
    s.shadow = true;
    s.shadowColor = QColor(0, 0, 0);
    s.fontTransparency = 40;
    ASSERT_EQ(stampText(s, photo, shadowed), "OK");
    const Box text = changedBox(changes(plain + "grey.png"));
    const vips::VImage image = fixtures::load(shadowed + "grey.png");
    const vips::VImage dark = (image[0] < kGrey - 8).ifthenelse(255.0, 0.0);
    const Box shadow = changedBox(dark, 1);
    ASSERT_GE(shadow.left, 0);
    EXPECT_GT(shadow.right, text.right);  // to the right
    EXPECT_LT(shadow.top, text.top);      // and up
    EXPECT_LE(shadow.bottom, text.bottom);
    // Darkest where the shadow is not under the text: grey at 1 - 0.4 of the full shadow.
    EXPECT_NEAR(image[0].min(), kGrey * 0.6, 3);
}

TEST(Watermark, SizeZeroIsTwentyFourAndNoChosenFontIsTheSecondOfTheList) {
    const QString dir = testsupport::freshDir("watermark/fonts");
    const QString photo = greyPhoto(dir);
    QStringList outputs;
    auto stamp = [&](const WatermarkSettings& s, const QString& name, QString* used = nullptr) {
        const QString out = dir + name + u'/';
        QDir().mkpath(out);
        KLWatermark watermark(s);
        EXPECT_EQ(watermark.setWatermarkText(photo, out), "OK");
        if (used) *used = watermark.usedFont;
        return fixtures::bytesOf(out + "grey.png");
    };
    WatermarkSettings s = blockText(0);
    s.text = QStringLiteral("Orvella Qg");
    const QByteArray zero = stamp(s, "size0");
    s.fontSize = 24;
    EXPECT_EQ(stamp(s, "size24"), zero);
    s.fontSize = 25;
    EXPECT_NE(stamp(s, "size25"), zero);

    ASSERT_TRUE(KLWatermark::fontFamilies().contains("DejaVu Serif"));
    s.fontList = {"DejaVu Serif", "DejaVu Sans Mono"};
    s.font.clear();
    QString used;
    const QByteArray second = stamp(s, "none", &used);
    EXPECT_EQ(used, "DejaVu Sans Mono");
    s.font = "DejaVu Sans Mono";
    EXPECT_EQ(stamp(s, "mono"), second);
    s.font = "DejaVu Serif";
    EXPECT_NE(stamp(s, "serif"), second);
}

// A red mark of 20 x 10 drawn 40 points wide (the size comes from the font size field).
TEST(Watermark, ImageStampPlacesTheMarkWhereAsked) {
    const QString dir = testsupport::freshDir("watermark/image");
    const QString photo = greyPhoto(dir);
    fixtures::save(fixtures::solid(20, 10, {255, 0, 0}), dir + "mark.png");
    struct Case {
        QString name;
        int position, dx, dy, angle;
        Box expected;
        int tolerance = 0;  // the turning may shift the mark by one of its pixels (4 here)
    };
    for (const Case& c : std::vector<Case>{
             {"corner", 0, 0, 0, 0, {0, 0, 39, 19}},
             {"offsets", 8, -5, 5, 0, {W - 45, H - 25, W - 45 + 39, H - 25 + 19}},
             {"centre", 4, 0, 0, 0, {180, 140, 219, 159}},
             // A quarter turn: 10 x 20, drawn 40 wide, so 80 high.
             {"turned", 0, 0, 0, 90, {0, 0, 39, 79}, 4},
         }) {
        const QString out = dir + c.name + u'/';
        QDir().mkpath(out);
        WatermarkSettings s;
        s.imagePath = dir + "mark.png";
        s.fontSize = 40;
        s.imagePosition = c.position;
        s.imageXOffset = c.dx;
        s.imageYOffset = c.dy;
        s.imageAngle = c.angle;
        ASSERT_EQ(KLWatermark(s).setWatermarkImage(photo, out), "OK") << c.name.toStdString();
        const Box box = changedBox(changes(out + "grey.png"), 60);
        SCOPED_TRACE(c.name.toStdString());
        EXPECT_NEAR(box.left, c.expected.left, c.tolerance);
        EXPECT_NEAR(box.top, c.expected.top, c.tolerance);
        EXPECT_NEAR(box.right, c.expected.right, c.tolerance);
        EXPECT_NEAR(box.bottom, c.expected.bottom, c.tolerance);
        const Pixel inside = fixtures::pixel(out + "grey.png", (box.left + box.right) / 2,
                                             (box.top + box.bottom) / 2);
        EXPECT_EQ(inside, (Pixel{255, 0, 0})) << c.name.toStdString();
    }
}

TEST(Watermark, StatusesFormatsMetadataAndOriginals) {
    const QString dir = testsupport::freshDir("watermark/formats");
    const QString out = testsupport::freshDir("watermark/formats-out");
    const vips::VImage grey = fixtures::solid(W, H, {kGrey, kGrey, kGrey});
    for (const QString name : {"a.jpg", "b.tif", "c.png", "d.gif", "e.JPEG", "f.webp"})
        fixtures::save(grey, dir + name);
    grey.write_to_file((dir + "p3.jpg[profile=p3]").toUtf8().constData());
    fixtures::save(grey, dir + "layers.png");
    QFile::rename(dir + "layers.png", dir + "layers.psd");
    fixtures::writeBytes(dir + "notes.jpg", "not an image at all");
    for (const QString name : {"a.jpg", "b.tif", "p3.jpg"})
        testsupport::runProgram("exiftool",
                                {"-q", "-overwrite_original", "-UserComment=Kept", dir + name});
    fixtures::save(fixtures::solid(W, H, {kGrey, kGrey, kGrey}), dir + "turned.jpg");
    testsupport::runProgram("exiftool",
                            {"-q", "-overwrite_original", "-Orientation#=6", dir + "turned.jpg"});

    QHash<QString, QByteArray> before;
    for (const QString& name : QDir(dir).entryList(QDir::Files))
        before[name] = checksum(dir + name);

    struct Case {
        QString name, status, loader;
    };
    for (const Case& c : std::vector<Case>{{"a.jpg", "OK", "jpegload"},
                                           {"b.tif", "OK", "tiffload"},
                                           {"c.png", "OK", "pngload"},
                                           {"d.gif", "OK", "gifload"},
                                           {"e.JPEG", "OK", "jpegload"},
                                           {"p3.jpg", "OK", "jpegload"},
                                           {"turned.jpg", "OK", "jpegload"},
                                           {"f.webp", "Failed", ""},
                                           {"layers.psd", "Not Supported", ""},
                                           {"notes.jpg", "NOK", ""}}) {
        SCOPED_TRACE(c.name.toStdString());
        EXPECT_EQ(stampText(blockText(), dir + c.name, out), c.status);
        WatermarkSettings image;
        image.imagePath = dir + "c.png";
        EXPECT_EQ(KLWatermark(image).setWatermarkImage(dir + c.name, out), c.status);
        if (c.loader.isEmpty()) {
            EXPECT_FALSE(QFile::exists(out + c.name));
        } else {
            EXPECT_EQ(fixtures::loader(out + c.name), c.loader.toStdString());
        }
    }
    // JPEG and TIFF keep their metadata, the profile stays, the photo is stamped upright.
    EXPECT_EQ(testsupport::exiftool(out + "a.jpg", "UserComment"), "Kept");
    EXPECT_EQ(testsupport::exiftool(out + "b.tif", "UserComment"), "Kept");
    EXPECT_EQ(testsupport::exiftool(out + "p3.jpg", "UserComment"), "Kept");
    EXPECT_EQ(testsupport::exiftool(out + "p3.jpg", "ProfileDescription"),
              testsupport::exiftool(dir + "p3.jpg", "ProfileDescription"));
    EXPECT_FALSE(testsupport::exiftool(dir + "p3.jpg", "ProfileDescription").isEmpty());
    EXPECT_EQ(fixtures::sizeOf(out + "turned.jpg"), fixtures::Size(H, W));
    const QString orientation = testsupport::exiftool(out + "turned.jpg", "Orientation#");
    EXPECT_TRUE(orientation.isEmpty() || orientation == u"1") << orientation.toStdString();

    // The photos' own folder is refused: nothing is written over an original.
    EXPECT_EQ(stampText(blockText(), dir + "a.jpg", dir), "Failed");
    for (auto it = before.cbegin(); it != before.cend(); ++it)
        EXPECT_EQ(checksum(dir + it.key()), it.value()) << it.key().toStdString();
    EXPECT_EQ(QDir(dir).entryList(QDir::Files | QDir::Hidden).size(), before.size());
}
