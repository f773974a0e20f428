#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Completes the EXIF block of a photo and stamps it: every key of a fixed list gets a value (0
// when the photo had none), the user comment becomes "Keldra" and the gamma 99.999. The image
// data is copied as it is.
class cXif {
  public:
    // Reads `input` and writes the completed copy to `output`, whole or not at all. "Keldra" when
    // written, "Failed" when the input is not an image whose EXIF can be written, the output is
    // the input itself, or writing failed.
    QString writeXif(const QString& input, const QString& output);

    // The EXIF block of a photo as a JPEG carries it ("Exif\0\0", then the TIFF structure),
    // without the tags that describe the file's own image data and without the orientation (the
    // pixels are taken upright); empty when it has none. For writers that are handed pixels
    // without the source's EXIF (the TIFF reader gives none).
    static QByteArray exifBlockOf(const QString& path);

    // The EXIF tags completed, in order (Exiv2's names of the "Exif.Photo" group).
    static QStringList keys();

    // The value each key held before, or "" for a key that was missing; not used further.
    QStringList rememberedValues;
};
