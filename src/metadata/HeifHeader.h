#pragma once

#include <QByteArray>
#include <QString>

// What the header of a HEIF or AVIF file says about its primary image that the pixel reader does
// not pass on: the colours of an nclx colour box (code points of ITU-T H.273) and the XMP packet.
// Nothing is decoded. A file that is not HEIF reads as `read` false.
struct HeifHeader {
    // Colour primaries: 1 BT.709 (the primaries of sRGB), 2 unspecified, 12 Display P3.
    static constexpr int kUnspecified = 2;
    static constexpr int kDisplayP3 = 12;

    bool read = false;
    bool hasIccProfile = false;
    int colourPrimaries = kUnspecified;
    int transferCharacteristics = kUnspecified;
    QByteArray xmp;

    static HeifHeader of(const QString& path);
};
