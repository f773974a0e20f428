#pragma once

#include <QString>

#include "generators/common/cCssCreate.h"

// The style settings of a Responsive Grid, in the order the stylesheet writer takes them. Colours
// marked "#" carry it in front.
struct GridCssArgs {
    QString destination;                // 1, ends with "/" (not used by the text)
    QString fontFamily;                 // 2
    QString descriptionFontSize;        // 3, with its unit
    QString descriptionWeight;          // 4
    QString descriptionColor;           // 5, "#" + hex
    QString descriptionAlign;           // 6
    QString captionWeight;              // 7
    QString captionFontSize;            // 8, with its unit
    QString captionAlign;               // 9
    QString captionColor;               // 10, "#" + hex
    QString backgroundColor;            // 11, "#" + hex
    QString lightboxBackground;         // 12, a popup index (not used by the text)
    int patternOn = 0;                  // 13, 1 = on
    QString patternFileName;            // 14
    QString patternScale;               // 15, percent
    QString patternOpacity;             // 16
    QString columnWidth;                // 17, pixels
    QString rowHeight;                  // 18, pixels
    int magnifyOnHover = 0;             // 19, 1 = on
    CssRgb lightboxBackgroundColor;     // 20
    QString lightboxBackgroundOpacity;  // 21
};

// The stylesheet "KLResponsiveGridCss/klovlResponsiveGrid.css" of a Responsive Grid.
class GridCss {
  public:
    static QString hCreateResponsiveGridCss(const GridCssArgs& args);

    // The narrowest column of a grid of at most `columns` columns in its 1200-pixel container:
    // 1200 / columns, in whole pixels (columns must be at least 1).
    static int columnWidth(int columns);
    // The lowest row: three quarters of the column width, computed in 16-bit arithmetic as it
    // always was.
    static int rowHeight(int columnWidth);
    // The lightbox backdrop opacity of a 0..100 slider value, as a single-precision number prints
    // ("0.85", "1", "0").
    static QString opacityText(int sliderValue);
};
