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

// Three files, the middle one read-only (no write bit at all, so also for the superuser, whom the
// system would let write it anyway): two rows, the bar left at 2 of 3 before it is hidden.
TEST(BatchEditor, LogsOnlySuccessesAndLeavesTheBarShort) {
    const QString dir = testsupport::freshDir("meta/batch");
    const QStringList files = {makeImage(dir + "one.jpg"), makeImage(dir + "two.jpg"),
                               makeImage(dir + "three.tif")};
    tag(files[1], {"-UserComment=Before"});
    ASSERT_TRUE(
        QFile::setPermissions(files[1], QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    const QByteArray locked = readFile(files[1]);

    QStringList events;
    cEditMetaData editor;
    editor.btEMDchooseFile(files, "Harbour at dawn", recorder(&events));
    EXPECT_EQ(events, (QStringList{"start 3", "log one.jpg", "bar 1",
                                   "failed two.jpg the file is read-only", "log three.tif", "bar 2",
                                   "end"}));
    ASSERT_EQ(editor.myLogTableViewController.size(), 2);
    const MetaLogRow& row = editor.myLogTableViewController[1];
    EXPECT_EQ(row.columns().mid(1), (QStringList{"File Editing", "Edit meta data", "OK",
                                                 "three.tif", "three.tif", files[2], files[2]}));
    EXPECT_LE(qAbs(row.LogDate.secsTo(QDateTime::currentDateTime())), 60);
    EXPECT_EQ(exiftool(files[0], "UserComment") + exiftool(files[2], "UserComment"),
              "Harbour at dawnHarbour at dawn");
    EXPECT_EQ(readFile(files[1]), locked);
    EXPECT_EQ(testsupport::contentsUnder(dir).keys(),
              (QStringList{"one.jpg", "three.tif", "two.jpg"}));

    events.clear();  // a cancelled dialog: an empty batch, started and ended at once
    editor.btEMDchooseFile({}, "x", recorder(&events));
    EXPECT_EQ(events, (QStringList{"start 0", "end"}));
}

// A folder gives its JPEG and TIFF files by these exact extensions, sorted, not those of inner
// folders.
TEST(BatchEditor, AFolderGivesItsPhotoFilesOnly) {
    const QString dir = testsupport::freshDir("meta/batch-folder");
    QDir().mkpath(dir + "inner");
    for (const QString name : {"photo.JPG", "inner/nested.jpg", "d.TIF", "scan.tiff"})
        makeImage(dir + name);
    for (const QString name : {"notes.txt", ".DS_Store", "b.Jpg", "c.png"})
        writeFile(dir + name, "x");
    QStringList events;
    cEditMetaData().btEMDchooseFolder(dir, "From the folder", recorder(&events));
    EXPECT_EQ(events, (QStringList{"start 3", "log d.TIF", "bar 1", "log photo.JPG", "bar 2",
                                   "log scan.tiff", "bar 3", "end"}));
    EXPECT_EQ(exiftool(dir + "photo.JPG", "UserComment"), "From the folder");
    EXPECT_EQ(readFile(dir + "notes.txt"), "x");
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
