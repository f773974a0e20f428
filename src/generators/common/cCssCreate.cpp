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
