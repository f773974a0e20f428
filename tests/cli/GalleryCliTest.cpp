// `orvella generate gallery` and `orvella settings gallery`, run as the user runs them.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::runProgram;

namespace {

int orvella(const QStringList& args, QString* out = nullptr, QString* err = nullptr) {
    return runProgram(ORVELLA_BINARY, args, out, err);
}

QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    const QString path = dir + name;
    EXPECT_EQ(
        runProgram("vips", {"black", path, QString::number(w), QString::number(h), "--bands", "3"}),
        0);
    return path;
}

QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

const QStringList kSmall = {"--set", "tfSmallCropWidth=40",  "--set", "pubPhotoRatio=Free",
                            "--set", "tfSmallCropHeight=30", "--set", "tfBigCropWidth=80"};

}  // namespace

TEST(GalleryCli, FolderPhotosInNameOrderWithFlags) {
    const QString src = freshDir("cli-gallery-src");
    makePhoto(src, "b.JPG", 60, 40);
    makePhoto(src, "a.png", 60, 40);
    makePhoto(src, "c.tif", 60, 40);
    makePhoto(src, "d.png", 60, 40);
    QFile note(src + "notes.txt");
    ASSERT_TRUE(note.open(QIODevice::WriteOnly));
    note.write("not a photo");
    note.close();
    const QString out = freshDir("cli-gallery-out") + "new/sub";
    QString stdOut, stdErr;
    ASSERT_EQ(orvella(QStringList{"generate", "gallery", "--out", out, "--unpublish", "d.png",
                                  "--set", "ifNumberOfColumns=2", "--set", "tfNumberOfRows=1",
                                  "--set", "pubPhotoGalleryModel=Table"} +
                          kSmall + QStringList{src},
                      &stdOut, &stdErr),
              0)
        << stdErr.toStdString();
    EXPECT_EQ(stdOut, out + "/myIndex.html\n");
    const QString first = readText(out + "/myIndex.html");
    const QString second = readText(out + "/myIndex2.html");
    EXPECT_LT(first.indexOf("KLimages_s/a.jpeg"), first.indexOf("KLimages_s/b.jpeg"));
    EXPECT_GE(first.indexOf("KLimages_s/a.jpeg"), 0);
    EXPECT_TRUE(second.contains("KLimages_s/c.jpeg"));
    EXPECT_FALSE(first.contains("d.jpeg") || second.contains("d.jpeg"));
    EXPECT_TRUE(first.contains("class=\"klOVresponsive\""));
    EXPECT_TRUE(QFile::exists(out + "/index.html"));

    // Sorted Z to A.
    const QString zout = freshDir("cli-gallery-za");
    ASSERT_EQ(orvella(QStringList{"generate", "gallery", "--out", zout, "--sort", "za"} + kSmall +
                      QStringList{src + "a.png", src + "c.tif"}),
              0);
    const QString page = readText(zout + "myIndex.html");
    EXPECT_LT(page.indexOf("KLimages_s/c.jpeg"), page.indexOf("KLimages_s/a.jpeg"));
}

TEST(GalleryCli, RefusalsAndWarnings) {
    const QString src = freshDir("cli-gallery-refusals");
    const QString photo = makePhoto(src, "a.png", 300, 200);
    struct Case {
        QStringList args;
        int code;
        const char* message;
    };
    const QString out = src + "out";
    const std::vector<Case> cases = {
        {{"--set", "tfNoSuchSetting=1", photo}, 2, "tfNoSuchSetting"},
        {{"--set", "pbFontFamily=Comic Sans", photo}, 2, "pbFontFamily"},
        {{"--set", "tfHTMLTitleColor=red", photo}, 2, "tfHTMLTitleColor"},
        {{"--set", "ifNumberOfColumns=0", photo}, 2, "Sorry, the page layout is not possible."},
        {{"--project", "x.orvprj", photo}, 2, "not available yet"},
        {{"--preset", "x.plist", photo}, 2, "not available yet"},
        {{"--unpublish", "zzz.png", photo}, 2, "zzz.png"},
        {{src + "missing.png"}, 2, "missing.png"},
        {{}, 2, "Sorry, you forgot to select photos. Please choose the photos."},
        {{"--unpublish", "a.png", photo}, 2, "Sorry, you forgot to select photos."},
    };
    for (const Case& c : cases) {
        QDir(out).removeRecursively();
        QString stdOut, stdErr;
        EXPECT_EQ(
            orvella(QStringList{"generate", "gallery", "--out", out} + c.args, &stdOut, &stdErr),
            c.code)
            << c.args.join(' ').toStdString();
        EXPECT_TRUE(stdErr.contains(c.message)) << stdErr.toStdString();
        EXPECT_FALSE(QFile::exists(out + "/KLcss")) << c.args.join(' ').toStdString();
    }
    // A warning is printed and the run goes on.
    QString stdOut, stdErr;
    EXPECT_EQ(
        orvella({"generate", "gallery", "--out", out, "--set", "pubPhotoRatio=0", "--set",
                 "tfSmallCropWidth=200", "--set", "tfSmallCropHeight=150", "--set",
                 "tfBigCropWidth=200", "--set", "tfBigCropHeight=100", "--threads", "2", photo},
                &stdOut, &stdErr),
        0);
    EXPECT_TRUE(
        stdErr.contains("warning: Sorry, some wrong properties: - Lightbox images are "
                        "smaller than your thumbnails. (Thumbnail size: 200)\n"))
        << stdErr.toStdString();
    EXPECT_FALSE(stdErr.contains('\r'));  // not a terminal: no progress bar
    EXPECT_TRUE(QFile::exists(out + "/myIndex.html"));
    EXPECT_EQ(orvella({"generate", "gallery", "--out", out, "--threads", "x", photo}), 2);
    EXPECT_EQ(orvella({"generate", "slideshow", "--out", out, photo}), 2);
}

TEST(GalleryCli, SettingsListing) {
    QString stdOut;
    ASSERT_EQ(orvella({"settings", "gallery"}, &stdOut), 0);
    const QStringList lines = stdOut.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.first(), "name\taliases\tkind\tdefault\titems");
    bool columns = false, opacity = false;
    for (const QString& line : lines) {
        const QStringList cells = line.split('\t');
        ASSERT_EQ(cells.size(), 5) << line.toStdString();
        if (cells[0] == "ifNumberOfColumns") {
            columns = true;
            EXPECT_EQ(cells[1], "tfNumberOfColumns");
            EXPECT_EQ(cells[3], "4");
        }
        if (cells[0] == "pubTbPatternOpacity") {
            opacity = true;
            EXPECT_TRUE(cells[4].startsWith("0.1 | 0.2 | "));
        }
    }
    EXPECT_TRUE(columns && opacity);
    EXPECT_EQ(orvella({"settings"}), 2);
    EXPECT_EQ(orvella({"settings", "nothing"}), 2);
    QString help;
    EXPECT_EQ(orvella({"generate", "--help"}, &help), 0);
    EXPECT_TRUE(help.contains("--threads N"));
}
