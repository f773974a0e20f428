// `orvella generate KIND` and `orvella settings KIND`, run as the user runs them.
#include <gtest/gtest.h>

#include <QFileInfo>

#include "support/TestSupport.h"

using namespace testsupport;

namespace {

QStringList withSets(QStringList args, const QStringList& sets) {
    for (const QString& set : sets) args << "--set" << set;
    return args;
}

const QStringList kSmall = {"tfSmallCropWidth=40", "pubPhotoRatio=Free", "tfSmallCropHeight=30",
                            "tfBigCropWidth=80"};

}  // namespace

// A folder gives its photos sorted by name, other files left out; --sort, --unpublish,
// --highlight and aliases of --set work; the page written is printed; warnings do not stop it.
TEST(GenerateCli, WritesWhatTheOptionsSay) {
    const QString src = freshDir("cli-generate-src");
    for (const QString name : {"a.png", "c.tif", "d.png"}) makePhoto(src + name);
    makePhoto(src + "b.JPG", 40, 60);
    writeFile(src + "notes.txt", "not a photo");
    const QString same = freshDir("cli-generate-same");
    const QStringList shared = {makePhoto(same + "x/small.jpg"), makePhoto(same + "y/small.jpg"),
                                makePhoto(same + "y/small.png"), makePhoto(same + "y/other.png")};
    const QString sameName =
        "warning: Photos make images of the same name: %1 and %2 both make the "
        "images named \"small\".\n%1 and %3 both make the images named "
        "\"small\".\nThe images of the later photo replace those of the "
        "earlier one.\n";
    // clang-format off
    const struct {
        const char* kind;
        QStringList args;
        QString page, err;   // the page written; all of standard error
        QStringList order;   // found in this order in the pages and stylesheets
        QStringList absent;  // neither a file written nor in a page
    } cases[] = {
        {"gallery", withSets({"--unpublish", "d.png", src},
                             kSmall + QStringList{"ifNumberOfColumns=2", "tfNumberOfRows=1",
                                                  "tfHTMLfileName=album.html"}),
         "album.html", "", {"KLimages_s/a.jpeg", "KLimages_s/b.jpeg", "KLimages_s/c.jpeg"},
         {"d.jpeg", "notes"}},
        {"gallery", withSets(shared, kSmall), "myIndex.html",
         sameName.arg(shared[0], shared[1], shared[2]), {"KLimages_s/other.jpeg"}, {}},
        {"slideshow", withSets({"--sort", "za", "--unpublish", "b.JPG", "--threads", "1", src},
                               {"cbSsAutorun=0", "cbSsShowNavigationBtn=0", "tfSsPageName=index.HTML",
                                "tfSsImageWidth=60", "tfSsImageHeight=40"}),
         "index.html", "warning: The slides do not change by themselves: Autorun and the previous "
                       "and next buttons are off: only the dots move between the slides.\n",
         {"KLSsImages/d.jpeg", "KLSsImages/c.jpeg", "KLSsImages/a.jpeg"}, {"b.jpeg"}},
        {"grid", withSets({"--highlight", "a.png", "--highlight", "b.JPG", "--unpublish", "c.tif",
                           src}, {"tfPageName=photos.htm", "tfRGMaxColumns=3"}),
         "photos.html", "",
         {"minmax(400px, 1fr));", "<div class=\"klovlImage4\"> \n<a href=\"KLovImages/a.jpeg\"",
          "<div class=\"klovlImage klovlImageVertical\"> \n<a href=\"KLovImages/b.jpeg\"",
          "<div class=\"klovlImage\"> \n<a href=\"KLovImages/d.jpeg\""},
         {"c.jpeg"}},
    };
    // clang-format on
    int n = 0;
    for (const auto& c : cases) {
        const QString out = freshDir(QString("cli-generate-%1").arg(++n)) + "new/sub";
        SCOPED_TRACE(n);
        QString stdErr;
        EXPECT_EQ(orvellaOut(0, QStringList{"generate", c.kind, "--out", out} + c.args, &stdErr),
                  out + "/" + c.page + "\n");
        EXPECT_EQ(stdErr, c.err);
        const QString pages = QString::fromUtf8(pagesUnder(out + "/").values().join());
        qsizetype at = 0;
        for (const QString& text : c.order) {
            at = pages.indexOf(text, at);
            EXPECT_GE(at, 0) << text;
        }
        const QString files = filesUnder(out + "/").join('\n');
        for (const QString& text : c.absent)
            EXPECT_FALSE(files.contains(text) || pages.contains(text)) << text;
    }
    // An exact multiple of a page gives no page: no page path is printed and the exit code is 3.
    const QString none = freshDir("cli-generate-none");
    QString stdErr;
    EXPECT_EQ(orvellaOut(3,
                         {"generate", "gallery", "--out", none, "--set", "ifNumberOfColumns=1",
                          "--set", "ifNumberOfRows=1", src + "a.png"},
                         &stdErr),
              "");
    EXPECT_TRUE(stdErr.endsWith("orvella generate: no page was written\n")) << stdErr;
    EXPECT_FALSE(QFile::exists(none + "myIndex.html"));
}

// Every setting of a kind in six tab-separated columns; the rows name the aliases and defaults
// the pages are made with, and the window's words.
TEST(GenerateCli, SettingsListing) {
    QMap<QString, QString> listings;
    for (const char* kind : {"gallery", "slideshow", "grid", "watermark"}) {
        listings[kind] = orvellaOut(0, {"settings", kind});
        EXPECT_TRUE(listings[kind].startsWith("name\taliases\tkind\tdefault\titems\tlabel\n"));
        for (const QString& line : listings[kind].split('\n', Qt::SkipEmptyParts))
            EXPECT_EQ(line.count('\t'), 5) << line;
    }
    for (const auto& [kind, row] : std::vector<std::pair<QString, QString>>{
             {"gallery", "tfBigCropWidth\t\tnumber\t1200\t\tBig images (lightbox): Width\n"},
             {"grid",
              "tfRGBackgroundColor\ttfRgBackgroundColor,cwRGBackgroundColor\tcolour\tF4F3EF"},
             {"grid", "cbRgShowMetaData\tcbRgExifUC\tcheckbox\t1\t"},
             {"grid", "tfRgMetaDataFontColor\ttfRgFileNameFontColor,cwRgCaption\tcolour\tFFFFFF"},
             {"grid", "tfRGMaxColumns\ttfRgMaxColumns\ttext\t10\t"},
             {"slideshow", "tfSsHTMLTitleFontColor\tcwIntro\t"},
             {"slideshow", "tfSsFileNameFontColor\tcwCaption\t"},
             {"slideshow", "tfSsBackgroundColor\tcwSsBackground\t"},
             {"slideshow", "tfSsHTMLDotColor\tcwSsDot\t"},
             {"watermark", "tfFontSize\t\tnumber\t24\t\tText: Size (points; image width)\n"},
             {"watermark", "scWaterMarkPos\t\tsegmented\t8\ttop left | top | "},
             {"watermark", "cbFontList\t\tpopup (title)\t\tDejaVu Math TeX Gyre | DejaVu Sans"}})
        EXPECT_TRUE(listings[kind].contains("\n" + row)) << row;
    // The slideshow offers the gallery's fonts.
    const auto items = [&](const QString& kind, const QString& name) {
        return listings[kind]
            .section("\n" + name + "\t", 1)
            .section('\n', 0, 0)
            .section('\t', 3, 3);
    };
    for (const auto& [slideshow, gallery] :
         {std::pair{"pubSsHTMLTitleFontFamily", "pbFontFamily"},
          std::pair{"pubSsFileNameSize", "pbTitleFontSize"},
          std::pair{"pubSsHTMLTitleFontStyle", "pbTitleFontWeight"}})
        EXPECT_EQ(items("slideshow", slideshow), items("gallery", gallery)) << slideshow;
}

// A run with fewer photos (and a new page name) leaves the earlier run's files alone; --clean
// removes those the run no longer writes, and never a file the user put there.
TEST(GenerateCli, CleanRemovesWhatTheRunNoLongerWrites) {
    const QString src = freshDir("cli-rerun-src");
    const QStringList photos = cameraPhotos(3, src);
    const struct {
        const char* kind;
        QStringList set;        // for every run
        QStringList secondSet;  // for the runs after the first
        int secondPhotos;       // the first photos the later runs take
        QString imageFolder;    // where the user's own image sits
    } cases[] = {
        // clang-format off
        {"gallery", kSmall + QStringList{"ifNumberOfColumns=2", "ifNumberOfRows=1"}, {}, 1,
         "KLimages_b/"},
        {"slideshow", {"tfSsImageWidth=60", "tfSsImageHeight=40"}, {"tfSsPageName=renamed"}, 2,
         "KLSsImages/"},
        {"grid", {}, {"tfRgPageName=renamed"}, 2, "KLovImages/"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        const QString out = freshDir("cli-rerun-out");
        const QString fresh = freshDir("cli-rerun-fresh");
        const QStringList base = withSets({"generate", c.kind}, c.set);
        const QStringList later = withSets(base, c.secondSet) + photos.mid(0, c.secondPhotos);
        orvellaOut(0, base + QStringList{"--out", out} + photos);
        orvellaOut(0, later + QStringList{"--out", fresh});
        const QStringList first = filesUnder(out);
        const QStringList second = filesUnder(fresh);
        ASSERT_FALSE(QSet<QString>(second.begin(), second.end())
                         .contains(QSet<QString>(first.begin(), first.end())));  // some to clean
        // The record is uploaded with the site: it names the photos, not the user's folders.
        const QByteArray record = readFile(out + ".orvella-manifest");
        EXPECT_TRUE(record.contains('"' + QFileInfo(photos[0]).fileName().toUtf8() + '#'));
        EXPECT_FALSE(record.contains(src.chopped(1).toUtf8()));
        const QStringList mine = {"notes.txt", c.imageFolder + "mine.jpeg"};
        for (const QString& file : mine) writeFile(out + file, readFile(photos[0]));

        orvellaOut(0, later + QStringList{"--out", out});
        QStringList all = first + second + mine;
        all.sort();
        all.removeDuplicates();
        EXPECT_EQ(filesUnder(out), all) << "without --clean";
        QString err;
        orvellaOut(0, later + QStringList{"--out", out, "--clean"}, &err);
        EXPECT_EQ(err, "");
        all = second + mine;
        all.sort();
        EXPECT_EQ(filesUnder(out), all) << "with --clean";
    }
}
