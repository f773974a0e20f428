// The Responsive Grid's texts, written out here from the rules of the format, and its images read
// back with libvips. (Whole runs: tests/cli and tests/browser.)
#include "generators/GeneratorFixtures.h"
#include "generators/grid/cResponsiveGrid.h"

using namespace gen;

namespace {

// The 21 style settings in their call order.
GridCssArgs sampleArgs(int patternOn, int hover) {
    // clang-format off
    return {"/nowhere/", "Exo 2", "24px", "300", "#101010", "center", "500", "14px", "right",
            "#202020", "#303030", "1", patternOn, "p.png", "30", "0.4", "300", "225", hover,
            CssRgb::fromHex("FFFFFF"), "0.8"};
    // clang-format on
}

const QString kHead =
    R"(* {box-sizing:border-box;| margin: 0;| padding: 0; | border: 0;|}||)"
    R"(/* Responsive grid container */|.klovlResponsiveGrid-container {|max-width: 1200px;|)"
    R"(margin: 0 auto;|}||.klovlResponsiveGrid-container::after {|content: "";|top: 0;|)"
    R"(left: 0;|position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
    R"(background-color:#303030;}||)";

// The hover rules as written with the pattern on; without it one more "}" line follows.
const QString kHover =
    R"(.klovlImage img:hover {|transform: scale(1.5);|border-top-left-radius: 5px;|)"
    R"(border-top-right-radius: 5px;|border-bottom-left-radius: 5px;|)"
    R"(border-bottom-right-radius: 5px;|}||.klovlImage4 img:hover {|transform: scale(1.5);||)"
    R"(border-top-left-radius: 5px;|border-top-right-radius: 5px;|)"
    R"(border-bottom-left-radius: 5px;|border-bottom-right-radius: 5px;}||)"
    R"(.klovlImage img {|object-fit: cover;|opacity: 1;|transition: 0.5s;|)"
    R"(-webkit-transition: 0.3s;|-moz-transition: 0.3s;|}||.klovlImage4 img {|)"
    R"(object-fit: cover;|opacity: 1;|transition: 0.5s;|-webkit-transition: 0.3s;|)"
    R"(-moz-transition: 0.3s;|}|)";

const QString kPattern =
    R"(.klovlResponsiveGrid-container::before {|content: "";|)"
    R"(background-image: url(../KLovPatterns/p.png);|background-repeat: repeat;|)"
    R"(background-size: 30%;|opacity: 0.4;|top: 0;|left: 0;|position: fixed;|width: 100%;|)"
    R"(height: 100%;|}||)";

// From the pattern box to the end; %1 and %2 are the track sizes.
const QString kRest =
    R"(.klSsPatternBox {|content: "";|top: 0;|left: 0;|position: absolute;|display: block;|)"
    R"(width: 100%;|height: 100%;|}||body, html {|height: 100%;|;|}||)"
    R"(body.blurred > * {|-webkit-filter: blur(2px);|}||.klovlGrid {|display: grid;|)"
    R"(grid-template-columns: repeat(auto-fill, minmax(%1px, 1fr));|)"
    R"(grid-template-rows: repeat(auto-fill, minmax(%2px, 1fr));|grid-gap: 6px;|)"
    R"(grid-auto-flow: row dense;|}||.klovlImage {|position: relative;|}||)"
    R"(.klovlImage, .klovlImage img {|width: 100%;|height: 100%;|}||)"
    R"(.klovlImageVertical {|position: relative;|grid-row: span 2;|grid-column: span 2;|}||)"
    R"(.klovlImageVertical, .klovlImageVertical img {|width: 100%;|height: 100%;|}||)"
    R"(.klovlImageVertical img {|object-fit: cover;|}||)"
    R"(.klovlImage4 {|position: relative;|grid-row: span 3;|grid-column: span 3;|}||)"
    R"(.klovlImage4, .klovlImage4 img {|width: 100%;|height: 100%;|}||)"
    R"(/* Caption text */|.klSsText {|[f]font-weight:500;|color: #202020;|font-size: 14px;|)"
    R"(padding: 8px 12px;|position: absolute;|bottom: 8px;|width: 100%;|text-align: right;|}||)"
    R"(.klSsRef {|position: absolute;|bottom: -30px;|right: 0;|}||)"
    R"(.klovlRgDescription {|padding: 8px 12px;|[f]font-size:24px;|font-weight:300;|)"
    R"(color:#101010;|text-align:center;|position: relative;|margin: auto;|margin-top: 20px;|)"
    R"(margin-bottom: 20px;|}||/***** BEGIN: light box *****/|.klOVlightbox{|)"
    R"(cursor: pointer;|position: fixed;|width: 100%;|height: 100%;|top: 0;|left: 0;|)"
    R"(background-color: rgba(255.000000,255.000000,255.000000,0.8);|)"
    R"(-webkit-filter: none !important;|z-index: 9997;|}||.klOVlightbox img {|display: block;|)"
    R"(position: absolute;|border: 4 px solid #000000;|box-shadow: 10px 10px 10px #000000;|}||)"
    R"(.klOVlightbox_loading {|background: url(loading.gif) center center no-repeat;|)"
    R"(width: 32px;|height: 32px;|margin: -16px 0 0 -16px;|position: absolute;|top: 50%;|)"
    R"(left: 50%;|}||.klOVlightbox_caption {|display: none;|position: absolute;|left: 0;|)"
    R"(bottom: 0;|width: 100%;|text-align: right;|z-index: 9998;|)"
    R"(background: rgba(0, 0, 0, 0.7);|}||.klOVlightbox_caption p {|margin: 0 auto;|)"
    R"(max-width: 70%;|display: inline-block;|*display: inline;|zoom: 1;|padding: 10px;|)"
    R"(font-weight:500;|color: #202020;|font-size: 14px;|line-height: 18px;|[f]}||)" +
    kLightboxButtons;

// %1 the title line, %2 the font family, %3 the description block, %4 the cells.
const QString kPage =
    kPrologue +
    R"(%1<!-- Keldra: Responsive grid creation - Begin -->|<link href="KLResponsiveGridCss/)"
    R"(klovlResponsiveGrid.css" rel="stylesheet" type="text/css">|<!-- Keldra: Responsive grid )"
    R"(creation - End -->|<link href="https://fonts.googleapis.com/css?family=%2:300,400,500,700,)"
    R"(900" rel="stylesheet">|<!-- Keldra: lightbox - Begin -->|<script type="text/javascript" )"
    R"(src="https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js"></script>)"
    R"(<script type="text/javascript" src="KLovlightbox/jquery.lightbox.js">|</script>|)"
    R"(<script>|$(function() {|$('.klovlImage a').lightbox();|});|</script>|)"
    R"(<script>|$(function() {|$('.klovlImage4 a').lightbox();|});|</script>|)"
    R"(<!-- Keldra: lightbox - End -->|</head>|<body>|<!-- Keldra: Pattern background: Begin -->|)"
    R"(<div class="klSsPatternBox">|<!-- Keldra: Responsive Grid container: Begin -->|)"
    R"(<div class="klovlResponsiveGrid-container">|%3<!-- Keldra: Responsive photo grid - )"
    R"(begins -->|<div class="klovlGrid"> |%4</div>||</div>||<!-- Keldra: Responsive grid )"
    R"(container: End-->|</div>|<!-- Keldra: Pattern background: End -->|<br>|</body>|</html>|)";

// The cells of photos given as "class|image|title", separated by ", ".
QString cells(const QString& list) {
    QString s;
    for (const QString& c : list.split(", "))
        s += QString(R"(<div class="%1"> |<a href="KLovImages/%2" rel="klOVlightbox" )"
                     R"(title="%3"> <img src="KLovImages/%2" style="width:100%">|</a>|)"
                     R"(</div>||)")
                 .arg(c.section('|', 0, 0), c.section('|', 1, 1), c.section('|', 2));
    return s;
}

}  // namespace

// Pattern off and hover off: nothing between the container and the pattern box; hover alone: the
// hover rules and a stray "}"; the pattern follows the container rules or the hover rules.
TEST(GridCss, WholeTextForEachPatternAndHover) {
    const std::tuple<int, int, QString> cases[] = {
        {0, 0, ""},
        {0, 1, text(kHover) + "}\n"},
        {1, 0, text(kPattern)},
        {1, 1, text(kHover) + text(kPattern)},
    };
    for (const auto& [pattern, hover, middle] : cases)
        EXPECT_TEXT(GridCss::hCreateResponsiveGridCss(sampleArgs(pattern, hover)),
                    text(kHead) + middle + text(kRest).arg("300", "225"))
            << "pattern " << pattern << ", hover " << hover;
}

// Track sizes from the column count (the row a truncated three quarters), the lightbox colour in
// "%f" components and its opacity as a float prints, a pattern file name percent-encoded.
TEST(GridCss, ValuesFromTheSettings) {
    const std::tuple<QString, const char*, const char*, const char*> cases[] = {
        {"tfRGMaxColumns=7, tfNSColorWellObjRGLightboxBgColor=800040, "
         "sliderLightboxRGBgColorOpacity=37, cbMagnifyHooverEffect=1, cbRgShowPatternImage=1, "
         "tfRgPatternPath=/p/my dots#1.png",
         "171", "128", "rgba(128.000000,0.000000,64.000000,0.37);"},
        {"tfRGMaxColumns= 1 , sliderLightboxRGBgColorOpacity=100", "1200", "900",
         "rgba(30.000000,30.000000,30.000000,1);"},
        {"tfRGMaxColumns=1200, sliderLightboxRGBgColorOpacity=0", "1", "0",
         "rgba(30.000000,30.000000,30.000000,0);"},
    };
    for (const auto& [set, columnWidth, rowHeight, lightbox] : cases) {
        const QString css = GridCss::hCreateResponsiveGridCss(
            cResponsiveGrid::readSettings(store(set), "/out/").css);
        EXPECT_TRUE(css.contains(QString("minmax(%1px, 1fr));\ngrid-template-rows: "
                                         "repeat(auto-fill, minmax(%2px, 1fr));")
                                     .arg(columnWidth, rowHeight)))
            << set;
        EXPECT_TRUE(css.contains(QString("background-color: ") + lightbox)) << set;
        EXPECT_EQ(css.contains("img:hover"), set.contains("Hoover")) << set;
        EXPECT_EQ(css.contains("background-image: url(../KLovPatterns/my%20dots%231.png);\n"),
                  set.contains("dots"));
    }
}

// Title, description and captions on (the title and captions escaped, the description as it
// stands, names encoded in links), then all three off. Cells by highlight and orientation: the
// large cell for a highlighted landscape photo, the vertical one for a highlighted portrait one.
TEST(GridText, WholePages) {
    QList<PhotoEntry> photos =
        entries({"/p/wide.png", "/p/tall.png", "/p/plain.png", "/q/my photo#1.png"});
    photos[1].orientation = photos[3].orientation = "V";  // any highlight but 1 is none
    photos[2].highlight = 2;
    photos[3].highlight = 0;
    const std::tuple<QString, QString, QString, QString, QStringList, QString> cases[] = {
        {"cbRgWebPageTitle=1, tfRgWebPageTitle=T & T, cbRgDescription=1, "
         "tfRgDescription=<b>Hi</b>, pubRgHTMLDescriptionFontFamily=Kanit",
         "<title>T &amp; T</title>|",
         "Kanit",
         R"(<div class="klovlRgDescription"><b>Hi</b></div>|)",
         {R"(wide / <i> & "q")", "tall", "plain", "my photo#1"},
         R"(klovlImage4|wide.jpeg|wide / &lt;i&gt; &amp; &quot;q&quot;, )"
         "klovlImage klovlImageVertical|tall.jpeg|tall, klovlImage|plain.jpeg|plain, "
         "klovlImage|my%20photo%231.jpeg|my photo#1"},
        {"cbRgWebPageTitle=0, cbRgDescription=0, tfRgPageName=start, "
         "pubRgHTMLDescriptionFontFamily=Libre Franklin",
         "",
         "Libre+Franklin",
         "",
         {},
         "klovlImage4|wide.jpeg|, klovlImage klovlImageVertical|tall.jpeg|, "
         "klovlImage|plain.jpeg|, klovlImage|my%20photo%231.jpeg|"},
    };
    for (const auto& [set, title, family, description, captions, cellList] : cases) {
        const QList<PageFile> files = cResponsiveGrid::pageTexts(
            cResponsiveGrid::readSettings(store(set), "/out/"), photos, captions);
        ASSERT_EQ(files.size(), 2);
        EXPECT_EQ(files[0].path, "KLResponsiveGridCss/klovlResponsiveGrid.css");
        EXPECT_EQ(files[1].path, set.contains("start") ? "start.html" : "index.html");
        EXPECT_TEXT(files[1].text, text(kPage.arg(title, family, description, cells(cellList))));
    }
}

// Column counts that are not whole numbers from 1 to 1200, and page names that would leave the
// folder, stop the run before anything is written.
TEST(GridText, Refusals) {
    const auto alerts = [](const QString& set) {
        return planAlerts(cResponsiveGrid::plan(store(set), entries({"/p/a.png"}), {"/out/"}));
    };
    for (const char* columns : {"4", " 1 ", "+2", "1200"})
        EXPECT_EQ(alerts(QString("tfRGMaxColumns=") + columns), "") << columns;
    for (const char* columns : {"0", "-3", "four", "2.5", "", "1201", "99999999999"})
        EXPECT_EQ(alerts(QString("tfRGMaxColumns=") + columns),
                  "stops Sorry, the grid layout is not possible.")
            << columns;
    for (const char* name : {"../up", " ", "a/b", "a\\b"})
        EXPECT_EQ(alerts(QString("tfRgPageName=") + name),
                  "stops Sorry, the page name is not possible.")
            << name;
}

// Cell images are 960 x 720 whatever the photo, cut from its middle (the cell's 4:3 shape); the
// lightbox's images are 1200 and 2400 pixels on the longer side, never enlarged. Always JPEG,
// named by the base name, whatever the source type.
TEST(GridImages, CellShapeAndLightboxSizes) {
    const QString src = freshDir("grid-images-src"), out = freshDir("grid-images");
    const QStringList folders = {"KLovImages/", "KLovImages_b/", "KLovImages_b2x/"};
    for (const QString& folder : folders) QDir().mkpath(out + folder);
    const std::tuple<const char*, int, int, const char*> cases[] = {
        {"a.jpg", 4000, 3000, "1200x900 jpegload, 2400x1800 jpegload"},
        {"d.e.png", 1000, 3000, "400x1200 jpegload, 800x2400 jpegload"},
        {"small.png", 100, 70, "100x70 jpegload, 100x70 jpegload"},
    };
    for (const auto& [name, w, h, sizes] : cases) {
        const QString path = makePhoto(src, name, w, h), output = cResponsiveGrid::outputName(path);
        EXPECT_EQ(output, QFileInfo(name).completeBaseName() + ".jpeg");
        EXPECT_TRUE(cResponsiveGrid::hMakeGridImage(path, out, output).isEmpty()) << name;
        QStringList made;
        for (const QString& folder : folders) made << header(out + folder + output);
        EXPECT_EQ(made.join(", "), "960x720 jpegload, " + QString(sizes));
    }
}
