// `orvella project save | show | build`, run as the user runs them.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvella;
using testsupport::readFile;
using testsupport::runProgram;
using testsupport::writeFile;

namespace {

void makePhoto(const QString& path, int w, int h, const QString& caption) {
    EXPECT_EQ(
        runProgram("vips", {"black", path, QString::number(w), QString::number(h), "--bands", "3"}),
        0);
    if (!caption.isEmpty()) {
        EXPECT_EQ(
            runProgram("exiftool", {"-q", "-overwrite_original", "-UserComment=" + caption, path}),
            0);
    }
}

QMap<QString, QByteArray> tree(const QString& dir) {
    QMap<QString, QByteArray> files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        // The record of the run names the photos it was made from: not part of the site.
        if (it.fileName() != ".orvella-manifest")
            files.insert(QDir(dir).relativeFilePath(path), readFile(path));
    }
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
        QDir().mkpath(src);
        makePhoto(src + "a.jpg", 60, 40, "Harbour at dawn");
        makePhoto(src + "b.png", 40, 60, "");
        makePhoto(src + "c.jpg", 50, 50, "Hills");
        makePhoto(src + "d.tif", 64, 48, "Left out");
        QStringList selection = {"--sort", "za", "--unpublish", "d.tif", "--highlight", "a.jpg"};
        for (const QString& set : c.sets) selection << "--set" << set;
        selection << src;

        QString out, err;
        ASSERT_EQ(
            orvella(QStringList{"generate", c.kind, "--out", dir + "generated", "--threads", "1"} +
                        selection,
                    &out, &err),
            0)
            << err.toStdString();
        const QString generatedPage = out.trimmed();
        ASSERT_EQ(orvella(QStringList{"project", "save", dir + "project", "--name", "Trip",
                                      "--kind", c.kind} +
                              selection,
                          &out, &err),
                  0)
            << err.toStdString();
        const QString project = dir + "project/Trip.orvprj";
        EXPECT_EQ(out, project + "\n");
        ASSERT_TRUE(QDir(src).removeRecursively());

        ASSERT_EQ(orvella({"project", "build", project, "--out", dir + "built", "--threads", "1"},
                          &out, &err),
                  0)
            << err.toStdString();
        EXPECT_EQ(QDir(dir + "built").relativeFilePath(out.trimmed()),
                  QDir(dir + "generated").relativeFilePath(generatedPage));
        const auto generated = tree(dir + "generated");
        const auto built = tree(dir + "built");
        EXPECT_GT(generated.size(), 4);
        EXPECT_EQ(built.keys(), generated.keys());
        for (auto it = generated.cbegin(); it != generated.cend(); ++it)
            EXPECT_TRUE(built.value(it.key()) == it.value()) << qPrintable(it.key());
        // The project itself is left as it was.
        EXPECT_EQ(QDir(dir + "project/photos").entryList(QDir::Files),
                  QStringList({"a.jpg", "b.png", "c.jpg", "d.tif"}));
    }
}

TEST(ProjectCli, ShowListsKindAndPhotos) {
    const QString dir = freshDir("cli-project-show");
    makePhoto(dir + "a.jpg", 60, 40, "Harbour\tat dawn");
    makePhoto(dir + "b.png", 40, 60, "");
    QString out, err;
    // An empty name takes the page file name.
    ASSERT_EQ(orvella({"project", "save", dir + "p", "--name", "", "--kind", "gallery", "--set",
                       "tfHTMLfileName=holiday", "--unpublish", "b.png", "--highlight", "b.png",
                       dir + "a.jpg", dir + "b.png"},
                      &out, &err),
              0)
        << err.toStdString();
    const QString file = dir + "p/holiday.orvprj";
    EXPECT_EQ(out, file + "\n");
    ASSERT_EQ(orvella({"project", "show", file}, &out, &err), 0) << err.toStdString();
    EXPECT_EQ(out,
              "PhotoGallery\n"
              "1\ta.jpg\t1\t0\t60x40\tH\tHarbour\\tat dawn\n"
              "2\tb.png\t0\t1\t40x60\tV\t\n");
}

// Wrong usage and refusals exit with 2 and write nothing; the message names what is wrong.
TEST(ProjectCli, RefusalsAndUsage) {
    const QString dir = freshDir("cli-project-refused");
    makePhoto(dir + "a.jpg", 30, 20, "");
    QString out, err;
    ASSERT_EQ(orvella({"project", "save", dir + "ok", "--name", "Ok", "--kind", "grid",
                       "--unpublish", "a.jpg", dir + "a.jpg"},
                      &out, &err),
              0)
        << err.toStdString();
    const QString unpublished = out.trimmed();
    writeFile(dir + "hostile.orvprj",
              "<plist><dict><key>count</key><string>1</string><key>1</key><dict><key>name</key>"
              "<string>../a.jpg</string></dict></dict></plist>");
    writeFile(dir + "text.orvprj", "just text");
    struct Case {
        QStringList args;
        const char* says;
    };
    for (const Case& c : std::vector<Case>{
             {{"project"}, "Usage: orvella project save"},
             {{"project", "open", "x"}, "unknown verb \"open\""},
             {{"project", "save", dir + "s", "--kind", "grid"}, "--name NAME is required"},
             {{"project", "save", dir + "s", "--name", "S"}, "--kind is required"},
             {{"project", "save", dir + "s", "--name", "S", "--kind", "album"},
              "unknown output kind \"album\""},
             {{"project", "save", dir + "s", "--name", "../S", "--kind", "grid"},
              "cannot name a project"},
             {{"project", "save", dir + "s", "--name", "S", "--kind", "grid", dir + "none.jpg"},
              "no such file or folder"},
             {{"project", "save", dir + "s", "--name", "S", "--kind", "grid", "--set",
               "tfPageTitle=x"},
              "unknown setting tfPageTitle"},
             {{"project", "show", dir + "missing.orvprj"}, "no such project file"},
             {{"project", "show", dir + "text.orvprj"}, "is not a project file: not XML"},
             {{"project", "show", dir + "hostile.orvprj"}, "\"../a.jpg\", which is not a plain"},
             {{"project", "build", dir + "hostile.orvprj", "--out", dir + "site"},
              "not a plain file name"},
             {{"project", "build", unpublished}, "--out DIR is required"},
             {{"project", "build", unpublished, "--out", dir + "site", "--threads", "many"},
              "--threads takes a whole number"},
             {{"project", "build", unpublished, "--out", dir + "site"}, "orvella project: "}}) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        EXPECT_EQ(orvella(c.args, &out, &err), 2) << out.toStdString();
        EXPECT_TRUE(err.contains(c.says)) << err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(dir + "s"));
    EXPECT_FALSE(QFileInfo::exists(dir + "S.orvprj"));
    EXPECT_TRUE(QDir(dir + "site").isEmpty());  // the run without published photos wrote nothing
}
