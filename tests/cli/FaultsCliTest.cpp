// Runs that meet real faults, through the command line as a user meets them. Refusals, which write
// nothing, are in RefusalCliTest.cpp.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QThread>
#include <csignal>

#include "services/AtomicFile.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {

const QStringList kKinds = {"gallery", "slideshow", "grid"};

// A PNG whose header claims W x H pixels (its data is one pixel): no decoder gets that far.
const char* const kClaimingPng = R"(import struct, sys, zlib
def chunk(t, d): return struct.pack(">I", len(d)) + t + d + struct.pack(">I", zlib.crc32(t + d))
head = struct.pack(">IIBBBBB", int(sys.argv[2]), int(sys.argv[3]), 8, 2, 0, 0, 0)
open(sys.argv[1], "wb").write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) +
                              chunk(b"IDAT", zlib.compress(bytes(4))) + chunk(b"IEND", b""))
)";

// Every file under `dir` is whole: no temporary file, nothing empty, every image readable.
void expectWholeFiles(const QString& dir) {
    const auto files = contentsUnder(dir);
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        EXPECT_FALSE(AtomicFile::isTemporaryName(QFileInfo(it.key()).fileName())) << it.key();
        EXPECT_GT(it.value().size(), 0) << it.key();
        if (it.key().startsWith("KLimages_")) {
            EXPECT_EQ(runProgram("vips", {"avg", dir + it.key()}), 0) << it.key();
        }
    }
}

QStringList kindsRecorded(const QString& dir) {
    QStringList kinds;
    for (const QJsonValue& f :
         QJsonDocument::fromJson(readFile(dir + ".orvella-manifest"))["files"].toArray())
        kinds.append(f["kind"].toString());
    kinds.removeDuplicates();
    kinds.sort();
    return kinds;
}

}  // namespace

// Photos that cannot be made are named with their own reason and left out of every page: the
// pages are those of a run without them, and the exit code is 1.
TEST(Faults, BadAndHugePhotosAreLeftOutOfThePages) {
    const QString src = freshDir("faults-bad-src");
    const QString good = freshDir("faults-good-src");
    const QStringList photos = cameraPhotos(3, good);
    for (const QString& p : photos) QFile::copy(p, src + QFileInfo(p).fileName());
    writeFile(src + "Cut.jpg", readFile(photos[0]).left(20000));
    runProgram("python3", {"-c", kClaimingPng, src + "Claims.png", "60000", "60000"});
    runProgram("python3", {"-c", kClaimingPng, src + "Huge.png", "30000", "30000"});
    writeFile(src + "Noise.png", QByteArray(5000, 'x'));
    const QStringList reasons = {src + "Claims.png: too large (3600 megapixels; the limit is 250)",
                                 src + "Cut.jpg: truncated",
                                 src + "Huge.png: too large (900 megapixels; the limit is 250)",
                                 src + "Noise.png: not an image"};
    for (const QString& kind : kKinds) {
        const QString out = freshDir("faults-bad-" + kind),
                      clean = freshDir("faults-clean-" + kind);
        QString err;
        EXPECT_EQ(orvella({"generate", kind, "--out", out, src}, nullptr, &err), 1);
        for (const QString& reason : reasons)
            EXPECT_TRUE(err.contains("orvella generate: " + reason + "\n")) << kind << err;
        ASSERT_EQ(orvella({"generate", kind, "--out", clean, good}), 0);
        EXPECT_EQ(pagesUnder(out), pagesUnder(clean)) << kind;
    }
}

// A full disk (or, where no filesystem can be mounted, a file size limit): every failure names its
// own file and reason, nothing half written is left, no page path is printed unless written.
TEST(Faults, FullDiskMessagesAreEachTheirOwn) {
    const QString src = freshDir("faults-full-src");
    const QStringList photos = cameraPhotos(3, src);
    const QString out = freshDir("faults-full");
    const bool mounted = runProgram("mount", {"-t", "tmpfs", "-o", "size=160k", "tmpfs", out}) == 0;
    const QString reason = mounted ? "No space left on device" : "File too large";
    QString stdOut, err;
    const QString limit = mounted ? "unlimited" : "40";
    EXPECT_EQ(
        runProgram("bash",
                   {"-c", "trap '' XFSZ; ulimit -f " + limit + "; exec \"$@\"", "orvella",
                    ORVELLA_BINARY, "generate", "gallery", "--threads", "2", "--out", out, src},
                   &stdOut, &err),
        1);
    int failures = 0;
    for (const QString& line : err.split('\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith("orvella generate: " + out)) continue;
        ++failures;
        EXPECT_TRUE(line.endsWith(": " + reason)) << line;
        EXPECT_FALSE(QFile::exists(line.section(": ", 1, 1))) << line;
    }
    EXPECT_GT(failures, 0) << err;
    expectWholeFiles(out);
    const QString printed = stdOut.trimmed();
    EXPECT_TRUE(printed.isEmpty() || QFile::exists(printed)) << printed;
    if (mounted) runProgram("umount", {out});
}

// SIGTERM and SIGINT at several points of a run: it stops after the files being written, writes
// no page once stopped and says so with 143 or 130; a signal after the last photo stops nothing.
TEST(Faults, SignalsStopARunCleanly) {
    const QString src = freshDir("faults-signal-src");
    const QString photo = cameraPhotos(3, src).first();
    for (int i = 0; i < 40; ++i) QFile::link(photo, src + QStringLiteral("p%1.jpg").arg(i));
    for (const auto& [signal, afterMs] :
         std::vector<std::pair<int, int>>{{SIGTERM, 0}, {SIGINT, 500}, {SIGTERM, 2000}}) {
        const QString out = freshDir(QStringLiteral("faults-signal-%1").arg(afterMs));
        QProcess run;
        run.start(ORVELLA_BINARY, {"generate", "grid", "--out", out, src});
        ASSERT_TRUE(run.waitForStarted());
        while (!QFile::exists(out + ".orvella-lock") && run.state() == QProcess::Running)
            QThread::msleep(5);
        QThread::msleep(afterMs);
        ::kill(pid_t(run.processId()), signal);
        ASSERT_TRUE(run.waitForFinished(120000));
        const QString err = QString::fromUtf8(run.readAllStandardError());
        expectWholeFiles(out);
        if (run.exitStatus() == QProcess::CrashExit || run.exitCode() == 0) {  // too late to stop
            EXPECT_TRUE(QFile::exists(out + "index.html"));
            EXPECT_TRUE(run.exitStatus() == QProcess::NormalExit || err.isEmpty()) << err;
            continue;
        }
        EXPECT_EQ(run.exitCode(), 128 + signal) << err;
        EXPECT_TRUE(err.contains("interrupted: no page was written")) << err;
        EXPECT_FALSE(QFile::exists(out + "index.html"));
        EXPECT_TRUE(QFile::exists(out + ".orvella-manifest"));
        EXPECT_FALSE(QFile::exists(out + ".orvella-lock"));
    }
}

// Two runs into one folder at once: the second waits, the record keeps both kinds, so --clean of
// each finds its own files; --no-wait refuses, naming the other.
TEST(Faults, OneWriterPerFolder) {
    const QString src = freshDir("faults-lock-src");
    const QStringList photos = cameraPhotos(3, src);
    const QString out = freshDir("faults-lock");
    QProcess first;
    first.start(ORVELLA_BINARY, {"generate", "gallery", "--out", out, src});
    ASSERT_TRUE(first.waitForStarted());
    while (!QFile::exists(out + ".orvella-lock") && first.state() == QProcess::Running)
        QThread::msleep(10);
    QString err;
    EXPECT_EQ(orvella({"generate", "slideshow", "--no-wait", "--out", out, src}, nullptr, &err), 2);
    EXPECT_TRUE(err.contains(QStringLiteral("Process %1 is writing into").arg(first.processId())))
        << err;
    EXPECT_EQ(orvella({"generate", "grid", "--out", out, src}, nullptr, &err), 0) << err;
    ASSERT_TRUE(first.waitForFinished(120000));
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().toStdString();
    EXPECT_EQ(kindsRecorded(out), QStringList({"gallery", "grid"}));
    // The gallery without its first photo: --clean removes that photo's gallery images only.
    const QString base = QFileInfo(photos[0]).completeBaseName();
    EXPECT_EQ(orvella({"generate", "gallery", "--clean", "--out", out, photos[1], photos[2]}), 0);
    EXPECT_FALSE(QFile::exists(out + "KLimages_s/" + base + ".jpeg"));
    EXPECT_TRUE(QFile::exists(out + "KLovImages/" + base + ".jpeg"));
    EXPECT_EQ(kindsRecorded(out), QStringList({"gallery", "grid"}));
    EXPECT_FALSE(QFile::exists(out + ".orvella-lock"));
}

// Temporary files a killed run left in the output are removed by the next run; others stay.
TEST(FileSafety, LeftoversOfAKilledRunAreRemoved) {
    const QString src = freshDir("safety-leftovers-src");
    const QString out = freshDir("safety-leftovers");
    for (const QString name : {"KLimages_b/.orvella-tmp-1f2e-a.jpeg",
                               ".orvella-tmp-99-myIndex.html", "KLimages_b/mine.jpeg"})
        writeFile(out + name, "half");
    orvellaOut(0, {"generate", "gallery", "--out", out, makePhoto(src + "a.jpg")});
    EXPECT_FALSE(QFile::exists(out + "KLimages_b/.orvella-tmp-1f2e-a.jpeg"));
    EXPECT_FALSE(QFile::exists(out + ".orvella-tmp-99-myIndex.html"));
    EXPECT_TRUE(QFile::remove(out + "KLimages_b/mine.jpeg"));  // the user's own file stayed
    expectWholeFiles(out);
}

// A file where an image folder goes, or a folder where an image goes: those images fail, named;
// the user's file or folder stays and no page links the photo.
TEST(FileSafety, UnwritableImagesGiveNamedFailures) {
    const QString photo = makePhoto(freshDir("safety-blocked-src") + "a.png");
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
            writeFile(out + blocker, "mine");
        QString err;
        EXPECT_EQ(orvellaOut(1, {"generate", kind, "--out", out, photo}, &err), "");
        EXPECT_TRUE(err.contains("orvella generate: " + out + QString(blocker).chopped(folder)))
            << err;
        EXPECT_FALSE(QFile::exists(out + page));
        EXPECT_TRUE(folder ? QFileInfo(out + blocker).isDir() : readFile(out + blocker) == "mine");
    }
}

// The comment writer refuses a truncated TIFF and an oversized comment; a hard-linked JPEG keeps
// its links and mode.
TEST(FileSafety, CommentWriterChecksItsWork) {
    const QString dir = freshDir("safety-comment");
    const QByteArray tiff = readFile(makePhoto(dir + "full.tif", 300, 200));
    writeFile(dir + "cut.tif", tiff.left(tiff.size() / 2));
    EXPECT_EQ(orvellaOut(1, {"meta", "set-comment", dir + "cut.tif", "hello"}), "Failed\n");
    EXPECT_EQ(readFile(dir + "cut.tif"), tiff.left(tiff.size() / 2));

    const QString photo = makePhoto(dir + "linked.jpg");
    const QByteArray name = QFile::encodeName(photo);
    ASSERT_EQ(::link(name.constData(), QFile::encodeName(dir + "other.jpg").constData()), 0);
    ASSERT_EQ(::chmod(name.constData(), 0640), 0);
    const QByteArray before = readFile(photo);
    QString err;
    orvellaOut(1, {"meta", "set-comment", photo, QString(70000, 'x')}, &err);
    EXPECT_TRUE(err.contains("too long")) << err;
    EXPECT_EQ(readFile(photo), before);

    orvellaOut(0, {"meta", "set-comment", photo, "Harbour at dusk"});
    struct stat status {};
    ASSERT_EQ(::stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_nlink, 2u);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(exiftool(dir + "other.jpg", "UserComment"), "Harbour at dusk");
    EXPECT_TRUE(QDir(dir).entryList({".orvella-tmp-*"}, QDir::Files | QDir::Hidden).isEmpty());
}
