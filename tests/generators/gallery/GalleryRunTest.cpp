// Whole Photo Gallery runs on small photos made here, checked against the page format, the image
// files (read back with vipsheader) and the alerts.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <array>
#include <tuple>

#include "generators/gallery/cResponsiveDesign.h"
#include "metadata/mMeta.h"
#include "support/TestSupport.h"

using testsupport::filesUnder;
using testsupport::freshDir;
using testsupport::runProgram;

namespace {

// A small RGB photo of w x h (a gradient, so encoders have something to do).
QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    runProgram("vips", {"grey", dir + "g.v", QString::number(w), QString::number(h), "--uchar"});
    runProgram("vips", {"bandjoin_const", dir + "g.v", dir + name, "40 200"});
    return dir + name;
}

// Latin-1 maps every byte to one character, so binary files compare exactly too.
QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : "<missing>";
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

// "WxH loader" as vipsheader reads the file.
QString header(const QString& path) {
    QString out;
    runProgram("vipsheader", {path}, &out);
    const QString info = out.trimmed().section(": ", -1);
    return info.section(' ', 0, 0) + " " + info.section(", ", -1);
}

// The alerts shown, one "title|description[|stops]" line each.
QString alerts(const RecordingUserInterface& ui) {
    QString text;
    for (const auto& a : ui.alerts)
        text += a.title + "|" + a.description + (a.stopsRun ? "|stops\n" : "\n");
    return text;
}

// The defaults plus "name=value" overrides.
SettingsStore store(const QStringList& set) {
    std::vector<std::pair<QString, QString>> overrides;
    for (const QString& s : set) overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    return testsupport::settingsWith(overrides);
}

const QStringList kSmall = {"tfSmallCropWidth=40", "pubPhotoRatio=0", "tfSmallCropHeight=30",
                            "tfBigCropWidth=80", "tfBigCropHeight=0"};

// A run with small images (thumbnail 40 x 30, big 80) plus overrides; the first page is opened.
RunResult run(const QString& dir, const QStringList& paths, const QStringList& set,
              RecordingUserInterface& ui, int threads = 2, const QStringList& descriptions = {}) {
    QList<PhotoEntry> photos;
    for (int i = 0; i < paths.size(); ++i)
        photos.append({QUrl::fromLocalFile(paths[i]), descriptions.value(i)});
    return cResponsiveDesign::hCreateResponsiveHTML(dir, photos, store(kSmall + set), ui, threads,
                                                    true);
}

// "|" stands for a line feed.
const QString kPrologue =
    R"(<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" )"
    R"("http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">|)"
    R"(<html xmlns="http://www.w3.org/1999/xhtml">|<head>|)"
    R"(<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />|)"
    R"(<meta name="viewport" content="width=device-width, initial-scale=1.0" />|)";
// A page of either model; %1 to %10 are the pieces where the two models differ.
const QString kPage =
    kPrologue + R"(<title>%1</title>|<!-- Keldra: responsive design%2 -->|)"
                R"(<link href="KLcss/klGScss.css" rel="stylesheet" type="text/css">|)"
                R"(<!-- Keldra: lightbox -->|<script src="https://ajax.googleapis.com/ajax/libs/)"
                R"(jquery/1.9.1/jquery.min.js"></script>|<script type="text/javascript" )"
                R"(src="KLovlightbox/%3.lightbox.js"></script>||<script>|$(function() {|)"
                R"($('.klOVimg a').lightbox();|});|</script>||%4<!-- Keldra: Roboto, from Google )"
                R"(fonts -->|<link href="https://fonts.googleapis.com/css?family=%5:300,400,500,)"
                R"(700,900" rel="stylesheet">|</head>|<body>|<!-- Keldra: responsive design main )"
                R"(container - Begin -->|<div class="KLovTableBased-container">|<!-- Keldra: )"
                R"(Background pattern - Begin -->|<div class="klSsPatternBox">|)"
                R"(<div style="width:%6%;margin: auto;"><!-- Keldra: %7 - Begin -->|%8)"
                R"(<div style="width:100%;padding:6px;float:left;">|<div style="float:left;)"
                R"(padding:6px;"><a href="%9://www.keldra.com/orvella"><img src="KLovlightbox/)"
                R"(klOrvella.png" alt="klOrvella" width="auto" height="auto"></a></div>|%10)"
                R"(</div><!-- Keldra: Background pattern - End -->|</div><!-- Keldra: )"
                R"(responsive design main container - End -->|</body>|</html>)";

// The text with its %1, %2, ... filled in turn and "|" made a line feed.
QString page(QString text, const QStringList& pieces = {}) {
    for (const QString& piece : pieces) text = text.arg(piece);
    return text.replace('|', '\n');
}

const QString kImg = R"(<div class="klOVimg">)";

}  // namespace

// Both models, whole texts: caption and file name on in the table model (metadata text escaped, the
// heading not), both off in the grid model. A second grid run keeps the files of the first.
TEST(GalleryRun, PageTextsOfBothModels) {
    const QString src = freshDir("gallery-models-src");
    const QString table = freshDir("gallery-table"), grid = freshDir("gallery-grid");
    const QStringList a = {makePhoto(src, "a.png", 80, 60)};
    const QStringList tableSettings(
        {"pubPhotoGalleryModel=0", "cbCaptionStatus=0", "pbFontFamily=Kanit", "tfGridWidth=80",
         "tfPageTitle=T & T", "tvTitle=<b>Hi</b>", "btShowFileName=1", "cbPgShowMetaData=1",
         "tfPgMetaDataToShow=EXIF User Comment;Show Filename", "tfPgMetaDataValueSep= / ",
         "pbTitleFontWeight=Bold", "pbFileNameFontWeight=Bold"});
    RecordingUserInterface ui;
    EXPECT_EQ(run(table, a, tableSettings, ui, 2, {R"(<i> & "q")"}).firstPage,
              table + "myIndex.html");
    const QString photo =
        R"(<div class="klOVtitle"><b>Hi</b></div>|<div class="klOVresponsive">|)"
        R"(<div class="klOVimg">|<a href="KLimages_b/a.jpeg" rel="klOVlightbox" )"
        R"(title="a; &lt;i&gt; &amp; &quot;q&quot; / a.png">|<img src="KLimages_s/a.jpeg" alt="a" )"
        R"(width="auto" height="auto">|</a>|</div>|<div class="klOVphotoname">a</div>|)"
        R"(<div class="klOVdescription">&lt;i&gt; &amp; &quot;q&quot; / a.png</div>|</div>|)";
    const QString tableText =
        page(kPage, {"T &amp; T", " - Begin", "jquery", "<!-- Keldra: responsive design - End -->|",
                     "Kanit", "80", "responsive design grid", photo, "http",
                     "</div>|</div><!-- Keldra: grid - End -->|"});
    EXPECT_EQ(readText(table + "myIndex.html").toStdString(), tableText.toStdString());
    // The redirect writes "/n" where a line feed is meant, kept on purpose.
    EXPECT_EQ(readText(table + "index.html"),
              page(kPrologue + R"(<head>/n<meta http-equiv="Content-Type" content="text/html; )"
                               R"(charset=UTF-8" />/n<meta name="viewport" content="width=device-)"
                               R"(width, initial-scale=1.0" />/n<title>my first responsive )"
                               R"(designed picture gallery</title>/n<script>window.location.)"
                               R"(href = "myIndex.html"</script>|</head>|<body></body>)"));
    // The table stylesheet; heading and file-name weights both "Bold" give 700 and 900.
    const QString css = readText(table + "KLcss/klGScss.css");
    EXPECT_TRUE(css.contains("(max-width: 6000px)"));
    EXPECT_TRUE(css.contains("font-size:32px;\nfont-weight:700;\n"));
    EXPECT_TRUE(css.contains("font-size:15px;\nfont-weight:900;\n"));

    const QStringList settings(
        {"pubPhotoGalleryModel=2", "cbCaptionStatus=1", "pbFontFamily=Exo 2", "tfHTMLfileName=page",
         "tfGridWidth=90", "tfPageTitle=G", "tvTitle=Heading", "btShowFileName=0",
         "cbPgShowMetaData=0", "pbImageFormat=png", "pbBIGImageFormat=tiff",
         "cbTbRdShowPatternImage=1", "tfTbRdPatternPath=" + makePhoto(src, "dots.png", 8, 8)});
    ASSERT_TRUE(run(grid, a, settings, ui, 1).ok);
    EXPECT_EQ(ui.opened.last(), "file:///" + grid + "page.html");
    const QString gridPhoto =
        R"(<div class="klOVtitle">Heading<br><br></div>|<div class="klOVimages">|)"
        R"(<div class="klOVimg">|<a href="KLimages_b/a.tiff" rel="klOVlightbox" title="a">|)"
        R"(<img src="KLimages_s/a.png" alt="a" width="auto" height="auto">|</a>|</div>|)"
        R"(</div><!-- Keldra: grid - End -->|)";
    EXPECT_EQ(readText(grid + "page.html").toStdString(),
              page(kPage, {"G", "", "jquery02", "", "Exo+2", "90", "grid", gridPhoto, "https", ""})
                  .toStdString());
    EXPECT_TRUE(readText(grid + "KLcss/klGScss.css").contains("@media (min-width: 400px)"));
    EXPECT_EQ(header(grid + "KLimages_s/a.png"), "40x30 pngload");
    EXPECT_EQ(header(grid + "KLimages_b/a.tiff"), "80x60 tiffload");
    // The working copies in the photo's own type are gone when the format differs.
    EXPECT_FALSE(QFile::exists(grid + "KLimages_b/a.png"));

    const QStringList kept = {"KLovlightbox/jquery.lightbox.js", "KLovlightbox/close.gif",
                              "KLovPatterns/dots.png"};
    for (const QString& name : kept) EXPECT_GT(QFile(grid + name).size(), 0) << name.toStdString();
    for (const QString& name : kept) write(grid + name, "kept");
    QFile::remove(grid + "index.html");
    ASSERT_TRUE(run(grid, a, settings, ui, 1).ok);
    for (const QString& name : kept) EXPECT_EQ(readText(grid + name), "kept") << name.toStdString();
    EXPECT_TRUE(QFile::exists(grid + "index.html"));
}

// 13 and 12 photos at 12 a page, 5 at 3 x 2: the pages, their photos and navigation bars. An exact
// multiple of the page size gives no page at all, kept on purpose.
TEST(GalleryRun, Pages) {
    const struct {
        int photos;
        QString columns, rows;
        std::vector<int> perPage;
    } cases[] = {{13, "4", "3", {12, 1}}, {12, "4", "3", {}}, {5, "3", "2", {5}}};
    const QString nav =
        R"(<div id="navBar" class="klOVpageNav" style="width:100%;padding:6px;text-align:left;">)"
        R"(<a href="myIndex.html"> 1 </a><a href="myIndex2.html">2 </a></div>)"
        R"(<div class="klOVtitle">)";
    for (const auto& c : cases) {
        QList<PhotoEntry> photos;
        for (int i = 0; i < c.photos; ++i)
            photos.append({QUrl::fromLocalFile(QStringLiteral("/p/t%1.png").arg(i)), {}});
        const QList<PageFile> files = cResponsiveDesign::pageTexts(
            cResponsiveDesign::readSettings(
                store({"ifNumberOfColumns=" + c.columns, "ifNumberOfRows=" + c.rows}), "/out/"),
            photos, {});
        QStringList names;
        for (const PageFile& f : files) names.append(f.path);
        QStringList expected = {"KLcss/klGScss.css"};
        for (size_t page = 0; page < c.perPage.size(); ++page) {
            expected.append(cResponsiveDesign::pageFileName("myIndex", int(page) + 1));
            const QString& text = files.value(qsizetype(page) + 1).text;
            EXPECT_EQ(text.count(kImg), c.perPage[page]) << c.photos;
            EXPECT_EQ(text.contains(nav), c.perPage.size() == 2) << c.photos;
        }
        EXPECT_EQ(names, expected + QStringList{"index.html"});
    }
}

// A layout of 0 columns or rows and a page name leaving the folder are refused before anything
// is written.
TEST(GalleryRun, RefusedRuns) {
    const QString photo = makePhoto(freshDir("gallery-refused-src"), "a.png", 40, 30);
    for (const auto& [setting, alert] : std::vector<std::pair<QString, QString>>{
             {"ifNumberOfColumns=0", "Sorry, the page layout is not possible.|"},
             {"ifNumberOfRows=0", "Sorry, the page layout is not possible.|"},
             {"tfHTMLfileName=../up", "Sorry, the page name is not possible.|"}}) {
        const QString dir = freshDir("gallery-refused");
        RecordingUserInterface ui;
        EXPECT_FALSE(run(dir, {photo}, {setting}, ui).ok);
        EXPECT_TRUE(alerts(ui).startsWith(alert) && alerts(ui).endsWith("|stops\n") &&
                    ui.alerts.size() == 1)
            << alerts(ui).toStdString();
        EXPECT_TRUE(ui.stops == 1 && QDir(dir).isEmpty());
    }
}

// Both derivatives of a landscape and a portrait photo ("wide tall wideBig tallBig"), and alerts.
TEST(GalleryRun, DerivativeFiles) {
    const QString src = freshDir("gallery-derivatives-src");
    const QStringList photos = {makePhoto(src, "wide.png", 400, 300),
                                makePhoto(src, "tall.jpg", 300, 400)};
    // Settings, sizes, alerts.
    const std::vector<std::array<QString, 3>> cases = {
        // Scale by width and by height: only the height step stays.
        {"pubThumbAction=1 tfSmallCropWidth=100 tfSmallCropHeight=120 tfBigCropWidth=160",
         "160x120 90x120 160x120 120x160", ""},
        // Cut at the centre to 40 x 30, the big image 80 on its longest side; frames keep the size.
        {"tfSmallFramingThickness=10 tfBigFramingThickness=6 cwNSColorWellObjBsImage=FF0000",
         "40x30 40x30 80x60 60x80", ""},
        // Big size 200 equals thumbnail size 200: a warning, and the run goes on to crop the big
        // ones (the portrait one is only 150 wide).
        {"tfSmallCropWidth=200 tfSmallCropHeight=150 tfBigCropWidth=200 tfBigCropHeight=100",
         "200x150 200x150 200x100 150x100",
         "Sorry, some wrong properties|\r- Lightbox images are smaller than your thumbnails. "
         "(Thumbnail size: 200)\n"},
    };
    for (const auto& [settings, sizes, alert] : cases) {
        const QString dir = freshDir("gallery-derivatives");
        RecordingUserInterface ui;
        ASSERT_TRUE(run(dir, photos, settings.split(' '), ui).ok);
        EXPECT_EQ(alerts(ui), alert);
        QStringList found;
        for (const char* file : {"s/wide", "s/tall", "b/wide", "b/tall"})
            found << header(dir + "KLimages_" + file + ".jpeg").remove(" jpegload");
        EXPECT_EQ(found.join(' '), sizes);
        EXPECT_EQ(filesUnder(dir + "KLimages_s/"), (QStringList{"tall.jpeg", "wide.jpeg"}));
    }
}
