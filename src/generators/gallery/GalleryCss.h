#pragma once

#include <QString>
#include <QStringList>

#include "generators/common/cCssCreate.h"

// The style settings of a Photo Gallery, in the order the stylesheet writers take them. Colours
// marked "#" carry it in front; the others are bare hex digits.
struct GalleryCssArgs {
    QString backgroundColor;            // 1, "#" + hex
    QString headingText;                // 2, not used by the stylesheets
    QString fileNameAlign;              // 3
    QString fileNameWeight;             // 4
    QString captionAlign;               // 5
    QString captionWeight;              // 6
    QString headingFontSize;            // 7
    QString captionFontSize;            // 8
    QString headingWeight;              // 9
    QString headingColor;               // 10, "#" + hex
    QString destination;                // 11, ends with "/" (not used by the text)
    QString photoNameColor;             // 12, "#" + hex
    QString fileNameFontSize;           // 13
    QString captionColor;               // 14, "#" + hex
    QString headingAlign;               // 15
    QString cellBackgroundColor;        // 16, "#" + hex
    QString fontFamily;                 // 17
    QStringList widthList;              // 18, five items
    QString thumbnailBorderThickness;   // 19
    QString thumbnailColor;             // 20, hex
    QString thumbnailBorderRadius;      // 21
    int patternOn = 0;                  // 22, 1 = on
    QString patternFileName;            // 23
    QString patternScale;               // 24
    QString patternOpacity;             // 25
    QString thumbnailShadowThickness;   // 26
    QString thumbnailShadowXOffset;     // 27
    QString thumbnailShadowYOffset;     // 28
    QString thumbnailShadowColor;       // 29, hex
    QString boxColor;                   // 30, hex
    QString boxRadius;                  // 31
    QString boxThickness;               // 32
    QString boxShadowThickness;         // 33
    QString boxShadowXOffset;           // 34
    QString boxShadowYOffset;           // 35
    QString lightboxShadowColor;        // 36, hex
    int magnifyOnHover = 0;             // 37, 1 = on
    int thumbnailCropWidth = 0;         // 38
    int thumbnailCropHeight = 0;        // 39
    CssRgb lightboxBackgroundColor;     // 40
    QString lightboxBackgroundOpacity;  // 41
    int thumbnailAction = 0;            // 42
};

// The stylesheet "KLcss/klGScss.css" of a Photo Gallery, in its two models.
class GalleryCss {
  public:
    // Table-based model.
    static QString hCreateCss(const GalleryCssArgs& args);
    // Grid model, with the column count.
    static QString hCreateCssGridMod2(const GalleryCssArgs& args, int columns);
};
