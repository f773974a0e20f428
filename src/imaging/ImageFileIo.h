#pragma once

#include <QImage>
#include <QString>

namespace vips {
class VImage;
}

// Reading and writing image files for the imaging classes: type identifiers from file names,
// sizes from headers, savers per type written atomically, and the bridge to QImage. Used only
// by src/imaging sources (which include <vips/vips8> themselves).
namespace ImageFileIo {

// A photo larger than this is refused before anything is decoded.
inline constexpr qint64 kMaxPixels = 250'000'000;
// JPEGs written in the photo's own type (slides, grid images, the file forms of the scale and
// crop operations) use this quality.
inline constexpr int kWorkingJpegQuality = 92;

// "public.png", "public.tiff", "public.bmp", "com.compuserve.gif", "public.jpeg", "public.jp2",
// "com.adobe.photoshop-image", "com.adobe.pdf", or "" for any other extension (case-insensitive).
QString typeIdentifier(const QString& path);
// Photoshop and PDF sources are never read.
bool isRefusedType(const QString& typeIdentifier);

// The pixel size as the photo is seen (EXIF orientation applied), from the header only. False (and
// 0 x 0) when the file cannot be read, has a zero side or is larger than kMaxPixels.
bool pixelSize(const QString& path, int* width, int* height, QString* reason = nullptr);

// Opens a file lazily; a truncated or damaged file fails when its pixels are read. Throws
// vips::VError.
vips::VImage open(const QString& path, bool sequential);

// Writes `image` to `path` as the type says, through a temporary file in the same folder that
// replaces `path` only when complete (so a file may be rewritten from itself). Without
// `keepMetadata` EXIF, IPTC and XMP are left out (the colour profile stays); JPEG puts
// transparent pixels on white. Returns "OK", "Failed" (with `error`) or "Not Supported". Never
// throws.
QString save(const vips::VImage& image, const QString& path, const QString& typeIdentifier,
             bool keepMetadata, int jpegQuality = kWorkingJpegQuality, QString* error = nullptr);

// 8-bit sRGB with 3 bands, or 4 when `keepAlpha` and the image has alpha (otherwise flattened
// on white). Throws vips::VError.
vips::VImage toSrgb8(const vips::VImage& image, bool keepAlpha);

// Pixels as a QImage (RGBA8888 or RGB888) and back. Throw vips::VError.
QImage toQImage(const vips::VImage& image);
vips::VImage fromQImage(const QImage& image);

}  // namespace ImageFileIo
