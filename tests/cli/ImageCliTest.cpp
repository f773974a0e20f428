#include "imaging/ImagingFixtures.h"

TEST(ImageCli, RefusesThePhotosOwnFolderAndWritesCopiesElsewhere) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-image"));
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "a.jpg");
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "b.PNG");
    const QByteArray bytes = fixtures::bytesOf(dir + "a.jpg");
    QString out, err;
    auto image = [&](const QStringList& args) {
        return testsupport::runProgram(ORVELLA_BINARY, QStringList{"image"} + args, &out, &err);
    };
    // the photo's own folder, spelled three ways, is refused before anything is written
    EXPECT_EQ(image({"effect", "4", "--out", dir, dir + "a.jpg"}), 2);
    EXPECT_TRUE(err.contains("never overwritten")) << err.toStdString();
    EXPECT_EQ(image({"enhance", "1", "0.5", "--out", dir + "../cli-image/", dir + "a.jpg"}), 2);
    EXPECT_EQ(image({"derive", "4", "20", "--out", dir + ".", dir + "a.jpg"}), 2);
    EXPECT_EQ(fixtures::bytesOf(dir + "a.jpg"), bytes);
    ASSERT_EQ(image({"effect", "4", "--out", dir + "sepia", dir + "a.jpg", dir + "b.PNG"}), 0)
        << err.toStdString();
    EXPECT_TRUE(out.contains("OK  " + dir + "a.jpg -> ")) << out.toStdString();
    EXPECT_TRUE(out.contains("skipped: " + dir + "b.PNG")) << out.toStdString();
    const fixtures::Pixel px = fixtures::pixel(dir + "sepia/a.jpg", 20, 15);
    EXPECT_GT(px[0], px[2] + 20);  // sepia: warm
    EXPECT_FALSE(QFile::exists(dir + "sepia/b.PNG"));
    // a folder stands for its photos
    ASSERT_EQ(image({"derive", "4", "20", "--out", dir + "small", dir}), 0) << err.toStdString();
    EXPECT_EQ(out.count("OK  "), 2) << out.toStdString();
    EXPECT_EQ(fixtures::sizeOf(dir + "small/a.jpg").second, 20);
}
