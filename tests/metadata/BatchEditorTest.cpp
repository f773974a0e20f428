#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "metadata/MetaFixtures.h"
#include "metadata/cEditMetaData.h"
#include "metadata/cXif.h"

using namespace metafixtures;
using testsupport::exiftool;

namespace {

QStringList filesIn(const QString& dir) {
    return QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

// Read-only as the batch editor sees it: no write bit at all, so also for the superuser, whom
// the system would let write the file anyway.
void makeReadOnly(const QString& file) {
    ASSERT_TRUE(
        QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
}

}  // namespace

// Three files, the middle one read-only: two rows, the bar left at 2 of 3 before it is hidden.
TEST(BatchEditor, LogsOnlySuccessesAndLeavesTheBarShort) {
    const QString dir = testsupport::freshDir("meta/batch");
    const QStringList files = {makeImage(dir + "one.jpg"), makeImage(dir + "two.jpg"),
                               makeImage(dir + "three.tif")};
    tag(files[1], {"-UserComment=Before"});
    makeReadOnly(files[1]);
    const QByteArray locked = bytes(files[1]);
    EXPECT_FALSE(cEditMetaData::isWritableByUser(files[1]));
    EXPECT_TRUE(cEditMetaData::isWritableByUser(files[0]));

    QStringList events;
    cEditMetaData::Progress progress;
    progress.started = [&](int maximum) { events << QStringLiteral("start %1").arg(maximum); };
    progress.advanced = [&](int value) { events << QStringLiteral("bar %1").arg(value); };
    progress.logged = [&](const MetaLogRow& row) { events << "log " + row.LogI; };
    progress.failed = [&](const QString& path, const QString& reason) {
        events << "failed " + QFileInfo(path).fileName() + " " + reason;
    };
    progress.finished = [&] { events << "end"; };
    cEditMetaData editor;
    editor.btEMDchooseFile(files, "Harbour at dawn", progress);

    EXPECT_EQ(events, (QStringList{"start 3", "log one.jpg", "bar 1",
                                   "failed two.jpg the file is read-only", "log three.tif", "bar 2",
                                   "end"}));
    ASSERT_EQ(editor.myLogTableViewController.size(), 2);
    EXPECT_EQ(editor.myLogCounter, 2);
    EXPECT_EQ(editor.myEMMfiles, files);
    const MetaLogRow& row = editor.myLogTableViewController[1];
    EXPECT_EQ(row.columns().mid(1), (QStringList{"File Editing", "Edit meta data", "OK",
                                                 "three.tif", "three.tif", files[2], files[2]}));
    EXPECT_LE(qAbs(row.LogDate.secsTo(QDateTime::currentDateTime())), 60);
    EXPECT_EQ(MetaLogRow::columnNames().join(','),
              "LogDate,LogProcess,LogAction,LogStatus,LogI,LogO,LogIpath,LogOpath");

    EXPECT_EQ(exiftool(files[0], "UserComment"), "Harbour at dawn");
    EXPECT_EQ(exiftool(files[2], "UserComment"), "Harbour at dawn");
    EXPECT_EQ(bytes(files[1]), locked);
    EXPECT_EQ(filesIn(dir), (QStringList{"one.jpg", "three.tif", "two.jpg"}));

    // A cancelled dialog: an empty batch, started and ended at once.
    events.clear();
    editor.btEMDchooseFile({}, "x", progress);
    EXPECT_EQ(events, (QStringList{"start 0", "end"}));
}

TEST(BatchEditor, AFolderGivesItsPhotoFilesOnly) {
    const QString dir = testsupport::freshDir("meta/batch-folder");
    QDir().mkpath(dir + "inner");
    makeImage(dir + "photo.JPG");
    makeImage(dir + "inner/nested.jpg");
    for (const QString name : {"notes.txt", ".DS_Store", "b.Jpg", "c.png", "scan.tiff", "d.TIF"})
        writeBytes(dir + name, "x");
    EXPECT_EQ(cEditMetaData::filesOfFolder(dir),
              (QStringList{dir + "d.TIF", dir + "photo.JPG", dir + "scan.tiff"}));

    // photo.JPG, notes.txt and .DS_Store: a batch of one file.
    const QString small = testsupport::freshDir("meta/batch-folder-small");
    makeImage(small + "photo.JPG");
    writeBytes(small + "notes.txt", "x");
    writeBytes(small + ".DS_Store", "x");
    cEditMetaData editor;
    int maximum = -1;
    cEditMetaData::Progress progress;
    progress.started = [&](int m) { maximum = m; };
    editor.btEMDchooseFolder(small, "From the folder", progress);
    EXPECT_EQ(maximum, 1);
    EXPECT_EQ(editor.myLogTableViewController.size(), 1);
    EXPECT_EQ(exiftool(small + "photo.JPG", "UserComment"), "From the folder");
    EXPECT_EQ(bytes(small + "notes.txt"), "x");
}

TEST(ExifCompletion, FillsEveryKeyStampsTheCommentAndGammaAndKeepsTheInput) {
    const QString dir = testsupport::freshDir("meta/xif");
    const QString bare = makeImage(dir + "bare.jpg", 64, 48, "strip");
    const QString dated = makeImage(dir + "dated.jpg", 64, 48);
    tag(dated, {"-DateTimeOriginal=2021:06:05 04:03:02", "-FNumber=5.6", "-UserComment=Old"});
    const QByteArray bareBytes = bytes(bare);

    cXif xif;
    EXPECT_EQ(xif.writeXif(bare, dir + "out/bare.jpg"), "Failed");  // no such folder
    QDir().mkpath(dir + "out");
    ASSERT_EQ(xif.writeXif(bare, dir + "out/bare.jpg"), "Keldra");
    EXPECT_EQ(xif.rememberedValues.size(), cXif::keys().size());
    EXPECT_TRUE(xif.rememberedValues.join("").isEmpty());
    const QString out = dir + "out/bare.jpg";
    EXPECT_EQ(exiftool(out, "UserComment"), "Keldra");
    EXPECT_NEAR(exiftool(out, "Gamma").toDouble(), 99.999, 1e-4);
    struct Expected {
        const char* tag;
        const char* value;
    };
    for (const Expected& e : std::vector<Expected>{{"ExposureTime#", "0"},
                                                   {"FNumber#", "0"},
                                                   {"ISO#", "0"},
                                                   {"ExposureProgram#", "0"},
                                                   {"DateTimeOriginal", "0"},
                                                   {"CreateDate", "0"},
                                                   {"MeteringMode#", "0"},
                                                   {"Flash#", "0"},
                                                   {"FocalLength#", "0"},
                                                   {"ColorSpace#", "0"},
                                                   {"WhiteBalance#", "0"},
                                                   {"ImageUniqueID", "0"},
                                                   {"ExifImageWidth", "64"},
                                                   {"ExifImageHeight", "48"},
                                                   {"ExifVersion", "0232"},
                                                   {"FlashpixVersion", "0100"}})
        EXPECT_EQ(exiftool(out, e.tag), e.value) << e.tag;
    EXPECT_EQ(exiftool(out, "FileType") + exiftool(out, "ImageSize"), "JPEG64x48");
    EXPECT_EQ(bytes(bare), bareBytes);

    // Values already there stay; the comment is stamped over.
    ASSERT_EQ(xif.writeXif(dated, dir + "out/dated.jpg"), "Keldra");
    EXPECT_EQ(exiftool(dir + "out/dated.jpg", "DateTimeOriginal"), "2021:06:05 04:03:02");
    EXPECT_EQ(exiftool(dir + "out/dated.jpg", "FNumber"), "5.6");
    EXPECT_EQ(exiftool(dir + "out/dated.jpg", "UserComment"), "Keldra");
    EXPECT_TRUE(xif.rememberedValues.contains("2021:06:05 04:03:02"));

    // Never over the input, never from a file that is not an image.
    EXPECT_EQ(xif.writeXif(dated, dated), "Failed");
    EXPECT_EQ(xif.writeXif(dated, dir + "../xif/dated.jpg"), "Failed");
    writeBytes(dir + "notes.jpg", "plain words");
    EXPECT_EQ(xif.writeXif(dir + "notes.jpg", dir + "out/notes.jpg"), "Failed");
    EXPECT_EQ(filesIn(dir + "out"), (QStringList{"bare.jpg", "dated.jpg"}));
    EXPECT_EQ(exiftool(dated, "UserComment"), "Old");
}
