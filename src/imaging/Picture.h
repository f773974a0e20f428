#pragma once

#include <QString>
#include <memory>

// A photo or one of its derivatives, decoded in memory: upright (its EXIF orientation applied),
// 8-bit sRGB with alpha only when the photo has it, carrying the metadata its source type lets it
// keep. Copies share the pixels. Made by PhotoDecoder and the operations of KLImageHandling.
class Picture {
  public:
    struct Data;  // defined for the imaging sources only

    Picture() = default;
    explicit Picture(std::shared_ptr<const Data> data);

    bool isNull() const { return !d_; }
    // The size the scale rules compute with: the whole upright photo for a decoded source (whose
    // pixels may have been shrunk while decoding), the real size for a derivative.
    int width() const;
    int height() const;
    // The type identifier of the file it came from, such as "public.jpeg".
    QString typeIdentifier() const;

    const Data& data() const { return *d_; }

  private:
    std::shared_ptr<const Data> d_;
};

// Reading photos for the image operations.
namespace PhotoDecoder {

// The size of the photo as it is seen (EXIF orientation applied), from its header. False (and
// `error` says why) when the file is not a readable image, has a zero side or is too large.
bool uprightSize(const QString& path, int* width, int* height, QString* error = nullptr);
// False (and `error` says why) for a file named as HEIF, AVIF, WebP or JPEG XL that holds another
// kind of image, or none; files of the older types are not checked.
bool holdsItsType(const QString& path, QString* error = nullptr);

// Decodes the photo once. `scale` is the largest fraction of its upright size that any derivative
// made from it needs: a JPEG is shrunk while decoding by the largest power of two that still
// leaves at least twice those pixels; 1 or more decodes the whole photo. A null picture (and
// `error`) when it cannot be decoded, also when it is damaged or truncated.
Picture decode(const QString& path, double scale, QString* error = nullptr);
// The same, shrinking a JPEG while decoding as far as it stays at least `scale` of its upright
// size (as vipsthumbnail does): for a derivative made by one downscale to exactly that size,
// where the decoder's own shrinking is sharp enough.
Picture decodeAtLeast(const QString& path, double scale, QString* error = nullptr);

// The same for a photo that makes one derivative only: its pixels are read from the file while
// that derivative is written, so no copy of the whole photo is held (a photo that must be turned
// upright is still read whole). The picture serves one operation and one write; a photo damaged
// past its header fails at that write.
Picture decodeForOneUse(const QString& path, double scale, QString* error = nullptr);

}  // namespace PhotoDecoder
