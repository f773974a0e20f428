#include "imaging/ImageFileIo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vips/vips8>

#include "imaging/VipsRuntime.h"
#include "metadata/mMeta.h"
#include "services/AtomicFile.h"
#include "services/Log.h"

using vips::VError;
using vips::VImage;

namespace ImageFileIo {

QString typeIdentifier(const QString& path) {
    const QString ext = QFileInfo(path).suffix().toLower();
    if (ext == u"png") return QStringLiteral("public.png");
    if (ext == u"tif" || ext == u"tiff") return QStringLiteral("public.tiff");
    if (ext == u"bmp") return QStringLiteral("public.bmp");
    if (ext == u"gif") return QStringLiteral("com.compuserve.gif");
    if (ext == u"jpg" || ext == u"jpeg") return QStringLiteral("public.jpeg");
    if (ext == u"jp2" || ext == u"j2k") return QStringLiteral("public.jp2");
    if (ext == u"psd") return QStringLiteral("com.adobe.photoshop-image");
    if (ext == u"pdf") return QStringLiteral("com.adobe.pdf");
    return {};
}

bool isRefusedType(const QString& typeIdentifier) {
    return typeIdentifier == u"com.adobe.photoshop-image" || typeIdentifier == u"com.adobe.pdf";
}

VImage open(const QString& path, bool sequential) {
    VipsRuntime::ensureStarted();
    if (!QFileInfo(path).isFile()) throw VError("not a file: " + path.toStdString());
    auto* options = VImage::option()->set("fail_on", VIPS_FAIL_ON_TRUNCATED);
    if (sequential) options->set("access", VIPS_ACCESS_SEQUENTIAL);
    return VImage::new_from_file(QFile::encodeName(path).constData(), options);
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

bool pixelSize(const QString& path, int* width, int* height, QString* reason) {
    *width = 0;
    *height = 0;
    const auto refuse = [&](const QString& why) {
        klLog() << "image refused:" << path << why;
        if (reason) *reason = why;
        return false;
    };
    // Reasons of its own for each file: the library's error text is shared by every thread.
    const QFileInfo info(path);
    if (!info.exists()) return refuse(QStringLiteral("no such file"));
    if (info.isDir()) return refuse(QStringLiteral("a folder, not a photo"));
    if (!info.isFile()) return refuse(QStringLiteral("not a regular file"));
    if (info.size() == 0) return refuse(QStringLiteral("an empty file"));
    VipsRuntime::ensureStarted();
    if (!vips_foreign_find_load(QFile::encodeName(path).constData()))
        return refuse(QStringLiteral("not an image"));
    try {
        const VImage header = open(path, true);  // lazy: reads the header only
        // Orientations 5 to 8 turn the photo a quarter: it is seen with its sides exchanged.
        const int orientation = header.get_typeof(VIPS_META_ORIENTATION) != 0
                                    ? header.get_int(VIPS_META_ORIENTATION)
                                    : 1;
        const bool turned = orientation >= 5 && orientation <= 8;
        const qint64 w = turned ? header.height() : header.width();
        const qint64 h = turned ? header.width() : header.height();
        if (w <= 0 || h <= 0) return refuse(QStringLiteral("an image without pixels"));
        if (isCutShort(path)) return refuse(QStringLiteral("truncated"));
        if (w * h > kMaxPixels)
            return refuse(QStringLiteral("too large (%1 megapixels; the limit is %2)")
                              .arg(qRound64(double(w) * double(h) / 1e6))
                              .arg(kMaxPixels / 1'000'000));
        *width = int(w);
        *height = int(h);
        return true;
    } catch (const VError&) {
        return refuse(QStringLiteral("damaged: its header cannot be read"));
    }
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
    const VImage rgb = toSrgb8(image, false);
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
            blob = out.gifsave_buffer();
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
    const VImage rgb = toSrgb8(image, true);
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
