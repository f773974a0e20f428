#include "imaging/ImageFileIo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vips/vips8>

#include "imaging/VipsRuntime.h"
#include "metadata/HeifHeader.h"
#include "metadata/cXif.h"
#include "metadata/mMeta.h"
#include "services/AtomicFile.h"
#include "services/Log.h"

using vips::VError;
using vips::VImage;

namespace ImageFileIo {

namespace {

struct FileType {
    const char* extension;
    const char* identifier;
    // The newer formats: the one reader their name promises, and the format's name.
    const char* reader;
    const char* format;
};

constexpr FileType kTypes[] = {
    {"png", "public.png", nullptr, nullptr},
    {"tif", "public.tiff", nullptr, nullptr},
    {"tiff", "public.tiff", nullptr, nullptr},
    {"bmp", "public.bmp", nullptr, nullptr},
    {"gif", "com.compuserve.gif", nullptr, nullptr},
    {"jpg", "public.jpeg", nullptr, nullptr},
    {"jpeg", "public.jpeg", nullptr, nullptr},
    {"jp2", "public.jp2", nullptr, nullptr},
    {"j2k", "public.jp2", nullptr, nullptr},
    {"psd", "com.adobe.photoshop-image", nullptr, nullptr},
    {"pdf", "com.adobe.pdf", nullptr, nullptr},
    {"heic", "public.heic", "VipsForeignLoadHeifFile", "HEIF"},
    {"heif", "public.heif", "VipsForeignLoadHeifFile", "HEIF"},
    {"avif", "public.avif", "VipsForeignLoadHeifFile", "AVIF"},
    {"webp", "org.webmproject.webp", "VipsForeignLoadWebpFile", "WebP"},
    {"jxl", "public.jxl", "VipsForeignLoadJxlFile", "JPEG XL"},
};

const FileType* fileTypeOf(const QString& path) {
    const QString ext = QFileInfo(path).suffix().toLower();
    for (const FileType& type : kTypes)
        if (ext == QLatin1String(type.extension)) return &type;
    return nullptr;
}

// Display P3 as libvips knows it, for HEIF photos that name its primaries in an nclx box.
const QByteArray& displayP3Profile() {
    static const QByteArray profile = [] {
        VipsBlob* blob = VImage::profile_load("p3");
        size_t length = 0;
        const void* data = vips_blob_get(blob, &length);
        QByteArray bytes(static_cast<const char*>(data), qsizetype(length));
        vips_area_unref(VIPS_AREA(blob));
        return bytes;
    }();
    return profile;
}

void setBlob(VImage& image, const char* name, const QByteArray& bytes) {
    vips_image_set_blob_copy(image.get_image(), name, bytes.constData(), size_t(bytes.size()));
}

}  // namespace

QString typeIdentifier(const QString& path) {
    const FileType* type = fileTypeOf(path);
    return type ? QString::fromLatin1(type->identifier) : QString();
}

bool isRefusedType(const QString& typeIdentifier) {
    return typeIdentifier == u"com.adobe.photoshop-image" || typeIdentifier == u"com.adobe.pdf";
}

QString writtenType(const QString& typeIdentifier) {
    for (const FileType& type : kTypes)
        if (type.reader && typeIdentifier == QLatin1String(type.identifier))
            return QStringLiteral("public.jpeg");
    return typeIdentifier;
}

QString writtenFileName(const QString& path) {
    const QFileInfo info(path);
    const FileType* type = fileTypeOf(path);
    return type && type->reader ? info.completeBaseName() + QStringLiteral(".jpeg")
                                : info.fileName();
}

namespace {

// Whether `reader` (the one libvips found for the file, or null) is the one its name promises.
bool readerMatchesName(const QString& path, const char* reader, QString* reason) {
    const FileType* type = fileTypeOf(path);
    if (!type || !type->reader) return true;
    if (reader && std::strcmp(reader, type->reader) == 0) return true;
    if (reason)
        *reason = QStringLiteral("named .%1 but holds no %2 image")
                      .arg(QFileInfo(path).suffix(), QLatin1String(type->format));
    return false;
}

}  // namespace

bool holdsItsType(const QString& path, QString* reason) {
    const FileType* type = fileTypeOf(path);
    if (!type || !type->reader) return true;
    VipsRuntime::ensureStarted();
    const char* reader = vips_foreign_find_load(QFile::encodeName(path).constData());
    if (!reader) vips_error_clear();
    return readerMatchesName(path, reader, reason);
}

VImage open(const QString& path, bool sequential, const ShrinkOnLoad& shrink,
            const QString& loader) {
    VipsRuntime::ensureStarted();
    if (!QFileInfo(path).isFile()) throw VError("not a file: " + path.toStdString());
    const QByteArray name = QFile::encodeName(path);
    // Finding the reader asks every format whether the file is one of its own, each opening the
    // file: done once per photo, by the header reading that names it.
    QByteArray reader = loader.toLatin1();
    if (reader.isEmpty()) {
        reader = vips_foreign_find_load(name.constData());
        if (reader.isEmpty()) {
            vips_error_clear();
            throw VError("not an image: " + path.toStdString());
        }
    }
    VImage out;
    auto* options = VImage::option()->set("fail_on", VIPS_FAIL_ON_TRUNCATED);
    if (sequential) options->set("access", VIPS_ACCESS_SEQUENTIAL);
    if (shrink.jpeg > 1 && reader == "VipsForeignLoadJpegFile")
        options->set("shrink", shrink.jpeg);
    else if (shrink.webp < 1.0 && reader == "VipsForeignLoadWebpFile")
        options->set("scale", shrink.webp);
    else if (shrink.heifThumbnail && reader == "VipsForeignLoadHeifFile")
        options->set("thumbnail", true);
    VImage::call(reader.constData(), options->set("filename", name.constData())->set("out", &out));
    return completed(path, out);
}

VImage completed(const QString& path, const VImage& image) {
    if (image.get_typeof("vips-loader") == 0) return image;
    const std::string loader = image.get_string("vips-loader");
    if (loader != "heifload" && loader != "jxlload") return image;
    VImage out = image.copy();
    if (loader == "heifload") {
        // libvips 8.14's HEIF reader frees its profile and EXIF when it is done with the file,
        // also under the images made from it (a use after free under ASan): they get copies.
        for (const char* name : {VIPS_META_ICC_NAME, VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME}) {
            if (out.get_typeof(name) != VIPS_TYPE_BLOB) continue;
            size_t length = 0;
            const void* blob = out.get_blob(name, &length);
            setBlob(out, name, QByteArray(static_cast<const char*>(blob), qsizetype(length)));
        }
        const HeifHeader heif = HeifHeader::of(path);
        if (out.get_typeof(VIPS_META_ICC_NAME) == 0) {
            if (heif.colourPrimaries == HeifHeader::kDisplayP3)
                setBlob(out, VIPS_META_ICC_NAME, displayP3Profile());
            else if (heif.colourPrimaries != 1 && heif.colourPrimaries != HeifHeader::kUnspecified)
                klLog() << "colour primaries" << heif.colourPrimaries << "of" << path
                        << "taken as sRGB";
        }
        if (out.get_typeof(VIPS_META_XMP_NAME) == 0 && !heif.xmp.isEmpty())
            setBlob(out, VIPS_META_XMP_NAME, heif.xmp);
    } else if (out.get_typeof(VIPS_META_EXIF_NAME) == 0) {
        // libvips reads no metadata of JPEG XL but its profile.
        const QByteArray exif = cXif::exifBlockOf(path);
        if (!exif.isEmpty()) setBlob(out, VIPS_META_EXIF_NAME, exif);
        const mMeta::OrientationAndXmp read = mMeta::orientationAndXmp(path);
        if (!read.xmp.isEmpty()) setBlob(out, VIPS_META_XMP_NAME, read.xmp);
        if (read.orientation >= 1 && read.orientation <= 8)
            out.set(VIPS_META_ORIENTATION, read.orientation);
    }
    return out;
}

VImage inSrgb(const VImage& image) {
    if (image.get_typeof(VIPS_META_ICC_NAME) == 0) return image;
    VImage out = image.icc_transform(
        "srgb", VImage::option()->set("embedded", true)->set("intent", VIPS_INTENT_RELATIVE));
    out.remove(VIPS_META_ICC_NAME);  // untagged pixels are sRGB
    return out;
}

namespace {

// A JPEG or PNG cut short before its end marker: the decoder would fill the rest with grey.
bool isCutShort(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    const QByteArray head = file.read(8);
    const qint64 size = file.size();
    file.seek(std::max<qint64>(0, size - 4096));
    const QByteArray tail = file.readAll();
    if (head.startsWith("\xFF\xD8\xFF")) return !tail.contains("\xFF\xD9");
    if (head.startsWith("\x89PNG\r\n\x1A\n")) return !tail.contains("IEND");
    return false;
}

}  // namespace

bool readHeader(const QString& path, PhotoHeader* header) {
    *header = {};
    const auto refuse = [&](const QString& why) {
        klLog() << "image refused:" << path << why;
        header->fault = why;
        return false;
    };
    // Reasons of its own for each file: the library's error text is shared by every thread.
    const QFileInfo info(path);
    if (!info.exists()) return refuse(QStringLiteral("no such file"));
    if (info.isDir()) return refuse(QStringLiteral("a folder, not a photo"));
    if (!info.isFile()) return refuse(QStringLiteral("not a regular file"));
    if (info.size() == 0) return refuse(QStringLiteral("an empty file"));
    VipsRuntime::ensureStarted();
    const char* reader = vips_foreign_find_load(QFile::encodeName(path).constData());
    if (!reader) {
        vips_error_clear();
        return refuse(QStringLiteral("not an image"));
    }
    if (QString why; !readerMatchesName(path, reader, &why)) return refuse(why);
    const QString loader = QString::fromLatin1(reader);
    try {
        const VImage image = open(path, true, {}, loader);  // lazy: reads the header only
        // Orientations 5 to 8 turn the photo a quarter: it is seen with its sides exchanged.
        const int orientation =
            image.get_typeof(VIPS_META_ORIENTATION) != 0 ? image.get_int(VIPS_META_ORIENTATION) : 1;
        const bool turned = orientation >= 5 && orientation <= 8;
        const qint64 w = turned ? image.height() : image.width();
        const qint64 h = turned ? image.width() : image.height();
        if (w <= 0 || h <= 0) return refuse(QStringLiteral("an image without pixels"));
        if (isCutShort(path)) return refuse(QStringLiteral("truncated"));
        if (w * h > kMaxPixels)
            return refuse(QStringLiteral("too large (%1 megapixels; the limit is %2)")
                              .arg(qRound64(double(w) * double(h) / 1e6))
                              .arg(kMaxPixels / 1'000'000));
        *header = {int(w), int(h), orientation, loader, {}};
        return true;
    } catch (const VError&) {
        return refuse(QStringLiteral("damaged: its header cannot be read"));
    }
}

bool pixelSize(const QString& path, int* width, int* height, QString* reason) {
    PhotoHeader header;
    const bool read = readHeader(path, &header);
    if (!read && reason) *reason = header.fault;
    *width = header.width;
    *height = header.height;
    return read;
}

VImage toSrgb8(const VImage& image, bool keepAlpha) {
    VImage out = image;
    const VipsInterpretation interpretation = out.guess_interpretation();
    if (interpretation != VIPS_INTERPRETATION_sRGB || out.format() != VIPS_FORMAT_UCHAR) {
        out = out.colourspace(VIPS_INTERPRETATION_sRGB);
        // A CMYK or grey profile does not describe RGB pixels: the output is plain sRGB.
        const bool wasRgb = interpretation == VIPS_INTERPRETATION_sRGB ||
                            interpretation == VIPS_INTERPRETATION_RGB16;
        if (!wasRgb && out.get_typeof(VIPS_META_ICC_NAME) != 0) out.remove(VIPS_META_ICC_NAME);
    }
    if (out.format() != VIPS_FORMAT_UCHAR) out = out.cast(VIPS_FORMAT_UCHAR);
    if (out.bands() > 4) out = out.extract_band(0, VImage::option()->set("n", 4));
    if (out.bands() == 4 && !keepAlpha)
        out = out.flatten(VImage::option()->set("background", std::vector<double>{255, 255, 255}));
    return out;
}

namespace {

// The bytes of a 24-bit bottom-up BMP file of the pixels (libvips has no BMP writer).
QByteArray bmpBytes(const VImage& image) {
    const VImage rgb = toSrgb8(inSrgb(image), false);
    size_t size = 0;
    std::unique_ptr<uchar, decltype(&g_free)> pixels(
        static_cast<uchar*>(rgb.write_to_memory(&size)), &g_free);
    const qint64 w = rgb.width();
    const qint64 h = rgb.height();
    const qint64 stride = (w * 3 + 3) / 4 * 4;
    const qint64 imageBytes = stride * h;
    QByteArray bytes(54 + imageBytes, '\0');
    auto put32 = [&](int at, quint32 v) {
        for (int i = 0; i < 4; ++i) bytes[at + i] = char((v >> (8 * i)) & 0xff);
    };
    auto put16 = [&](int at, quint16 v) {
        bytes[at] = char(v & 0xff);
        bytes[at + 1] = char(v >> 8);
    };
    bytes[0] = 'B';
    bytes[1] = 'M';
    put32(2, quint32(bytes.size()));
    put32(10, 54);
    put32(14, 40);
    put32(18, quint32(w));
    put32(22, quint32(h));
    put16(26, 1);
    put16(28, 24);
    put32(34, quint32(imageBytes));
    put32(38, 2835);  // 72 dpi
    put32(42, 2835);
    for (qint64 y = 0; y < h; ++y) {
        const uchar* src = pixels.get() + (h - 1 - y) * w * 3;
        char* dst = bytes.data() + 54 + y * stride;
        for (qint64 x = 0; x < w; ++x) {
            dst[3 * x] = char(src[3 * x + 2]);
            dst[3 * x + 1] = char(src[3 * x + 1]);
            dst[3 * x + 2] = char(src[3 * x]);
        }
    }
    return bytes;
}

// The same image without EXIF, IPTC and XMP; the colour profile stays so colours keep meaning.
VImage withoutMetadata(const VImage& image) {
    VImage out = image.copy();
    gchar** names = vips_image_get_fields(out.get_image());
    for (gchar** n = names; n && *n; ++n) {
        if (std::strncmp(*n, "exif-", 5) == 0 || std::strncmp(*n, "png-comment-", 12) == 0 ||
            std::strcmp(*n, "xmp-data") == 0 || std::strcmp(*n, "iptc-data") == 0)
            out.remove(*n);
    }
    g_strfreev(names);
    return out;
}

}  // namespace

QString save(const VImage& image, const QString& path, const QString& typeIdentifier,
             bool keepMetadata, int jpegQuality, QString* error) {
    if (isRefusedType(typeIdentifier)) return QStringLiteral("Not Supported");
    const bool jpeg = typeIdentifier == u"public.jpeg";
    const bool tiff = typeIdentifier == u"public.tiff";
    if (!jpeg && !tiff && typeIdentifier != u"public.png" && typeIdentifier != u"public.bmp" &&
        typeIdentifier != u"com.compuserve.gif" && typeIdentifier != u"public.jp2")
        return QStringLiteral("Failed");

    // Encoded in memory and written here, so a failure to write says its own reason ("No space
    // left on device"), and a failure while encoding is one of the photo's pixels: the library's
    // error text, shared by every thread, is never read.
    const QString temporary = AtomicFile::temporaryPathFor(path);
    QByteArray bytes;
    try {
        VImage out = keepMetadata ? image : withoutMetadata(image);
        // JPEG has no alpha: transparent pixels go onto white, as on a page.
        if (jpeg && out.bands() == 4) out = toSrgb8(out, false);
        VipsBlob* blob = nullptr;
        if (jpeg)
            blob = out.jpegsave_buffer(VImage::option()->set("Q", jpegQuality));
        else if (tiff)
            blob = out.tiffsave_buffer();
        else if (typeIdentifier == u"public.png")
            blob = out.pngsave_buffer();
        else if (typeIdentifier == u"com.compuserve.gif")
            blob = inSrgb(out).gifsave_buffer();  // GIF holds no profile
        else if (typeIdentifier == u"public.jp2")
            blob = out.jp2ksave_buffer();
        if (blob) {
            size_t length = 0;
            const void* data = vips_blob_get(blob, &length);
            bytes = QByteArray(static_cast<const char*>(data), qsizetype(length));
            vips_area_unref(VIPS_AREA(blob));
        } else {
            bytes = bmpBytes(out);
        }
    } catch (const VError&) {
        klLog() << "image not made:" << path;
        if (error)
            *error = QStringLiteral("the photo's pixels cannot be read (truncated or damaged)");
        return QStringLiteral("Failed");
    }
    QString reason;
    if (!AtomicFile::writeTemporary(temporary, bytes, &reason)) {
        klLog() << "image not written:" << path << reason;
        if (error) *error = reason;
        return QStringLiteral("Failed");
    }
    // The TIFF writer stores no EXIF of its own: add the block the image carries.
    if (tiff && keepMetadata && image.get_typeof("exif-data") != 0) {
        size_t length = 0;
        const void* block = image.get_blob("exif-data", &length);
        mMeta::writeExifBlock(temporary,
                              QByteArray(static_cast<const char*>(block), qsizetype(length)));
    }
    // rename(2) replaces the old file in one step: a reader never sees a missing or half file.
    if (!AtomicFile::commit(temporary, path, &reason)) {
        klLog() << "image not written:" << path << reason;
        if (error) *error = reason;
        return QStringLiteral("Failed");
    }
    return QStringLiteral("OK");
}

QImage toQImage(const VImage& image) {
    const VImage rgb = toSrgb8(inSrgb(image), true);
    size_t size = 0;
    std::unique_ptr<uchar, decltype(&g_free)> pixels(
        static_cast<uchar*>(rgb.write_to_memory(&size)), &g_free);
    const int bands = rgb.bands();
    const QImage view(pixels.get(), rgb.width(), rgb.height(), qsizetype(rgb.width()) * bands,
                      bands == 4 ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    return view.copy();  // detaches from the vips buffer
}

VImage fromQImage(const QImage& image) {
    VipsRuntime::ensureStarted();
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    QByteArray packed;
    packed.reserve(qsizetype(rgba.width()) * rgba.height() * 4);
    for (int y = 0; y < rgba.height(); ++y)
        packed.append(reinterpret_cast<const char*>(rgba.constScanLine(y)),
                      qsizetype(rgba.width()) * 4);
    VImage view = VImage::new_from_memory(packed.data(), size_t(packed.size()), rgba.width(),
                                          rgba.height(), 4, VIPS_FORMAT_UCHAR);
    return view.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
        .copy_memory();
}

}  // namespace ImageFileIo
