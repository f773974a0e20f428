// Photos of phones and the web (HEIF, AVIF, WebP, JPEG XL) through every kind, the image tools,
// projects and the metadata commands. Each image made of one is compared with the image made of
// its JPEG reference: same size (upright), same look in a colour-managed browser.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "support/FormatFixtures.h"
#include "support/TestSupport.h"

using testsupport::exiftool;
using testsupport::orvella;
using testsupport::readFile;

namespace {

QStringList photos(const QString& dir) {
    QStringList files;
    for (const QString& name :
         QDir(dir).entryList({"*.heic", "*.avif", "*.webp", "*.jxl", "*.jpg"}))
        files.append(dir + name);
    return files;
}

// The image made of `photo` in `folder`: a JPEG named from the base name; the tools keep the name
// of a JPEG.
QString madeOf(const QString& folder, const QString& photo, bool tool) {
    const QFileInfo info(photo);
    return folder +
           (tool && info.suffix() == u"jpg" ? info.fileName() : info.completeBaseName() + ".jpeg");
}

// The image of `photo` against that of its reference: lossy copies within 4 of 255, the Display
// P3 photos within 2.
void expectLikeReference(const QString& folder, const QString& photo, bool tool = false) {
    const QString base = QFileInfo(photo).completeBaseName();
    const QString made = madeOf(folder, photo, tool);
    const QString reference = madeOf(folder, formatfixtures::referenceOf(base) + ".jpg", tool);
    SCOPED_TRACE(made.toStdString());
    ASSERT_EQ(exiftool(made, "ImageSize"), exiftool(reference, "ImageSize"));
    EXPECT_LT(formatfixtures::shownDifference(made, reference), base.contains('-') ? 4.0 : 2.0);
}

}  // namespace

TEST(FormatsCli, EveryKindTakesThemUprightWithCaptionsAndColours) {
    const QStringList files = photos(formatfixtures::folder());
    const QString bad = testsupport::freshDir("cli-formats-bad");
    QFile::copy(formatfixtures::folder() + "photo.jpg", bad + "jpeg.heic");
    testsupport::writeFile(bad + "random.webp", QByteArray(4000, 'x'));
    testsupport::writeFile(bad + "zero.avif", {});
    for (const auto& [kind, images, page] : {std::tuple{"gallery", "KLimages_b/", "myIndex.html"},
                                             {"slideshow", "KLSsImages/", "slideshow.html"},
                                             {"grid", "KLovImages/", "index.html"}}) {
        const QString out = testsupport::freshDir(QString("cli-formats-") + kind);
        QString err;
        EXPECT_EQ(orvella(QStringList{"generate", kind, "--out", out, bad} + files, nullptr, &err),
                  1);
        for (const QString reason : {"jpeg.heic: named .heic but holds no HEIF image",
                                     "random.webp: not an image", "zero.avif: an empty file"})
            EXPECT_TRUE(err.contains(bad + reason)) << kind << err.toStdString();
        const QString text = QString::fromUtf8(readFile(out + page));
        for (const QString& photo : files) {
            EXPECT_TRUE(text.contains(exiftool(photo, "UserComment"))) << photo.toStdString();
            expectLikeReference(out + images, photo);
        }
    }
}

// `image derive` and `watermark` write each as NAME.jpeg with its caption; a project keeps them and
// builds its site; the metadata commands read them all and write WebP only.
TEST(FormatsCli, ToolsProjectsAndMetadata) {
    const QString fixtures = formatfixtures::folder();
    const QStringList files = photos(fixtures);
    const QString dir = testsupport::freshDir("cli-formats-tools");
    ASSERT_EQ(orvella(QStringList{"image", "derive", "3", "50", "--out", dir + "d"} + files), 0);
    QString out, err;
    ASSERT_EQ(orvella(QStringList{"watermark", "text", "--out", dir + "w"} + files, &out, &err), 0)
        << out.toStdString() << err.toStdString();
    ASSERT_EQ(
        orvella(QStringList{"project", "save", dir + "p", "--name", "T", "--kind", "grid"} + files),
        0);
    ASSERT_EQ(orvella({"project", "build", dir + "p/T.orvprj", "--out", dir + "b"}), 0);
    for (const QString& photo : files) {
        const QString caption = exiftool(photo, "UserComment");
        expectLikeReference(dir + "b/KLovImages/", photo);
        for (const QString folder : {"d/", "w/"}) {
            expectLikeReference(dir + folder, photo, true);
            EXPECT_EQ(exiftool(madeOf(dir + folder, photo, true), "UserComment"), caption);
        }
        EXPECT_EQ(orvella({"meta", "get", photo, "EXIF User Comment", "IPTC City"}, &out), 0);
        EXPECT_EQ(out, caption + "\n\n");
    }
    for (const QString ext : {"webp", "heic", "avif", "jxl"}) {
        const QString copy = dir + "copy." + ext;
        QFile::copy(fixtures + "land-" + ext + "." + ext, copy);
        const QByteArray before = readFile(copy);
        const int code = ext == u"webp" ? 0 : 1;
        EXPECT_EQ(orvella({"meta", "set-comment", copy, "New"}, nullptr, &err), code);
        EXPECT_EQ(orvella({"meta", "batch", "--comment", "New", copy}, nullptr, &err), code);
        if (code == 0)
            EXPECT_EQ(exiftool(copy, "UserComment") + exiftool(copy, "Validate"), "NewOK");
        else
            EXPECT_TRUE(readFile(copy) == before && err.contains("photos are read, never written"));
    }
}
