// The gallery's image rules that must not change: the crop ratio, which metadata a derivative
// keeps, the fallback of the width-and-height action, and what a cancel leaves.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <atomic>

#include "generators/gallery/cResponsiveDesign.h"
#include "presets/SettingsStore.h"
#include "support/TestSupport.h"

using testsupport::exiftool;
using testsupport::freshDir;
using testsupport::runProgram;
using testsupport::settingsWith;

namespace {

QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    runProgram("vips", {"grey", dir + "g.v", QString::number(w), QString::number(h), "--uchar"});
    runProgram("vips", {"bandjoin_const", dir + "g.v", dir + name, "40 200"});
    runProgram("exiftool", {"-q", "-overwrite_original", "-Artist=Keldra", "-XMP-dc:Creator=Keldra",
                            dir + name});
    return dir + name;
}

QString size(const QString& path) {
    QString w, h;
    runProgram("vipsheader", {"-f", "width", path}, &w);
    runProgram("vipsheader", {"-f", "height", path}, &h);
    return w.trimmed() + "x" + h.trimmed();
}

}  // namespace

// Each ratio sets the crop height from the width by whole-number steps; index 0 and 9 leave it.
TEST(GalleryRatio, HeightFollowsTheWidth) {
    const int heights200[] = {77, 200, 132, 300, 66, 150, 264, 144, 108, 77};
    const int heights250[] = {77, 250, 166, 375, 83, 186, 332, 180, 135, 77};
    for (int index = 0; index <= 9; ++index) {
        for (const auto& [width, expected] :
             {std::pair{200, heights200[index]}, std::pair{250, heights250[index]}}) {
            SettingsStore s = settingsWith({{"tfSmallCropHeight", "77"}});
            s.setText("tfSmallCropWidth", QString::number(width));
            s.setText("pubPhotoRatio", QString::number(index));
            cResponsiveDesign::hPhotoRatioCalc(s);
            EXPECT_EQ(s.integer("tfSmallCropHeight"), expected) << index << " " << width;
        }
    }
}

// A derivative keeps the photo's metadata only when the photo is a JPEG or TIFF and the output a
// PNG or TIFF. (The TIFF reader brings XMP but no EXIF along.)
TEST(GalleryImages, MetadataKeptBySourceAndOutputType) {
    const QString src = freshDir("gallery-meta-src");
    const QStringList sources = {makePhoto(src, "j.jpg", 90, 60), makePhoto(src, "p.png", 90, 60),
                                 makePhoto(src, "t.tif", 90, 60)};
    for (const QString format : {"jpeg", "png", "tiff"}) {
        const QString dir = freshDir("gallery-meta-" + format);
        GalleryImageSettings im;
        im.destination = dir;
        im.thumb = {.size = 40, .cropWidth = 40, .cropHeight = 30, .format = format};
        im.big = {.size = 80, .cropWidth = 80, .format = format};
        QDir().mkpath(dir + "KLimages_s");
        QDir().mkpath(dir + "KLimages_b");
        for (const QString& source : sources) {
            EXPECT_TRUE(cResponsiveDesign::hScaleImageMaxValueHTML(source, im).isEmpty());
            const QString base = QFileInfo(source).completeBaseName();
            const bool kept = !source.endsWith(".png") && format != "jpeg";
            for (const char* folder : {"KLimages_s/", "KLimages_b/"}) {
                const QString out = dir + folder + base + "." + format;
                EXPECT_EQ(exiftool(out, "XMP:Creator"), kept ? "Keldra" : "") << qPrintable(out);
                EXPECT_EQ(exiftool(out, "EXIF:Artist"),
                          kept && source.endsWith(".jpg") ? "Keldra" : "")
                    << qPrintable(out);
            }
            EXPECT_EQ(size(dir + "KLimages_s/" + base + "." + format), "40x30");
            EXPECT_EQ(size(dir + "KLimages_b/" + base + "." + format), "80x53");
        }
        // Only the outputs: no working copy, no temporary file.
        EXPECT_EQ(QDir(dir + "KLimages_s").entryList(QDir::Files | QDir::Hidden).size(), 3);
    }
}

// Scale by width and by height with a crop height of 0: the height step makes nothing, so the
// width step's image is written. A photo that cannot be read leaves no file and is named.
TEST(GalleryImages, WidthStepStaysWhenTheHeightStepFails) {
    const QString src = freshDir("gallery-fallback-src");
    const QString dir = freshDir("gallery-fallback");
    QDir().mkpath(dir + "KLimages_s");
    QDir().mkpath(dir + "KLimages_b");
    GalleryImageSettings im;
    im.destination = dir;
    im.thumbAction = 1;
    im.thumb = {.size = 60, .cropWidth = 60, .cropHeight = 0, .format = "jpeg"};
    im.big = {.size = 100, .cropWidth = 100, .format = "jpeg"};
    const QStringList failures =
        cResponsiveDesign::hScaleImageMaxValueHTML(makePhoto(src, "w.jpg", 300, 200), im);
    EXPECT_TRUE(failures.isEmpty()) << qPrintable(failures.join(' '));
    EXPECT_EQ(size(dir + "KLimages_s/w.jpeg"), "60x40");
    EXPECT_EQ(size(dir + "KLimages_b/w.jpeg"), "100x66");

    QFile broken(src + "broken.jpg");
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("not a photo");
    broken.close();
    const QStringList named = cResponsiveDesign::hScaleImageMaxValueHTML(src + "broken.jpg", im);
    ASSERT_EQ(named.size(), 1);
    EXPECT_TRUE(named.first().startsWith(src + "broken.jpg: "));
    EXPECT_FALSE(QFile::exists(dir + "KLimages_s/broken.jpeg"));
}
