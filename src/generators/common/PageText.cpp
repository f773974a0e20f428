#include "generators/common/PageText.h"

#include <QUrl>

namespace PageText {

QString headPrologue() {
    return QStringLiteral(
        "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
        "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n"
        "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n"
        "<head>\n"
        "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" />\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\" />\n");
}

QString jQueryLine() {
    return QStringLiteral(
        "<script src=\"https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js\">"
        "</script>");
}

const QStringList& fontFamilies() {
    static const QStringList families = {"Catamaran", "Exo",    "Exo 2", "Kanit",  "Libre Franklin",
                                         "Raleway",   "Roboto", "Rubik", "Taviraj"};
    return families;
}

QString fontFamily(const QString& title) {
    return fontFamilies().contains(title) ? title : QStringLiteral("Trirong");
}

QString webFontLink(const QString& title) {
    return "<link href=\"https://fonts.googleapis.com/css?family=" +
           fontFamily(title).replace(u' ', u'+') + ":300,400,500,700,900\" rel=\"stylesheet\">\n";
}

QString fontLine(const QString& title) {
    if (fontFamilies().contains(title)) return "font-family: '" + title + "', sans-serif;\n";
    return QStringLiteral("font-family: 'Trirong', serif;\n");
}

const QStringList& weightTitles() {
    static const QStringList titles = {"Light", "Regular", "Medium", "Bold", "Black"};
    return titles;
}

QString weight(const QString& title) {
    if (title == u"Light") return QStringLiteral("300");
    if (title == u"Regular") return QStringLiteral("400");
    if (title == u"Medium") return QStringLiteral("500");
    if (title == u"Bold") return QStringLiteral("700");
    return QStringLiteral("900");
}

const QStringList& fontSizes() {
    static const QStringList sizes = {"10px", "11px", "12px", "13px", "14px", "15px",
                                      "16px", "18px", "20px", "22px", "24px", "28px",
                                      "32px", "36px", "40px", "48px"};
    return sizes;
}

const QStringList& alignmentTitles() {
    static const QStringList titles = {"left", "center", "right"};
    return titles;
}

QString alignment(int segment) {
    if (segment == 0) return QStringLiteral("left");
    if (segment == 1) return QStringLiteral("center");
    return QStringLiteral("right");
}

QString hashColor(const QString& hex) {
    return u'#' + hex;
}

QString escapeText(const QString& text) {
    return text.toHtmlEscaped().replace(u'\'', QStringLiteral("&#39;"));
}

QString escapeAttribute(const QString& text) {
    // Line breaks would be folded to blanks by the parser; as references they survive.
    return escapeText(text)
        .replace(u'\n', QStringLiteral("&#10;"))
        .replace(u'\r', QStringLiteral("&#13;"))
        .replace(u'\t', QStringLiteral("&#9;"));
}

QString cssValue(const QString& text) {
    QString value;
    for (const QChar c : text)
        if (!QStringView(u";{}<>\"'\\").contains(c) && c.unicode() >= 0x20) value.append(c);
    return value;
}

QString urlSegment(const QString& name) {
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

QString urlPath(const QString& folder, const QString& fileName) {
    return folder + u'/' + urlSegment(fileName);
}

QString pageName(const QString& typed) {
    for (const QLatin1String suffix : {QLatin1String(".html"), QLatin1String(".htm")})
        if (typed.size() > suffix.size() && typed.endsWith(suffix, Qt::CaseInsensitive))
            return typed.chopped(suffix.size());
    return typed;
}

}  // namespace PageText
