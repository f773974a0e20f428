// The nine support files that every gallery copies into KLovlightbox/ are compiled into the
// program.
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(SupportFiles, NineLightboxFilesAreCompiledIn) {
    const QByteArray source = readAll(ORVELLA_SOURCE_DIR "/resources/tools/lightbox.js.in");
    ASSERT_FALSE(source.isEmpty());
    struct Case {
        const char* name;
        QSize size;
        const char* showCaption;  // the scripts: generated from one source, the caption flag set
    };
    const Case cases[] = {
        {"close.gif", {32, 32}, nullptr},      {"loading.gif", {32, 32}, nullptr},
        {"klOrvella.png", {120, 32}, nullptr}, {"overlay.png", {8, 8}, nullptr},
        {"jquery.lightbox.js", {}, "false"},   {"jquery02.lightbox.js", {}, "true"},
        {"next.png", {32, 32}, nullptr},       {"close.png", {32, 32}, nullptr},
        {"previous.png", {32, 32}, nullptr}};
    for (const Case& c : cases) {
        const QByteArray bytes = readAll(QStringLiteral(":/lightbox/") + c.name);
        ASSERT_FALSE(bytes.isEmpty()) << c.name;
        if (c.showCaption) {
            EXPECT_EQ(bytes, QByteArray(source).replace("@SHOW_CAPTION@", c.showCaption)) << c.name;
            // Titles come from photo metadata: they are set as text, never parsed as HTML.
            EXPECT_FALSE(bytes.contains(".html(") || bytes.contains("innerHTML")) << c.name;
        } else {
            EXPECT_EQ(QImage::fromData(bytes).size(), c.size) << c.name;
        }
    }
}

}  // namespace
