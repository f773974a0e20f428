// The two gallery stylesheets, written out here from the rules of the format: one whole text per
// model, then the pieces that each setting branch changes.
#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

#include "generators/common/PageText.h"
#include "generators/gallery/GalleryCss.h"
#include "generators/gallery/cResponsiveDesign.h"

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

// "|" stands for a line feed and "[f]" for the font line of the family "Exo 2".
QString css(const char* text) {
    return QString::fromUtf8(text).replace('|', '\n').replace(
        "[f]", "font-family: 'Exo 2', sans-serif;\n");
}

// Photo name to responsive cell: the same in both models.
const char* const kTextAndCell =
    R"(div.klOVphotoname {|[f]padding: 1%;|text-align:left;|font-weight:900;|}||)"
    R"(div.klOVdescription {|[f]padding: 1%;|color:#404040;|text-align:right;|font-weight:400;|)"
    R"(}||* {|box-sizing: border-box;|}||.klOVimg {|[f]background-color:606060;|}||)"
    R"(.klOVresponsive {|[f]padding: 0.5%;|float: left;|width: 24.99999%;|}||)";

// Page navigation to the end: the same in both models.
const char* const kNavigationAndLightbox =
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
    R"(color: #fff;|font-size: 12px;|line-height: 18px;|font-family: 'Roboto', sans-serif;|}||)"
    R"(.klOVlightbox_button {|position: absolute;|z-index: 9999;|)"
    R"(background: no-repeat center center;|width: 32px;|height: 32px;|opacity: 0.4;|)"
    R"(-webkit-transition: all 0.3s;|-moz-transition: all 0.3s;|-ms-transition: all 0.3s;|)"
    R"(transition: all 0.3s;|}||.klOVlightbox_button:hover,|.klOVlightbox_button:focus {|)"
    R"(opacity: 1;|-webkit-transform: scale(1.4);|-moz-transform: scale(1.4);|)"
    R"(-ms-transform: scale(1.4);|transform: scale(1.4);|}||)"
    R"(.klOVlightbox_close {|right: 10px;|top: 10px;|)"
    R"(background-image: url("../KLovlightbox/close.png");|}||)"
    R"(.klOVlightbox_nav {|top: 50%;|margin-top: -16px;|}||)"
    R"(.klOVlightbox_nav_next {|right: 10px;|background-image: url("../KLovlightbox/next.png");|)"
    R"(}||.klOVlightbox_nav_prev {|left: 10px;|)"
    R"(background-image: url("../KLovlightbox/previous.png");|}||)";

const char* const kContainer =
    R"(@charset "UTF-8"||.KLovTableBased-container {|height: 100%;|z-index: 2;|}|)"
    R"(.KLovTableBased-container::after {|content: "";|)";

const char* const kTableHead =
    R"(top: 0;|left: 0;|position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
    R"(background-color:#101010;}||.klSsPatternBox {|content: "";|top: 0;|left: 0;|)"
    R"(position: absolute;|display: block;|width: 100%;|height: 100%;|}||)"
    R"(body, html {|height: 100%;|}||div.klOVimg {|[f]background-color:#505050;|}||)"
    R"(div.klOVimg img {|[f]max-width: 100%;|max-height: 150px;|border-radius:7px;|)"
    R"(display:block;|margin:auto;|}||.klOVimg img {|[f]width: 100%;|height: auto;|)"
    R"(box-shadow: 1px 2px 5px #707070;|}||)";

const char* const kGridHead =
    R"(top: 0;|left: 0;|position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
    R"(background-color:#101010;}||body, html {|height: 100%;|padding: 1rem;|}||)"
    R"(div.klOVimg {|[f]background-color:#505050;|}||.klOVimg {|display: block;|width: 90%;|)"
    R"(margin-left: auto;|margin-right: auto;|}||img {|display:block;|max-width: 100%;|)"
    R"(max-height: 100%;|}||.klOVimages {|max-width: 100%;|margin: 0 auto;|display: grid;|)"
    R"(grid-gap: 1rem;|align-items: center;|}||.klOVimg {|[f]background-color:606060;|)"
    R"(height: 150px;|}||.klOVimg img {|[f]box-shadow: 1px 2px 5px #707070;|}||)";

const char* const kMagnifyTail =
    R"(object-fit: cover;|opacity: 1;|transition: 0.5s;|-webkit-transition: 0.3s;|)"
    R"(-moz-transition: 0.3s;|}||.klOVimg img:hover {|transform: scale(1.5);|)"
    R"(border-top-left-radius: 5px;|border-top-right-radius: 5px;|)"
    R"(border-bottom-left-radius: 5px;|border-bottom-right-radius: 5px;|}||div.klOVphotoname {)";

// The max-width breakpoints of the table model for the 4-column width list; thumbnail action 1
// adds the height lines.
QString tableBreakpoints(bool heights) {
    const std::pair<const char*, const char*> steps[] = {{"6000px", "24.000000"},
                                                         {"2000px", "24.000000"},
                                                         {"1242px", "48.000000"},
                                                         {"1000px", "49.999989"},
                                                         {"750px", "49.999989"}};
    QString s;
    for (const auto& [n, w] : steps) {
        s += QString("@media only screen and (max-width: ") + n +
             "){\n.klOVresponsive {\nwidth: " + w + "%;\n";
        if (heights) s += QString(n == steps[0].first ? "" : "max-") + "height: " + w + "%;\n";
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
        s += QStringLiteral(
                 "@media (min-width: %1) {\n.klOVimages { grid-template-columns: "
                 "repeat(%2, 1fr); }}\n\n")
                 .arg(widths[i])
                 .arg(k[i]);
    return s;
}

}  // namespace

TEST(GalleryCss, WholeTextOfEachModel) {
    EXPECT_EQ(GalleryCss::hCreateCss(sampleArgs()).toStdString(),
              (css(kContainer) + css(kTableHead) + css(kTextAndCell) + tableBreakpoints(false) +
               css(kNavigationAndLightbox))
                  .toStdString());
    EXPECT_EQ(GalleryCss::hCreateCssGridMod2(sampleArgs(), 4).toStdString(),
              (css(kContainer) + css(kGridHead) + css(kTextAndCell) +
               gridBreakpoints({2, 2, 3, 4, 4}) + css(kNavigationAndLightbox))
                  .toStdString());
}

TEST(GalleryCss, EachBranchChangesItsPiece) {
    struct Case {
        const char* label;
        void (*change)(GalleryCssArgs&);
        bool grid;
        QString present;
        const char* absent;
    };
    const Case cases[] = {
        {"table pattern", [](GalleryCssArgs& a) { a.patternOn = 1; }, false,
         css(R"(position: fixed;|z-index: -10;|width: 100%;|height: 100%;|)"
             R"(background-color:#101010;}||.KLovTableBased-container::before {|content: "";|)"
             R"(top: 0;|left: 0;|position: fixed;|width: 100%;|height: 100%;|)"
             R"(background-image: url(../KLovPatterns/p.png);|background-repeat: repeat;|)"
             R"(background-size: 30%;|opacity: 0.4;}||.klSsPatternBox {|)"),
         nullptr},
        {"grid pattern", [](GalleryCssArgs& a) { a.patternOn = 1; }, true,
         css(R"(::after {|content: "";|background-image: url(../KLovPatterns/p.png);|)"
             R"(background-repeat: repeat;|background-size: 30%;|opacity: 0.4;|top: 0;|left: 0;|)"
             R"(position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
             R"(background-color:#101010;}||body, html {|)"),
         "::before"},
        {"table magnify and border",
         [](GalleryCssArgs& a) {
             a.magnifyOnHover = 1;
             a.thumbnailBorderThickness = "2";
         },
         false,
         css(R"(border-radius:7px;|border:2px solid #606060;|display:block;|margin:auto;|}||)"
             R"(.klOVimg img {|[f]max-width: auto;|max-height: auto;|border:2px solid #606060;|)"
             R"(box-shadow: 1px 2px 5px #707070;|)") +
             css(kMagnifyTail),
         nullptr},
        {"grid magnify and border",
         [](GalleryCssArgs& a) {
             a.magnifyOnHover = 1;
             a.thumbnailBorderThickness = "4";
         },
         true,
         css(R"(align-items: center;|}||.klOVimg img {|[f]border:4px solid #606060;|)"
             R"(box-shadow: 1px 2px 5px #707070;|)") +
             css(kMagnifyTail),
         "height: 150px;"},
        {"empty border", [](GalleryCssArgs& a) { a.thumbnailBorderThickness = ""; }, false,
         css("border-radius:7px;|display:block;|"), "solid #606060"},
        {"table action 1", [](GalleryCssArgs& a) { a.thumbnailAction = 1; }, false,
         css("width: 24.99999%;|height: 24.99999%;|}||") + tableBreakpoints(true) + ".klOVpageNav",
         nullptr},
        {"grid action 1", [](GalleryCssArgs& a) { a.thumbnailAction = 1; }, true,
         css("width: 24.99999%;|height: 24.99999%;|}||@media (min-width: 400px)"), nullptr},
    };
    for (const Case& c : cases) {
        GalleryCssArgs a = sampleArgs();
        c.change(a);
        const QString text =
            c.grid ? GalleryCss::hCreateCssGridMod2(a, 4) : GalleryCss::hCreateCss(a);
        EXPECT_TRUE(text.contains(c.present)) << c.label;
        EXPECT_FALSE(c.absent && text.contains(c.absent)) << c.label;
    }
}

TEST(GalleryCss, ColumnsSetWidthsAndGridBreakpoints) {
    const std::vector<std::pair<int, QStringList>> widths = {
        {1, {"24.999990", "49.999981", "49.999989", "49.999989", "100"}},
        {2, {"24.999990", "49.999981", "49.999989", "49.999989", "100"}},
        {3, {"24.999990", "49.999981", "49.999989", "49.999989", "100"}},
        {4, {"24.000000", "48.000000", "49.999989", "49.999989", "100"}},
        {5, {"19.000000", "38.000000", "49.999989", "49.999989", "100"}},
        {6, {"15.000000", "30.000000", "49.999989", "49.999989", "100"}},
        {12, {"7.000000", "14.000000", "35.000000", "49.999989", "100"}}};
    for (const auto& [columns, list] : widths)
        EXPECT_EQ(cResponsiveDesign::widthList(columns), list) << columns;
    const std::vector<std::pair<int, std::array<int, 5>>> grids = {
        {1, {1, 1, 1, 1, 1}}, {2, {2, 1, 2, 2, 2}}, {6, {2, 3, 4, 5, 6}}};
    for (const auto& [columns, k] : grids)
        EXPECT_TRUE(
            GalleryCss::hCreateCssGridMod2(sampleArgs(), columns).contains(gridBreakpoints(k)))
            << columns;
}

TEST(GalleryCss, FontLinesAndWeights) {
    for (const char* family : {"Catamaran", "Exo", "Libre Franklin", "Raleway", "Rubik", "Taviraj"})
        EXPECT_EQ(cCssCreate::fontLine(family),
                  QString("font-family: '%1', sans-serif;\n").arg(family));
    for (const char* other : {"Trirong", "Comic Sans", ""})
        EXPECT_EQ(cCssCreate::fontLine(other), "font-family: 'Trirong', serif;\n") << other;
    const std::vector<std::pair<QString, QString>> weights = {{"Light", "300"},  {"Regular", "400"},
                                                              {"Medium", "500"}, {"Bold", "700"},
                                                              {"Black", "900"},  {"", "900"}};
    for (const auto& [title, number] : weights) EXPECT_EQ(PageText::weight(title), number);
    // The file-name weight "Bold" is tested against the mapped heading weight: always 900.
    EXPECT_EQ(cResponsiveDesign::fileNameWeight("Bold", PageText::weight("Bold")), "900");
    EXPECT_EQ(cResponsiveDesign::fileNameWeight("Light", "700"), "300");
}
