#pragma once

#include <QString>
#include <QStringList>

// A colour as the stylesheet writer receives it: red, green and blue from 0 to 1.
struct CssRgb {
    double red = 0;
    double green = 0;
    double blue = 0;

    // From a colour text of six hexadecimal digits ("" or anything unreadable gives black).
    static CssRgb fromHex(const QString& hex);
};

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
    QString destination;                // 11, ends with "/"
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

// Writes the stylesheet "KLcss/klGScss.css" of a Photo Gallery.
class cCssCreate {
  public:
    // Table-based model.
    void hCreateCss(const GalleryCssArgs& args) const;
    // Grid model, with the column count.
    void hCreateCssGridMod2(const GalleryCssArgs& args, int columns) const;

    // The texts the two write.
    static QString tableCssText(const GalleryCssArgs& args);
    static QString gridCssText(const GalleryCssArgs& args, int columns);
    // "font-family: '<family>', sans-serif;" + newline; unknown families give Trirong, serif.
    static QString fontLine(const QString& family);
};
