#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

// Splitting, joining, base64 and small text edits. Stateless: every operation is static and may
// also be called on an instance.
class cNSStringHandling {
  public:
    // Every occurrence of the separator splits, empty parts included ("a;b;" gives "a", "b", "").
    // An empty separator gives the whole text as the one part.
    static QStringList hSplitString(const QString& text, const QString& separator);
    static QString hConcatString(const QString& a, const QString& b, const QString& c);
    // Base64 without line breaks.
    static QString hConvertNSdToNSstr(const QByteArray& bytes);
    // The bytes, or empty when the text is not valid base64.
    static QByteArray hConvertNSstrToNSd(const QString& text);

    static bool hStringContainsString(const QString& text, const QString& part);
    static bool hStringBeginsWith(const QString& text, const QString& prefix);
    static bool hStringEndWith(const QString& text, const QString& suffix);
    static QString hReplaceStringInString(const QString& text, const QString& find,
                                          const QString& replacement);
    // Inserts at the character position (clamped to the text).
    static QString hInsertStringInString(const QString& text, const QString& insertion,
                                         int position);
    // `length` characters from `start` (clamped to the text).
    static QString hSubsectionString(const QString& text, int start, int length);
    // Without leading and trailing blanks and line breaks.
    static QString hStripString(const QString& text);
    // Only the letters of the text.
    static QString hRemoveNonLetters(const QString& text);
    // Without any blank or line break.
    static QString hRemoveWhiteSpace(const QString& text);
    // Upper or lower case, as file names are normalised.
    static QString hChangeCaseFiles(const QString& text, bool upper);
    // Accented letters replaced by their base letters ("é" becomes "e").
    static QString hConvertAccentLetters(const QString& text);
    // The date in the given format (Qt date-time format), "" for an invalid date.
    static QString hNSDateToNSString(const QDateTime& date,
                                     const QString& format = QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    // UTF-8 bytes to text and back.
    static QString hNSDataToNSString(const QByteArray& bytes);
    static QByteArray hNSStringToNSData(const QString& text);
};
