#pragma once

#include <QImage>
#include <QString>

#include "imaging/Picture.h"

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
// the photos of phones and the web "public.heic", "public.heif", "public.avif",
// "org.webmproject.webp", "public.jxl", the refused "com.adobe.photoshop-image" and
// "com.adobe.pdf", or "" for any other extension (case-insensitive).
QString typeIdentifier(const QString& path);
// Photoshop and PDF sources are never read.
bool isRefusedType(const QString& typeIdentifier);
// The type an image made from a photo is written in where it keeps its photo's type: the type
// itself, or JPEG for HEIF, AVIF, WebP and JPEG XL, which are read but not written.
QString writtenType(const QString& typeIdentifier);
// The file name of such an image: the photo's own, or its base name with ".jpeg" when its type
// is written as JPEG.
QString writtenFileName(const QString& path);

// False (with the reason) when the file's name is one of HEIF, AVIF, WebP or JPEG XL and the file
// holds another kind of image: those names promise their reader. Older names read whatever image
// they hold, as they always have.
bool holdsItsType(const QString& path, QString* reason = nullptr);

// Reads the header only. False (with the reason, also in `fault`) when the file cannot be read,
// has a zero side or is larger than kMaxPixels.
bool readHeader(const QString& path, PhotoHeader* header);
// The pixel size as the photo is seen, from the header only (0 x 0 when readHeader fails).
bool pixelSize(const QString& path, int* width, int* height, QString* reason = nullptr);

// Opens a file lazily; a truncated or damaged file fails when its pixels are read. `shrink` is
// applied where the file's reader (`loader`, or the one found) offers it. What the format's
// reader leaves out is added (see completed). Throws vips::VError.
vips::VImage open(const QString& path, bool sequential, const ShrinkOnLoad& shrink = {},
                  const QString& loader = {});
// The image read from `path` with what its reader leaves out: the Display P3 profile of a HEIF
// whose colours are given by an nclx box only (libvips takes ICC profiles alone), the EXIF block,
// orientation and XMP of JPEG XL, the XMP of HEIF. Throws vips::VError.
vips::VImage completed(const QString& path, const vips::VImage& image);
// The pixels as they are seen, in sRGB: through their profile when they carry one (which is then
// dropped), for displays and writers that hold no profile. Throws vips::VError.
vips::VImage inSrgb(const vips::VImage& image);

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
