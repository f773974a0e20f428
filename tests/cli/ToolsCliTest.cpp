// `orvella watermark | meta | image | support`, run as the user runs them and checked on the files
// they write, through exiftool and libvips, and photos of phones and the web through every kind.
// Their refusals are in RefusalCliTest.cpp.
#include <QImage>
#include <QRegularExpression>

#include "imaging/ImagingFixtures.h"
#include "metadata/MetaFixtures.h"
#include "support/FormatFixtures.h"

using namespace formatfixtures;
using namespace testsupport;

TEST(ToolsCli, WatermarkPrintsOneStatusLinePerFile) {
    const QString dir = freshDir("cli-watermark");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "a.png");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "b.jpg");
    fixtures::save(fixtures::solid(20, 10, {255, 0, 0}), dir + "mark.png");
    writeFile(dir + "notes.jpg", "plain words");
    EXPECT_EQ(
        orvellaOut(1, {"watermark", "text", "--out", dir + "out", "--set", "tfFontSize=30", "--set",
                       "tvWaterMarkText=Orvella", dir + "a.png", dir + "b.jpg", dir + "notes.jpg"}),
        dir + "a.png: OK\n" + dir + "b.jpg: OK\n" + dir + "notes.jpg: NOK\n");
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
    const QString dir = freshDir(QStringLiteral("cli-image"));
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "a.jpg");
    fixtures::save(fixtures::solid(40, 30, {128, 128, 128}), dir + "b.PNG");
    QString out = orvellaOut(
        0, {"image", "effect", "4", "--out", dir + "sepia", dir + "a.jpg", dir + "b.PNG"});
    EXPECT_TRUE(out.contains("OK  " + dir + "a.jpg -> ")) << out;
    EXPECT_TRUE(out.contains("skipped: " + dir + "b.PNG")) << out;
    EXPECT_FALSE(QFile::exists(dir + "sepia/b.PNG"));
    out = orvellaOut(0, {"image", "derive", "4", "20", "--out", dir + "small", dir});
    EXPECT_EQ(out.count("OK  "), 2) << out;
    EXPECT_EQ(fixtures::sizeOf(dir + "small/a.jpg").second, 20);
}

// get prints one line per name (one reader for all: "IPTC Description" repeats the value before
// it), tree indents two spaces per level, set-comment prints OK (Failed is in FaultsCliTest.cpp),
// complete "Keldra", batch a log line per success with its time and the failures on stderr.
TEST(ToolsCli, MetaReadsAndWritesComments) {
    const QString dir = freshDir("cli-meta");
    const QString photo = metafixtures::makeImage(dir + "harbour.jpg");
    metafixtures::tag(photo, {"-UserComment= Sunset", "-IPTC:City=Lyon"});
    writeFile(dir + "notes.jpg", "plain words");
    EXPECT_EQ(orvellaOut(0, {"meta", "get", photo, "IPTC Description", "IPTC City",
                             "IPTC Description", "Show Filename", "EXIF User Comment"}),
              "\nLyon\nLyon\nharbour.jpg\n Sunset\n");
    const QString tree = orvellaOut(0, {"meta", "tree", photo});
    EXPECT_TRUE(tree.startsWith("Exif:\n") && tree.contains("\n  Photo:\n") &&
                tree.contains("\n    User Comment:  Sunset\n") &&
                tree.contains("\nIPTC:\n  Application2:\n    City: Lyon\n"))
        << tree;
    // A file that cannot be read prints one empty line per name, and no tree.
    EXPECT_EQ(orvellaOut(0, {"meta", "get", dir + "notes.jpg", "EXIF User Comment", "IPTC City"}),
              "\n\n");
    EXPECT_EQ(orvellaOut(0, {"meta", "tree", dir + "missing.jpg"}), "");
    EXPECT_EQ(orvellaOut(0, {"meta", "set-comment", photo, "From the command line"}), "OK\n");
    EXPECT_EQ(orvellaOut(0, {"meta", "complete", photo, dir + "out.jpg"}), "Keldra\n");
    orvellaOut(1, {"meta", "complete", dir + "notes.jpg", dir + "n.jpg"});

    const QString batch = dir + "batch/";
    QDir().mkpath(batch);
    for (const QString name : {"a.jpg", "ro.jpg"})
        fixtures::save(fixtures::solid(30, 20, {90, 90, 90}), batch + name);
    ASSERT_TRUE(QFile::setPermissions(batch + "ro.jpg", QFile::ReadOwner));
    QString err;
    QString out = orvellaOut(1, {"meta", "batch", "--comment", "Sea fog", batch}, &err);
    static const QRegularExpression kTime("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\t");
    EXPECT_EQ(out.count(kTime), 1) << out;
    EXPECT_EQ(out.remove(kTime), "File Editing\tEdit meta data\tOK\ta.jpg\ta.jpg\t" + batch +
                                     "a.jpg\t" + batch + "a.jpg\n");
    EXPECT_TRUE(err.contains(batch + "ro.jpg: the file is read-only")) << err;
}

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

// Photos of phones and the web through every kind, an image tool and the metadata commands: their
// images upright, the right size, with their captions and colours.
TEST(FormatsCli, KindsToolsAndMetadata) {
    const QString dir = freshDir("cli-formats");
    QFile::copy(folder() + "photo.jpg", dir + "jpeg.heic");
    writeFile(dir + "random.webp", QByteArray(4000, 'x'));
    writeFile(dir + "zero.avif", {});
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
            << err;
        const QByteArray text = readFile(out + page);
        for (const QString& photo : files) {
            EXPECT_TRUE(text.contains(exiftool(photo, "UserComment").toUtf8()));
            expectLike(photo, out + images,
                       out + images + referenceOf(photo.section('/', -1)) + ".jpeg");
        }
    }

    // The image tool writes NAME.jpeg with the caption; the metadata command reads it.
    ASSERT_EQ(orvella(QStringList{"image", "derive", "3", "50", "--out", dir + "d"} + files), 0);
    for (const QString& photo : files) {
        const QString reference = folder() + referenceOf(photo.section('/', -1)) + ".jpg";
        const QString caption = exiftool(photo, "UserComment");
        expectLike(photo, dir + "d/", reference,
                   reference.endsWith("tall.jpg") ? "150x240" : "240x150");
        EXPECT_EQ(
            exiftool(dir + "d/" + QFileInfo(photo).completeBaseName() + ".jpeg", "UserComment"),
            caption);
        EXPECT_EQ(orvellaOut(0, {"meta", "get", photo, "EXIF User Comment", "IPTC City"}),
                  caption + "\n\n");
    }

    // WebP's comment is written (exiftool reads it back); HEIF, AVIF and JPEG XL are refused.
    for (const QString ext : {"webp", "heic", "avif", "jxl"}) {
        const QString copy = dir + "copy." + ext;
        QFile::copy(folder() + "land-" + ext + "." + ext, copy);
        const QByteArray before = readFile(copy);
        const int code = ext == u"webp" ? 0 : 1;
        QString err;
        EXPECT_EQ(orvella({"meta", "set-comment", copy, "New"}, nullptr, &err), code);
        EXPECT_EQ(orvella({"meta", "batch", "--comment", "New", copy}, nullptr, &err), code);
        if (code == 0)
            EXPECT_EQ(exiftool(copy, "UserComment") + exiftool(copy, "Validate"), "NewOK");
        else
            EXPECT_TRUE(readFile(copy) == before && err.contains("read, never written"));
    }
}

TEST(SupportCli, SetShowImportAndVanishedRoot) {
    const QString dir = freshDir("cli-support");
    const QProcessEnvironment env = homeIn(dir);
    const auto run = [&](const QStringList& args, int code = 0, QString* err = nullptr) {
        return orvellaOut(code, args, err, &env);
    };
    const QString root = dir + "root";
    QDir().mkpath(root);
    QString err;
    run({"support", "show"}, 1, &err);
    EXPECT_TRUE(err.contains("no support folder is set")) << err;

    const QString patterns = root + "/Keldra_SupportFiles/Patterns",
                  watermarks = root + "/Keldra_SupportFiles/Watermarks";
    const QString paths = root + "\n" + patterns + "\n" + watermarks + "\n";
    EXPECT_EQ(run({"support", "set", root}), paths);
    const QStringList builtIn = QDir(patterns).entryList(QDir::Files);
    EXPECT_GE(builtIn.size(), 3) << builtIn.join(' ');
    for (const QString& name : builtIn)
        EXPECT_TRUE(!QImage(patterns + "/" + name).isNull() &&
                    QFileInfo(patterns + "/" + name).isWritable())
            << name;
    EXPECT_TRUE(QDir(watermarks).entryList(QDir::Files).isEmpty());
    const QString config = QString::fromUtf8(readFile(dir + "config/KeldraCom/Orvella.conf"));
    EXPECT_TRUE(config.contains("PatternsDestination=" + patterns) &&
                config.contains("WatermarksDestination=" + watermarks) &&
                config.contains("SupportFilesDestination="))
        << config;

    // Importing: images are copied, other files refused; a file imported onto itself stays.
    const QString mine = makePhoto(dir + "mine.png", 8, 8);
    writeFile(dir + "notes.txt", "text");
    EXPECT_EQ(run({"support", "import", "patterns", mine}), patterns + "/mine.png\n");
    EXPECT_EQ(run({"support", "import", "watermarks", mine}), watermarks + "/mine.png\n");
    run({"support", "import", "patterns", dir + "notes.txt"}, 1, &err);
    EXPECT_TRUE(err.contains("notes.txt")) << err;
    EXPECT_EQ(run({"support", "import", "patterns", patterns + "/mine.png"}),
              patterns + "/mine.png\n");
    EXPECT_FALSE(QImage(patterns + "/mine.png").isNull());

    // Choosing the same root again keeps what was added.
    EXPECT_EQ(run({"support", "set", root}), paths);
    EXPECT_TRUE(QFileInfo::exists(patterns + "/mine.png"));
    EXPECT_EQ(run({"support", "show"}), paths);

    // The patterns folder gone: an import needs a new root first.
    QDir(patterns).removeRecursively();
    run({"support", "import", "patterns", mine}, 1);
    EXPECT_FALSE(QFileInfo::exists(patterns));

    // The root gone: the two lines; it cannot be chosen again.
    QDir(root).removeRecursively();
    EXPECT_EQ(run({"support", "show"}, 1, &err), "");
    EXPECT_TRUE(err.startsWith(
        "Oh! Your previous defined folder has gone!?\nSelect a new location please.\n"))
        << err;
    run({"support", "set", root}, 2);
    run({"support", "show"}, 1);
}
