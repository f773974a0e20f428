#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

// A photo or one of its derivatives, decoded in memory: upright (its EXIF orientation applied),
// 8-bit sRGB with alpha only when the photo has some transparency, carrying the metadata its source
// type lets it keep. Copies share the pixels. Made by PhotoDecoder and the operations of
// KLImageHandling.
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

// What a photo's header says: read once for a run, then passed on to the decoder.
struct PhotoHeader {
    int width = 0;  // as the photo is seen (EXIF orientation applied)
    int height = 0;
    int orientation = 1;  // EXIF 1..8; 5 to 8 store the photo with its sides exchanged
    QString loader;       // the reader of its format, such as "VipsForeignLoadJpegFile"
    QString fault;        // why no image can be made of it; "" when one can
};

// How far a photo is shrunk while it is decoded, where its format allows.
struct ShrinkOnLoad {
    int jpeg = 1;                // JPEG: 1, 2, 4 or 8
    double webp = 1.0;           // WebP: any scale up to 1
    bool heifThumbnail = false;  // HEIF: its thumbnail when that is large enough
};

// Reading photos for the image operations.
namespace PhotoDecoder {

// JPEG keeps this many times the pixels a derivative needs, on each side: shrinking further
// while decoding leaves its derivatives measurably further from those made from the whole photo
// (bench/quality). WebP's decoder scales smoothly and decodes to the size needed.
inline constexpr int kJpegMargin = 2;

// The header, read now unless a run remembers it (see RememberedHeaders).
PhotoHeader header(const QString& path);
// The size of the photo as it is seen (EXIF orientation applied), from its header. False (and
// `error` says why) when the file is not a readable image, has a zero side or is too large.
bool uprightSize(const QString& path, int* width, int* height, QString* error = nullptr);
// False (and `error` says why) for a file named as HEIF, AVIF, WebP or JPEG XL that holds another
// kind of image, or none; files of the older types are not checked.
bool holdsItsType(const QString& path, QString* error = nullptr);

// The headers of a run's photos, read once: while it lives, header, uprightSize and the decoders
// answer from it for those files instead of reading them again. Any number may live at once.
class RememberedHeaders {
  public:
    RememberedHeaders(const QStringList& paths, const QList<PhotoHeader>& headers);
    ~RememberedHeaders();
    RememberedHeaders(const RememberedHeaders&) = delete;
    RememberedHeaders& operator=(const RememberedHeaders&) = delete;

  private:
    QStringList paths_;
};

// The shrinking for derivatives that need at most `needWidth` x `needHeight` of the upright
// photo's pixels: never below what they need.
ShrinkOnLoad shrinkOnLoad(const PhotoHeader& header, int needWidth, int needHeight);

// Decodes the photo once. `scale` is the largest fraction of its upright size that any derivative
// made from it needs; the photo is shrunk while decoding as shrinkOnLoad says; 1 or more decodes
// the whole photo. A null picture (and `error`) when it cannot be decoded, also when it is damaged
// or truncated.
Picture decode(const QString& path, double scale, QString* error = nullptr);
// The same with the header already read.
Picture decode(const QString& path, const PhotoHeader& header, double scale,
               QString* error = nullptr);

// The same for a photo that makes one derivative only: its pixels are read from the file while
// that derivative is written, so no copy of the whole photo is held (a photo that must be turned
// upright, or one with alpha, is still read whole). The picture serves one operation and one write;
// a photo damaged past its header fails at that write.
Picture decodeForOneUse(const QString& path, double scale, QString* error = nullptr);

}  // namespace PhotoDecoder
