#include "services/cNSColorHandling.h"

#include <cstdint>

namespace {

int hexDigit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9') return u - u'0';
    if (u >= u'a' && u <= u'f') return u - u'a' + 10;
    if (u >= u'A' && u <= u'F') return u - u'A' + 10;
    return -1;
}

// One 16-bit channel x 255, truncated. Done in integers, so a colour made from a colour text
// gives back exactly that text (128 stays 80, never 7F through a rounding error).
int channelByte(quint16 channel) {
    return int(quint32(channel) * 255u / 65535u);
}

QColor colorFromValue(std::uint32_t value) {
    return QColor(int((value >> 16) & 255), int((value >> 8) & 255), int(value & 255));
}

}  // namespace

QString cNSColorHandling::getHEXValue(const QColor& color) {
    const QRgba64 rgb = color.toRgb().rgba64();
    return QString::asprintf("%02X%02X%02X", channelByte(rgb.red()), channelByte(rgb.green()),
                             channelByte(rgb.blue()));
}

QString cNSColorHandling::hGetHexFromRGB(const QColor& color) {
    return getHEXValue(color);
}

QColor cNSColorHandling::colorFromHexRGB(const QString& text) {
    int i = 0;
    const int n = int(text.size());
    while (i < n && text[i].isSpace()) ++i;
    if (i + 1 < n && text[i] == u'0' && (text[i + 1] == u'x' || text[i + 1] == u'X') && i + 2 < n &&
        hexDigit(text[i + 2]) >= 0)
        i += 2;
    std::uint64_t value = 0;
    for (; i < n && hexDigit(text[i]) >= 0; ++i) {
        value = value * 16 + std::uint64_t(hexDigit(text[i]));
        if (value > 0xFFFFFFFFu) value = 0xFFFFFFFFu + std::uint64_t(1);  // stays saturated
    }
    return colorFromValue(value > 0xFFFFFFFFu ? 0xFFFFFFFFu : std::uint32_t(value));
}

std::optional<QColor> cNSColorHandling::setHEXValue(const QString& text) {
    int start = text.startsWith(u'#') ? 1 : 0;
    int end = start;
    while (end < text.size() && hexDigit(text[end]) >= 0) ++end;
    if (end - start != 6) return std::nullopt;
    std::uint32_t value = 0;
    for (int i = start; i < end; ++i) value = value * 16 + std::uint32_t(hexDigit(text[i]));
    return colorFromValue(value);
}
