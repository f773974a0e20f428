// The two gallery stylesheets, written out here from the rules of the format, rule by rule.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "generators/gallery/cCssCreate.h"
#include "generators/gallery/cResponsiveDesign.h"
#include "support/TestSupport.h"

namespace {

GalleryCssArgs sampleArgs() {
    GalleryCssArgs a;
    a.backgroundColor = "#101010";
    a.headingText = "Heading";
    a.fileNameAlign = "left";
    a.fileNameWeight = "900";
    a.captionAlign = "right";
    a.captionWeight = "400";
    a.headingFontSize = "32px";
    a.captionFontSize = "12px";
    a.headingWeight = "300";
    a.headingColor = "#202020";
    a.destination = "/nowhere/";
    a.photoNameColor = "#303030";
    a.fileNameFontSize = "14px";
    a.captionColor = "#404040";
    a.headingAlign = "center";
    a.cellBackgroundColor = "#505050";
    a.fontFamily = "Exo 2";
    a.widthList = {"24.000000", "48.000000", "49.999989", "49.999989", "100"};
    a.thumbnailBorderThickness = "0";
    a.thumbnailColor = "606060";
    a.thumbnailBorderRadius = "7";
    a.patternOn = 0;
    a.patternFileName = "p.png";
    a.patternScale = "30";
    a.patternOpacity = "0.4";
    a.thumbnailShadowThickness = "5";
    a.thumbnailShadowXOffset = "1";
    a.thumbnailShadowYOffset = "2";
    a.thumbnailShadowColor = "707070";
    a.boxColor = "808080";
    a.boxRadius = "9";
    a.boxThickness = "3";
    a.boxShadowThickness = "11";
    a.boxShadowXOffset = "12";
    a.boxShadowYOffset = "13";
    a.lightboxShadowColor = "909090";
    a.magnifyOnHover = 0;
    a.thumbnailCropWidth = 200;
    a.thumbnailCropHeight = 150;
    a.lightboxBackgroundColor = CssRgb::fromHex("FF8000");
    a.lightboxBackgroundOpacity = "0.85";
    a.thumbnailAction = 0;
    return a;
}

const char* const kFont = "font-family: 'Exo 2', sans-serif;\n";

QString f(const char* text) {
    return QString::fromUtf8(text).replace("[font]", kFont);
}

// Photo name to responsive cell: the same in both models.
const char* const kTextAndCell = R"(div.klOVphotoname {
[font]padding: 1%;
text-align:left;
font-weight:900;
}

div.klOVdescription {
[font]padding: 1%;
color:#404040;
text-align:right;
font-weight:400;
}

* {
box-sizing: border-box;
}

.klOVimg {
[font]background-color:606060;
}

.klOVresponsive {
[font]padding: 0.5%;
float: left;
width: 24.99999%;
}

)";

// Page navigation to the end: the same in both models.
const char* const kNavigationAndLightbox = R"(.klOVpageNav {
[font]font-weight:900;
color:#9595BA;
font-size:medium;
color:#000000;
}

div.klOVpageNav {
[font]font-weight:900;
color:#9595BA;
font-size:medium;
color:#000000;
}

.klOVtitle {
[font]font-size:32px;
font-weight:300;
color:#202020;
text-align:center;
}

.klOVphotoname {
[font]padding: 1%;
color:#303030;
text-align:left;
font-size:14px;
font-weight:900;
display:block;
margin-top:5px;
}

.klOVdescription {
[font]padding: 1%;
color:#404040;
text-align:right;
font-size:12px;
font-weight:400;
}
#navBar a {
display: inline-block;
padding: 1px 4px;
border: 1px solid #CCCCCC;
border-radius: 4px 4px 4px 4px;
color: #111111;
background-color:#FFFFFF;
}

/* light box */
.klOVlightbox{
cursor: pointer;
position: fixed;
width: 100%;
height: 100%;
top: 0;
left: 0;
background-color: rgba(255.000000,128.000000,0.000000,0.85);
-webkit-filter: none !important;
z-index: 9997;
}

.klOVlightbox img {
display: block;
position: absolute;
border: 3px solid #808080;
box-shadow: 12px 13px 11px #909090;
border-radius: 9px;
}

body.blurred > * {
-webkit-filter: blur(2px);
}

.klOVlightbox_loading {
background: url(loading.gif) center center no-repeat;
width: 32px;
height: 32px;
margin: -16px 0 0 -16px;
position: absolute;
top: 50%;
left: 50%;
}

.klOVlightbox_caption {
display: none;
position: absolute;
left: 0;
bottom: 0;
width: 100%;
text-align: center;
z-index: 9998;
background: rgba(0, 0, 0, 0.7);
}

.klOVlightbox_caption p {
margin: 0 auto;
max-width: 70%;
display: inline-block;
*display: inline;
zoom: 1;
padding: 10px;
color: #fff;
font-size: 12px;
line-height: 18px;
font-family: 'Roboto', sans-serif;
}

.klOVlightbox_button {
position: absolute;
z-index: 9999;
background: no-repeat center center;
width: 32px;
height: 32px;
opacity: 0.4;
-webkit-transition: all 0.3s;
-moz-transition: all 0.3s;
-ms-transition: all 0.3s;
transition: all 0.3s;
}

.klOVlightbox_button:hover,
.klOVlightbox_button:focus {
opacity: 1;
-webkit-transform: scale(1.4);
-moz-transform: scale(1.4);
-ms-transform: scale(1.4);
transform: scale(1.4);
}

.klOVlightbox_close {
right: 10px;
top: 10px;
background-image: url("../KLovlightbox/close.png");
}

.klOVlightbox_nav {
top: 50%;
margin-top: -16px;
}

.klOVlightbox_nav_next {
right: 10px;
background-image: url("../KLovlightbox/next.png");
}

.klOVlightbox_nav_prev {
left: 10px;
background-image: url("../KLovlightbox/previous.png");
}

)";

const char* const kTableHead = R"(@charset "UTF-8"

.KLovTableBased-container {
height: 100%;
z-index: 2;
}
.KLovTableBased-container::after {
content: "";
top: 0;
left: 0;
position: fixed;
z-index: -1;
width: 100%;
height: 100%;
background-color:#101010;}

.klSsPatternBox {
content: "";
top: 0;
left: 0;
position: absolute;
display: block;
width: 100%;
height: 100%;
}

body, html {
height: 100%;
}

div.klOVimg {
[font]background-color:#505050;
}

div.klOVimg img {
[font]max-width: 100%;
max-height: 150px;
border-radius:7px;
display:block;
margin:auto;
}

.klOVimg img {
[font]width: 100%;
height: auto;
box-shadow: 1px 2px 5px #707070;
}

)";

const char* const kTableBreakpoints = R"(@media only screen and (max-width: 6000px){
.klOVresponsive {
width: 24.000000%;
margin: 1% 0;
}
}
@media only screen and (max-width: 2000px){
.klOVresponsive {
width: 24.000000%;
margin: 1% 0;
}
}
@media only screen and (max-width: 1242px){
.klOVresponsive {
width: 48.000000%;
margin: 1% 0;
}
}
@media only screen and (max-width: 1000px){
.klOVresponsive {
width: 49.999989%;
margin: 1% 0;
}
}
@media only screen and (max-width: 750px){
.klOVresponsive {
width: 49.999989%;
margin: 1% 0;
}
}
@media only screen and (max-width: 640px){
.klOVresponsive {
width: 100%;

content: "";
display: table;
clear: both;
}
}
)";

const char* const kGridHead = R"(@charset "UTF-8"

.KLovTableBased-container {
height: 100%;
z-index: 2;
}
.KLovTableBased-container::after {
content: "";
top: 0;
left: 0;
position: fixed;
z-index: -1;
width: 100%;
height: 100%;
background-color:#101010;}

body, html {
height: 100%;
padding: 1rem;
}

div.klOVimg {
[font]background-color:#505050;
}

.klOVimg {
display: block;
width: 90%;
margin-left: auto;
margin-right: auto;
}

img {
display:block;
max-width: 100%;
max-height: 100%;
}

.klOVimages {
max-width: 100%;
margin: 0 auto;
display: grid;
grid-gap: 1rem;
align-items: center;
}

.klOVimg {
[font]background-color:606060;
height: 150px;
}

.klOVimg img {
[font]box-shadow: 1px 2px 5px #707070;
}

)";

QString gridBreakpoints(int k400, int k700, int k1000, int k1300, int k1600) {
    QString s;
    const std::pair<const char*, int> steps[] = {
        {"400px", k400}, {"700px", k700}, {"1000px", k1000}, {"1300px", k1300}, {"1600px", k1600}};
    for (const auto& [width, k] : steps)
        s += QStringLiteral(
                 "@media (min-width: %1) {\n.klOVimages { grid-template-columns: "
                 "repeat(%2, 1fr); }}\n\n")
                 .arg(width)
                 .arg(k);
    return s;
}

const char* const kMagnifyTail = R"(object-fit: cover;
opacity: 1;
transition: 0.5s;
-webkit-transition: 0.3s;
-moz-transition: 0.3s;
}

.klOVimg img:hover {
transform: scale(1.5);
border-top-left-radius: 5px;
border-top-right-radius: 5px;
border-bottom-left-radius: 5px;
border-bottom-right-radius: 5px;
}

)";

}  // namespace

TEST(GalleryCss, TableModelWholeText) {
    const QString expected =
        f(kTableHead) + f(kTextAndCell) + f(kTableBreakpoints) + f(kNavigationAndLightbox);
    EXPECT_EQ(cCssCreate::tableCssText(sampleArgs()).toStdString(), expected.toStdString());
}

TEST(GalleryCss, TableModelIsWrittenToTheCssFolder) {
    GalleryCssArgs a = sampleArgs();
    a.destination = testsupport::freshDir("css-write");
    QDir().mkpath(a.destination + "KLcss");
    cCssCreate().hCreateCss(a);
    QFile file(a.destination + "KLcss/klGScss.css");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()), cCssCreate::tableCssText(a));
}

TEST(GalleryCss, TablePatternOnAddsBeforeRule) {
    GalleryCssArgs a = sampleArgs();
    a.patternOn = 1;
    const QString css = cCssCreate::tableCssText(a);
    EXPECT_TRUE(css.contains(R"(position: fixed;
z-index: -10;
width: 100%;
height: 100%;
background-color:#101010;}

.KLovTableBased-container::before {
content: "";
top: 0;
left: 0;
position: fixed;
width: 100%;
height: 100%;
background-image: url(../KLovPatterns/p.png);
background-repeat: repeat;
background-size: 30%;
opacity: 0.4;}

.klSsPatternBox {
)"));
    EXPECT_FALSE(cCssCreate::tableCssText(sampleArgs()).contains("::before"));
    EXPECT_FALSE(cCssCreate::tableCssText(sampleArgs()).contains("p.png"));
}

TEST(GalleryCss, TableMagnifyOnAndBorder) {
    GalleryCssArgs a = sampleArgs();
    a.magnifyOnHover = 1;
    a.thumbnailBorderThickness = "2";
    const QString css = cCssCreate::tableCssText(a);
    EXPECT_TRUE(css.contains(f(R"(div.klOVimg img {
[font]max-width: 100%;
max-height: 150px;
border-radius:7px;
border:2px solid #606060;
display:block;
margin:auto;
}

.klOVimg img {
[font]max-width: auto;
max-height: auto;
border:2px solid #606060;
box-shadow: 1px 2px 5px #707070;
)") + kMagnifyTail + "div.klOVphotoname {"));
    // An empty thickness writes no border either.
    a.thumbnailBorderThickness = "";
    EXPECT_FALSE(cCssCreate::tableCssText(a).contains("solid #606060"));
}

TEST(GalleryCss, TableThumbnailActionOneAddsHeights) {
    GalleryCssArgs a = sampleArgs();
    a.thumbnailAction = 1;
    const QString css = cCssCreate::tableCssText(a);
    EXPECT_TRUE(css.contains("width: 24.99999%;\nheight: 24.99999%;\n}\n\n"));
    EXPECT_TRUE(
        css.contains("(max-width: 6000px){\n.klOVresponsive {\nwidth: 24.000000%;\n"
                     "height: 24.000000%;\nmargin: 1% 0;\n}\n}\n"));
    EXPECT_TRUE(
        css.contains("(max-width: 2000px){\n.klOVresponsive {\nwidth: 24.000000%;\n"
                     "max-height: 24.000000%;\nmargin: 1% 0;\n}\n}\n"));
    EXPECT_TRUE(
        css.contains("(max-width: 1242px){\n.klOVresponsive {\nwidth: 48.000000%;\n"
                     "max-height: 48.000000%;\nmargin: 1% 0;\n}\n}\n"));
    EXPECT_TRUE(
        css.contains("(max-width: 750px){\n.klOVresponsive {\nwidth: 49.999989%;\n"
                     "max-height: 49.999989%;\nmargin: 1% 0;\n}\n}\n"));
    EXPECT_TRUE(
        css.contains("(max-width: 640px){\n.klOVresponsive {\nwidth: 100%;\n"
                     "max-height: 100%;\n\ncontent: \"\";\n"));
}

TEST(GalleryCss, FontLinesByFamily) {
    const std::vector<std::pair<QString, QString>> cases = {
        {"Catamaran", "font-family: 'Catamaran', sans-serif;\n"},
        {"Libre Franklin", "font-family: 'Libre Franklin', sans-serif;\n"},
        {"Taviraj", "font-family: 'Taviraj', sans-serif;\n"},
        {"Trirong", "font-family: 'Trirong', serif;\n"},
        {"Comic Sans", "font-family: 'Trirong', serif;\n"},
        {"", "font-family: 'Trirong', serif;\n"},
    };
    for (const auto& [family, line] : cases)
        EXPECT_EQ(cCssCreate::fontLine(family), line) << family.toStdString();
}

TEST(GalleryCss, GridModelWholeText) {
    const QString expected =
        f(kGridHead) + f(kTextAndCell) + gridBreakpoints(2, 2, 3, 4, 4) + f(kNavigationAndLightbox);
    EXPECT_EQ(cCssCreate::gridCssText(sampleArgs(), 4).toStdString(), expected.toStdString());
}

TEST(GalleryCss, GridColumnBreakpoints) {
    struct Case {
        int columns;
        int k[5];
    };
    const Case cases[] = {{1, {1, 1, 1, 1, 1}},
                          {2, {2, 1, 2, 2, 2}},
                          {3, {1, 2, 2, 3, 3}},
                          {6, {2, 3, 4, 5, 6}},
                          {12, {4, 6, 8, 10, 12}}};
    for (const Case& c : cases) {
        const QString css = cCssCreate::gridCssText(sampleArgs(), c.columns);
        EXPECT_TRUE(css.contains(gridBreakpoints(c.k[0], c.k[1], c.k[2], c.k[3], c.k[4])))
            << c.columns;
    }
}

TEST(GalleryCss, GridPatternSharesThePseudoElement) {
    GalleryCssArgs a = sampleArgs();
    a.patternOn = 1;
    const QString css = cCssCreate::gridCssText(a, 4);
    EXPECT_TRUE(css.contains(R"(.KLovTableBased-container::after {
content: "";
background-image: url(../KLovPatterns/p.png);
background-repeat: repeat;
background-size: 30%;
opacity: 0.4;
top: 0;
left: 0;
position: fixed;
z-index: -1;
width: 100%;
height: 100%;
background-color:#101010;}

body, html {
)"));
    EXPECT_FALSE(css.contains("::before"));
    EXPECT_FALSE(css.contains("klSsPatternBox"));
}

TEST(GalleryCss, GridMagnifyOnDropsTheCellHeight) {
    GalleryCssArgs a = sampleArgs();
    a.magnifyOnHover = 1;
    a.thumbnailBorderThickness = "4";
    const QString css = cCssCreate::gridCssText(a, 4);
    EXPECT_TRUE(css.contains(f(R"(align-items: center;
}

.klOVimg img {
[font]border:4px solid #606060;
box-shadow: 1px 2px 5px #707070;
)") + kMagnifyTail + "div.klOVphotoname {"));
    EXPECT_FALSE(css.contains("height: 150px;"));
}

TEST(GalleryCss, WidthListByColumns) {
    const std::vector<std::pair<int, QStringList>> cases = {
        {1, {"24.999990", "49.999981", "49.999989", "49.999989", "100"}},
        {2, {"24.999990", "49.999981", "49.999989", "49.999989", "100"}},
        {3, {"24.999990", "49.999981", "49.999989", "49.999989", "100"}},
        {4, {"24.000000", "48.000000", "49.999989", "49.999989", "100"}},
        {5, {"19.000000", "38.000000", "49.999989", "49.999989", "100"}},
        {6, {"15.000000", "30.000000", "49.999989", "49.999989", "100"}},
        {12, {"7.000000", "14.000000", "35.000000", "49.999989", "100"}},
    };
    for (const auto& [columns, widths] : cases)
        EXPECT_EQ(cResponsiveDesign::widthList(columns), widths) << columns;
}
