#include "services/cToolBox.h"

#include "services/UserInterface.h"

void cToolBox::hShowURL2(const QString& path) const {
    // Kept on purpose: the text goes out as given ("file:///" + path), only the four characters
    // escaped, so a blank in a folder name reaches the user interface unescaped.
    ui_.openUrl(percentEncode(path));
}

QUrl cToolBox::hNSStrToUrl(const QString& text) {
    return QUrl(percentEncode(text));
}

QString cToolBox::percentEncode(const QString& text) {
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
            case u'?':
                result += QLatin1String("%3F");
                break;
            case u'=':
                result += QLatin1String("%3D");
                break;
            case u'&':
                result += QLatin1String("%26");
                break;
            case u'+':
                result += QLatin1String("%2B");
                break;
            default:
                result += c;
        }
    }
    return result;
}
