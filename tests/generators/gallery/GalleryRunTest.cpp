// Whole Photo Gallery runs on small photos made here, checked against the page format, the image
// files (read back with libvips' vipsheader) and the alerts.
#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include "collection/PhotoCollection.h"
#include "generators/gallery/cResponsiveDesign.h"
#include "metadata/mMeta.h"
#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::runProgram;
using testsupport::settingsWith;

namespace {

// A small RGB photo of w x h (a gradient, so encoders have something to do).
QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    const QString path = dir + name;
    const QString tmp = dir + "_grey.v";
    EXPECT_EQ(runProgram("vips", {"grey", tmp, QString::number(w), QString::number(h), "--uchar"}),
              0);
    EXPECT_EQ(runProgram("vips", {"bandjoin_const", tmp, path, "40 200"}), 0);
    QFile::remove(tmp);
    return path;
}

QList<PhotoEntry> entries(const QStringList& paths, const QStringList& descriptions = {}) {
    QList<PhotoEntry> list;
    for (int i = 0; i < paths.size(); ++i)
        list.append(
            {QUrl::fromLocalFile(paths[i]), i < descriptions.size() ? descriptions[i] : ""});
    return list;
}

QString readText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return "<missing " + path + ">";
    return QString::fromUtf8(file.readAll());
}

QString pixelSize(const QString& path) {
    QString out;
    runProgram("vipsheader", {"-f", "width", path}, &out);
    QString h;
    runProgram("vipsheader", {"-f", "height", path}, &h);
    return out.trimmed() + "x" + h.trimmed();
}

QString loader(const QString& path) {
    QString out;
    runProgram("vipsheader", {"-f", "vips-loader", path}, &out);
    return out.trimmed();
}

QStringList filesUnder(const QString& dir) {
    QStringList files;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) files.append(it.next().mid(dir.size()));
    files.sort();
    return files;
}

const char* const kPrologue =
    "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
    "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n"
    "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n"
    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" />\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\" />\n";

// Small images keep the runs fast.
std::vector<std::pair<QString, QString>> smallImages() {
    return {{"tfSmallCropWidth", "40"},
            {"pubPhotoRatio", "0"},
            {"tfSmallCropHeight", "30"},
            {"tfBigCropWidth", "80"},
            {"tfBigCropHeight", "0"}};
}

std::vector<std::pair<QString, QString>> plus(std::vector<std::pair<QString, QString>> a,
                                              const std::vector<std::pair<QString, QString>>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

}  // namespace

TEST(GalleryRun, IndexRedirectText) {
    const QString dir = freshDir("gallery-index");
    cResponsiveDesign::hCreateIndexRedirectHTML("myIndex", dir);
    EXPECT_EQ(readText(dir + "index.html"),
              QString(kPrologue) +
                  "<head>/n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" "
                  "/>/n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\" "
                  "/>/n<title>my first responsive designed picture gallery</title>/n<script>"
                  "window.location.href = \"myIndex.html\"</script>\n</head>\n<body></body>");
}

TEST(GalleryRun, TableModelPageText) {
    const QString src = freshDir("gallery-table-src");
    const QString dir = freshDir("gallery-table");
    const QStringList photos = {makePhoto(src, "a.png", 80, 60), makePhoto(src, "b.png", 60, 80)};
    const SettingsStore settings =
        settingsWith(plus(smallImages(), {{"pubPhotoGalleryModel", "0"},
                                          {"cbCaptionStatus", "0"},
                                          {"pbFontFamily", "Kanit"},
                                          {"tfGridWidth", "80"},
                                          {"tfPageTitle", "T & T"},
                                          {"tvTitle", "<b>Hi</b>"},
                                          {"btShowFileName", "1"},
                                          {"cbPgShowMetaData", "1"},
                                          {"tfPgMetaDataToShow", "EXIF User Comment;Show Filename"},
                                          {"tfPgMetaDataValueSep", " / "}}));
    RecordingUserInterface ui;
    const GalleryResult result = cResponsiveDesign::hCreateResponsiveHTML(
        dir, entries(photos, {"first", ""}), settings, ui, 2);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.firstPage, dir + "myIndex.html");
    EXPECT_TRUE(ui.alerts.empty());
    EXPECT_TRUE(ui.opened.isEmpty());
    const QString expected =
        QString(kPrologue) +
        "<title>T & T</title>\n"
        "<!-- Keldra: responsive design - Begin -->\n"
        "<link href=\"KLcss/klGScss.css\" rel=\"stylesheet\" type=\"text/css\">\n"
        "<!-- Keldra: lightbox -->\n"
        "<script src=\"https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js\">"
        "</script>\n"
        "<script type=\"text/javascript\" src=\"KLovlightbox/jquery.lightbox.js\"></script>\n\n"
        "<script>\n$(function() {\n$('.klOVimg a').lightbox();\n});\n</script>\n\n"
        "<!-- Keldra: responsive design - End -->\n"
        "<!-- Keldra: Roboto, from Google fonts -->\n"
        "<link href=\"https://fonts.googleapis.com/css?family=Kanit:300,400,500,700,900\" "
        "rel=\"stylesheet\">\n"
        "</head>\n<body>\n<!-- Keldra: responsive design main container - Begin -->\n"
        "<div class=\"KLovTableBased-container\">\n"
        "<!-- Keldra: Background pattern - Begin -->\n<div class=\"klSsPatternBox\">\n"
        "<div style=\"width:80%;margin: auto;\"><!-- Keldra: responsive design grid - Begin -->\n"
        "<div class=\"klOVtitle\"><b>Hi</b></div>\n"
        "<div class=\"klOVresponsive\">\n<div class=\"klOVimg\">\n"
        "<a href=\"KLimages_b/a.jpeg\" rel=\"klOVlightbox\" title=\"a; first / a.png\">\n"
        "<img src=\"KLimages_s/a.jpeg\" alt=\"a\" width=\"auto\" height=\"auto\">\n</a>\n</div>\n"
        "<div class=\"klOVphotoname\">a</div>\n"
        "<div class=\"klOVdescription\">first / a.png</div>\n</div>\n"
        "<div class=\"klOVresponsive\">\n<div class=\"klOVimg\">\n"
        "<a href=\"KLimages_b/b.jpeg\" rel=\"klOVlightbox\" title=\"b; b.png\">\n"
        "<img src=\"KLimages_s/b.jpeg\" alt=\"b\" width=\"auto\" height=\"auto\">\n</a>\n</div>\n"
        "<div class=\"klOVphotoname\">b</div>\n"
        "<div class=\"klOVdescription\">b.png</div>\n</div>\n"
        "<div style=\"width:100%;padding:6px;float:left;\">\n"
        "<div style=\"float:left;padding:6px;\"><a href=\"http://www.keldra.com/orvella\">"
        "<img src=\"KLovlightbox/klOrvella.png\" alt=\"klOrvella\" width=\"auto\" "
        "height=\"auto\"></a></div>\n</div>\n"
        "</div><!-- Keldra: grid - End -->\n"
        "</div><!-- Keldra: Background pattern - End -->\n"
        "</div><!-- Keldra: responsive design main container - End -->\n"
        "</body>\n</html>";
    EXPECT_EQ(readText(dir + "myIndex.html").toStdString(), expected.toStdString());
    EXPECT_TRUE(readText(dir + "KLcss/klGScss.css").contains("(max-width: 6000px)"));
    EXPECT_TRUE(readText(dir + "index.html").contains("window.location.href = \"myIndex.html\""));
}

TEST(GalleryRun, GridModelPageText) {
    const QString src = freshDir("gallery-grid-src");
    const QString dir = freshDir("gallery-grid");
    const QStringList photos = {makePhoto(src, "a.png", 80, 60)};
    const SettingsStore settings =
        settingsWith(plus(smallImages(), {{"pubPhotoGalleryModel", "2"},
                                          {"cbCaptionStatus", "1"},
                                          {"pbFontFamily", "Exo 2"},
                                          {"tfHTMLfileName", "page"},
                                          {"tfGridWidth", "90"},
                                          {"tfPageTitle", "G"},
                                          {"tvTitle", "Heading"},
                                          {"btShowFileName", "0"},
                                          {"cbPgShowMetaData", "0"},
                                          {"pbImageFormat", "png"},
                                          {"pbBIGImageFormat", "tiff"}}));
    RecordingUserInterface ui;
    const GalleryResult result =
        cResponsiveDesign::hCreateResponsiveHTML(dir, entries(photos), settings, ui, 1, true);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(ui.opened, QStringList{"file:///" + dir + "page.html"});
    const QString expected =
        QString(kPrologue) +
        "<title>G</title>\n"
        "<!-- Keldra: responsive design -->\n"
        "<link href=\"KLcss/klGScss.css\" rel=\"stylesheet\" type=\"text/css\">\n"
        "<!-- Keldra: lightbox -->\n"
        "<script src=\"https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js\">"
        "</script>\n"
        "<script type=\"text/javascript\" src=\"KLovlightbox/jquery02.lightbox.js\"></script>\n\n"
        "<script>\n$(function() {\n$('.klOVimg a').lightbox();\n});\n</script>\n\n"
        "<!-- Keldra: Roboto, from Google fonts -->\n"
        "<link href=\"https://fonts.googleapis.com/css?family=Exo+2:300,400,500,700,900\" "
        "rel=\"stylesheet\">\n"
        "</head>\n<body>\n<!-- Keldra: responsive design main container - Begin -->\n"
        "<div class=\"KLovTableBased-container\">\n"
        "<!-- Keldra: Background pattern - Begin -->\n<div class=\"klSsPatternBox\">\n"
        "<div style=\"width:90%;margin: auto;\"><!-- Keldra: grid - Begin -->\n"
        "<div class=\"klOVtitle\">Heading<br><br></div>\n<div class=\"klOVimages\">\n"
        "<div class=\"klOVimg\">\n"
        "<a href=\"KLimages_b/a.tiff\" rel=\"klOVlightbox\" title=\"a\">\n"
        "<img src=\"KLimages_s/a.png\" alt=\"a\" width=\"auto\" height=\"auto\">\n</a>\n"
        "</div>\n"
        "</div><!-- Keldra: grid - End -->\n"
        "<div style=\"width:100%;padding:6px;float:left;\">\n"
        "<div style=\"float:left;padding:6px;\"><a href=\"https://www.keldra.com/orvella\">"
        "<img src=\"KLovlightbox/klOrvella.png\" alt=\"klOrvella\" width=\"auto\" "
        "height=\"auto\"></a></div>\n"
        "</div><!-- Keldra: Background pattern - End -->\n"
        "</div><!-- Keldra: responsive design main container - End -->\n"
        "</body>\n</html>";
    EXPECT_EQ(readText(dir + "page.html").toStdString(), expected.toStdString());
    EXPECT_TRUE(readText(dir + "KLcss/klGScss.css").contains("@media (min-width: 400px)"));
    EXPECT_EQ(loader(dir + "KLimages_s/a.png"), "pngload");
    EXPECT_EQ(loader(dir + "KLimages_b/a.tiff"), "tiffload");
    // The working copies in the photo's own type are gone when the format differs.
    EXPECT_FALSE(QFile::exists(dir + "KLimages_b/a.png"));
}

TEST(GalleryRun, PageCounts) {
    const QString src = freshDir("gallery-pages-src");
    QStringList photos;
    for (int i = 0; i < 13; ++i)
        photos.append(makePhoto(src, QStringLiteral("p%1.png").arg(i, 2, 10, QChar('0')), 24, 18));
    const auto base = plus(smallImages(), {{"pbImageFormat", "png"}, {"pbBIGImageFormat", "png"}});

    {  // 5 photos, 3 x 2: one page, no navigation bar.
        const QString dir = freshDir("gallery-pages-5");
        RecordingUserInterface ui;
        cResponsiveDesign::hCreateResponsiveHTML(
            dir, entries(photos.mid(0, 5)),
            settingsWith(plus(base, {{"ifNumberOfColumns", "3"}, {"ifNumberOfRows", "2"}})), ui);
        const QString page = readText(dir + "myIndex.html");
        EXPECT_FALSE(page.contains("navBar"));
        EXPECT_EQ(page.count("<div class=\"klOVimg\">"), 5);
        EXPECT_FALSE(QFile::exists(dir + "myIndex2.html"));
    }
    {  // 13 photos, 12 a page: two pages with the navigation bar, one photo on page 2.
        const QString dir = freshDir("gallery-pages-13");
        RecordingUserInterface ui;
        cResponsiveDesign::hCreateResponsiveHTML(
            dir, entries(photos),
            settingsWith(plus(base, {{"ifNumberOfColumns", "4"}, {"ifNumberOfRows", "3"}})), ui);
        const QString nav =
            "<div id=\"navBar\" class=\"klOVpageNav\" style=\"width:100%;padding:6px;"
            "text-align:left;\"><a href=\"myIndex.html\"> 1 </a><a href=\"myIndex2.html\">2 </a>"
            "</div><div class=\"klOVtitle\">";
        const QString first = readText(dir + "myIndex.html");
        const QString second = readText(dir + "myIndex2.html");
        EXPECT_TRUE(first.contains(nav));
        EXPECT_TRUE(second.contains(nav));
        EXPECT_EQ(first.count("<div class=\"klOVimg\">"), 12);
        EXPECT_EQ(second.count("<div class=\"klOVimg\">"), 1);
        EXPECT_TRUE(second.contains("KLimages_s/p12.png"));
        EXPECT_FALSE(QFile::exists(dir + "myIndex3.html"));
    }
    {  // 12 photos, 12 a page: no page at all, but everything else.
        const QString dir = freshDir("gallery-pages-12");
        RecordingUserInterface ui;
        const GalleryResult result = cResponsiveDesign::hCreateResponsiveHTML(
            dir, entries(photos.mid(0, 12)), settingsWith(base), ui, 0, true);
        EXPECT_TRUE(result.ok);
        EXPECT_FALSE(QFile::exists(dir + "myIndex.html"));
        EXPECT_TRUE(QFile::exists(dir + "index.html"));
        EXPECT_TRUE(QFile::exists(dir + "KLcss/klGScss.css"));
        EXPECT_TRUE(QFile::exists(dir + "KLimages_s/p11.png"));
        EXPECT_EQ(ui.opened.size(), 1);
    }
    EXPECT_EQ(cResponsiveDesign::pageCount(5, 6), 1);
    EXPECT_EQ(cResponsiveDesign::pageCount(13, 12), 2);
    EXPECT_EQ(cResponsiveDesign::pageCount(12, 12), 0);
    EXPECT_EQ(cResponsiveDesign::pageCount(25, 12), 3);
    EXPECT_EQ(cResponsiveDesign::pageFileName("myIndex", 1), "myIndex.html");
    EXPECT_EQ(cResponsiveDesign::pageFileName("myIndex", 2), "myIndex2.html");
    EXPECT_EQ(cResponsiveDesign::pageBaseName(""), "myIndex");
    EXPECT_EQ(cResponsiveDesign::pageBaseName(" "), "myIndex");
    EXPECT_EQ(cResponsiveDesign::pageBaseName("  "), "  ");
}

TEST(GalleryRun, Alerts) {
    const QString src = freshDir("gallery-alerts-src");
    const QStringList photos = {makePhoto(src, "a.png", 300, 200)};
    {
        const QString dir = freshDir("gallery-alert-none");
        RecordingUserInterface ui;
        EXPECT_FALSE(cResponsiveDesign::hCreateResponsiveHTML(dir, {}, settingsWith(), ui).ok);
        ASSERT_EQ(ui.alerts.size(), 1u);
        EXPECT_EQ(ui.alerts[0].title, "Sorry, you forgot to select photos.");
        EXPECT_EQ(ui.alerts[0].description, "Please choose the photos.");
        EXPECT_TRUE(ui.alerts[0].stopsRun);
        EXPECT_EQ(ui.stops, 1);
        EXPECT_TRUE(QDir(dir).isEmpty());
    }
    for (const auto& [columns, rows] : {std::pair{"0", "3"}, {"4", "0"}, {"-2", "3"}}) {
        const QString dir = freshDir("gallery-alert-layout");
        RecordingUserInterface ui;
        EXPECT_FALSE(cResponsiveDesign::hCreateResponsiveHTML(
                         dir, entries(photos),
                         settingsWith({{"ifNumberOfColumns", columns}, {"ifNumberOfRows", rows}}),
                         ui)
                         .ok);
        ASSERT_EQ(ui.alerts.size(), 1u);
        EXPECT_TRUE(ui.alerts[0].stopsRun);
        EXPECT_TRUE(QDir(dir).isEmpty()) << columns << "x" << rows;
    }
    {  // Thumbnail 200 x 150, big 200 x 100: warned, and the run goes on.
        const QString dir = freshDir("gallery-alert-sizes");
        RecordingUserInterface ui;
        const GalleryResult result =
            cResponsiveDesign::hCreateResponsiveHTML(dir, entries(photos),
                                                     settingsWith({{"pubPhotoRatio", "0"},
                                                                   {"tfSmallCropWidth", "200"},
                                                                   {"tfSmallCropHeight", "150"},
                                                                   {"tfBigCropWidth", "200"},
                                                                   {"tfBigCropHeight", "100"}}),
                                                     ui);
        EXPECT_TRUE(result.ok);
        ASSERT_EQ(ui.alerts.size(), 1u);
        EXPECT_EQ(ui.alerts[0].title, "Sorry, some wrong properties");
        EXPECT_EQ(ui.alerts[0].description,
                  "\r- Lightbox images are smaller than your thumbnails. (Thumbnail size: 200)");
        EXPECT_FALSE(ui.alerts[0].stopsRun);
        EXPECT_TRUE(QFile::exists(dir + "myIndex.html"));
        EXPECT_EQ(pixelSize(dir + "KLimages_b/a.jpeg"), "200x100");
    }
}

TEST(GalleryRun, ProgressSteps) {
    const QString src = freshDir("gallery-progress-src");
    const QStringList photos = {makePhoto(src, "a.png", 40, 30), makePhoto(src, "b.png", 40, 30),
                                makePhoto(src, "c.png", 40, 30)};
    RecordingUserInterface ui;
    cResponsiveDesign::hCreateResponsiveHTML(freshDir("gallery-progress"), entries(photos),
                                             settingsWith(smallImages()), ui, 2);
    // Five 0.2 steps, 32 per photo, two 0.2 steps, one per page, two at the end.
    const std::vector<double> expected = {0.2, 0.2, 0.2, 0.2, 0.2, 32, 32,
                                          32,  0.2, 0.2, 0.2, 0.2, 0.2};
    EXPECT_EQ(ui.steps, expected);
    EXPECT_EQ(ui.starts, 1);
    EXPECT_EQ(ui.stops, 1);
}

TEST(GalleryRun, Weights) {
    const std::vector<std::pair<QString, QString>> titles = {{"Light", "300"},  {"Regular", "400"},
                                                             {"Medium", "500"}, {"Bold", "700"},
                                                             {"Black", "900"},  {"", "900"}};
    for (const auto& [title, number] : titles) EXPECT_EQ(cResponsiveDesign::weight(title), number);
    // The file-name weight "Bold" is tested against the mapped heading weight: always 900.
    EXPECT_EQ(cResponsiveDesign::fileNameWeight("Bold", cResponsiveDesign::weight("Bold")), "900");
    EXPECT_EQ(cResponsiveDesign::fileNameWeight("Light", "700"), "300");

    const QString src = freshDir("gallery-weights-src");
    const QString dir = freshDir("gallery-weights");
    RecordingUserInterface ui;
    cResponsiveDesign::hCreateResponsiveHTML(
        dir, entries({makePhoto(src, "a.png", 40, 30)}),
        settingsWith(
            plus(smallImages(), {{"pbTitleFontWeight", "Bold"}, {"pbFileNameFontWeight", "Bold"}})),
        ui);
    const QString css = readText(dir + "KLcss/klGScss.css");
    EXPECT_TRUE(css.contains("font-size:32px;\nfont-weight:700;\n"));
    EXPECT_TRUE(css.contains("font-size:14px;\nfont-weight:900;\n"));
}

TEST(GalleryRun, CaptionRules) {
    const QString src = freshDir("gallery-captions-src");
    const QString photo = makePhoto(src, "shot.jpg", 40, 30);
    ASSERT_EQ(runProgram("exiftool",
                         {"-q", "-overwrite_original", "-IPTC:City=Lyon", "-IPTC:Headline=Sunset",
                          "-EXIF:DateTimeOriginal=2019:07:14 18:03:22", photo}),
              0);
    const QString bare = makePhoto(src, "bare.jpg", 40, 30);
    struct Case {
        const char* items;
        const char* separator;
        QString path;
        const char* description;
        const char* caption;
    };
    const Case cases[] = {
        {"IPTC City;Show Filename", " - ", bare, "", "bare.jpg"},
        {"IPTC City;Show Filename", " - ", photo, "", "Lyon - shot.jpg"},
        {"EXIF User Comment;Nonsense;IPTC Headline", "|", photo, "Hello", "Hello|Sunset"},
        {"EXIF User Comment;EXIF Creation Date", ", ", photo, "", "2019:07:14 18:03:22"},
        {"", " - ", photo, "desc", ""},
        {"Show Filename;Show Filename", "", bare, "", "bare.jpgbare.jpg"},
    };
    for (const Case& c : cases) {
        mMeta meta;
        const SettingsStore settings = settingsWith({{"cbPgShowMetaData", "1"},
                                                     {"tfPgMetaDataToShow", c.items},
                                                     {"tfPgMetaDataValueSep", c.separator}});
        EXPECT_EQ(cResponsiveDesign::caption({QUrl::fromLocalFile(c.path), c.description}, settings,
                                             meta),
                  c.caption)
            << c.items;
    }
    mMeta meta;
    EXPECT_EQ(cResponsiveDesign::caption({QUrl::fromLocalFile(photo), "x"},
                                         settingsWith({{"cbPgShowMetaData", "0"}}), meta),
              "");

    // "IPTC Description" repeats the reader's previous IPTC value, in photo order, in one run.
    const QString dir = freshDir("gallery-captions");
    RecordingUserInterface ui;
    cResponsiveDesign::hCreateResponsiveHTML(
        dir, entries({photo, bare}),
        settingsWith(plus(smallImages(), {{"pubPhotoGalleryModel", "2"},
                                          {"cbPgShowMetaData", "1"},
                                          {"tfPgMetaDataToShow", "IPTC City;IPTC Description"},
                                          {"tfPgMetaDataValueSep", "+"}})),
        ui, 4);
    const QString page = readText(dir + "myIndex.html");
    EXPECT_TRUE(page.contains("<div class=\"klOVdescription\">Lyon+Lyon</div>"));
    EXPECT_TRUE(page.contains("<div class=\"klOVdescription\"></div>"));
}

TEST(GalleryRun, MetadataIsEscapedInPages) {
    const QString src = freshDir("gallery-escape-src");
    const QString photo = makePhoto(src, "evil.jpg", 40, 30);
    ASSERT_EQ(runProgram("exiftool", {"-q", "-overwrite_original",
                                      "-EXIF:UserComment=<script>alert(1)</script>", photo}),
              0);
    PhotoCollection collection;
    collection.setCellImageSize(0);
    ASSERT_EQ(collection.appendPhotos({photo}), 1);
    const QString dir = freshDir("gallery-escape");
    RecordingUserInterface ui;
    cResponsiveDesign::hCreateResponsiveHTML(
        dir, collection.hGetPhotosFromArrayController(),
        settingsWith(plus(smallImages(), {{"cbPgShowMetaData", "1"},
                                          {"tfPgMetaDataToShow", "EXIF User Comment"},
                                          {"btShowFileName", "1"},
                                          {"tvTitle", "<i>mine</i>"}})),
        ui);
    const QString page = readText(dir + "myIndex.html");
    EXPECT_FALSE(page.contains("<script>alert"));
    EXPECT_TRUE(page.contains("title=\"evil; &lt;script&gt;alert(1)&lt;/script&gt;\""));
    EXPECT_TRUE(page.contains(
        "<div class=\"klOVdescription\">&lt;script&gt;alert(1)&lt;/script&gt;</div>"));
    EXPECT_TRUE(page.contains("<i>mine</i>"));
    EXPECT_EQ(cResponsiveDesign::htmlEscaped("a&b<c>\"d'"), "a&amp;b&lt;c&gt;&quot;d&#39;");
}

TEST(GalleryRun, DerivativeFiles) {
    const QString src = freshDir("gallery-derivatives-src");
    const QStringList photos = {makePhoto(src, "wide.png", 400, 300),
                                makePhoto(src, "tall.jpg", 300, 400)};
    struct Case {
        const char* label;
        std::vector<std::pair<QString, QString>> settings;
        const char* wideThumb;
        const char* tallThumb;
        const char* wideBig;
        const char* tallBig;
    };
    const std::vector<Case> cases = {
        // Defaults: 200 x 150 cut at the centre, lightbox 1200 on the longest side.
        {"defaults", {}, "200x150", "200x150", "1200x900", "900x1200"},
        // Scale by width and by height: only the height step (mode 7) stays.
        {"action 1",
         {{"pubThumbAction", "1"},
          {"pubPhotoRatio", "0"},
          {"tfSmallCropWidth", "100"},
          {"tfSmallCropHeight", "120"}},
         "160x120",
         "90x120",
         "1200x900",
         "900x1200"},
        // Big crop box (the box is as wide as the landscape photo is scaled; "" = not checked).
        {"big crop",
         {{"tfBigCropWidth", "500"}, {"tfBigCropHeight", "250"}, {"scImageCropBigPos", "0"}},
         "200x150",
         "200x150",
         "500x250",
         ""},
        // Frames keep the size.
        {"frames",
         {{"tfSmallFramingThickness", "10"},
          {"tfBigFramingThickness", "6"},
          {"cwNSColorWellObjBsImage", "FF0000"},
          {"tfBigCropWidth", "320"}},
         "200x150",
         "200x150",
         "320x240",
         "240x320"},
    };
    for (const Case& c : cases) {
        const QString dir = freshDir("gallery-derivatives");
        RecordingUserInterface ui;
        ASSERT_TRUE(cResponsiveDesign::hCreateResponsiveHTML(dir, entries(photos),
                                                             settingsWith(c.settings), ui, 2)
                        .ok);
        EXPECT_EQ(pixelSize(dir + "KLimages_s/wide.jpeg"), c.wideThumb) << c.label;
        EXPECT_EQ(pixelSize(dir + "KLimages_s/tall.jpeg"), c.tallThumb) << c.label;
        EXPECT_EQ(pixelSize(dir + "KLimages_b/wide.jpeg"), c.wideBig) << c.label;
        if (*c.tallBig) {
            EXPECT_EQ(pixelSize(dir + "KLimages_b/tall.jpeg"), c.tallBig) << c.label;
        }
        EXPECT_EQ(loader(dir + "KLimages_s/wide.jpeg"), "jpegload") << c.label;
        EXPECT_EQ(filesUnder(dir + "KLimages_s/"), (QStringList{"tall.jpeg", "wide.jpeg"}))
            << c.label;
    }
}

TEST(GalleryRun, SameOutputWhateverTheThreads) {
    const QString src = freshDir("gallery-threads-src");
    QStringList photos;
    for (int i = 0; i < 6; ++i)
        photos.append(makePhoto(src, QStringLiteral("t%1.png").arg(i), 60 + 10 * i, 50));
    // Two photos whose outputs share a name must still come out as a single run makes them.
    QDir().mkpath(src + "other");
    photos.append(makePhoto(src + "other/", "t0.png", 90, 90));
    const QStringList real = testsupport::mateBackgroundJpegs().mid(0, 1);
    photos += real;
    const SettingsStore settings =
        settingsWith({{"tfSmallCropWidth", "48"},
                      {"pubPhotoRatio", "0"},
                      {"tfSmallCropHeight", "32"},
                      {"tfBigCropWidth", "160"},
                      {"ifNumberOfColumns", "2"},
                      {"ifNumberOfRows", "2"},
                      {"cbPgShowMetaData", "1"},
                      {"tfPgMetaDataToShow", "Show Filename;EXIF Creation Date"}});
    const QString one = freshDir("gallery-threads-1");
    const QString four = freshDir("gallery-threads-4");
    RecordingUserInterface ui1, ui4;
    cResponsiveDesign::hCreateResponsiveHTML(one, entries(photos), settings, ui1, 1);
    cResponsiveDesign::hCreateResponsiveHTML(four, entries(photos), settings, ui4, 4);
    const QStringList files = filesUnder(one);
    ASSERT_EQ(files, filesUnder(four));
    EXPECT_GT(files.size(), 15);
    for (const QString& f : files) {
        QFile a(one + f), b(four + f);
        ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
        EXPECT_TRUE(a.readAll() == b.readAll()) << f.toStdString();
    }
    EXPECT_EQ(ui1.steps, ui4.steps);
}

TEST(GalleryRun, BadPhotosDoNotStopTheRun) {
    const QString src = freshDir("gallery-bad-src");
    const QString good1 = makePhoto(src, "good1.png", 40, 30);
    const QString good2 = makePhoto(src, "good2.jpg", 40, 30);
    QFile empty(src + "empty.jpg");
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    QFile corrupt(src + "corrupt.jpg");
    ASSERT_TRUE(corrupt.open(QIODevice::WriteOnly));
    corrupt.write(QByteArray("\xFF\xD8\xFF\xE0 not really a jpeg", 23).repeated(20));
    corrupt.close();
    QDir().mkpath(src + "folder.png");

    QList<cCollectionViewItem> records;
    for (const QString& path : {good1, src + "empty.jpg", src + "corrupt.jpg", src + "folder.png",
                                src + "missing.png", good2}) {
        cCollectionViewItem item;
        item.myPhotoURL = QUrl::fromLocalFile(path);
        item.myPhotoName = QFileInfo(path).fileName();
        records.append(item);
    }
    PhotoCollection collection;
    collection.appendRecords(records);
    const QString dir = freshDir("gallery-bad");
    RecordingUserInterface ui;
    const GalleryResult result = cResponsiveDesign::hCreateResponsiveHTML(
        dir, collection.hGetPhotosFromArrayController(), settingsWith(smallImages()), ui, 3);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(pixelSize(dir + "KLimages_s/good1.jpeg"), "40x30");
    EXPECT_EQ(pixelSize(dir + "KLimages_s/good2.jpeg"), "40x30");
    EXPECT_EQ(pixelSize(dir + "KLimages_b/good2.jpeg"), "80x60");
    EXPECT_EQ(readText(dir + "myIndex.html").count("<div class=\"klOVimg\">"), 6);
}

TEST(GalleryRun, SecondRunKeepsSupportFiles) {
    const QString src = freshDir("gallery-twice-src");
    const QString photo = makePhoto(src, "a.png", 40, 30);
    const QString pattern = makePhoto(src, "dots.png", 8, 8);
    const QString dir = freshDir("gallery-twice");
    const SettingsStore settings = settingsWith(
        plus(smallImages(), {{"cbTbRdShowPatternImage", "1"}, {"tfTbRdPatternPath", pattern}}));
    RecordingUserInterface ui;
    cResponsiveDesign::hCreateResponsiveHTML(dir, entries({photo}), settings, ui);
    for (const char* name :
         {"close.gif", "loading.gif", "klOrvella.png", "overlay.png", "jquery.lightbox.js",
          "jquery02.lightbox.js", "next.png", "close.png", "previous.png"}) {
        QFile resource(QStringLiteral(":/lightbox/") + name);
        ASSERT_TRUE(resource.open(QIODevice::ReadOnly)) << name;
        EXPECT_EQ(readText(dir + "KLovlightbox/" + name).toUtf8().size() > 0, true) << name;
        // Mark the copy: a second run must keep it.
        QFile copy(dir + "KLovlightbox/" + name);
        ASSERT_TRUE(copy.open(QIODevice::WriteOnly | QIODevice::Truncate)) << name;
        copy.write("kept");
    }
    EXPECT_TRUE(QFile::exists(dir + "KLovPatterns/dots.png"));
    QFile patternCopy(dir + "KLovPatterns/dots.png");
    ASSERT_TRUE(patternCopy.open(QIODevice::WriteOnly | QIODevice::Truncate));
    patternCopy.write("kept");
    patternCopy.close();
    QFile::remove(dir + "index.html");

    cResponsiveDesign::hCreateResponsiveHTML(dir, entries({photo}), settings, ui);
    EXPECT_EQ(readText(dir + "KLovlightbox/jquery.lightbox.js"), "kept");
    EXPECT_EQ(readText(dir + "KLovlightbox/close.gif"), "kept");
    EXPECT_EQ(readText(dir + "KLovPatterns/dots.png"), "kept");
    EXPECT_TRUE(QFile::exists(dir + "index.html"));

    // Pattern on but no path: the folder exists, nothing is copied.
    const QString bare = freshDir("gallery-no-pattern");
    cResponsiveDesign::hCreateResponsiveHTML(
        bare, entries({photo}), settingsWith(plus(smallImages(), {{"cbTbShowPatternImage", "1"}})),
        ui);
    EXPECT_TRUE(QDir(bare + "KLovPatterns").exists());
    EXPECT_TRUE(QDir(bare + "KLovPatterns").isEmpty());
}

TEST(GalleryRun, RatioAndCaptionItemEditing) {
    const std::vector<std::pair<int, int>> ratios = {
        {0, 77}, {1, 200}, {2, 132}, {3, 300}, {4, 66}, {5, 150}, {6, 264}, {7, 144}, {8, 108}};
    for (const auto& [index, height] : ratios) {
        SettingsStore s = settingsWith({{"tfSmallCropWidth", "200"},
                                        {"tfSmallCropHeight", "77"},
                                        {"pubPhotoRatio", QString::number(index)}});
        cResponsiveDesign::hPhotoRatioCalc(s);
        EXPECT_EQ(s.integer("tfSmallCropHeight"), height) << index;
    }
    SettingsStore s = settingsWith({{"tfPgMetaDataToShow", ""}, {"pubPgMetaData", "IPTC City"}});
    cResponsiveDesign::hPgAddMetaDataValue(s);
    s.set("pubPgMetaData", "Show Filename");
    cResponsiveDesign::hPgAddMetaDataValue(s);
    EXPECT_EQ(s.text("tfPgMetaDataToShow"), "IPTC City;Show Filename");
    cResponsiveDesign::hPgClearMetaDataValue(s);
    EXPECT_EQ(s.text("tfPgMetaDataToShow"), "");
}

TEST(GalleryControlsTest, AliasesNameOneSetting) {
    const ControlRegistry& r = ControlRegistry::standard();
    const std::vector<std::pair<const char*, const char*>> aliases = {
        {"tfNumberOfRows", "ifNumberOfRows"},
        {"tfNumberOfColumns", "ifNumberOfColumns"},
        {"pbPresetTitleFontSize", "pbTitleFontSize"},
        {"scPresetFilenameTxtAlign", "scFilenameTxtAlign"},
        {"tfThumbnailRadius", "tfThumbnailBorderRadius"},
        {"tfThumbnailThickness", "tfThumbnailBorderThickness"},
        {"tfThumbnailColorValue", "tfHTMLThumbnailColor"},
        {"cbPgMagnifyHooverEffectState", "cbMagnifyHooverEffectState"},
        {"tfHTMLLightBoxColor", "tfBoxColorValue"},
        {"tfHTMLLightBoxShadowColor", "tfLightBoxShadowColor"},
        {"cbTbRdShowPatternImage", "cbTbShowPatternImage"},
        {"tfTbRdPatternPath", "tfTbPatternPath"},
        {"tfTbRdPatternScale", "tfTbPatternScale"},
        {"pubTbRdPatternOpacity", "pubTbPatternOpacity"},
        {"tfNSColorWellObjRDLightboxBgColor", "ascNSColorWellObjRDLightboxBgColor"},
        {"cwNSColorWellObjBsImage", "tfSmallFramingRGBvalue"},
        {"ascNSColorWellObjBbImage", "tfBigFramingRGBvalue"},
    };
    for (const auto& [alias, name] : aliases) {
        ASSERT_NE(r.find(alias), nullptr) << alias;
        EXPECT_EQ(r.find(alias), r.find(name)) << alias;
    }
    // Every control of the preset layout is known.
    for (const char* name : {"tfPageTitle",
                             "btShowFileName",
                             "tfHTMLbackgroundColor",
                             "tfHTMLTitleColor",
                             "tfHTMLbackgroundColorCell",
                             "pbImageFormat",
                             "pbJPGCompression",
                             "tfSmallCropWidth",
                             "tfSmallCropHeight",
                             "tfSmallFramingThickness",
                             "tfBigCropWidth",
                             "tfBigCropHeight",
                             "tfBigFramingThickness",
                             "btShowEXIFucd",
                             "scPresetEXIFuserCommentTxtAlgin",
                             "scPresetTitleTxtAlign",
                             "btShowTitle",
                             "pbPresetFileNameFontSize",
                             "pbPresetExifUserCommentFontSize",
                             "tfHTMLdestinationFolder",
                             "scImageCropThumbPos",
                             "tfCropThumbXOffset",
                             "tfCropThumbYOffset",
                             "scImageCropBigPos",
                             "tfCropBigXOffset",
                             "tfCropBigYOffset",
                             "pbTitleFontWeight",
                             "pbFileNameFontWeight",
                             "pbExifUserCommentFontWeight",
                             "tfHTMLPhotoNameColor",
                             "tfHTMLUserExifCommentColor",
                             "cbTableTypeTable",
                             "cbTableTypeResponsive",
                             "tfGridWidth",
                             "pbFontFamily",
                             "tvTitle",
                             "tfBoxRadius",
                             "tfBoxThickness",
                             "tfBoxShadowThickness",
                             "tfBoxShadowXOffset",
                             "tfBoxShadowYOffset",
                             "cbCaptionStatus",
                             "pubTableTemplateChoice",
                             "tfThumbnailShadowColorValue",
                             "tfThumbnailShadowThickness",
                             "tfThumbnailShadowXOffset",
                             "tfThumbnailShadowYOffset",
                             "pubPgMetaData",
                             "tfPgMetaDataToShow",
                             "tfPgMetaDataValueSep",
                             "pubPhotoRatio",
                             "pubThumbAction",
                             "sliderLightboxRDBgColorOpacity"}) {
        const ControlSpec* control = r.find(name);
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->outputKind, "gallery") << name;
    }
    // The pattern opacity popup reads by index and by title.
    SettingsStore s = settingsWith({{"pubTbRdPatternOpacity", "0.7"}});
    EXPECT_EQ(s.index("pubTbPatternOpacity"), 6);
    EXPECT_EQ(s.title("pubTbPatternOpacity"), "0.7");
    // Defaults are valid values of their own controls.
    for (const ControlSpec* control : r.controls("gallery")) {
        if (control->kind == ControlKind::Text || control->kind == ControlKind::Path ||
            control->kind == ControlKind::TextView)
            continue;
        QString error;
        EXPECT_TRUE(r.normalise(*control, control->defaultValue, nullptr, &error)) << error.toStdString();
    }
}
