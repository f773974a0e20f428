#include "generators/common/cCssCreate.h"

#include "generators/common/PageText.h"
#include "services/cNSColorHandling.h"

CssRgb CssRgb::fromHex(const QString& hex) {
    const QColor c = cNSColorHandling::colorFromHexRGB(hex);
    // From the 8-bit values, in double precision: 128 must print as 128.000000.
    return {c.red() / 255.0, c.green() / 255.0, c.blue() / 255.0};
}

QString cCssCreate::fontLine(const QString& family) {
    return PageText::fontLine(family);
}

QString cCssCreate::rgbComponents(const CssRgb& c) {
    return QString::asprintf("%f,%f,%f,", c.red * 255.0, c.green * 255.0, c.blue * 255.0);
}

QString cCssCreate::lightboxButtonRules() {
    return QStringLiteral(
        ".klOVlightbox_button {\nposition: absolute;\nz-index: 9999;\n"
        "background: no-repeat center center;\nwidth: 32px;\nheight: 32px;\nopacity: 0.4;\n"
        "-webkit-transition: all 0.3s;\n-moz-transition: all 0.3s;\n-ms-transition: all 0.3s;\n"
        "transition: all 0.3s;\n}\n\n"
        ".klOVlightbox_button:hover,\n.klOVlightbox_button:focus {\nopacity: 1;\n"
        "-webkit-transform: scale(1.4);\n-moz-transform: scale(1.4);\n"
        "-ms-transform: scale(1.4);\ntransform: scale(1.4);\n}\n\n");
}
