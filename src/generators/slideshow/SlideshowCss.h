#pragma once

#include <QString>
#include <QStringList>

// The style settings of a Slideshow, in the order the classic stylesheet writer takes them.
// Colours marked "#" carry it in front; the dot colour is bare hex digits.
struct SlideshowCssArgs {
    QString destination;      // 1, ends with "/" (not used by the text)
    QString imageWidth;       // 2, pixels: the container's and the heading's maximum width
    QString fontFamily;       // 3, a family title; unknown ones mean Trirong
    QString headingFontSize;  // 4, with its unit
    QString headingWeight;    // 5, "300" .. "900"
    QString headingColor;     // 6, "#" + hex
    QString headingAlign;     // 7, "left", "center", "right"
    QString captionWeight;    // 8, may be empty (see cSlideshow::readSettings)
    QString captionFontSize;  // 9, with its unit
    QString captionAlign;     // 10
    QString captionColor;     // 11, "#" + hex
    QString backgroundColor;  // 12, "#" + hex
    int shadowOn = 0;         // 13, 1 = on
    int patternOn = 0;        // 14, 1 = on
    QString patternFileName;  // 15, the file in KLovPatterns/
    QString patternScale;     // 16, percent
    QString patternOpacity;   // 17
    QString dotColor;         // 18, hex without "#"
    QString dotAppearance;    // 19, the popup index in decimal: "0" round, others square
    QString imageHeight;      // the slider's container height, pixels
};

// The stylesheet "KLSlideShowcss/klovlSlideshow.css" of a Slideshow, for its two page kinds.
class SlideshowCss {
  public:
    // The classic page: hidden slides, buttons, dots, caption, counter, fade.
    static QString hCreateSlideShowCss(const SlideshowCssArgs& args);
    // The slider: one rule per slide (`slideImages`: the slide files in KLSsImages/, in photo
    // order) moved by one animation; `interval` is read as whole seconds.
    static QString hCreateSlideSliderShowCss(const SlideshowCssArgs& args,
                                             const QStringList& slideImages,
                                             const QString& interval);
};
