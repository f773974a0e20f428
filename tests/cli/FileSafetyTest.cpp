// What a user relies on: inputs never touched, files whole or absent, an exit code that tells
// the truth. Run as the user runs them, and checked on the files themselves. Refusals, which
// write nothing, are in RefusalCliTest.cpp.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFileInfo>

#include "support/TestSupport.h"

using testsupport::contentsUnder;
using testsupport::freshDir;
using testsupport::orvellaOut;
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

// Every file under `dir` is whole: no temporary file, nothing empty, every image readable.
void expectWholeFiles(const QString& dir) {
    const auto files = contentsUnder(dir);
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        EXPECT_FALSE(it.key().contains(".orvella-tmp-")) << qPrintable(it.key());
        EXPECT_GT(it.value().size(), 0) << qPrintable(it.key());
        if (it.key().startsWith("KLimages_")) {
            EXPECT_EQ(runProgram("vips", {"avg", dir + it.key()}), 0) << qPrintable(it.key());
        }
    }
}

const QStringList kGallery = {"generate", "gallery",
                              "--set",    "tfSmallCropWidth=40",
                              "--set",    "pubPhotoRatio=Free",
                              "--set",    "tfSmallCropHeight=30"};

}  // namespace

// Images larger than the file-size limit fail with the reason; the run finishes what it can and
// exits 1; no file is left truncated, empty or under a temporary name.
TEST(FileSafety, FileSizeLimitGivesNamedFailuresAndNoBrokenFile) {
    const QString src = freshDir("safety-fsize-src");
    const QString out = freshDir("safety-fsize");
    const QStringList photos = {makeNoisyPhoto(src, "one.jpg", 1500, 1000),
                                makeNoisyPhoto(src, "two.jpg", 1500, 1000)};
    QString err;
    const int code = runProgram(
        "bash",
        QStringList{"-c", "trap '' XFSZ; ulimit -f 96; exec \"$@\"", "orvella", ORVELLA_BINARY} +
            kGallery + QStringList{"--out", out} + photos,
        nullptr, &err);
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
    for (const QString name : {"KLimages_b/.orvella-tmp-1f2e-a.jpeg",
                               ".orvella-tmp-99-myIndex.html", "KLimages_b/mine.jpeg"})
        testsupport::writeFile(out + name, "half");
    orvellaOut(0, kGallery + QStringList{"--out", out, makeNoisyPhoto(src, "a.jpg", 90, 60)});
    EXPECT_FALSE(QFile::exists(out + "KLimages_b/.orvella-tmp-1f2e-a.jpeg"));
    EXPECT_FALSE(QFile::exists(out + ".orvella-tmp-99-myIndex.html"));
    EXPECT_TRUE(QFile::remove(out + "KLimages_b/mine.jpeg"));  // the user's own file stayed
    expectWholeFiles(out);
}

// A file where an image folder goes, or a folder where an image goes: those images fail and are
// named, the exit code says so, the user's file or folder stays, and no page links the photo.
TEST(FileSafety, UnwritableImagesGiveNamedFailures) {
    const QString photo = testsupport::makePhoto(freshDir("safety-blocked-src") + "a.png");
    for (const auto& [kind, blocker, page] :
         {std::tuple{"gallery", "KLimages_b", "myIndex.html"},
          std::tuple{"slideshow", "KLSsImages", "slideshow.html"},
          std::tuple{"grid", "KLovImages", "index.html"},
          std::tuple{"slideshow", "KLSsImages/a.jpeg/", "slideshow.html"}}) {
        SCOPED_TRACE(blocker);
        const QString out = freshDir("safety-blocked");
        const bool folder = QString(blocker).endsWith('/');
        if (folder)
            QDir().mkpath(out + blocker);
        else
            testsupport::writeFile(out + blocker, "mine");
        QString err;
        EXPECT_EQ(orvellaOut(1, {"generate", kind, "--out", out, photo}, &err), "");
        EXPECT_TRUE(err.contains("orvella generate: " + out + QString(blocker).chopped(folder)))
            << qPrintable(err);
        EXPECT_FALSE(QFile::exists(out + page));
        EXPECT_TRUE(folder ? QFileInfo(out + blocker).isDir()
                           : testsupport::readFile(out + blocker) == "mine");
    }
}

// The comment writer refuses a truncated TIFF and an oversized comment, leaving the file as it
// was; a hard-linked JPEG keeps its links and mode, and the comment reads back through exiftool.
TEST(FileSafety, CommentWriterChecksItsWork) {
    const QString dir = freshDir("safety-comment");
    const QByteArray tiff =
        testsupport::readFile(testsupport::makePhoto(dir + "full.tif", 300, 200));
    testsupport::writeFile(dir + "cut.tif", tiff.left(tiff.size() / 2));
    EXPECT_EQ(orvellaOut(1, {"meta", "set-comment", dir + "cut.tif", "hello"}), "Failed\n");
    EXPECT_EQ(testsupport::readFile(dir + "cut.tif"), tiff.left(tiff.size() / 2));

    const QString photo = makeNoisyPhoto(dir, "linked.jpg", 60, 40);
    const QByteArray name = QFile::encodeName(photo);
    ASSERT_EQ(::link(name.constData(), QFile::encodeName(dir + "other.jpg").constData()), 0);
    ASSERT_EQ(::chmod(name.constData(), 0640), 0);
    const QByteArray before = testsupport::readFile(photo);
    QString err;
    orvellaOut(1, {"meta", "set-comment", photo, QString(70000, 'x')}, &err);
    EXPECT_TRUE(err.contains("too long")) << qPrintable(err);
    EXPECT_EQ(testsupport::readFile(photo), before);

    orvellaOut(0, {"meta", "set-comment", photo, "Harbour at dusk"});
    struct stat status {};
    ASSERT_EQ(::stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_nlink, 2u);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(testsupport::exiftool(dir + "other.jpg", "UserComment"), "Harbour at dusk");
    EXPECT_TRUE(QDir(dir).entryList({".orvella-tmp-*"}, QDir::Files | QDir::Hidden).isEmpty());
}
