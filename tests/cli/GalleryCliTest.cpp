// `orvella generate gallery` and `orvella settings gallery`, run as the user runs them.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvella;
using testsupport::runProgram;

namespace {

QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    EXPECT_EQ(runProgram("vips", {"black", dir + name, QString::number(w), QString::number(h),
                                  "--bands", "3"}),
              0);
    return dir + name;
}

QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

const QStringList kSmall = {"--set", "tfSmallCropWidth=40",  "--set", "pubPhotoRatio=Free",
                            "--set", "tfSmallCropHeight=30", "--set", "tfBigCropWidth=80"};

}  // namespace

// A folder gives its photos by name whatever the extension's case; other files are left out.
TEST(GalleryCli, FolderOrderSortAndUnpublish) {
    const QString src = freshDir("cli-gallery-src");
    for (const char* name : {"b.JPG", "a.png", "c.tif", "d.png"}) makePhoto(src, name, 60, 40);
    QFile note(src + "notes.txt");
    ASSERT_TRUE(note.open(QIODevice::WriteOnly) && note.write("not a photo") > 0);
    note.close();
    const QString out = freshDir("cli-gallery-out") + "new/sub";
    QString stdOut, stdErr;
    ASSERT_EQ(orvella(QStringList{"generate", "gallery", "--out", out, "--unpublish", "d.png",
                                  "--set", "ifNumberOfColumns=2", "--set", "tfNumberOfRows=1"} +
                          kSmall + QStringList{src},
                      &stdOut, &stdErr),
              0)
        << stdErr.toStdString();
    EXPECT_EQ(stdOut, out + "/myIndex.html\n");
    const QString pages = readText(out + "/myIndex.html") + readText(out + "/myIndex2.html");
    EXPECT_LT(pages.indexOf("KLimages_s/a.jpeg"), pages.indexOf("KLimages_s/b.jpeg"));
    EXPECT_LT(pages.indexOf("KLimages_s/b.jpeg"), pages.indexOf("KLimages_s/c.jpeg"));
    EXPECT_GE(pages.indexOf("KLimages_s/a.jpeg"), 0);
    EXPECT_FALSE(pages.contains("d.jpeg") || pages.contains("notes"));

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
    const QString out = src + "out";
    const std::vector<std::pair<QStringList, const char*>> cases = {
        {{"--set", "tfNoSuchSetting=1", photo}, "tfNoSuchSetting"},
        {{"--set", "tfHTMLTitleColor=red", photo}, "tfHTMLTitleColor"},
        {{"--set", "ifNumberOfColumns=0", photo}, "Sorry, the page layout is not possible."},
        {{"--unpublish", "a.png", photo}, "Sorry, you forgot to select photos."},
    };
    for (const auto& [args, message] : cases) {
        QString stdErr;
        EXPECT_EQ(
            orvella(QStringList{"generate", "gallery", "--out", out} + args, nullptr, &stdErr), 2)
            << args.join(' ').toStdString();
        EXPECT_TRUE(stdErr.contains(message)) << stdErr.toStdString();
        EXPECT_FALSE(QFile::exists(out + "/KLcss")) << args.join(' ').toStdString();
    }
    // A warning is printed and the run goes on.
    QString stdErr;
    EXPECT_EQ(orvella({"generate", "gallery", "--out", out, "--set", "pubPhotoRatio=0", "--set",
                       "tfSmallCropWidth=200", "--set", "tfSmallCropHeight=150", "--set",
                       "tfBigCropWidth=200", "--set", "tfBigCropHeight=100", photo},
                      nullptr, &stdErr),
              0);
    EXPECT_TRUE(
        stdErr.contains("warning: Sorry, some wrong properties: - Lightbox images are "
                        "smaller than your thumbnails. (Thumbnail size: 200)\n"))
        << stdErr.toStdString();
    EXPECT_TRUE(QFile::exists(out + "/myIndex.html"));
    // An exact multiple of a page gives no page: kept, but the user is told.
    const QString none = src + "none";
    EXPECT_EQ(orvella(QStringList{"generate", "gallery", "--out", none, "--set",
                                  "ifNumberOfColumns=1", "--set", "ifNumberOfRows=1", photo},
                      nullptr, &stdErr),
              0);
    EXPECT_TRUE(stdErr.contains("warning: No page will be written: 1 photos fill exactly 1 pages"))
        << stdErr.toStdString();
    EXPECT_FALSE(QFile::exists(none + "/myIndex.html"));
}

// Photos whose images would take the same names are named in a warning; the run goes on.
TEST(GalleryCli, SharedOutputNamesAreNamed) {
    const QString src = freshDir("cli-gallery-shared");
    ASSERT_TRUE(QDir().mkpath(src + "x") && QDir().mkpath(src + "y"));
    const QStringList photos = {
        makePhoto(src, "x/small.jpg", 60, 40), makePhoto(src, "y/small.jpg", 60, 40),
        makePhoto(src, "y/small.png", 60, 40), makePhoto(src, "y/other.png", 60, 40)};
    QString stdOut, stdErr;
    ASSERT_EQ(orvella(QStringList{"generate", "gallery", "--out", src + "out"} + kSmall + photos,
                      &stdOut, &stdErr),
              0);
    EXPECT_EQ(stdErr.count("warning: Photos make images of the same name"), 1)
        << stdErr.toStdString();
    EXPECT_EQ(stdErr.count("both make the images named"), 2) << stdErr.toStdString();
    EXPECT_TRUE(stdErr.contains(photos[0] + " and " + photos[1] +
                                " both make the images named "
                                "\"small\""))
        << stdErr.toStdString();
    EXPECT_TRUE(stdErr.contains(photos[0] + " and " + photos[2])) << stdErr.toStdString();
    EXPECT_FALSE(stdErr.contains("other")) << stdErr.toStdString();
    EXPECT_EQ(stdOut.split('\n', Qt::SkipEmptyParts).last(), src + "out/myIndex.html");
}

TEST(GalleryCli, SettingsListing) {
    QString stdOut;
    ASSERT_EQ(orvella({"settings", "gallery"}, &stdOut), 0);
    const QStringList lines = stdOut.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.first(), "name\taliases\tkind\tdefault\titems\tlabel");
    for (const QString& line : lines) EXPECT_EQ(line.count('\t'), 5) << line.toStdString();
    const QStringList columns = lines.filter("ifNumberOfColumns\t").value(0).split('\t');
    ASSERT_EQ(columns.size(), 6);
    EXPECT_EQ(columns[1], "tfNumberOfColumns");
    EXPECT_EQ(columns[3], "4");
    // A user finds a setting by the words the window shows.
    EXPECT_EQ(lines.filter("Big images (lightbox): Width").value(0).section('\t', 0, 0),
              "tfBigCropWidth");
    EXPECT_EQ(orvella({"settings", "nothing"}), 2);
}
