// Photos of phones and the web through every kind, the image tools, a project and the metadata
// commands: their images upright, the right size, with their captions and colours.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "support/FormatFixtures.h"
#include "support/TestSupport.h"

using namespace formatfixtures;
using testsupport::exiftool;
using testsupport::orvella;

namespace {

// The image of `photo` in `folder` against `reference`, of the same size or of `size`: lossy
// copies within 4 of 255, the Display P3 photos within 2.
void expectLike(const QString& photo, const QString& folder, const QString& reference,
                const QString& size = {}) {
    const QString made = folder + QFileInfo(photo).completeBaseName() + ".jpeg";
    SCOPED_TRACE(made.toStdString());
    EXPECT_EQ(exiftool(made, "ImageSize"),
              size.isEmpty() ? exiftool(reference, "ImageSize") : size);
    EXPECT_LT(shownDifference(made, reference), made.contains('-') ? 4.0 : 2.0);
}

}  // namespace

TEST(FormatsCli, KindsToolsProjectsAndMetadata) {
    const QString dir = testsupport::freshDir("cli-formats");
    QFile::copy(folder() + "photo.jpg", dir + "jpeg.heic");
    testsupport::writeFile(dir + "random.webp", QByteArray(4000, 'x'));
    testsupport::writeFile(dir + "zero.avif", {});
    const QStringList files = photos();
    for (const auto& [kind, images, page] : {std::tuple{"gallery", "KLimages_b/", "myIndex.html"},
                                             {"slideshow", "KLSsImages/", "slideshow.html"},
                                             {"grid", "KLovImages/", "index.html"}}) {
        const QString out = dir + kind + "/";
        QString err;
        EXPECT_EQ(orvella(QStringList{"generate", kind, "--out", out, dir + "jpeg.heic",
                                      dir + "random.webp", dir + "zero.avif",
                                      folder() + "photo.jpg", folder() + "tall.jpg"} +
                              files,
                          nullptr, &err),
                  1);
        EXPECT_TRUE(err.contains(dir + "jpeg.heic: named .heic but holds no HEIF image") &&
                    err.contains(dir + "random.webp: not an image") &&
                    err.contains(dir + "zero.avif: an empty file"))
            << err.toStdString();
        const QByteArray text = testsupport::readFile(out + page);
        for (const QString& photo : files) {
            EXPECT_TRUE(text.contains(exiftool(photo, "UserComment").toUtf8()));
            expectLike(photo, out + images,
                       out + images + referenceOf(photo.section('/', -1)) + ".jpeg");
        }
    }

    // The tools write NAME.jpeg with the caption; a project keeps the photos and builds its site.
    ASSERT_EQ(orvella(QStringList{"image", "derive", "3", "50", "--out", dir + "d"} + files), 0);
    ASSERT_EQ(orvella(QStringList{"watermark", "text", "--out", dir + "w"} + files), 0);
    ASSERT_EQ(
        orvella(QStringList{"project", "save", dir + "p", "--name", "T", "--kind", "grid"} + files),
        0);
    ASSERT_EQ(orvella({"project", "build", dir + "p/T.orvprj", "--out", dir + "b"}), 0);
    for (const QString& photo : files) {
        const QString reference = folder() + referenceOf(photo.section('/', -1)) + ".jpg";
        const bool tall = reference.endsWith("tall.jpg");
        const QString caption = exiftool(photo, "UserComment");
        expectLike(photo, dir + "d/", reference, tall ? "150x240" : "240x150");
        expectLike(photo, dir + "w/", reference, tall ? "300x480" : "480x300");
        expectLike(photo, dir + "b/KLovImages_b/", reference);  // the lightbox's, not enlarged
        for (const QString tool : {"d/", "w/"})
            EXPECT_EQ(
                exiftool(dir + tool + QFileInfo(photo).completeBaseName() + ".jpeg", "UserComment"),
                caption);
        QString out;
        EXPECT_EQ(orvella({"meta", "get", photo, "EXIF User Comment", "IPTC City"}, &out), 0);
        EXPECT_EQ(out, caption + "\n\n");
    }

    // WebP's comment is written (exiftool reads it back); HEIF, AVIF and JPEG XL are refused.
    for (const QString ext : {"webp", "heic", "avif", "jxl"}) {
        const QString copy = dir + "copy." + ext;
        QFile::copy(folder() + "land-" + ext + "." + ext, copy);
        const QByteArray before = testsupport::readFile(copy);
        const int code = ext == u"webp" ? 0 : 1;
        QString err;
        EXPECT_EQ(orvella({"meta", "set-comment", copy, "New"}, nullptr, &err), code);
        EXPECT_EQ(orvella({"meta", "batch", "--comment", "New", copy}, nullptr, &err), code);
        if (code == 0)
            EXPECT_EQ(exiftool(copy, "UserComment") + exiftool(copy, "Validate"), "NewOK");
        else
            EXPECT_TRUE(testsupport::readFile(copy) == before &&
                        err.contains("read, never written"));
    }
}
