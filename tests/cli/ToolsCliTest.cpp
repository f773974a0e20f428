// `orvella watermark | meta | image | update-check`, run as the user runs them and checked on the
// files they write, through exiftool and libvips. Their refusals are in RefusalCliTest.cpp.
#include <QProcess>
#include <QRegularExpression>

#include "imaging/ImagingFixtures.h"
#include "metadata/MetaFixtures.h"

using testsupport::exiftool;
using testsupport::orvellaOut;

TEST(ToolsCli, WatermarkPrintsOneStatusLinePerFile) {
    const QString dir = testsupport::freshDir("cli-watermark");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "a.png");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "b.jpg");
    fixtures::save(fixtures::solid(20, 10, {255, 0, 0}), dir + "mark.png");
    fixtures::writeBytes(dir + "notes.jpg", "plain words");
    EXPECT_EQ(
        orvellaOut(1, {"watermark", "text", "--out", dir + "out", "--set", "tfFontSize=30", "--set",
                       "tvWaterMarkText=Orvella", dir + "a.png", dir + "b.jpg", dir + "notes.jpg"}),
        dir + "a.png: OK\n" + dir + "b.jpg: OK\n" + dir + "notes.jpg: NOK\n");
    EXPECT_EQ(fixtures::loader(dir + "out/b.jpg"), "jpegload");
    EXPECT_EQ(fixtures::load(dir + "out/a.png").max(), 192);  // white text at half opacity

    EXPECT_EQ(orvellaOut(0, {"watermark", "image", "--out", dir + "marked", "--set",
                             "tfWaterMarkImageFilePath=" + dir + "mark.png", "--set",
                             "scImageWaterMarkPos=0", "--set", "tfImageTransparancy=0", "--set",
                             "tfFontSize=40", dir + "a.png"}),
              dir + "a.png: OK\n");
    EXPECT_EQ(fixtures::pixel(dir + "marked/a.png", 20, 10), (fixtures::Pixel{255, 0, 0}));
    EXPECT_EQ(fixtures::pixel(dir + "marked/a.png", 60, 40), (fixtures::Pixel{128, 128, 128}));
}

TEST(ToolsCli, ImageEffectsWriteCopiesOfEveryPhotoOfAFolder) {
    const QString dir = testsupport::freshDir(QStringLiteral("cli-image"));
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "a.jpg");
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "b.PNG");
    QString out = orvellaOut(
        0, {"image", "effect", "4", "--out", dir + "sepia", dir + "a.jpg", dir + "b.PNG"});
    EXPECT_TRUE(out.contains("OK  " + dir + "a.jpg -> ")) << out.toStdString();
    EXPECT_TRUE(out.contains("skipped: " + dir + "b.PNG")) << out.toStdString();
    const fixtures::Pixel px = fixtures::pixel(dir + "sepia/a.jpg", 20, 15);
    EXPECT_GT(px[0], px[2] + 20);  // sepia: warm
    EXPECT_FALSE(QFile::exists(dir + "sepia/b.PNG"));
    out = orvellaOut(0, {"image", "derive", "4", "20", "--out", dir + "small", dir});
    EXPECT_EQ(out.count("OK  "), 2) << out.toStdString();
    EXPECT_EQ(fixtures::sizeOf(dir + "small/a.jpg").second, 20);
}

// get prints one line per name, tree indents two spaces per level, set-comment prints OK (Failed
// is in FileSafetyTest.cpp), complete "Keldra", batch one log line per success; what they write
// reads back through exiftool.
TEST(ToolsCli, MetaReadsAndWritesComments) {
    const QString dir = testsupport::freshDir("cli-meta");
    const QString photo = metafixtures::makeImage(dir + "harbour.jpg");
    metafixtures::tag(photo, {"-UserComment= Sunset", "-IPTC:City=Lyon"});
    fixtures::writeBytes(dir + "notes.jpg", "plain words");
    // All names are read by one reader: "IPTC Description" repeats the value read before it.
    EXPECT_EQ(
        orvellaOut(0, {"meta", "get", photo, "IPTC Description", "IPTC City", "IPTC Description",
                       "Show Filename", "EXIF User Comment", "IPTC Headline"}),
        "\nLyon\nLyon\nharbour.jpg\n Sunset\n\n");
    const QString tree = orvellaOut(0, {"meta", "tree", photo});
    EXPECT_TRUE(tree.startsWith("Exif:\n")) << tree.toStdString();
    EXPECT_TRUE(tree.contains("\n  Photo:\n"));
    EXPECT_TRUE(tree.contains("\n    User Comment:  Sunset\n"));
    EXPECT_TRUE(tree.contains("\nIPTC:\n  Application2:\n    City: Lyon\n"));
    // A file that cannot be read prints one empty line per name, and no tree.
    EXPECT_EQ(orvellaOut(0, {"meta", "get", dir + "notes.jpg", "EXIF User Comment", "IPTC City"}),
              "\n\n");
    EXPECT_EQ(orvellaOut(0, {"meta", "tree", dir + "missing.jpg"}), "");
    const QString help = orvellaOut(0, {"meta", "--help"});
    for (const char* usage : {"meta get FILE NAME", "meta tree FILE", "meta set-comment FILE TEXT"})
        EXPECT_TRUE(help.contains(usage)) << usage;

    const QString stripped = metafixtures::makeImage(dir + "stripped.jpg", 32, 24, "strip");
    EXPECT_EQ(orvellaOut(0, {"meta", "set-comment", stripped, "Written from the command line"}),
              "OK\n");
    EXPECT_EQ(exiftool(stripped, "UserComment"), "Written from the command line");
    EXPECT_EQ(orvellaOut(0, {"meta", "complete", stripped, dir + "out.jpg"}), "Keldra\n");
    EXPECT_EQ(exiftool(dir + "out.jpg", "UserComment"), "Keldra");
    EXPECT_EQ(exiftool(stripped, "UserComment"), "Written from the command line");
    orvellaOut(1, {"meta", "complete", dir + "notes.jpg", dir + "n.jpg"});
    EXPECT_FALSE(QFileInfo::exists(dir + "n.jpg"));

    const QString batch = dir + "batch/";
    QDir().mkpath(batch + "folder");
    for (const QString name : {"folder/a.jpg", "folder/b.JPG", "folder/ro.jpg", "c.tif"})
        fixtures::save(fixtures::solid(30, 20, {90, 90, 90}), batch + name);
    fixtures::writeBytes(batch + "folder/notes.txt", "x");
    ASSERT_TRUE(
        QFile::setPermissions(batch + "folder/ro.jpg", QFile::ReadOwner | QFile::ReadGroup));
    QString err;
    QString out = orvellaOut(
        1, {"meta", "batch", "--comment", "Sea fog", batch + "folder", batch + "c.tif"}, &err);
    QString expected;
    for (const QString name : {"folder/a.jpg", "folder/b.JPG", "c.tif"}) {
        const QString file = name.section('/', -1);
        expected += "File Editing\tEdit meta data\tOK\t" + file + '\t' + file + '\t' + batch +
                    name + '\t' + batch + name + '\n';
        EXPECT_EQ(exiftool(batch + name, "UserComment"), "Sea fog");
    }
    static const QRegularExpression kTime("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\t",
                                          QRegularExpression::MultilineOption);
    EXPECT_EQ(out.count(kTime), 3) << out.toStdString();
    EXPECT_EQ(out.remove(kTime).toStdString(), expected.toStdString());
    EXPECT_TRUE(err.contains(batch + "folder/ro.jpg: the file is read-only")) << err.toStdString();
    EXPECT_EQ(exiftool(batch + "folder/ro.jpg", "UserComment"), QString());
    orvellaOut(0, {"meta", "batch", "--comment", "", batch + "c.tif"});
}

// A version file served from 127.0.0.1: only a newer build's announcement is printed; a malformed
// file or no server prints nothing and exits 0.
TEST(ToolsCli, UpdateCheckPrintsTheAnnouncementOfANewerBuildOnly) {
    const QString dir = testsupport::freshDir("cli-update-check");
    fixtures::writeBytes(dir + "version.txt", "2.1;215;New: faster export\n");
    fixtures::writeBytes(dir + "malformed.txt", "2.1;215");
    QProcess server;
    server.start("python3",
                 {"-u", "-m", "http.server", "0", "--bind", "127.0.0.1", "--directory", dir});
    ASSERT_TRUE(server.waitForReadyRead(60000));  // printed once it listens
    const QString url =
        "http://127.0.0.1:" + QString(server.readLine()).section(" port ", 1).section(' ', 0, 0) +
        "/";
    EXPECT_EQ(orvellaOut(0, {"update-check", "--url", url + "version.txt", "--build", "214"}),
              "New: faster export\n");
    EXPECT_EQ(orvellaOut(0, {"update-check", "--url", url + "version.txt", "--build", "215"}), "");
    QString err;
    EXPECT_EQ(
        orvellaOut(0, {"update-check", "--verbose", "--url", url + "malformed.txt", "--build", "1"},
                   &err),
        "");
    EXPECT_TRUE(err.contains("Orv throws an exception: ")) << err.toStdString();
    EXPECT_EQ(orvellaOut(0, {"update-check", "--url", "http://127.0.0.1:9/version.txt"}), "");
    server.kill();
    server.waitForFinished();
}
