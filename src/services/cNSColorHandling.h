#pragma once

#include <QColor>
#include <QString>
#include <optional>

// Conversions between colours and colour texts (six upper-case hexadecimal digits, no "#").
// Stateless: every operation is static and may also be called on an instance.
class cNSColorHandling {
  public:
    // "%02X%02X%02X" of red, green and blue x 255, each truncated toward zero ((1, 0.5, 0) gives
    // "FF7F00").
    static QString getHEXValue(const QColor& color);
    // The same of the colour's first three components.
    static QString hGetHexFromRGB(const QColor& color);

    // The text scanned as one hexadecimal number (leading blanks and "0x" allowed, no "#"): red
    // from bits 16-23, green 8-15, blue 0-7; black when nothing scans. A number too large for 32
    // bits saturates (white).
    QColor colorFromHexToRGB(const QString& text) const { return colorFromHexRGB(text); }
    static QColor colorFromHexRGB(const QString& text);

    // An optional "#", then the leading run of hexadecimal digits: the colour when that run is
    // exactly six digits long ("ff8800zz" gives one), nothing otherwise ("ff88").
    static std::optional<QColor> setHEXValue(const QString& text);
};
