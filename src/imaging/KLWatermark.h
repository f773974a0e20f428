#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

// The values of the watermark panel, as the caller read them from its controls. Numbers are the
// integers typed in the text fields (0 when empty); the defaults and the opacity rule are applied
// by KLWatermark itself.
struct WatermarkSettings {
    // Text stamp.
    QString text;          // the text to stamp, several lines allowed
    QStringList fontList;  // the font names of the list, in order; empty: the system's families
    QString font;          // the chosen font; "" when nothing is chosen (the second one is used)
    int fontSize = 0;      // points; 0 (or less) means 24. Also the size of the image stamp.
    QColor fontColor = QColor(255, 255, 255);
    int fontTransparency = 0;  // percent, see KLWatermark::opacity
    int position = 4;          // 0..8, row by row from the top left; anything else stamps nothing
    int xOffset = 0;
    int yOffset = 0;
    int angle = 0;  // degrees, counter-clockwise
    bool shadow = false;
    QColor shadowColor = QColor(0, 0, 0);
    int shadowXOffset = 0;  // 0 means 2
    int shadowYOffset = 0;  // 0 means 2
    int shadowRadius = 0;   // 0 means 1

    // Image stamp.
    QString imagePath;
    int imagePosition = 4;
    int imageXOffset = 0;
    int imageYOffset = 0;
    int imageAngle = 0;
    int imageTransparency = 0;
    bool imageShadow = false;
    QColor imageShadowColor = QColor(0, 0, 0);
    int imageShadowXOffset = 0;
    int imageShadowYOffset = 0;
    int imageShadowRadius = 0;
    int renderMethod = 0;  // 0 smooth resampling, 1 pixelated (nearest neighbour)
};

// Stamps a text or an image onto a copy of a photo: the copy goes to the output folder under the
// photo's file name, in the photo's own type, with its colour profile and (JPEG, TIFF) its
// metadata. The photo is turned upright by its EXIF orientation first. Offsets and the anchor are
// in points of a canvas whose origin is the lower-left corner and whose y axis points up.
// Results: "OK", "NOK" (not an image), "Failed" (no encoder for the type, the output folder is the
// photo's own, or writing failed), "Not Supported" (Photoshop and PDF).
class KLWatermark {
  public:
    explicit KLWatermark(WatermarkSettings settings = {});

    QString setWatermarkText(const QString& photo, const QString& folder);
    QString setWatermarkImage(const QString& photo, const QString& folder);

    // The opacity of a transparency field: 0 or above 100 gives 1.0, below 0 gives 0.1, else
    // percent / 100.
    static double opacity(int percent);
    // The lower-left corner of a tw x th box at grid `position` on a W x H canvas (y up), with the
    // offsets turned by the sign of the angle and each coordinate truncated. False (no stamp) for
    // a position outside 0..8.
    static bool anchor(int position, double W, double H, double tw, double th, int dx, int dy,
                       int angle, int* x, int* y);
    // The font families of the system, sorted, each once.
    static QStringList fontFamilies();
    // The extensions a watermark image may have, in the order the file dialog offers them.
    static QStringList watermarkImageExtensions();

    WatermarkSettings settings;
    // The values of the last stamp, after the defaults.
    double myFontSize = 0;
    double myWMAngle = 0;
    double myFontTransparancy = 0;
    double myImageSize = 0;
    double myImageWMAngle = 0;
    double myImageTransparancy = 0;
    // The font the last text stamp used (the caller selects it when nothing was chosen).
    QString usedFont;
    QString lastOutputPath;
};
