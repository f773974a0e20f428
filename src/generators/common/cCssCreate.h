#pragma once

#include <QString>

// A colour as the stylesheet writers receive it: red, green and blue from 0 to 1.
struct CssRgb {
    double red = 0;
    double green = 0;
    double blue = 0;

    // From a colour text of six hexadecimal digits ("" or anything unreadable gives black).
    static CssRgb fromHex(const QString& hex);
};

// What the stylesheet writers of every output kind share. Each kind's own rules live with it.
class cCssCreate {
  public:
    // "font-family: '<family>', sans-serif;" + newline; unknown families give Trirong, serif.
    static QString fontLine(const QString& family);
    // "R,G,B," with each 0..255 component printed "%f" (128 gives "128.000000").
    static QString rgbComponents(const CssRgb& color);
    // The rules of the lightbox's buttons and of their hover and focus, as both lightbox
    // stylesheets write them.
    static QString lightboxButtonRules();
};
