#include "support/FormatFixtures.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <vips/vips8>

#include "support/TestSupport.h"

namespace formatfixtures {

QString folder() {
    const QString dir = QStringLiteral(ORVELLA_TEST_OUTPUT "/format-fixtures/");
    QDir().mkpath(dir);
    QLockFile lock(dir + "lock");  // test programs run side by side
    EXPECT_TRUE(lock.lock());
    if (QFile::exists(dir + "ready")) return dir;
    const char* script = R"(set -e; cd "$1"; tag() { exiftool -m -q -overwrite_original "$@"; }
        vips thumbnail /usr/share/backgrounds/mate/nature/Garden.jpg photo.jpg 480
        vips rot photo.jpg tall.jpg d90
        for e in heic avif webp jxl; do
          vips copy photo.jpg land-$e.$e; tag -UserComment="Land $e" land-$e.$e
          vips copy tall.jpg tall-$e.$e; tag -UserComment="Tall $e" tall-$e.$e
        done
        for e in webp jxl; do
          vips copy photo.jpg turned-$e.$e; tag -Orientation#=6 -UserComment="Turned $e" turned-$e.$e
        done
        vips icc_transform photo.jpg 'p3.heic[Q=90]' p3; tag -UserComment=P3 p3.heic)";
    EXPECT_EQ(testsupport::runProgram("bash", {"-c", script, "fixtures", dir}), 0);
    // The ICC colour box made an nclx one: P3 primaries, sRGB transfer, full range.
    QByteArray heif = testsupport::readFile(dir + "p3.heic");
    heif.replace(heif.indexOf("colr") + 4, 11, QByteArray("nclx\0\x0c\0\x0d\0\x06\x80", 11));
    testsupport::writeFile(dir + "nclx.heic", heif);
    testsupport::writeFile(dir + "ready", "1");
    return dir;
}

QStringList photos() {
    QStringList files;
    for (const QString& name : QDir(folder()).entryList({"*.heic", "*.avif", "*.webp", "*.jxl"}))
        files.append(folder() + name);
    return files;
}

QString referenceOf(const QString& fileName) {
    return fileName.startsWith(u"tall") || fileName.startsWith(u"turned") ? "tall" : "photo";
}

double shownDifference(const QString& a, const QString& b) {
    VIPS_INIT("tests");
    const auto shown = [](const QString& path) {
        vips::VImage image = vips::VImage::new_from_file(path.toUtf8().constData());
        if (image.get_typeof(VIPS_META_ICC_NAME) != 0)
            image = image.icc_transform("srgb", vips::VImage::option()->set("embedded", true));
        return image.colourspace(VIPS_INTERPRETATION_sRGB);
    };
    const vips::VImage x = shown(a);
    const vips::VImage y = shown(b).thumbnail_image(
        x.width(), vips::VImage::option()->set("height", x.height())->set("size", VIPS_SIZE_FORCE));
    return (x.cast(VIPS_FORMAT_FLOAT) - y.cast(VIPS_FORMAT_FLOAT)).abs().avg();
}

}  // namespace formatfixtures
