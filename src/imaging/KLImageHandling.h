#pragma once

#include <QColor>
#include <QImage>
#include <QString>

class SettingsStore;
namespace vips {
class VImage;
}

// Makes the image files the pages show: scaled by one of eight modes, cropped at one of nine
// positions, framed, written in the photo's own type. One object per photo; not thread-safe, but
// any number of objects may work in parallel.
class KLImageHandling {
  public:
    // The crop offset settings (tfCropThumbXOffset, tfCropThumbYOffset, tfCropBigXOffset,
    // tfCropBigYOffset) are read from `settings`; without one they are 0.
    explicit KLImageHandling(const SettingsStore* settings = nullptr);

    // Scales the photo at `source` by `mode` (0..7) to `size` and writes folder + file name, in the
    // source's type. "OK", "Failed" or "Not Supported".
    QString resizeImage(const QString& source, int size, int mode, const QString& folder);
    // Cuts a cropWidth x cropHeight box at `position` (0..8) out of the image at `source` and
    // writes folder + file name. `kind` is "myCropThumb" or "myCropBig". The result is also kept in
    // storeResult.
    QString cropImage(const QString& source, int cropWidth, int cropHeight, const QString& folder,
                      const QString& kind, int position);
    // Slide image: covers the box and keeps its centre; always JPEG, to folder + fileName.
    QString hHandleImages(const QString& boxWidth, const QString& boxHeight, const QString& source,
                          const QString& folder, const QString& fileName);
    // Grid image of a fixed width (whole-percent scale); always JPEG, to folder + fileName.
    QString hHandleRgImages(const QString& width, const QString& source, const QString& folder,
                            const QString& fileName);
    // Strokes a frame of `width` centred on the image's edges (only its inner half shows) and
    // writes the file back in place.
    QString addBorderToImage2(const QString& path, const QColor& color, quint32 width);
    // The image turned by `angle` degrees (counter-clockwise) about its centre, on a canvas the
    // size of the turned rectangle's bounding box; the corners outside it are transparent. The
    // angle is kept in `degrees`. A null image when the image cannot be turned.
    QImage hRotatePictureBase(const QImage& image, const QString& angle);

    qint32 newImgW = 0;
    qint32 newImgH = 0;
    double myScaleFactor = 100.0;
    qint32 myXWOffset = 0;
    qint32 myYHOffset = 0;
    qint32 myXWOffsetPlus = 0;
    qint32 myYHOffsetPlus = 0;
    QString storeResult;
    float degrees = 0.0f;

  private:
    // Writes `image` to `path` in the type `typeIdentifier`; JPEG and TIFF keep its metadata.
    // "OK", "Failed" or "Not Supported".
    QString hSaveToNewImageFile(const QString& path, const QString& typeIdentifier,
                                const vips::VImage& image);
    // Computes newImgW/newImgH/myScaleFactor for `mode`; false when the photo cannot be scaled.
    bool computeTargetSize(int width, int height, int size, int mode);
    int cropOffset(const QString& name) const;

    const SettingsStore* settings_;
};
