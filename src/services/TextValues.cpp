#include "services/TextValues.h"

#include <climits>
#include <QLocale>
#include <QRegularExpression>

namespace TextValues {

int intValue(const QString& text) {
    int i = 0;
    const int n = text.size();
    while (i < n && text[i].isSpace()) ++i;
    bool negative = false;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) {
        negative = text[i] == u'-';
        ++i;
    }
    long long value = 0;
    while (i < n && text[i] >= u'0' && text[i] <= u'9') {
        value = value * 10 + (text[i].unicode() - u'0');
        if (value > static_cast<long long>(INT_MAX) + 1) value = static_cast<long long>(INT_MAX) + 1;
        ++i;
    }
    if (negative) value = -value;
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

double doubleValue(const QString& text) {
    // The longest leading run that reads as a decimal number, in the C locale whatever the user's.
    static const QRegularExpression number(
        QStringLiteral(R"(^\s*[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?)"));
    const QRegularExpressionMatch match = number.match(text);
    if (!match.hasMatch()) return 0.0;
    return QLocale::c().toDouble(match.captured(0).trimmed());
}

float floatValue(const QString& text) { return static_cast<float>(doubleValue(text)); }

}  // namespace TextValues
