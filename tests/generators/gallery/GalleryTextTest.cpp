// The gallery's texts, written out here from the rules of the format, from the settings alone.
#include "generators/GeneratorFixtures.h"
#include "generators/common/PageText.h"
#include "generators/gallery/cResponsiveDesign.h"

using namespace gen;

namespace {

// The 42 style settings in their call order.
GalleryCssArgs sampleArgs() {
    // clang-format off
    return {"#101010", "Heading", "left", "900", "right", "400", "32px", "12px", "300", "#202020",
            "/nowhere/", "#303030", "14px", "#404040", "center", "#505050", "Exo 2",
            {"24.000000", "48.000000", "49.999989", "49.999989", "100"}, "0", "606060", "7", 0,
            "p.png", "30", "0.4", "5", "1", "2", "707070", "808080", "9", "3", "11", "12", "13",
            "909090", 0, 200, 150, CssRgb::fromHex("FF8000"), "0.85", 0};
    // clang-format on
}

// Photo name to responsive cell: the same in both models.
const QString kTextAndCell =
    R"(div.klOVphotoname {|[f]padding: 1%;|text-align:left;|font-weight:900;|}||)"
    R"(div.klOVdescription {|[f]padding: 1%;|color:#404040;|text-align:right;|font-weight:400;|)"
    R"(}||* {|box-sizing: border-box;|}||.klOVimg {|[f]background-color:606060;|}||)"
    R"(.klOVresponsive {|[f]padding: 0.5%;|float: left;|width: 24.99999%;|}||)";

// Page navigation to the end: the same in both models.
const QString kNavigationAndLightbox =
    R"(.klOVpageNav {|[f]font-weight:900;|color:#9595BA;|font-size:medium;|color:#000000;|}||)"
    R"(div.klOVpageNav {|[f]font-weight:900;|color:#9595BA;|font-size:medium;|color:#000000;|}||)"
    R"(.klOVtitle {|[f]font-size:32px;|font-weight:300;|color:#202020;|text-align:center;|}||)"
    R"(.klOVphotoname {|[f]padding: 1%;|color:#303030;|text-align:left;|font-size:14px;|)"
    R"(font-weight:900;|display:block;|margin-top:5px;|}||)"
    R"(.klOVdescription {|[f]padding: 1%;|color:#404040;|text-align:right;|font-size:12px;|)"
    R"(font-weight:400;|}|#navBar a {|display: inline-block;|padding: 1px 4px;|)"
    R"(border: 1px solid #CCCCCC;|border-radius: 4px 4px 4px 4px;|color: #111111;|)"
    R"(background-color:#FFFFFF;|}||/* light box */|.klOVlightbox{|cursor: pointer;|)"
    R"(position: fixed;|width: 100%;|height: 100%;|top: 0;|left: 0;|)"
    R"(background-color: rgba(255.000000,128.000000,0.000000,0.85);|)"
    R"(-webkit-filter: none !important;|z-index: 9997;|}||)"
    R"(.klOVlightbox img {|display: block;|position: absolute;|border: 3px solid #808080;|)"
    R"(box-shadow: 12px 13px 11px #909090;|border-radius: 9px;|}||)"
    R"(body.blurred > * {|-webkit-filter: blur(2px);|}||)"
    R"(.klOVlightbox_loading {|background: url(loading.gif) center center no-repeat;|)"
    R"(width: 32px;|height: 32px;|margin: -16px 0 0 -16px;|position: absolute;|top: 50%;|)"
    R"(left: 50%;|}||.klOVlightbox_caption {|display: none;|position: absolute;|left: 0;|)"
    R"(bottom: 0;|width: 100%;|text-align: center;|z-index: 9998;|)"
    R"(background: rgba(0, 0, 0, 0.7);|}||.klOVlightbox_caption p {|margin: 0 auto;|)"
    R"(max-width: 70%;|display: inline-block;|*display: inline;|zoom: 1;|padding: 10px;|)"
    R"(color: #fff;|font-size: 12px;|line-height: 18px;|font-family: 'Roboto', sans-serif;|}||)" +
    kLightboxButtons;

const QString kContainer =
    R"(@charset "UTF-8"||.KLovTableBased-container {|height: 100%;|z-index: 2;|}|)"
    R"(.KLovTableBased-container::after {|content: "";|)";

const QString kTableHead =
    R"(top: 0;|left: 0;|position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
    R"(background-color:#101010;}||.klSsPatternBox {|content: "";|top: 0;|left: 0;|)"
    R"(position: absolute;|display: block;|width: 100%;|height: 100%;|}||)"
    R"(body, html {|height: 100%;|}||div.klOVimg {|[f]background-color:#505050;|}||)"
    R"(div.klOVimg img {|[f]max-width: 100%;|max-height: 150px;|border-radius:7px;|)"
    R"(display:block;|margin:auto;|}||.klOVimg img {|[f]width: 100%;|height: auto;|)"
    R"(box-shadow: 1px 2px 5px #707070;|}||)";

const QString kGridHead =
    R"(top: 0;|left: 0;|position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
    R"(background-color:#101010;}||body, html {|height: 100%;|padding: 1rem;|}||)"
    R"(div.klOVimg {|[f]background-color:#505050;|}||.klOVimg {|display: block;|width: 90%;|)"
    R"(margin-left: auto;|margin-right: auto;|}||img {|display:block;|max-width: 100%;|)"
    R"(max-height: 100%;|}||.klOVimages {|max-width: 100%;|margin: 0 auto;|display: grid;|)"
    R"(grid-gap: 1rem;|align-items: center;|}||.klOVimg {|[f]background-color:606060;|)"
    R"(height: 150px;|}||.klOVimg img {|[f]box-shadow: 1px 2px 5px #707070;|}||)";

const QString kMagnifyTail =
    R"(object-fit: cover;|opacity: 1;|transition: 0.5s;|-webkit-transition: 0.3s;|)"
    R"(-moz-transition: 0.3s;|}||.klOVimg img:hover {|transform: scale(1.5);|)"
    R"(border-top-left-radius: 5px;|border-top-right-radius: 5px;|)"
    R"(border-bottom-left-radius: 5px;|border-bottom-right-radius: 5px;|}||div.klOVphotoname {)";

// The max-width breakpoints of the table model for the 4-column width list; thumbnail action 1
// adds the height lines.
QString tableBreakpoints(bool heights) {
    const char* widths[] = {"6000px", "2000px", "1242px", "1000px", "750px"};
    const char* shares[] = {"24.000000", "24.000000", "48.000000", "49.999989", "49.999989"};
    QString s;
    for (int i = 0; i < 5; ++i) {
        s += QString("@media only screen and (max-width: ") + widths[i] +
             "){\n.klOVresponsive {\nwidth: " + shares[i] + "%;\n";
        if (heights) s += QString(i ? "max-" : "") + "height: " + shares[i] + "%;\n";
        s += "margin: 1% 0;\n}\n}\n";
    }
    return s + "@media only screen and (max-width: 640px){\n.klOVresponsive {\nwidth: 100%;\n" +
           (heights ? "max-height: 100%;\n" : "") +
           "\ncontent: \"\";\ndisplay: table;\nclear: both;\n}\n}\n";
}

QString gridBreakpoints(std::array<int, 5> k) {
    const char* widths[] = {"400px", "700px", "1000px", "1300px", "1600px"};
    QString s;
    for (int i = 0; i < 5; ++i)
        s += QString(
                 "@media (min-width: %1) {\n.klOVimages { grid-template-columns: "
                 "repeat(%2, 1fr); }}\n\n")
                 .arg(widths[i])
                 .arg(k[i]);
    return s;
}

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

}  // namespace

TEST(GalleryCss, WholeTextOfEachModel) {
    EXPECT_TEXT(GalleryCss::hCreateCss(sampleArgs()),
                text(kContainer + kTableHead + kTextAndCell + tableBreakpoints(false) +
                     kNavigationAndLightbox));
    EXPECT_TEXT(GalleryCss::hCreateCssGridMod2(sampleArgs(), 4),
                text(kContainer + kGridHead + kTextAndCell + gridBreakpoints({2, 2, 3, 4, 4}) +
                     kNavigationAndLightbox));
}

// What the pattern, the hover magnifier, the thumbnail border and thumbnail action 1 change in
// each model: a piece that must be there, and one that must not.
TEST(GalleryCss, EachBranchChangesItsPiece) {
    const std::tuple<bool, int, int, int, QString, QString, const char*> cases[] = {
        {false, 1, 0, 0, "0",
         R"(position: fixed;|z-index: -10;|width: 100%;|height: 100%;|)"
         R"(background-color:#101010;}||.KLovTableBased-container::before {|content: "";|)"
         R"(top: 0;|left: 0;|position: fixed;|width: 100%;|height: 100%;|)"
         R"(background-image: url(../KLovPatterns/p.png);|background-repeat: repeat;|)"
         R"(background-size: 30%;|opacity: 0.4;}||.klSsPatternBox {|)",
         nullptr},
        {true, 1, 0, 0, "0",
         R"(::after {|content: "";|background-image: url(../KLovPatterns/p.png);|)"
         R"(background-repeat: repeat;|background-size: 30%;|opacity: 0.4;|top: 0;|left: 0;|)"
         R"(position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
         R"(background-color:#101010;}||body, html {|)",
         "::before"},
        {false, 0, 1, 0, "2",
         R"(border-radius:7px;|border:2px solid #606060;|display:block;|margin:auto;|}||)"
         R"(.klOVimg img {|[f]max-width: auto;|max-height: auto;|border:2px solid #606060;|)"
         R"(box-shadow: 1px 2px 5px #707070;|)" +
             kMagnifyTail,
         nullptr},
        {true, 0, 1, 0, "4",
         R"(align-items: center;|}||.klOVimg img {|[f]border:4px solid #606060;|)"
         R"(box-shadow: 1px 2px 5px #707070;|)" +
             kMagnifyTail,
         "height: 150px;"},
        {false, 0, 0, 0, "", "border-radius:7px;|display:block;|", "solid #606060"},
        {false, 0, 0, 1, "0",
         "width: 24.99999%;|height: 24.99999%;|}||" + tableBreakpoints(true) + ".klOVpageNav",
         nullptr},
        {true, 0, 0, 1, "0", "width: 24.99999%;|height: 24.99999%;|}||@media (min-width: 400px)",
         nullptr},
    };
    for (const auto& [grid, pattern, magnify, action, border, present, absent] : cases) {
        GalleryCssArgs a = sampleArgs();
        std::tie(a.patternOn, a.magnifyOnHover, a.thumbnailAction, a.thumbnailBorderThickness) =
            std::tie(pattern, magnify, action, border);
        const QString css = grid ? GalleryCss::hCreateCssGridMod2(a, 4) : GalleryCss::hCreateCss(a);
        EXPECT_TRUE(css.contains(text(present))) << present;
        EXPECT_FALSE(absent && css.contains(absent)) << present;
    }
}

TEST(GalleryCss, ValuesFromTheSettings) {
    const std::vector<std::pair<std::vector<int>, QString>> widths = {
        {{1, 2, 3}, "24.999990 49.999981 49.999989 49.999989 100"},
        {{4}, "24.000000 48.000000 49.999989 49.999989 100"},
        {{5}, "19.000000 38.000000 49.999989 49.999989 100"},
        {{6}, "15.000000 30.000000 49.999989 49.999989 100"},
        {{12}, "7.000000 14.000000 35.000000 49.999989 100"}};
    for (const auto& [columns, list] : widths)
        for (const int n : columns) EXPECT_EQ(cResponsiveDesign::widthList(n).join(' '), list) << n;
    const std::pair<int, std::array<int, 5>> grids[] = {{1, {1, 1, 1, 1, 1}}, {2, {2, 1, 2, 2, 2}}};
    for (const auto& [columns, k] : grids)
        EXPECT_TRUE(
            GalleryCss::hCreateCssGridMod2(sampleArgs(), columns).contains(gridBreakpoints(k)))
            << columns;
    // The font line of each family (Trirong for any other), the weights of the popups' titles,
    // and the file-name weight "Bold" tested against the mapped heading weight: always 900, kept
    // on purpose.
    for (const char* family : {"Catamaran", "Exo", "Libre Franklin", "Raleway", "Rubik", "Taviraj"})
        EXPECT_EQ(cCssCreate::fontLine(family),
                  QString("font-family: '%1', sans-serif;\n").arg(family));
    for (const char* other : {"Trirong", "Comic Sans", ""})
        EXPECT_EQ(cCssCreate::fontLine(other), "font-family: 'Trirong', serif;\n") << other;
    QStringList weights;
    for (const char* title : {"Light", "Regular", "Medium", "Bold", "Black", ""})
        weights << PageText::weight(title);
    EXPECT_EQ(weights.join(' '), "300 400 500 700 900 900");
    const GalleryCssArgs a = cResponsiveDesign::readSettings(
                                 store("pbTitleFontWeight=Bold, pbFileNameFontWeight=Bold"), "/")
                                 .css;
    EXPECT_EQ(a.headingWeight + " " + a.fileNameWeight, "700 900");
    EXPECT_EQ(cResponsiveDesign::fileNameWeight("Light", "700"), "300");
}

// Caption and file name on in the table model (escaped, links encoded, the heading as it stands),
// both off in the grid model. The redirect writes "/n" where a line feed is meant, kept on purpose.
TEST(GalleryPages, WholePageOfEachModel) {
    const std::tuple<QString, QString, QString, QString, QStringList> models[] = {
        {"pubPhotoGalleryModel=0, cbCaptionStatus=0, pbFontFamily=Kanit, tfGridWidth=80, "
         "tfPageTitle=T & T, tvTitle=<b>Hi</b>, btShowFileName=1, cbPgShowMetaData=1, "
         "cbTbShowPatternImage=1, tfTbPatternPath=/x/dots.png",
         "/p/a&b #1.png",
         "myIndex",
         "background-image: url(../KLovPatterns/dots.png);",
         {"T &amp; T", " - Begin", "jquery", "<!-- Keldra: responsive design - End -->|", "Kanit",
          "80", "responsive design grid",
          R"(<div class="klOVtitle"><b>Hi</b></div>|<div class="klOVresponsive">|)"
          R"(<div class="klOVimg">|<a href="KLimages_b/a%26b%20%231.jpeg" rel="klOVlightbox" )"
          R"(title="a&amp;b #1; &lt;i&gt; &amp; &quot;q&quot;">|<img src="KLimages_s/)"
          R"(a%26b%20%231.jpeg" alt="a&amp;b #1" width="auto" height="auto">|</a>|</div>|)"
          R"(<div class="klOVphotoname">a&amp;b #1</div>|)"
          R"(<div class="klOVdescription">&lt;i&gt; &amp; &quot;q&quot;</div>|</div>|)",
          "http", "</div>|</div><!-- Keldra: grid - End -->|"}},
        {"pubPhotoGalleryModel=2, cbCaptionStatus=1, pbFontFamily=Exo 2, tfHTMLfileName=page, "
         "tfGridWidth=90, tfPageTitle=G, tvTitle=Heading, btShowFileName=0, cbPgShowMetaData=0, "
         "pbImageFormat=png, pbBIGImageFormat=tiff, ifNumberOfColumns=6",
         "/p/a.png",
         "page",
         gridBreakpoints({2, 3, 4, 5, 6}),
         {"G", "", "jquery02", "", "Exo+2", "90", "grid",
          R"(<div class="klOVtitle">Heading<br><br></div>|<div class="klOVimages">|)"
          R"(<div class="klOVimg">|<a href="KLimages_b/a.tiff" rel="klOVlightbox" title="a">|)"
          R"(<img src="KLimages_s/a.png" alt="a" width="auto" height="auto">|</a>|</div>|)"
          R"(</div><!-- Keldra: grid - End -->|)",
          "https", ""}},
    };
    for (const auto& [set, photo, name, css, pieces] : models) {
        const QList<PageFile> files =
            cResponsiveDesign::pageTexts(cResponsiveDesign::readSettings(store(set), "/out/"),
                                         entries({photo}), {R"(<i> & "q")"});
        ASSERT_EQ(files.size(), 3);
        EXPECT_TRUE(files[0].path == "KLcss/klGScss.css" && files[0].text.contains(css));
        EXPECT_EQ(files[1].path + " " + files[2].path, name + ".html index.html");
        QString page = kPage;
        for (const QString& piece : pieces) page = page.arg(piece);
        EXPECT_TEXT(files[1].text, text(page));
        EXPECT_TEXT(files[2].text,
                    text(kPrologue +
                         R"(<head>/n<meta http-equiv="Content-Type" content="text/html; )"
                         R"(charset=UTF-8" />/n<meta name="viewport" content="width=)"
                         R"(device-width, initial-scale=1.0" />/n<title>my first )"
                         R"(responsive designed picture gallery</title>/n<script>)"
                         R"(window.location.href = ")" +
                         name + R"(.html"</script>|</head>|<body></body>)"));
    }
}

// 13 photos at 12 a page: both pages have the navigation bar. (One page has none:
// WholePageOfEachModel; moving between pages: tests/browser.)
TEST(GalleryPages, NavigationBarOnEveryPage) {
    const QList<PageFile> files = cResponsiveDesign::pageTexts(
        cResponsiveDesign::readSettings(store("ifNumberOfColumns=4, ifNumberOfRows=3"), "/"),
        entries(QStringList(13, "/p/t.png")), {});
    ASSERT_EQ(files.size(), 4);
    for (const int page : {1, 2})
        EXPECT_TRUE(files[page].text.contains(
            R"(<div id="navBar" class="klOVpageNav" )"
            R"(style="width:100%;padding:6px;text-align:left;">)"
            R"(<a href="myIndex.html"> 1 </a><a href="myIndex2.html">2 </a></div>)"
            R"(<div class="klOVtitle">)"))
            << page;
}

// What stops a run before anything is written (the photos' own refusals are the run driver's, a
// page name that leaves the folder: tests/cli), and the warnings it goes on with.
TEST(GalleryPages, RefusalsAndWarnings) {
    const std::tuple<QString, int, QString> cases[] = {
        {"", 1, ""},
        {"ifNumberOfColumns=0", 1, "stops Sorry, the page layout is not possible."},
        {"ifNumberOfRows=0", 1, "stops Sorry, the page layout is not possible."},
        {"tfSmallCropWidth=200, tfSmallCropHeight=150, tfBigCropWidth=200, tfBigCropHeight=100", 1,
         "Sorry, some wrong properties|\r- Lightbox images are smaller than your thumbnails. "
         "(Thumbnail size: 200)"},
        {"ifNumberOfColumns=2, ifNumberOfRows=3", 12,
         "No page will be written|12 photos fill exactly 2 pages of 6 photos (2 columns x 3 rows); "
         "an exact multiple gives no page. Change the rows or the columns, or the number of "
         "photos."},
    };
    for (const auto& [set, photos, alerts] : cases)
        EXPECT_EQ(planAlerts(cResponsiveDesign::plan(
                      store(set), entries(QStringList(photos, "/p/a.png")), {"/out/"})),
                  alerts)
            << set;
}

// Each ratio sets the crop height from the width by whole-number steps (a width that shows their
// order: 254 / 3 * 2 is 168, not 169); index 0 and 9 leave it.
TEST(GalleryPages, CropRatioSetsTheHeightFromTheWidth) {
    const int heights[] = {77, 254, 168, 381, 84, 189, 336, 189, 135, 77};
    for (int index = 0; index <= 9; ++index) {
        SettingsStore s = store("tfSmallCropHeight=77, tfSmallCropWidth=254");
        s.setText("pubPhotoRatio", QString::number(index));
        cResponsiveDesign::settingEdited(s, "pubPhotoRatio");
        EXPECT_EQ(s.integer("tfSmallCropHeight"), heights[index]) << index;
    }
}
