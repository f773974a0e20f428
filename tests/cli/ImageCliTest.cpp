#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "imaging/ImagingFixtures.h"
#include "support/TestSupport.h"

namespace {

QString orvella() {
    return QStringLiteral(ORVELLA_BINARY);
}

TEST(ImageCli, RefusesTheFolderOfAnOriginal) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-image-refuse"));
    fixtures::save(fixtures::solid(40, 30, {200, 100, 50}), dir + "a.jpg");
    QFile original(dir + "a.jpg");
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    original.close();
    // the same folder, spelled another way
    for (const QStringList& args :
         {QStringList{"image", "effect", "4", "--out", dir, dir + "a.jpg"},
          QStringList{"image", "enhance", "1", "0.5", "--out", dir + "../cli-image-refuse/",
                      dir + "a.jpg"},
          QStringList{"image", "derive", "4", "20", "--out", dir + ".", dir + "a.jpg"}}) {
        QString out, err;
        EXPECT_EQ(testsupport::runProgram(orvella(), args, &out, &err), 2)
            << args.join(' ').toStdString();
        EXPECT_TRUE(err.contains("never overwritten")) << err.toStdString();
    }
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    EXPECT_EQ(original.readAll(), bytes);
}

TEST(ImageCli, EffectWritesCopiesAndReportsEachFile) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-image-effect"));
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "a.jpg");
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "b.PNG");
    QString out, err;
    ASSERT_EQ(testsupport::runProgram(
                  orvella(),
                  {"image", "effect", "4", "--out", dir + "sepia", dir + "a.jpg", dir + "b.PNG"},
                  &out, &err),
              0)
        << err.toStdString();
    EXPECT_TRUE(out.contains("OK  " + dir + "a.jpg -> ")) << out.toStdString();
    EXPECT_TRUE(out.contains("skipped: " + dir + "b.PNG")) << out.toStdString();
    const auto px = fixtures::pixel(dir + "sepia/a.jpg", 20, 15);
    EXPECT_GT(px[0], px[2] + 20);  // sepia: warm
    EXPECT_FALSE(QFile::exists(dir + "sepia/b.PNG"));
}

TEST(ImageCli, DeriveMakesTheGallerySizes) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-image-derive"));
    fixtures::save(fixtures::solid(400, 300, {1, 2, 3}), dir + "a.jpg");
    QString out, err;
    ASSERT_EQ(testsupport::runProgram(
                  orvella(), {"image", "derive", "4", "200", "--out", dir + "s", dir + "a.jpg"},
                  &out, &err),
              0)
        << err.toStdString();
    EXPECT_EQ(fixtures::sizeOf(dir + "s/a.jpg"), (fixtures::Size{266, 200}));
    // a bad file fails with exit 1 and a line of its own
    QFile bad(dir + "bad.jpg");
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.close();
    EXPECT_EQ(testsupport::runProgram(
                  orvella(), {"image", "derive", "4", "200", "--out", dir + "s", dir + "bad.jpg"},
                  &out, &err),
              1);
    EXPECT_TRUE(out.contains("failed: " + dir + "bad.jpg")) << out.toStdString();
}

TEST(ImageCli, HelpDescribesTheVerbs) {
    QString out;
    ASSERT_EQ(testsupport::runProgram(orvella(), {"image", "--help"}, &out), 0);
    for (const char* verb : {"effect CODE", "enhance CODE VALUE", "derive MODE SIZE"})
        EXPECT_TRUE(out.contains(verb)) << verb;
    EXPECT_EQ(testsupport::runProgram(orvella(), {"image", "paint"}), 2);
}

}  // namespace
