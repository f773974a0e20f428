#include <QDir>
#include <QFileInfo>

#include "metadata/MetaFixtures.h"
#include "metadata/cEditMetaData.h"
#include "metadata/cXif.h"

using namespace metafixtures;
using testsupport::exiftool;

// What a batch reports, one line an event.
static cEditMetaData::Progress recorder(QStringList* events) {
    cEditMetaData::Progress p;
    p.started = [=](int maximum) { *events << QStringLiteral("start %1").arg(maximum); };
    p.advanced = [=](int value) { *events << QStringLiteral("bar %1").arg(value); };
    p.logged = [=](const MetaLogRow& row) { *events << "log " + row.LogI; };
    p.failed = [=](const QString& path, const QString& reason) {
        *events << "failed " + QFileInfo(path).fileName() + " " + reason;
    };
    p.finished = [=] { *events << "end"; };
    return p;
}

// A folder gives its JPEG and TIFF files by these exact extensions, sorted, not those of inner
// folders. A read-only one (no write bit at all, so also for the superuser, whom the system would
// let write it anyway) is reported, not logged, and the bar is left short before it is hidden.
TEST(BatchEditor, LogsOnlySuccessesAndLeavesTheBarShort) {
    const QString dir = testsupport::freshDir("meta/batch");
    QDir().mkpath(dir + "inner");
    for (const QString name : {"photo.JPG", "inner/nested.jpg", "d.TIF", "ro.jpg", "scan.tiff"})
        makeImage(dir + name);
    for (const QString name : {"notes.txt", ".DS_Store", "b.Jpg", "c.png"})
        writeFile(dir + name, "x");
    ASSERT_TRUE(QFile::setPermissions(dir + "ro.jpg",
                                      QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    const QMap<QString, QByteArray> before = testsupport::contentsUnder(dir);
    QStringList events;
    cEditMetaData editor;
    editor.btEMDchooseFolder(dir, "Harbour at dawn", recorder(&events));
    EXPECT_EQ(events, (QStringList{"start 4", "log d.TIF", "bar 1", "log photo.JPG", "bar 2",
                                   "failed ro.jpg the file is read-only", "log scan.tiff", "bar 3",
                                   "end"}));
    EXPECT_EQ(editor.myLogTableViewController.size(), 3);
    for (const QString name : {"d.TIF", "photo.JPG", "scan.tiff"})
        EXPECT_EQ(exiftool(dir + name, "UserComment"), "Harbour at dawn");
    for (const QString name : {"ro.jpg", "inner/nested.jpg", "b.Jpg"})
        EXPECT_EQ(readFile(dir + name), before[name]) << name.toStdString();
    EXPECT_EQ(testsupport::contentsUnder(dir).keys(), before.keys());

    events.clear();  // a cancelled dialog: an empty batch, started and ended at once
    editor.btEMDchooseFile({}, "x", recorder(&events));
    EXPECT_EQ(events, (QStringList{"start 0", "end"}));
}

TEST(ExifCompletion, FillsEveryKeyStampsTheCommentAndGammaAndKeepsTheInput) {
    const QString dir = testsupport::freshDir("meta/xif"), out = dir + "out/";
    const QString bare = makeImage(dir + "bare.jpg", 64, 48, "strip");
    const QString dated = makeImage(dir + "dated.jpg", 64, 48);
    tag(dated, {"-DateTimeOriginal=2021:06:05 04:03:02", "-FNumber=5.6", "-UserComment=Old"});
    const QByteArray bareBytes = readFile(bare);

    cXif xif;
    EXPECT_EQ(xif.writeXif(bare, out + "bare.jpg"), "Failed");  // no such folder
    QDir().mkpath(out);
    ASSERT_EQ(xif.writeXif(bare, out + "bare.jpg"), "Keldra");
    EXPECT_EQ(xif.rememberedValues.size(), cXif::keys().size());
    EXPECT_TRUE(xif.rememberedValues.join("").isEmpty());
    EXPECT_EQ(tags(out + "bare.jpg",
                   "UserComment ExposureTime# FNumber# ISO# ExposureProgram# DateTimeOriginal "
                   "CreateDate MeteringMode# Flash# FocalLength# ColorSpace# WhiteBalance# "
                   "ImageUniqueID ExifImageWidth ExifImageHeight ExifVersion FlashpixVersion "
                   "FileType ImageSize"),
              "Keldra|0|0|0|0|0|0|0|0|0|0|0|0|64|48|0232|0100|JPEG|64x48");
    EXPECT_NEAR(exiftool(out + "bare.jpg", "Gamma").toDouble(), 99.999, 1e-4);
    EXPECT_EQ(readFile(bare), bareBytes);

    // Values already there stay; the comment is stamped over.
    ASSERT_EQ(xif.writeXif(dated, out + "dated.jpg"), "Keldra");
    EXPECT_EQ(tags(out + "dated.jpg", "DateTimeOriginal FNumber UserComment"),
              "2021:06:05 04:03:02|5.6|Keldra");
    EXPECT_TRUE(xif.rememberedValues.contains("2021:06:05 04:03:02"));

    // Never over the input, never from a file that is not an image.
    EXPECT_EQ(xif.writeXif(dated, dated), "Failed");
    EXPECT_EQ(xif.writeXif(dated, dir + "../xif/dated.jpg"), "Failed");
    writeFile(dir + "notes.jpg", "plain words");
    EXPECT_EQ(xif.writeXif(dir + "notes.jpg", out + "notes.jpg"), "Failed");
    EXPECT_EQ(testsupport::contentsUnder(out).keys(), (QStringList{"bare.jpg", "dated.jpg"}));
    EXPECT_EQ(exiftool(dated, "UserComment"), "Old");
}
