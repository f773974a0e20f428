#include "generators/gallery/GalleryCss.h"

namespace {

const QString nl = QStringLiteral("\n");

// Values from settings are put in as they stand; empty ones give empty declarations.
QString borderLine(const GalleryCssArgs& a) {
    if (a.thumbnailBorderThickness == u"0" || a.thumbnailBorderThickness.isEmpty()) return {};
    return "border:" + a.thumbnailBorderThickness + "px solid #" + a.thumbnailColor + ";" + nl;
}

QString shadowLine(const GalleryCssArgs& a) {
    return "box-shadow: " + a.thumbnailShadowXOffset + "px " + a.thumbnailShadowYOffset + "px " +
           a.thumbnailShadowThickness + "px #" + a.thumbnailShadowColor + ";" + nl;
}

QString magnifyTail() {
    return "object-fit: cover;\nopacity: 1;\n"
           // The plain and the prefixed transition times differ on purpose.
           "transition: 0.5s;\n-webkit-transition: 0.3s;\n-moz-transition: 0.3s;\n}\n\n"
           ".klOVimg img:hover {\ntransform: scale(1.5);\nborder-top-left-radius: 5px;\n"
           "border-top-right-radius: 5px;\nborder-bottom-left-radius: 5px;\n"
           "border-bottom-right-radius: 5px;\n}\n\n";
}

// The rules from the photo name to the responsive cell, shared by both models.
QString textAndCellRules(const GalleryCssArgs& a, const QString& font) {
    QString s;
    s += "div.klOVphotoname {\n" + font + "padding: 1%;\ntext-align:" + a.fileNameAlign +
         ";\nfont-weight:" + a.fileNameWeight + ";\n}\n\n";
    s += "div.klOVdescription {\n" + font + "padding: 1%;\ncolor:" + a.captionColor +
         ";\ntext-align:" + a.captionAlign + ";\nfont-weight:" + a.captionWeight + ";\n}\n\n";
    s += "* {\nbox-sizing: border-box;\n}\n\n";
    s += ".klOVimg {\n" + font;
    if (!a.thumbnailColor.isEmpty()) s += "background-color:" + a.thumbnailColor + ";\n";
    s += "}\n\n";
    s += ".klOVresponsive {\n" + font + "padding: 0.5%;\nfloat: left;\nwidth: 24.99999%;\n";
    if (a.thumbnailAction == 1) s += "height: 24.99999%;\n";
    s += "}\n\n";
    return s;
}

// From the page navigation to the end, shared by both models.
QString navigationAndLightboxRules(const GalleryCssArgs& a, const QString& font) {
    QString s;
    // The second colour declaration wins; kept as it always was.
    const QString navBody =
        font + "font-weight:900;\ncolor:#9595BA;\nfont-size:medium;\ncolor:#000000;\n}\n\n";
    s += ".klOVpageNav {\n" + navBody;
    s += "div.klOVpageNav {\n" + navBody;
    s += ".klOVtitle {\n" + font + "font-size:" + a.headingFontSize +
         ";\nfont-weight:" + a.headingWeight + ";\ncolor:" + a.headingColor +
         ";\ntext-align:" + a.headingAlign + ";\n}\n\n";
    // The photo name is pushed down by the thumbnail shadow thickness.
    s += ".klOVphotoname {\n" + font + "padding: 1%;\ncolor:" + a.photoNameColor +
         ";\ntext-align:" + a.fileNameAlign + ";\nfont-size:" + a.fileNameFontSize +
         ";\nfont-weight:" + a.fileNameWeight +
         ";\ndisplay:block;\nmargin-top:" + a.thumbnailShadowThickness + "px;\n}\n\n";
    s += ".klOVdescription {\n" + font + "padding: 1%;\ncolor:" + a.captionColor +
         ";\ntext-align:" + a.captionAlign + ";\nfont-size:" + a.captionFontSize +
         ";\nfont-weight:" + a.captionWeight + ";\n}\n";
    s += "#navBar a {\ndisplay: inline-block;\npadding: 1px 4px;\nborder: 1px solid #CCCCCC;\n"
         "border-radius: 4px 4px 4px 4px;\ncolor: #111111;\nbackground-color:#FFFFFF;\n}\n\n";
    const CssRgb& c = a.lightboxBackgroundColor;
    s += "/* light box */\n.klOVlightbox{\ncursor: pointer;\nposition: fixed;\nwidth: 100%;\n"
         "height: 100%;\ntop: 0;\nleft: 0;\nbackground-color: rgba(" +
         cCssCreate::rgbComponents(c) + a.lightboxBackgroundOpacity +
         ");\n-webkit-filter: none !important;\nz-index: 9997;\n}\n\n";
    s += ".klOVlightbox img {\ndisplay: block;\nposition: absolute;\nborder: " + a.boxThickness +
         "px solid #" + a.boxColor + ";\nbox-shadow: " + a.boxShadowXOffset + "px " +
         a.boxShadowYOffset + "px " + a.boxShadowThickness + "px #" + a.lightboxShadowColor +
         ";\nborder-radius: " + a.boxRadius + "px;\n}\n\n";
    s += "body.blurred > * {\n-webkit-filter: blur(2px);\n}\n\n";
    s += ".klOVlightbox_loading {\nbackground: url(loading.gif) center center no-repeat;\n"
         "width: 32px;\nheight: 32px;\nmargin: -16px 0 0 -16px;\nposition: absolute;\n"
         "top: 50%;\nleft: 50%;\n}\n\n";
    s += ".klOVlightbox_caption {\ndisplay: none;\nposition: absolute;\nleft: 0;\nbottom: 0;\n"
         "width: 100%;\ntext-align: center;\nz-index: 9998;\nbackground: rgba(0, 0, 0, 0.7);\n"
         "}\n\n";
    s += ".klOVlightbox_caption p {\nmargin: 0 auto;\nmax-width: 70%;\ndisplay: inline-block;\n"
         "*display: inline;\nzoom: 1;\npadding: 10px;\ncolor: #fff;\nfont-size: 12px;\n"
         "line-height: 18px;\nfont-family: 'Roboto', sans-serif;\n}\n\n";
    s += cCssCreate::lightboxButtonRules();
    s += ".klOVlightbox_close {\nright: 10px;\ntop: 10px;\n"
         "background-image: url(\"../KLovlightbox/close.png\");\n}\n\n";
    s += ".klOVlightbox_nav {\ntop: 50%;\nmargin-top: -16px;\n}\n\n";
    s += ".klOVlightbox_nav_next {\nright: 10px;\n"
         "background-image: url(\"../KLovlightbox/next.png\");\n}\n\n";
    s += ".klOVlightbox_nav_prev {\nleft: 10px;\n"
         "background-image: url(\"../KLovlightbox/previous.png\");\n}\n\n";
    return s;
}

QString widthItem(const GalleryCssArgs& a, int i) {
    return i < a.widthList.size() ? a.widthList[i] : QString();
}

}  // namespace

QString GalleryCss::hCreateCss(const GalleryCssArgs& a) {
    const QString font = cCssCreate::fontLine(a.fontFamily);
    QString s = QStringLiteral("@charset \"UTF-8\"\n\n");
    s += ".KLovTableBased-container {\nheight: 100%;\nz-index: 2;\n}\n"
         ".KLovTableBased-container::after {\ncontent: \"\";\ntop: 0;\nleft: 0;\n"
         "position: fixed;\n";
    if (a.patternOn != 1) {
        s += "z-index: -1;\nwidth: 100%;\nheight: 100%;\nbackground-color:" + a.backgroundColor +
             ";}\n\n";
    } else {
        s += "z-index: -10;\nwidth: 100%;\nheight: 100%;\nbackground-color:" + a.backgroundColor +
             ";}\n\n";
        s += ".KLovTableBased-container::before {\ncontent: \"\";\ntop: 0;\nleft: 0;\n"
             "position: fixed;\nwidth: 100%;\nheight: 100%;\n"
             "background-image: url(../KLovPatterns/" +
             a.patternFileName +
             ");\nbackground-repeat: repeat;\nbackground-size: " + a.patternScale +
             "%;\nopacity: " + a.patternOpacity + ";}\n\n";
    }
    s += ".klSsPatternBox {\ncontent: \"\";\ntop: 0;\nleft: 0;\nposition: absolute;\n"
         "display: block;\nwidth: 100%;\nheight: 100%;\n}\n\n";
    s += "body, html {\nheight: 100%;\n}\n\n";
    s += "div.klOVimg {\n" + font + "background-color:" + a.cellBackgroundColor + ";\n}\n\n";
    s += "div.klOVimg img {\n" + font +
         "max-width: 100%;\nmax-height: " + QString::number(a.thumbnailCropHeight) +
         "px;\nborder-radius:" + a.thumbnailBorderRadius + "px;\n" + borderLine(a) +
         "display:block;\nmargin:auto;\n}\n\n";
    s += ".klOVimg img {\n" + font;
    if (a.magnifyOnHover != 1)
        s += "width: 100%;\nheight: auto;\n" + borderLine(a) + shadowLine(a) + "}\n\n";
    else
        s +=
            "max-width: auto;\nmax-height: auto;\n" + borderLine(a) + shadowLine(a) + magnifyTail();
    s += textAndCellRules(a, font);

    struct Breakpoint {
        const char* maxWidth;
        int item;
        const char* heightProperty;
    };
    static const Breakpoint breakpoints[] = {{"6000px", 0, "height"},
                                             {"2000px", 0, "max-height"},
                                             {"1242px", 1, "max-height"},
                                             {"1000px", 2, "max-height"},
                                             {"750px", 3, "max-height"}};
    for (const Breakpoint& b : breakpoints) {
        const QString w = widthItem(a, b.item);
        s += QStringLiteral("@media only screen and (max-width: ") + b.maxWidth +
             "){\n.klOVresponsive {\nwidth: " + w + "%;\n";
        if (a.thumbnailAction == 1) s += QString::fromLatin1(b.heightProperty) + ": " + w + "%;\n";
        s += "margin: 1% 0;\n}\n}\n";
    }
    // The clearing declarations stand inside the last breakpoint, with no margin: kept on purpose.
    s += "@media only screen and (max-width: 640px){\n.klOVresponsive {\nwidth: 100%;\n";
    if (a.thumbnailAction == 1) s += "max-height: 100%;\n";
    s += "\ncontent: \"\";\ndisplay: table;\nclear: both;\n}\n}\n";

    s += navigationAndLightboxRules(a, font);
    return s;
}

QString GalleryCss::hCreateCssGridMod2(const GalleryCssArgs& a, int columns) {
    const QString font = cCssCreate::fontLine(a.fontFamily);
    QString s = QStringLiteral("@charset \"UTF-8\"\n\n");
    s += ".KLovTableBased-container {\nheight: 100%;\nz-index: 2;\n}\n"
         ".KLovTableBased-container::after {\ncontent: \"\";\n";
    // One pseudo-element carries colour and pattern, so the opacity dims both: kept on purpose.
    if (a.patternOn == 1)
        s += "background-image: url(../KLovPatterns/" + a.patternFileName +
             ");\nbackground-repeat: repeat;\nbackground-size: " + a.patternScale +
             "%;\nopacity: " + a.patternOpacity + ";\n";
    s += "top: 0;\nleft: 0;\nposition: fixed;\nz-index: -1;\nwidth: 100%;\nheight: 100%;\n"
         "background-color:" +
         a.backgroundColor + ";}\n\n";
    s += "body, html {\nheight: 100%;\npadding: 1rem;\n}\n\n";
    s += "div.klOVimg {\n" + font + "background-color:" + a.cellBackgroundColor + ";\n}\n\n";
    s += ".klOVimg {\ndisplay: block;\nwidth: 90%;\nmargin-left: auto;\nmargin-right: auto;\n}\n\n";
    s += "img {\ndisplay:block;\nmax-width: 100%;\nmax-height: 100%;\n}\n\n";
    s += ".klOVimages {\nmax-width: 100%;\nmargin: 0 auto;\ndisplay: grid;\ngrid-gap: 1rem;\n"
         "align-items: center;\n}\n\n";
    if (a.magnifyOnHover != 1) {
        s += ".klOVimg {\n" + font;
        if (!a.thumbnailColor.isEmpty()) s += "background-color:" + a.thumbnailColor + ";\n";
        s += "height: " + QString::number(a.thumbnailCropHeight) + "px;\n}\n\n";
        s += ".klOVimg img {\n" + font + borderLine(a) + shadowLine(a) + "}\n\n";
    } else {
        s += ".klOVimg img {\n" + font + borderLine(a) + shadowLine(a) + magnifyTail();
    }
    s += textAndCellRules(a, font);

    // The 700px step of two columns falls back to one: the formula is kept as it is.
    const int c = columns;
    const struct {
        const char* minWidth;
        int count;
    } breakpoints[] = {{"400px", c - 2 * (c / 3)},
                       {"700px", c - c / 2},
                       {"1000px", c - c / 3},
                       {"1300px", c - c / 6},
                       {"1600px", c}};
    for (const auto& b : breakpoints)
        s += QStringLiteral("@media (min-width: ") + b.minWidth +
             ") {\n.klOVimages { grid-template-columns: repeat(" + QString::number(b.count) +
             ", 1fr); }}\n\n";

    s += navigationAndLightboxRules(a, font);
    return s;
}
