#include "services/cNSStringHandling.h"

QStringList cNSStringHandling::hSplitString(const QString& text, const QString& separator) {
    if (separator.isEmpty()) return {text};
    return text.split(separator, Qt::KeepEmptyParts);
}

QString cNSStringHandling::hConcatString(const QString& a, const QString& b, const QString& c) {
    return a + b + c;
}

QString cNSStringHandling::hConvertNSdToNSstr(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toBase64());
}

QByteArray cNSStringHandling::hConvertNSstrToNSd(const QString& text) {
    const QByteArray latin = text.toLatin1();
    // Latin-1 conversion turns characters beyond it into "?", which is not base64 either.
    auto result = QByteArray::fromBase64Encoding(
        latin, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!result) return {};
    return *result;
}

bool cNSStringHandling::hStringContainsString(const QString& text, const QString& part) {
    return text.contains(part);
}

bool cNSStringHandling::hStringBeginsWith(const QString& text, const QString& prefix) {
    return text.startsWith(prefix);
}

bool cNSStringHandling::hStringEndWith(const QString& text, const QString& suffix) {
    return text.endsWith(suffix);
}

QString cNSStringHandling::hReplaceStringInString(const QString& text, const QString& find,
                                                  const QString& replacement) {
    if (find.isEmpty()) return text;
    return QString(text).replace(find, replacement);
}

QString cNSStringHandling::hInsertStringInString(const QString& text, const QString& insertion,
                                                 int position) {
    return QString(text).insert(qBound(0, position, int(text.size())), insertion);
}

QString cNSStringHandling::hSubsectionString(const QString& text, int start, int length) {
    if (start < 0 || start >= text.size() || length <= 0) return {};
    return text.mid(start, length);
}

QString cNSStringHandling::hStripString(const QString& text) {
    return text.trimmed();
}

QString cNSStringHandling::hRemoveNonLetters(const QString& text) {
    QString result;
    for (const QChar c : text) {
        if (c.isLetter()) result.append(c);
    }
    return result;
}

QString cNSStringHandling::hRemoveWhiteSpace(const QString& text) {
    QString result;
    for (const QChar c : text) {
        if (!c.isSpace()) result.append(c);
    }
    return result;
}

QString cNSStringHandling::hChangeCaseFiles(const QString& text, bool upper) {
    return upper ? text.toUpper() : text.toLower();
}

QString cNSStringHandling::hConvertAccentLetters(const QString& text) {
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString result;
    for (const QChar c : decomposed) {
        const auto category = c.category();
        if (category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining ||
            category == QChar::Mark_Enclosing)
            continue;
        result.append(c);
    }
    return result.normalized(QString::NormalizationForm_C);
}

QString cNSStringHandling::hNSDateToNSString(const QDateTime& date, const QString& format) {
    return date.isValid() ? date.toString(format) : QString();
}

QString cNSStringHandling::hNSDataToNSString(const QByteArray& bytes) {
    return QString::fromUtf8(bytes);
}

QByteArray cNSStringHandling::hNSStringToNSData(const QString& text) {
    return text.toUtf8();
}
