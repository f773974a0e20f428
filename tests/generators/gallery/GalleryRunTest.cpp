// What a gallery writes, read back with libvips and exiftool, and runs again into the same folder.
#include <fcntl.h>
#include <sys/stat.h>

#include "generators/GeneratorFixtures.h"
#include "generators/gallery/cResponsiveDesign.h"

using namespace gen;

namespace {

const QString kSmall =
    "tfSmallCropWidth=40, pubPhotoRatio=0, tfSmallCropHeight=30, tfBigCropWidth=80, "
    "tfBigCropHeight=0, ";

// Every file under `dir` but the hidden record: relative path -> identity (inode and time).
QMap<QString, RunManifest::FileState> identities(const QString& dir) {
    QMap<QString, RunManifest::FileState> files;
    for (const QString& file : filesUnder(dir))
        files.insert(file, RunManifest::stateOf(dir + file));
    return files;
}

RunResult runGallery(const QString& dest, const QStringList& photos, const QString& set,
                     RecordingUserInterface& ui, bool rebuild = false) {
    return cResponsiveDesign::hCreateResponsiveHTML(
        entries(photos),
        store(kSmall + "tfBigCropWidth=120, ifNumberOfColumns=2, ifNumberOfRows=1, " + set), ui,
        RunOptions{dest, 2, false, false, rebuild});
}

// The gallery's images of `photos`, made into a fresh folder with these settings; the folder.
QString derive(const QStringList& photos, const QString& set) {
    const QString dir = freshDir("gallery-derivatives");
    for (const char* folder : {"KLimages_s", "KLimages_b", "KLimages_b2x"})
        QDir().mkpath(dir + folder);
    for (const QString& photo : photos)
        EXPECT_EQ(cResponsiveDesign::hScaleImageMaxValueHTML(
                      photo, cResponsiveDesign::readSettings(store(set), dir).image),
                  QStringList());
    return dir;
}

QStringList images(const QStringList& photos) {
    QStringList files;
    for (const char* folder : {"KLimages_b/", "KLimages_b2x/", "KLimages_s/"})
        for (const QString& photo : photos)
            files << folder + QFileInfo(photo).completeBaseName() + ".jpeg";
    files.sort();
    return files;
}

}  // namespace

// Images in other formats than the photos, captions from metadata, a pattern. A second run keeps
// the support files that are there and writes the redirect again.
TEST(GalleryRun, FilesOfARun) {
    const QString src = freshDir("gallery-run-src"), dir = freshDir("gallery-run");
    const QList<PhotoEntry> photos = entries(
        {makePhoto(src, "wide.png", 400, 300), makePhoto(src, "tall.jpg", 300, 400)}, {"<i>"});
    const SettingsStore settings =
        store(kSmall +
              "pbImageFormat=png, pbBIGImageFormat=tiff, cbPgShowMetaData=1, btShowFileName=0, "
              "tfPgMetaDataToShow=EXIF User Comment;Show Filename, tfPgMetaDataValueSep= / , "
              "cbTbRdShowPatternImage=1, tfTbRdPatternPath=" +
              makePhoto(src, "dots.png", 8, 8));
    RecordingUserInterface ui;
    const RunResult result =
        cResponsiveDesign::hCreateResponsiveHTML(photos, settings, ui, {dir, 2, true});
    ASSERT_TRUE(result.ok && result.failures.isEmpty() && ui.alerts.empty());
    EXPECT_EQ(ui.opened, QStringList{"file:///" + dir + "myIndex.html"});
    const QString page = readText(dir + "myIndex.html");
    EXPECT_TRUE(page.contains(R"(title="&lt;i&gt; / wide.png">)") &&
                page.contains(R"(title="tall.jpg">)"));
    // Only the images in their formats: the working copies in the photos' types are gone.
    EXPECT_EQ(filesUnder(dir + "KLimages_s/"), QStringList({"tall.png", "wide.png"}));
    EXPECT_EQ(filesUnder(dir + "KLimages_b/"), QStringList({"tall.tiff", "wide.tiff"}));
    EXPECT_EQ(header(dir + "KLimages_s/tall.png") + ", " + header(dir + "KLimages_b/tall.tiff"),
              "40x30 pngload, 60x80 tiffload");

    QStringList kept = {"KLovPatterns/dots.png"};
    for (const char* name :
         {"close.gif", "loading.gif", "klOrvella.png", "overlay.png", "jquery.lightbox.js",
          "jquery02.lightbox.js", "next.png", "close.png", "previous.png"})
        kept << QString("KLovlightbox/") + name;
    for (const QString& name : kept) {
        EXPECT_GT(QFile(dir + name).size(), 0) << name;
        testsupport::writeFile(dir + name, "kept");
    }
    QFile::remove(dir + "index.html");
    ASSERT_TRUE(cResponsiveDesign::hCreateResponsiveHTML(photos, settings, ui, {dir, 1}).ok);
    for (const QString& name : kept) EXPECT_EQ(readText(dir + name), "kept") << name;
    EXPECT_TRUE(QFile::exists(dir + "index.html"));
}

// A landscape PNG, a portrait JPEG and a portrait TIFF: sizes, creator and artist of the thumbnails
// and big images, by exiftool. The metadata stays only when the photo is a JPEG or TIFF and the
// output keeps it; the TIFF reader brings XMP but no EXIF along. Nothing else is left.
TEST(GalleryRun, Derivatives) {
    const QString src = freshDir("gallery-derivatives-src");
    const QStringList photos = {makePhoto(src, "a.png", 400, 300),
                                makePhoto(src, "b.jpg", 300, 400),
                                makePhoto(src, "c.tif", 300, 400)};
    for (const QString& photo : photos)
        fixtures::tag(photo, {"-Artist=Keldra", "-XMP-dc:Creator=Keldra"});
    const QString none = "- -|- -|- -";
    const std::tuple<QString, QString, QString, QString> cases[] = {
        // Scale by width and by height: only the height step stays...
        {"pubThumbAction=1, tfSmallCropWidth=100, tfSmallCropHeight=120, tfBigCropWidth=160",
         "160x120 90x120 90x120", "160x120 120x160 120x160", none},
        // ... unless it makes nothing (a crop height of 0): then the width step's image is written.
        {"pubThumbAction=1, tfSmallCropWidth=60, tfSmallCropHeight=0, tfBigCropWidth=100",
         "60x45 45x60 45x60", "100x75 75x100 75x100", none},
        // Cut at the centre to 40 x 30, the big image 80 on its longest side; frames keep the size.
        {"tfSmallFramingThickness=10, tfBigFramingThickness=6, cwNSColorWellObjBsImage=FF0000",
         "40x30 40x30 40x30", "80x60 60x80 60x80", none},
        // The big images cut to 200 x 100, the portrait ones only 150 wide.
        {"tfSmallCropWidth=200, tfSmallCropHeight=150, tfBigCropWidth=200, tfBigCropHeight=100",
         "200x150 200x150 200x150", "200x100 150x100 150x100", none},
        {"pbImageFormat=png, pbBIGImageFormat=png", "40x30 40x30 40x30", "80x60 60x80 60x80",
         "- -|Keldra Keldra|Keldra -"},
    };
    for (const auto& [set, thumbs, bigs, metadata] : cases) {
        SCOPED_TRACE(set);
        const QString dir = derive(photos, kSmall + set);
        for (const auto& [folder, sizes] :
             {std::pair{"KLimages_s/", thumbs}, {"KLimages_b/", bigs}}) {
            QStringList files, expected;
            for (const QString& f : QDir(dir + folder).entryList(QDir::Files | QDir::Hidden))
                files << dir + folder + f;
            for (int i = 0; i < 3; ++i)
                expected << sizes.split(' ').value(i) + " " + metadata.split('|').value(i);
            QString out;
            testsupport::runProgram(
                "exiftool",
                QStringList{"-q", "-T", "-ImageSize", "-XMP:Creator", "-EXIF:Artist"} + files,
                &out);
            EXPECT_EQ(out.replace('\t', ' ').trimmed().split('\n'), expected) << folder;
        }
    }
}

// A thumbnail is a plain crop of the photo at the chosen position and shift, scaled to the box.
// (The larger big image, at the screen's pixels: tests/browser.)
TEST(GalleryRun, ThumbnailsArePlainCrops) {
    const QString photo = cameraPhotos(1).first();
    const vips::VImage source = fixtures::load(photo);
    const int W = source.width(), H = source.height();
    const std::tuple<const char*, int, int, int, int, int> cases[] = {
        {"", 160, 90, 4, 0, 0},
        {"tfSmallCropWidth=90, tfSmallCropHeight=160, scImageCropThumbPos=3", 90, 160, 3, 0, 0},
        {"tfCropThumbXOffset=20, tfCropThumbYOffset=-5", 160, 90, 4, 20, -5}};
    for (const auto& [set, cw, ch, position, shiftX, shiftY] : cases) {
        SCOPED_TRACE(set);
        const QString dir = derive({photo},
                                   "tfSmallCropWidth=160, tfSmallCropHeight=90, "
                                   "tfBigCropWidth=400, tfBigCropHeight=0, " +
                                       QString(set));
        const double scale = std::max(double(cw) / W, double(ch) / H);
        const int boxW = int(cw / scale), boxH = int(ch / scale);
        // The box's offset along a side with `free` pixels to spare: start, middle or end, shifted.
        const auto at = [&](int free, int step, int shift) {
            return std::clamp(free * step / 2 + int(shift / scale), 0, free);
        };
        const vips::VImage expected =
            source
                .extract_area(at(W - boxW, position % 3, shiftX),
                              at(H - boxH, position / 3, shiftY), boxW, boxH)
                .resize(double(cw) / boxW,
                        vips::VImage::option()->set("vscale", double(ch) / boxH));
        const vips::VImage thumb =
            fixtures::load(dir + "KLimages_s/" + QFileInfo(photo).completeBaseName() + ".jpeg");
        ASSERT_EQ(fixtures::Size(thumb.width(), thumb.height()), fixtures::Size(cw, ch));
        EXPECT_LT((thumb.cast(VIPS_FORMAT_FLOAT) -
                   expected.extract_area(0, 0, cw, ch).cast(VIPS_FORMAT_FLOAT))
                      .abs()
                      .avg(),
                  4.0);
    }
}

TEST(GalleryRerun, KeepsWhatIsUnchangedAndEndsAsAFullRun) {
    // What changes between the runs, and the first photos whose images are made again.
    const std::tuple<QString, QString, bool, int> cases[] = {
        {"identical second run", "", false, 0},
        {"photo's time changed", "", false, 1},
        {"photo grown, its time put back", "", false, 1},
        {"rebuild", "", true, 3},
        {"big image size changed", "tfBigCropWidth=100", false, 3},
        {"thumbnail altered", "", false, 1},
    };
    for (const auto& [name, set, rebuild, remade] : cases) {
        SCOPED_TRACE(name);
        const QStringList photos = cameraPhotos(3, freshDir("gallery-rerun-src"));
        const QString dest = freshDir("gallery-rerun-out");
        RecordingUserInterface ui;
        const RunResult first = runGallery(dest, photos, "", ui);
        ASSERT_TRUE(first.ok && first.failures.isEmpty());
        if (name == "photo's time changed") {
            QFile file(photos[0]);
            ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                        file.setFileTime(QDateTime::currentDateTime().addDays(-1),
                                         QFileDevice::FileModificationTime));
        } else if (name == "photo grown, its time put back") {  // as metadata editors may do
            struct stat was;
            ASSERT_EQ(stat(photos[0].toUtf8().constData(), &was), 0);
            testsupport::writeFile(photos[0], testsupport::readFile(photos[0]) + "x");
            const timespec times[] = {was.st_atim, was.st_mtim};
            ASSERT_EQ(utimensat(AT_FDCWD, photos[0].toUtf8().constData(), times, 0), 0);
        } else if (name == "thumbnail altered") {
            QFile file(dest + images(photos.mid(0, 1)).last());
            ASSERT_TRUE(file.open(QIODevice::Append) && file.write("x") == 1);
        }
        const QMap<QString, RunManifest::FileState> before = identities(dest);

        const RunResult second = runGallery(dest, photos, set, ui, rebuild);
        EXPECT_TRUE(second.ok && second.failures.isEmpty() && ui.alerts.empty());
        QStringList changed;
        for (const auto& [file, state] : identities(dest).asKeyValueRange())
            if (before.value(file) != state) changed.append(file);
        // Nothing but the images named changes identity, unless a setting changed.
        EXPECT_EQ(set.isEmpty() ? changed : changed.filter("KLimages_"),
                  images(photos.mid(0, remade)));

        // Byte for byte what a full run into an empty folder writes.
        const QString full = freshDir("gallery-rerun-full");
        ASSERT_TRUE(runGallery(full, photos, set, ui).ok);
        EXPECT_TRUE(siteUnder(dest) == siteUnder(full));
    }
}
