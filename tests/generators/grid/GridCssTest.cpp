// The Responsive Grid stylesheet, written out here from the rules of the format: the whole text for
// each pattern/hover combination, then the values computed from the settings.
#include <gtest/gtest.h>

#include <tuple>

#include "generators/grid/GridCss.h"
#include "generators/grid/cResponsiveGrid.h"
#include "support/TestSupport.h"

namespace {

// The 21 style settings in their call order.
GridCssArgs sampleArgs(int patternOn, int hover) {
    // clang-format off
    return {"/nowhere/", "Exo 2", "24px", "300", "#101010", "center", "500", "14px", "right",
            "#202020", "#303030", "1", patternOn, "p.png", "30", "0.4", "300", "225", hover,
            CssRgb::fromHex("FFFFFF"), "0.8"};
    // clang-format on
}

// "|" stands for a line feed and "[f]" for the font line of the family "Exo 2".
QString css(const char* text) {
    return QString::fromUtf8(text).replace('|', '\n').replace(
        "[f]", "font-family: 'Exo 2', sans-serif;\n");
}

const char* const kHead =
    R"(* {box-sizing:border-box;| margin: 0;| padding: 0; | border: 0;|}||)"
    R"(/* Responsive grid container */|.klovlResponsiveGrid-container {|max-width: 1200px;|)"
    R"(margin: 0 auto;|}||.klovlResponsiveGrid-container::after {|content: "";|top: 0;|)"
    R"(left: 0;|position: fixed;|z-index: -1;|width: 100%;|height: 100%;|)"
    R"(background-color:#303030;}||)";

// The hover rules as written with the pattern on; without it one more "}" line follows.
const char* const kHover =
    R"(.klovlImage img:hover {|transform: scale(1.5);|border-top-left-radius: 5px;|)"
    R"(border-top-right-radius: 5px;|border-bottom-left-radius: 5px;|)"
    R"(border-bottom-right-radius: 5px;|}||.klovlImage4 img:hover {|transform: scale(1.5);||)"
    R"(border-top-left-radius: 5px;|border-top-right-radius: 5px;|)"
    R"(border-bottom-left-radius: 5px;|border-bottom-right-radius: 5px;}||)"
    R"(.klovlImage img {|object-fit: cover;|opacity: 1;|transition: 0.5s;|)"
    R"(-webkit-transition: 0.3s;|-moz-transition: 0.3s;|}||.klovlImage4 img {|)"
    R"(object-fit: cover;|opacity: 1;|transition: 0.5s;|-webkit-transition: 0.3s;|)"
    R"(-moz-transition: 0.3s;|}|)";

const char* const kPattern =
    R"(.klovlResponsiveGrid-container::before {|content: "";|)"
    R"(background-image: url(../KLovPatterns/p.png);|background-repeat: repeat;|)"
    R"(background-size: 30%;|opacity: 0.4;|top: 0;|left: 0;|position: fixed;|width: 100%;|)"
    R"(height: 100%;|}||)";

// From the pattern box to the end; %1 and %2 are the track sizes.
const char* const kRest =
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
    R"(font-weight:500;|color: #202020;|font-size: 14px;|line-height: 18px;|[f]}||)"
    R"(.klOVlightbox_button {|position: absolute;|z-index: 9999;|)"
    R"(background: no-repeat center center;|width: 32px;|height: 32px;|opacity: 0.4;|)"
    R"(-webkit-transition: all 0.3s;|-moz-transition: all 0.3s;|-ms-transition: all 0.3s;|)"
    R"(transition: all 0.3s;|}||.klOVlightbox_button:hover,|.klOVlightbox_button:focus {|)"
    R"(opacity: 1;|-webkit-transform: scale(1.4);|-moz-transform: scale(1.4);|)"
    R"(-ms-transform: scale(1.4);|transform: scale(1.4);|}||.klOVlightbox_close {|)"
    R"(right: 10px;|top: 10px;|background-image: url("../KLovlightbox/close.png");|}||)"
    R"(.klOVlightbox_nav {|top: 50%;|margin-top: -16px;|}||.klOVlightbox_nav_next {|)"
    R"(right: 10px;|background-image: url("../KLovlightbox/next.png");|}||)"
    R"(.klOVlightbox_nav_prev {|left: 10px;|)"
    R"(background-image: url("../KLovlightbox/previous.png");|}||)";

}  // namespace

// Pattern off and hover off: nothing between the container and the pattern box; hover alone: the
// hover rules and a stray "}"; the pattern follows the container rules or the hover rules.
TEST(GridCss, WholeTextForEachPatternAndHover) {
    const QString rest = css(kRest).arg("300", "225");
    const std::tuple<int, int, QString> cases[] = {
        {0, 0, ""},
        {0, 1, css(kHover) + "}\n"},
        {1, 0, css(kPattern)},
        {1, 1, css(kHover) + css(kPattern)},
    };
    for (const auto& [pattern, hover, middle] : cases)
        EXPECT_EQ(GridCss::hCreateResponsiveGridCss(sampleArgs(pattern, hover)).toStdString(),
                  (css(kHead) + middle + rest).toStdString())
            << "pattern " << pattern << ", hover " << hover;
    // At most 7 columns: tracks of at least 171 x 128 pixels.
    GridCssArgs seven = sampleArgs(0, 0);
    seven.columnWidth = QString::number(GridCss::columnWidth(7));
    seven.rowHeight = QString::number(GridCss::rowHeight(GridCss::columnWidth(7)));
    EXPECT_EQ(GridCss::hCreateResponsiveGridCss(seven).toStdString(),
              (css(kHead) + css(kRest).arg("171", "128")).toStdString());
}

// The values the run computes from the settings: track sizes from the column count (the row a
// truncated three quarters), the lightbox colour in "%f" components and its opacity as a
// single-precision number prints, a pattern file name percent-encoded in its url.
TEST(GridCss, ValuesFromTheSettings) {
    struct Case {
        QStringList set;
        const char* columnWidth;
        const char* rowHeight;
        const char* lightbox;
    };
    const Case cases[] = {
        {{"tfRGMaxColumns=4", "ascNSColorWellObjRGLightboxBgColor=FFFFFF",
          "sliderLightboxRGBgColorOpacity=80"},
         "300",
         "225",
         "rgba(255.000000,255.000000,255.000000,0.8);"},
        {{"tfRGMaxColumns=7", "tfNSColorWellObjRGLightboxBgColor=800040",
          "sliderLightboxRGBgColorOpacity=37"},
         "171",
         "128",
         "rgba(128.000000,0.000000,64.000000,0.37);"},
        {{"tfRGMaxColumns= 1 ", "sliderLightboxRGBgColorOpacity=100"},
         "1200",
         "900",
         "rgba(30.000000,30.000000,30.000000,1);"},
        {{"tfRGMaxColumns=1200", "sliderLightboxRGBgColorOpacity=0"},
         "1",
         "0",
         "rgba(30.000000,30.000000,30.000000,0);"},
    };
    for (const Case& c : cases) {
        std::vector<std::pair<QString, QString>> overrides;
        for (const QString& s : c.set)
            overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
        const GridSettings g =
            cResponsiveGrid::readSettings(testsupport::settingsWith(overrides), "/out/");
        const QString text = GridCss::hCreateResponsiveGridCss(g.css);
        EXPECT_TRUE(text.contains(QStringLiteral("minmax(%1px, 1fr));\ngrid-template-rows: "
                                                 "repeat(auto-fill, minmax(%2px, 1fr));")
                                      .arg(c.columnWidth, c.rowHeight)))
            << c.set.join(' ').toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("background-color: ") + c.lightbox))
            << c.set.join(' ').toStdString();
    }

    GridCssArgs args = sampleArgs(1, 0);
    args.patternFileName = "my dots#1.png";
    EXPECT_TRUE(GridCss::hCreateResponsiveGridCss(args).contains(
        "background-image: url(../KLovPatterns/my%20dots%231.png);\n"));
}
