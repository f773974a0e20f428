#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <QUrl>

#include "imaging/Picture.h"

// The extra shift of crop boxes, from the crop offset fields of the thumbnail and the big image.
struct CropShifts {
    int thumbX = 0;
    int thumbY = 0;
    int bigX = 0;
    int bigY = 0;
};

// The result of hSaveAsFileType: the output file, the format title and the base name.
struct SaveAsResult {
    QUrl url;
    QString format;
    QString baseName;
};

// Makes the image files the pages show: scaled by one of eight modes, cropped at one of nine
// positions, framed, written in the photo's own type. Every operation works on pictures in
// memory; the file forms read their source once and write their result once, whole or not at
// all. One object per photo; not thread-safe, but any number of objects may work in parallel.
class KLImageHandling {
  public:
    explicit KLImageHandling(const CropShifts& shifts = {});

    // --- In memory. A null picture when the operation cannot be done (storeResult and lastError
    // say why); the fields below are set as the file forms set them.

    // Scales by `mode` (0..7) to `size`.
    Picture resized(const Picture& photo, int size, int mode);
    // Cuts a cropWidth x cropHeight box at `position` (0..8); `kind` "myCropThumb" or "myCropBig"
    // chooses the shift. A box hanging over the edge keeps the part on the image.
    Picture cropped(const Picture& image, int cropWidth, int cropHeight, const QString& kind,
                    int position);
    // Strokes a frame of `width` centred on the edges (only its inner half shows).
    Picture framed(const Picture& image, const QColor& color, quint32 width);
    // Slide: covers the box and keeps its centre.
    Picture slide(const Picture& photo, const QString& boxWidth, const QString& boxHeight);
    // Fills a width x height box with the photo, scaled no more than covering the box takes, and
    // keeps the box at `position` (0..8), moved by (shiftX, shiftY) box pixels but never off the
    // photo: a plain crop to the box's shape.
    Picture covered(const Picture& photo, int width, int height, int position, int shiftX = 0,
                    int shiftY = 0);
    // The photo scaled so that its longer side is `longest`, never enlarged.
    Picture fitted(const Picture& photo, int longest);
    // Grid image of a fixed width, scaled by a whole percent.
    Picture gridImage(const Picture& photo, const QString& width);
    // Writes a picture to `path` in the type `typeIdentifier`: JPEG and TIFF keep its metadata,
    // the other types its colour profile only. "OK", "Failed" or "Not Supported".
    QString hSaveToNewImageFile(const QString& path, const QString& typeIdentifier,
                                const Picture& image);
    // Writes a picture as `folder` + `baseName` + "." + `format` ("pdf", "png", "tiff", "bmp",
    // "gif", "jpeg", "jp2"; anything else writes nothing) with the compression title
    // `compression` ("1".."8" are tenths of JPEG quality, anything else 0.9). PNG and TIFF keep
    // the metadata the picture carries. `written` tells whether the file was written.
    static SaveAsResult hSaveAsFileType(const Picture& image, const QString& baseName,
                                        const QString& format, const QString& compression,
                                        const QString& folder, bool* written = nullptr,
                                        QString* error = nullptr);

    // The picture as a working file in its source's own type would hold it: only JPEG and TIFF
    // (also the JPEG a HEIF, AVIF, WebP or JPEG XL photo's working file is) keep their metadata.
    static Picture hWorkingCopy(const Picture& photo);
    // False (with the reason) for a file whose type the image operations do not read.
    static bool isSupportedSource(const QString& path, QString* error = nullptr);
    // The name the file forms below give the image made from `source`.
    static QString writtenFileName(const QString& source);

    // --- On files. Each reads its source once and writes folder + a file name. The types that
    // are read but not written (HEIF, AVIF, WebP, JPEG XL) are written as JPEG, named NAME.jpeg.

    // Scales the photo at `source`; writes folder + its file name, in the source's type.
    QString resizeImage(const QString& source, int size, int mode, const QString& folder);
    // Crops the image at `source`; writes folder + its file name. Also kept in storeResult.
    QString cropImage(const QString& source, int cropWidth, int cropHeight, const QString& folder,
                      const QString& kind, int position);
    // Slide image, always JPEG, to folder + fileName.
    QString hHandleImages(const QString& boxWidth, const QString& boxHeight, const QString& source,
                          const QString& folder, const QString& fileName);
    // Grid image, always JPEG, to folder + fileName.
    QString hHandleRgImages(const QString& width, const QString& source, const QString& folder,
                            const QString& fileName);
    // Frames the image at `path` and writes it back in place.
    QString addBorderToImage2(const QString& path, const QColor& color, quint32 width);
    // Converts the working image at `path` into `format` in `folder` (see above); the working
    // file is deleted when the output path differs from it, also when nothing was written.
    static SaveAsResult hSaveAsFileType(const QString& path, const QString& format,
                                        const QString& compression, const QString& folder);

    // The image turned by `angle` degrees (counter-clockwise) about its centre, on a canvas the
    // size of the turned rectangle's bounding box; the corners outside it are transparent. The
    // angle is kept in `degrees`. A null image when the image cannot be turned.
    QImage hRotatePictureBase(const QImage& image, const QString& angle);

    // Computes newImgW/newImgH/myScaleFactor for `mode` on a width x height photo; false when
    // that gives no image to write.
    bool computeTargetSize(int width, int height, int size, int mode);
    // The slide's scaled size (newImgW, newImgH) and cut corner (myXWOffset, myYHOffset).
    bool computeSlideSize(int width, int height, int boxWidth, int boxHeight);
    // The grid image's size (newImgW, newImgH) and whole-percent myScaleFactor.
    bool computeGridSize(int width, int height, int targetWidth);

    qint32 newImgW = 0;
    qint32 newImgH = 0;
    double myScaleFactor = 100.0;
    qint32 myXWOffset = 0;
    qint32 myYHOffset = 0;
    qint32 myXWOffsetPlus = 0;
    qint32 myYHOffsetPlus = 0;
    QString storeResult;
    QString lastError;  // why the last operation failed, for the user
    float degrees = 0.0f;

  private:
    Picture fail(const QString& result, const QString& reason);

    CropShifts shifts_;
};
