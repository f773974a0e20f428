#pragma once

// Synthetic images for the imaging tests, made and read back with libvips.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <vector>
// glib names a member "signals", which Qt (when included first) defines as a keyword macro.
#ifdef signals
#undef signals
#include <vips/vips8>
#define signals Q_SIGNALS
#else
#include <vips/vips8>
#endif

#include "imaging/VipsRuntime.h"

namespace fixtures {

inline QByteArray fileName(const QString& path) {
    return QFile::encodeName(path);
}

// Saves with the saver the file name's extension picks (any case).
inline void save(const vips::VImage& image, const QString& path) {
    VipsRuntime::ensureStarted();
    QString lower = path.toLower();
    const QByteArray tmp = fileName(path);
    if (lower.endsWith(".jpg") || lower.endsWith(".jpeg"))
        image.jpegsave(tmp.constData());
    else if (lower.endsWith(".png"))
        image.pngsave(tmp.constData());
    else if (lower.endsWith(".tif") || lower.endsWith(".tiff"))
        image.tiffsave(tmp.constData());
    else if (lower.endsWith(".gif"))
        image.gifsave(tmp.constData());
    else
        image.write_to_file(tmp.constData());
}

// A uniform sRGB image.
inline vips::VImage solid(int width, int height, std::vector<double> rgb) {
    VipsRuntime::ensureStarted();
    return (vips::VImage::black(width, height, vips::VImage::option()->set("bands", 3)) + rgb)
        .cast(VIPS_FORMAT_UCHAR)
        .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// Every pixel tells where it is: R = x mod 256, G = y mod 256, B = 16 (x / 256) + y / 256.
inline vips::VImage coordinates(int width, int height) {
    VipsRuntime::ensureStarted();
    const vips::VImage xy = vips::VImage::xyz(width, height);
    const vips::VImage x = xy[0], y = xy[1];
    const vips::VImage r = x & 255, g = y & 255, b = (x >> 8) * 16 + (y >> 8);
    return vips::VImage::bandjoin({r, g, b})
        .cast(VIPS_FORMAT_UCHAR)
        .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

inline vips::VImage load(const QString& path) {
    VipsRuntime::ensureStarted();
    return vips::VImage::new_from_file(fileName(path).constData());
}

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

// The size a file says it has, read back by libvips.
inline Size sizeOf(const QString& path) {
    const vips::VImage image = load(path);
    return {image.width(), image.height()};
}

inline std::vector<double> pixel(const QString& path, int x, int y) {
    return load(path).getpoint(x, y);
}

// The coordinates a `coordinates` pixel encodes.
inline std::pair<int, int> decode(const std::vector<double>& p) {
    return {int(p[0]) + 256 * (int(p[2]) / 16), int(p[1]) + 256 * (int(p[2]) % 16)};
}

// A PNG that has a valid header claiming width x height and no pixel data at all.
inline void writePngHeaderOnly(const QString& path, quint32 width, quint32 height) {
    auto crc = [](const QByteArray& bytes) {
        quint32 c = 0xffffffffu;
        for (char ch : bytes) {
            c ^= quint8(ch);
            for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xedb88320u & (0u - (c & 1u)));
        }
        return c ^ 0xffffffffu;
    };
    auto be32 = [](quint32 v) {
        QByteArray b(4, '\0');
        for (int i = 0; i < 4; ++i) b[i] = char((v >> (24 - 8 * i)) & 0xff);
        return b;
    };
    auto chunk = [&](const QByteArray& type, const QByteArray& data) {
        return be32(quint32(data.size())) + type + data + be32(crc(type + data));
    };
    QByteArray ihdr = be32(width) + be32(height);
    ihdr.append(char(8)).append(char(0)).append(char(0)).append(char(0)).append(char(0));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(QByteArray("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", ihdr) + chunk("IEND", {}));
}

}  // namespace fixtures
