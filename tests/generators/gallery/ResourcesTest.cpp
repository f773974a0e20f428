// The support files that every gallery copies into KLovlightbox/ are compiled into the program.
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QString>
#include <QStringList>

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

struct ImageCase {
    const char* path;
    int width;
    int height;
    bool transparentCorners;  // a round button or a badge with rounded corners
};

void PrintTo(const ImageCase& c, std::ostream* os) { *os << c.path; }

class SupportImage : public ::testing::TestWithParam<ImageCase> {};

TEST_P(SupportImage, LoadsWithItsSizeAndTransparency) {
    const ImageCase c = GetParam();
    const QImage image(QString::fromLatin1(c.path));
    ASSERT_FALSE(image.isNull()) << c.path;
    EXPECT_EQ(image.width(), c.width) << c.path;
    EXPECT_EQ(image.height(), c.height) << c.path;
    if (c.transparentCorners) {
        ASSERT_TRUE(image.hasAlphaChannel()) << c.path;
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << c.path;
        EXPECT_EQ(qAlpha(image.pixel(c.width - 1, c.height - 1)), 0) << c.path;
        EXPECT_GT(qAlpha(image.pixel(c.width / 2, c.height / 2)), 200) << c.path;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lightbox, SupportImage,
    ::testing::Values(ImageCase{":/lightbox/close.gif", 32, 32, true},
                      ImageCase{":/lightbox/loading.gif", 32, 32, false},
                      ImageCase{":/lightbox/klOrvella.png", 120, 32, true},
                      ImageCase{":/lightbox/overlay.png", 8, 8, false},
                      ImageCase{":/lightbox/next.png", 32, 32, true},
                      ImageCase{":/lightbox/close.png", 32, 32, true},
                      ImageCase{":/lightbox/previous.png", 32, 32, true}));

TEST(SupportFiles, OverlayTileIsDarkAndSeeThrough) {
    const QImage tile(QStringLiteral(":/lightbox/overlay.png"));
    ASSERT_FALSE(tile.isNull());
    const QRgb p = tile.pixel(3, 3);
    EXPECT_GT(qAlpha(p), 64);
    EXPECT_LT(qAlpha(p), 255);
    EXPECT_LT(qRed(p) + qGreen(p) + qBlue(p), 3 * 64);
}

TEST(SupportFiles, ButtonsDiffer) {
    const QImage next(QStringLiteral(":/lightbox/next.png"));
    const QImage previous(QStringLiteral(":/lightbox/previous.png"));
    const QImage close(QStringLiteral(":/lightbox/close.png"));
    EXPECT_NE(next, previous);
    EXPECT_NE(next, close);
    // The arrows mirror each other.
    EXPECT_EQ(next.mirrored(true, false).pixel(12, 16), previous.pixel(12, 16));
}

TEST(SupportFiles, LoadingIndicatorIsAnimated) {
    QImageReader reader(QStringLiteral(":/lightbox/loading.gif"));
    EXPECT_TRUE(reader.supportsAnimation());
    EXPECT_GT(reader.imageCount(), 1);
    QImage first = reader.read();
    ASSERT_TRUE(reader.jumpToNextImage() || reader.canRead());
    QImage second = reader.read();
    ASSERT_FALSE(first.isNull());
    ASSERT_FALSE(second.isNull());
    EXPECT_NE(first, second);
}

TEST(SupportFiles, PatternsAreOpaqueTiles) {
    for (const char* name : {"dots.png", "diagonal.png", "weave.png"}) {
        const QImage pattern(QStringLiteral(":/patterns/") + QLatin1String(name));
        ASSERT_FALSE(pattern.isNull()) << name;
        EXPECT_GE(pattern.width(), 8) << name;
        EXPECT_EQ(qAlpha(pattern.pixel(0, 0)), 255) << name;
    }
}

// Both scripts come from one source and differ in the caption flag alone.
TEST(SupportFiles, LightboxScriptsAreTheGeneratedPair) {
    const QByteArray source = readAll(QStringLiteral(ORVELLA_SOURCE_DIR "/resources/tools/lightbox.js.in"));
    ASSERT_FALSE(source.isEmpty());
    const QByteArray plain = readAll(QStringLiteral(":/lightbox/jquery.lightbox.js"));
    const QByteArray captioned = readAll(QStringLiteral(":/lightbox/jquery02.lightbox.js"));
    EXPECT_EQ(plain, QByteArray(source).replace("@SHOW_CAPTION@", "false"))
        << "run resources/tools/build-lightbox.sh";
    EXPECT_EQ(captioned, QByteArray(source).replace("@SHOW_CAPTION@", "true"))
        << "run resources/tools/build-lightbox.sh";
    EXPECT_TRUE(plain.contains("$.fn.lightbox"));
    // Titles come from photo metadata: they are set as text, never parsed as HTML.
    EXPECT_FALSE(captioned.contains(".html("));
    EXPECT_FALSE(captioned.contains("innerHTML"));
}

}  // namespace
