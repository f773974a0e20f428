// What a user relies on: inputs never touched, files whole or absent, an exit code that tells
// the truth. Run as the user runs them, and checked on the files themselves.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvella;
using testsupport::runProgram;

namespace {

// A photo of noise, so its JPEG copies are large.
QString makeNoisyPhoto(const QString& dir, const QString& name, int w, int h) {
    runProgram("vips", {"gaussnoise", dir + name + ".v", QString::number(w), QString::number(h),
                        "--mean", "128", "--sigma", "60"});
    runProgram("vips", {"bandjoin", QStringLiteral("%1.v %1.v %1.v").arg(dir + name),
                        dir + name + "[Q=95]"});
    QFile::remove(dir + name + ".v");
    return dir + name;
}

QByteArray digest(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
               ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256)
               : QByteArray();
}

QStringList filesUnder(const QString& dir) {
    QStringList files;
    for (QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();)
        files.append(it.next());
    return files;
}

// Every file under `dir` is whole: no temporary file, nothing empty, every image readable.
void expectWholeFiles(const QString& dir) {
    for (const QString& file : filesUnder(dir)) {
        EXPECT_FALSE(QFileInfo(file).fileName().startsWith(".orvella-tmp-")) << qPrintable(file);
        EXPECT_GT(QFileInfo(file).size(), 0) << qPrintable(file);
        if (file.contains("KLimages_")) {
            EXPECT_EQ(runProgram("vips", {"avg", file}), 0) << qPrintable(file);
        }
    }
}

const QStringList kGallery = {"generate", "gallery",
                              "--set",    "tfSmallCropWidth=40",
                              "--set",    "pubPhotoRatio=Free",
                              "--set",    "tfSmallCropHeight=30"};

}  // namespace

// A photo inside the image folders of the output is refused before anything is written, and
// survives byte for byte.
TEST(FileSafety, PhotosInsideTheOutputFoldersAreRefused) {
    const QString out = freshDir("safety-inside");
    for (const char* folder : {"KLimages_b", "KLimages_s", "KLovlightbox"}) {
        QDir().mkpath(out + folder);
        const QString photo = makeNoisyPhoto(out + folder + "/", "a.jpg", 120, 80);
        const QByteArray before = digest(photo);
        QString err;
        EXPECT_EQ(orvella(kGallery + QStringList{"--out", out, photo}, nullptr, &err), 2);
        EXPECT_TRUE(err.contains(photo) && err.contains(QString(folder) + "/")) << qPrintable(err);
        EXPECT_EQ(digest(photo), before);
        EXPECT_FALSE(QFile::exists(out + "myIndex.html"));
        QDir(out + folder).removeRecursively();
    }
    // The slideshow's and the grid's image folders alike.
    for (const auto& [kind, folder] :
         {std::pair{"slideshow", "KLSsImages"}, std::pair{"grid", "KLovImages"}}) {
        QDir().mkpath(out + folder);
        const QString photo = makeNoisyPhoto(out + folder + "/", "b.jpeg", 120, 80);
        const QByteArray before = digest(photo);
        QString err;
        EXPECT_EQ(orvella({"generate", kind, "--out", out, photo}, nullptr, &err), 2) << kind;
        EXPECT_TRUE(err.contains(photo)) << qPrintable(err);
        EXPECT_EQ(digest(photo), before);
        QDir(out + folder).removeRecursively();
    }
}

// Images larger than the file-size limit fail with the reason; the run finishes what it can and
// exits 1; no file is left truncated, empty or under a temporary name.
TEST(FileSafety, FileSizeLimitGivesNamedFailuresAndNoBrokenFile) {
    const QString src = freshDir("safety-fsize-src");
    const QString out = freshDir("safety-fsize");
    const QStringList photos = {makeNoisyPhoto(src, "one.jpg", 1500, 1000),
                                makeNoisyPhoto(src, "two.jpg", 1500, 1000)};
    QString stdOut, err;
    const int code = runProgram(
        "bash",
        QStringList{"-c", "trap '' XFSZ; ulimit -f 96; exec \"$@\"", "orvella", ORVELLA_BINARY} +
            kGallery + QStringList{"--out", out} + photos,
        &stdOut, &err);
    EXPECT_EQ(code, 1) << qPrintable(err);
    for (const char* name : {"KLimages_b/one.jpeg", "KLimages_b/two.jpeg"}) {
        EXPECT_TRUE(err.contains(out + name)) << qPrintable(err);
        EXPECT_FALSE(QFile::exists(out + name));
    }
    EXPECT_TRUE(QFile::exists(out + "KLimages_s/one.jpeg"));  // the small ones fit
    expectWholeFiles(out);
}

// Temporary files a killed run left in the output are removed by the next run; others stay.
TEST(FileSafety, LeftoversOfAKilledRunAreRemoved) {
    const QString src = freshDir("safety-leftovers-src");
    const QString out = freshDir("safety-leftovers");
    QDir().mkpath(out + "KLimages_b");
    for (const QString name : {"KLimages_b/.orvella-tmp-1f2e-a.jpeg",
                               ".orvella-tmp-99-myIndex.html", "KLimages_b/mine.jpeg"}) {
        QFile file(out + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("half") == 4);
    }
    EXPECT_EQ(orvella(kGallery + QStringList{"--out", out, makeNoisyPhoto(src, "a.jpg", 90, 60)}),
              0);
    EXPECT_FALSE(QFile::exists(out + "KLimages_b/.orvella-tmp-1f2e-a.jpeg"));
    EXPECT_FALSE(QFile::exists(out + ".orvella-tmp-99-myIndex.html"));
    EXPECT_TRUE(QFile::remove(out + "KLimages_b/mine.jpeg"));  // the user's own file stayed
    expectWholeFiles(out);
}

// An image folder that is a file: its images fail, are named, and the exit code says so.
TEST(FileSafety, UnwritableFolderGivesNamedFailures) {
    const QString src = freshDir("safety-blocked-src");
    const QString out = freshDir("safety-blocked");
    QFile blocker(out + "KLimages_b");
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly) && blocker.write("mine") == 4);
    blocker.close();
    QString err;
    EXPECT_EQ(orvella(kGallery + QStringList{"--out", out, makeNoisyPhoto(src, "a.jpg", 90, 60)},
                      nullptr, &err),
              1);
    EXPECT_TRUE(err.contains(out + "KLimages_b/")) << qPrintable(err);
    EXPECT_EQ(digest(out + "KLimages_b"),
              QCryptographicHash::hash("mine", QCryptographicHash::Sha256));
}

// A page name that leads out of the output folder is refused and nothing is written.
TEST(FileSafety, PageNamesStayInTheOutputFolder) {
    const QString src = freshDir("safety-names-src");
    const QString root = freshDir("safety-names");
    const QString photo = makeNoisyPhoto(src, "a.jpg", 90, 60);
    for (const QString name : {"../../escaped", "..", "sub/page"}) {
        QString err;
        EXPECT_EQ(orvella(kGallery + QStringList{"--out", root + "out", "--set",
                                                 "tfHTMLfileName=" + name, photo},
                          nullptr, &err),
                  2)
            << qPrintable(name);
        EXPECT_TRUE(err.contains("page name")) << qPrintable(err);
        EXPECT_TRUE(filesUnder(root).isEmpty()) << qPrintable(filesUnder(root).join(' '));
    }
    EXPECT_FALSE(QFile::exists(root + "../escaped.html"));
}

// The comment writer refuses a truncated TIFF and an oversized comment, leaving the file as it
// was; a hard-linked JPEG keeps its links and mode, and the comment reads back through exiftool.
TEST(FileSafety, CommentWriterChecksItsWork) {
    const QString dir = freshDir("safety-comment");
    runProgram("vips", {"black", dir + "full.tif", "300", "200", "--bands", "3"});
    QFile full(dir + "full.tif");
    ASSERT_TRUE(full.open(QIODevice::ReadOnly));
    QFile cut(dir + "cut.tif");
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(full.read(full.size() / 2));
    cut.close();
    const QByteArray before = digest(dir + "cut.tif");
    QString out, err;
    EXPECT_EQ(orvella({"meta", "set-comment", dir + "cut.tif", "hello"}, &out, &err), 1);
    EXPECT_EQ(out, "Failed\n");
    EXPECT_EQ(digest(dir + "cut.tif"), before);

    const QString photo = makeNoisyPhoto(dir, "linked.jpg", 60, 40);
    ASSERT_EQ(::link(QFile::encodeName(photo).constData(),
                     QFile::encodeName(dir + "other.jpg").constData()),
              0);
    ASSERT_EQ(::chmod(QFile::encodeName(photo).constData(), 0640), 0);
    const QByteArray photoBefore = digest(photo);
    EXPECT_EQ(orvella({"meta", "set-comment", photo, QString(70000, 'x')}, &out, &err), 1);
    EXPECT_TRUE(err.contains("too long")) << qPrintable(err);
    EXPECT_EQ(digest(photo), photoBefore);

    EXPECT_EQ(orvella({"meta", "set-comment", photo, "Harbour at dusk"}, &out), 0);
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(photo).constData(), &status), 0);
    EXPECT_EQ(status.st_nlink, 2u);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(testsupport::exiftool(dir + "other.jpg", "UserComment"), "Harbour at dusk");
    EXPECT_TRUE(QDir(dir).entryList({".orvella-tmp-*"}, QDir::Files | QDir::Hidden).isEmpty());
}
