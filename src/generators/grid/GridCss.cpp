#include "generators/grid/GridCss.h"

#include <charconv>
#include <cstdint>

#include "generators/common/PageText.h"

namespace {

// The magnifying hover of the grid images. Its second rule ends its last line with the brace and
// has an empty line after the scale: kept as it always was.
QString hoverRules() {
    const QString radius =
        "border-top-left-radius: 5px;\nborder-top-right-radius: 5px;\n"
        "border-bottom-left-radius: 5px;\nborder-bottom-right-radius: 5px;";
    // The plain and the prefixed transition times differ on purpose.
    const QString fade =
        "object-fit: cover;\nopacity: 1;\ntransition: 0.5s;\n-webkit-transition: 0.3s;\n"
        "-moz-transition: 0.3s;\n}\n";
    return ".klovlImage img:hover {\ntransform: scale(1.5);\n" + radius + "\n}\n\n" +
           ".klovlImage4 img:hover {\ntransform: scale(1.5);\n\n" + radius + "}\n\n" +
           ".klovlImage img {\n" + fade + "\n" + ".klovlImage4 img {\n" + fade;
}

QString patternRule(const GridCssArgs& a) {
    return ".klovlResponsiveGrid-container::before {\ncontent: \"\";\n"
           "background-image: url(../KLovPatterns/" +
           PageText::urlSegment(a.patternFileName) +
           ");\nbackground-repeat: repeat;\nbackground-size: " + a.patternScale +
           "%;\nopacity: " + a.patternOpacity +
           ";\ntop: 0;\nleft: 0;\nposition: fixed;\nwidth: 100%;\nheight: 100%;\n}\n\n";
}

QString lightboxButtonImage(const char* file) {
    return QStringLiteral("background-image: url(\"../KLovlightbox/%1\");\n")
        .arg(QLatin1String(file));
}

}  // namespace

int GridCss::columnWidth(int columns) {
    return columns > 0 ? 1200 / columns : 0;
}

int GridCss::rowHeight(int columnWidth) {
    // 16-bit as it always was; no column width of at most 1200 pixels overflows it.
    const auto threeQuarters = static_cast<std::int16_t>(3 * columnWidth);
    return static_cast<std::int16_t>(threeQuarters / 4);
}

QString GridCss::opacityText(int sliderValue) {
    const float opacity = static_cast<float>(sliderValue) / 100.0f;
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, opacity);
    return QString::fromLatin1(text, result.ptr - text);
}

QString GridCss::hCreateResponsiveGridCss(const GridCssArgs& a) {
    const QString font = cCssCreate::fontLine(a.fontFamily);
    QString s;
    s += "* {box-sizing:border-box;\n margin: 0;\n padding: 0; \n border: 0;\n}\n\n";
    s += "/* Responsive grid container */\n";
    // The container width is fixed, whatever the image sizes.
    s += ".klovlResponsiveGrid-container {\nmax-width: 1200px;\nmargin: 0 auto;\n}\n\n";
    s += ".klovlResponsiveGrid-container::after {\ncontent: \"\";\ntop: 0;\nleft: 0;\n"
         "position: fixed;\nz-index: -1;\nwidth: 100%;\nheight: 100%;\nbackground-color:" +
         a.backgroundColor + ";}\n\n";
    if (a.patternOn == 1) {
        if (a.magnifyOnHover == 1) s += hoverRules();
        s += patternRule(a);
    } else if (a.magnifyOnHover == 1) {
        // Without the pattern the hover rules end with one brace too many: kept on purpose.
        s += hoverRules() + "}\n";
    }
    s += ".klSsPatternBox {\ncontent: \"\";\ntop: 0;\nleft: 0;\nposition: absolute;\n"
         "display: block;\nwidth: 100%;\nheight: 100%;\n}\n\n";
    // The lone semicolon line is kept as it always was.
    s += "body, html {\nheight: 100%;\n;\n}\n\n";
    s += "body.blurred > * {\n-webkit-filter: blur(2px);\n}\n\n";
    s += ".klovlGrid {\ndisplay: grid;\ngrid-template-columns: repeat(auto-fill, minmax(" +
         a.columnWidth + "px, 1fr));\ngrid-template-rows: repeat(auto-fill, minmax(" + a.rowHeight +
         "px, 1fr));\ngrid-gap: 6px;\ngrid-auto-flow: row dense;\n}\n\n";
    s += ".klovlImage {\nposition: relative;\n}\n\n"
         ".klovlImage, .klovlImage img {\nwidth: 100%;\nheight: 100%;\n}\n\n";
    // Highlighted portrait photos cover 2 x 2 tracks, highlighted landscape ones 3 x 3.
    s +=
        ".klovlImageVertical {\nposition: relative;\ngrid-row: span 2;\ngrid-column: span 2;\n}\n\n"
        ".klovlImageVertical, .klovlImageVertical img {\nwidth: 100%;\nheight: 100%;\n}\n\n"
        ".klovlImageVertical img {\nobject-fit: cover;\n}\n\n";
    s += ".klovlImage4 {\nposition: relative;\ngrid-row: span 3;\ngrid-column: span 3;\n}\n\n"
         ".klovlImage4, .klovlImage4 img {\nwidth: 100%;\nheight: 100%;\n}\n\n";
    s += "/* Caption text */\n.klSsText {\n" + font + "font-weight:" + a.captionWeight +
         ";\ncolor: " + a.captionColor + ";\nfont-size: " + a.captionFontSize +
         ";\npadding: 8px 12px;\nposition: absolute;\nbottom: 8px;\nwidth: 100%;\ntext-align: " +
         a.captionAlign + ";\n}\n\n";
    s += ".klSsRef {\nposition: absolute;\nbottom: -30px;\nright: 0;\n}\n\n";
    s += ".klovlRgDescription {\npadding: 8px 12px;\n" + font +
         "font-size:" + a.descriptionFontSize + ";\nfont-weight:" + a.descriptionWeight +
         ";\ncolor:" + a.descriptionColor + ";\ntext-align:" + a.descriptionAlign +
         ";\nposition: relative;\nmargin: auto;\nmargin-top: 20px;\nmargin-bottom: 20px;\n}\n\n";
    s += "/***** BEGIN: light box *****/\n.klOVlightbox{\ncursor: pointer;\nposition: fixed;\n"
         "width: 100%;\nheight: 100%;\ntop: 0;\nleft: 0;\nbackground-color: rgba(" +
         cCssCreate::rgbComponents(a.lightboxBackgroundColor) + a.lightboxBackgroundOpacity +
         ");\n-webkit-filter: none !important;\nz-index: 9997;\n}\n\n";
    // "4 px" is kept as it always was (browsers drop the declaration).
    s += ".klOVlightbox img {\ndisplay: block;\nposition: absolute;\n"
         "border: 4 px solid #000000;\nbox-shadow: 10px 10px 10px #000000;\n}\n\n";
    s += ".klOVlightbox_loading {\nbackground: url(loading.gif) center center no-repeat;\n"
         "width: 32px;\nheight: 32px;\nmargin: -16px 0 0 -16px;\nposition: absolute;\n"
         "top: 50%;\nleft: 50%;\n}\n\n";
    s += ".klOVlightbox_caption {\ndisplay: none;\nposition: absolute;\nleft: 0;\nbottom: 0;\n"
         "width: 100%;\ntext-align: " +
         a.captionAlign + ";\nz-index: 9998;\nbackground: rgba(0, 0, 0, 0.7);\n}\n\n";
    s += ".klOVlightbox_caption p {\nmargin: 0 auto;\nmax-width: 70%;\ndisplay: inline-block;\n"
         "*display: inline;\nzoom: 1;\npadding: 10px;\nfont-weight:" +
         a.captionWeight + ";\ncolor: " + a.captionColor + ";\nfont-size: " + a.captionFontSize +
         ";\nline-height: 18px;\n" + font + "}\n\n";
    s += cCssCreate::lightboxButtonRules();
    s += ".klOVlightbox_close {\nright: 10px;\ntop: 10px;\n" + lightboxButtonImage("close.png") +
         "}\n\n";
    s += ".klOVlightbox_nav {\ntop: 50%;\nmargin-top: -16px;\n}\n\n";
    s += ".klOVlightbox_nav_next {\nright: 10px;\n" + lightboxButtonImage("next.png") + "}\n\n";
    s += ".klOVlightbox_nav_prev {\nleft: 10px;\n" + lightboxButtonImage("previous.png") + "}\n\n";
    return s;
}
