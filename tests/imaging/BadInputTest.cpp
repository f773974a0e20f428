#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include "ImagingFixtures.h"
#include "imaging/KLColorConversions.h"
#include "imaging/KLImageHandling.h"
#include "services/cNSFileHandling.h"
#include "support/TestSupport.h"

namespace {

void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// Every kind of photo that cannot be used, each under a name the imaging code would accept.
QStringList makeBadSources(const QString& dir) {
    writeBytes(dir + "zero.jpg", {});
    QByteArray noise(20000, '\0');
    QRandomGenerator random(7);
    for (char& c : noise) c = char(random.bounded(256));
    writeBytes(dir + "noise.jpg", noise);
    writeBytes(dir + "text.png", "this is not a picture\n");
    fixtures::save(fixtures::coordinates(600, 400), dir + "whole.jpg");
    QFile whole(dir + "whole.jpg");
    EXPECT_TRUE(whole.open(QIODevice::ReadOnly));
    writeBytes(dir + "truncated.jpg", whole.readAll().left(int(whole.size() / 3)));
    whole.close();
    QFile::remove(dir + "whole.jpg");
    QDir().mkpath(dir + "folder.jpg");
    fixtures::writePngHeaderOnly(dir + "huge.png", 20000, 20000);  // 400 megapixels
    fixtures::writePngHeaderOnly(dir + "tall.png", 1000, 300000);  // 300 megapixels
    fixtures::writePngHeaderOnly(dir + "zerosided.png", 0, 100);   // invalid header
    fixtures::writePngHeaderOnly(dir + "nopixels.png", 64, 64);    // header, no data
    return {dir + "zero.jpg",      dir + "noise.jpg",   dir + "text.png", dir + "truncated.jpg",
            dir + "folder.jpg",    dir + "missing.jpg", dir + "huge.png", dir + "tall.png",
            dir + "zerosided.png", dir + "nopixels.png"};
}

TEST(BadInput, EveryOperationFailsQuietlyAndWritesNothing) {
    const QString dir = testsupport::freshDir(QStringLiteral("bad-input"));
    const QStringList sources = makeBadSources(dir);
    const QString out = dir + "out/";
    QDir().mkpath(out);
    for (const QString& source : sources) {
        SCOPED_TRACE(source.toStdString());
        KLImageHandling images;
        for (int mode = 0; mode <= 7; ++mode)
            EXPECT_EQ(images.resizeImage(source, 200, mode, out), "Failed");
        EXPECT_EQ(images.cropImage(source, 100, 100, out, "myCropThumb", 4), "Failed");
        EXPECT_EQ(images.hHandleImages("800", "600", source, out, "slide.jpg"), "Failed");
        EXPECT_EQ(images.hHandleRgImages("960", source, out, "grid.jpg"), "Failed");
        KLColorConversions colours;
        EXPECT_EQ(colours.convertColorTo(source, out, "4"), "OK");
        EXPECT_FALSE(colours.lastWritten);
        EXPECT_EQ(colours.enhanceColorTo(source, out, "1", 0.5f), "OK");
        EXPECT_EQ(colours.hApplyGaussianBlur(source, 3.0f), "OK");
        EXPECT_TRUE(QDir(out).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            << QDir(out)
                   .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
                   .join(' ')
                   .toStdString();
    }
}

TEST(BadInput, FrameLeavesTheFileAsItWas) {
    const QString dir = testsupport::freshDir(QStringLiteral("bad-frame"));
    for (const QString& source : makeBadSources(dir)) {
        SCOPED_TRACE(source.toStdString());
        QFile before(source);
        const QByteArray bytes = before.open(QIODevice::ReadOnly) ? before.readAll() : QByteArray();
        before.close();
        KLImageHandling images;
        EXPECT_EQ(images.addBorderToImage2(source, Qt::red, 10), "Failed");
        EXPECT_EQ(images.storeResult, "Failed");
        QFile after(source);
        if (after.open(QIODevice::ReadOnly)) {
            EXPECT_EQ(after.readAll(), bytes);
        }
    }
}

TEST(BadInput, ConversionWritesNothingButRemovesTheWorkingFile) {
    const QString dir = testsupport::freshDir(QStringLiteral("bad-convert"));
    const QStringList sources = makeBadSources(dir);
    const QString out = dir + "out/";
    QDir().mkpath(out);
    cNSFileHandling files;
    for (const QString format : {"png", "tiff", "bmp", "gif", "jpeg", "jp2", "pdf"}) {
        for (const QString& source : sources) {
            if (source.endsWith("folder.jpg") || source.endsWith("missing.jpg")) continue;
            const QString copy = dir + "work." + QFileInfo(source).suffix();
            QFile::remove(copy);
            ASSERT_TRUE(QFile::copy(source, copy));
            const SaveAsResult r = files.hSaveAsFileType(copy, format, "5", out);
            EXPECT_FALSE(QFile::exists(r.url.toLocalFile()))
                << source.toStdString() << " " << format.toStdString();
            EXPECT_FALSE(QFile::exists(copy));
        }
    }
    EXPECT_TRUE(QDir(out).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST(BadInput, RotationOfANullImageIsNull) {
    KLImageHandling images;
    EXPECT_TRUE(images.hRotatePictureBase(QImage(), "45").isNull());
}

}  // namespace
