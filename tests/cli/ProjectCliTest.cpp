// `orvella project save | show | build`, run as the user runs them; their refusals are in
// RefusalCliTest.cpp.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvellaOut;
using testsupport::runProgram;

namespace {

void makePhoto(const QString& path, int w, int h, const QString& caption) {
    testsupport::makePhoto(path, w, h);
    if (!caption.isEmpty()) {
        EXPECT_EQ(
            runProgram("exiftool", {"-q", "-overwrite_original", "-UserComment=" + caption, path}),
            0);
    }
}

// The site under `dir`, without the record of the run: that names the photos it was made from.
QMap<QString, QByteArray> site(const QString& dir) {
    auto files = testsupport::contentsUnder(dir);
    files.remove(".orvella-manifest");
    return files;
}

}  // namespace

// The site built from a project alone is the site `generate` writes of the same photos and
// settings, for every kind, also once the original photos are gone.
TEST(ProjectCli, BuildEqualsGenerate) {
    struct Case {
        const char* kind;
        QStringList sets;
    };
    for (const Case& c : std::vector<Case>{
             {"gallery", {"tfPageTitle=Harbour", "tfNumberOfColumns=2", "tfNumberOfRows=1"}},
             {"slideshow", {"tfSsWebPageTitle=Harbour", "cbSsWebPageTitle=1"}},
             {"grid", {"tfRgWebPageTitle=Harbour", "tfRGMaxColumns=3"}}}) {
        SCOPED_TRACE(c.kind);
        const QString dir = freshDir(QString("cli-project-build-") + c.kind);
        const QString src = dir + "src/";
        makePhoto(src + "a.jpg", 60, 40, "Harbour at dawn");
        makePhoto(src + "b.png", 40, 60, "");
        makePhoto(src + "c.jpg", 50, 50, "Hills");
        makePhoto(src + "d.tif", 64, 48, "Left out");
        QStringList selection = {"--sort", "za", "--unpublish", "d.tif", "--highlight", "a.jpg"};
        for (const QString& set : c.sets) selection << "--set" << set;
        selection << src;

        const QString page = orvellaOut(
            0, QStringList{"generate", c.kind, "--out", dir + "generated/", "--threads", "1"} +
                   selection);
        const QString project = dir + "project/Trip.orvprj";
        EXPECT_EQ(orvellaOut(0, QStringList{"project", "save", dir + "project", "--name", "Trip",
                                            "--kind", c.kind} +
                                    selection),
                  project + "\n");
        ASSERT_TRUE(QDir(src).removeRecursively());
        EXPECT_EQ(
            orvellaOut(0, {"project", "build", project, "--out", dir + "built/", "--threads", "1"}),
            QString(page).replace(dir + "generated/", dir + "built/"));
        const auto generated = site(dir + "generated/");
        EXPECT_GT(generated.size(), 4);
        EXPECT_EQ(site(dir + "built/").keys(), generated.keys());
        EXPECT_TRUE(site(dir + "built/") == generated);
        // The project itself is left as it was.
        EXPECT_EQ(QDir(dir + "project/photos").entryList(QDir::Files),
                  QStringList({"a.jpg", "b.png", "c.jpg", "d.tif"}));
    }
}

TEST(ProjectCli, ShowListsKindAndPhotos) {
    const QString dir = freshDir("cli-project-show");
    makePhoto(dir + "a.jpg", 60, 40, "Harbour\tat dawn");
    makePhoto(dir + "b.png", 40, 60, "");
    // An empty name takes the page file name.
    const QString file = dir + "p/holiday.orvprj";
    EXPECT_EQ(orvellaOut(0, {"project", "save", dir + "p", "--name", "", "--kind", "gallery",
                             "--set", "tfHTMLfileName=holiday", "--unpublish", "b.png",
                             "--highlight", "b.png", dir + "a.jpg", dir + "b.png"}),
              file + "\n");
    EXPECT_EQ(orvellaOut(0, {"project", "show", file}),
              "PhotoGallery\n"
              "1\ta.jpg\t1\t0\t60x40\tH\tHarbour\\tat dawn\n"
              "2\tb.png\t0\t1\t40x60\tV\t\n");
}
