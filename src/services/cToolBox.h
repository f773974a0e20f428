#pragma once

#include <QString>
#include <QUrl>

class UserInterface;

// Opening a generated page with the default application.
class cToolBox {
public:
    explicit cToolBox(UserInterface& ui) : ui_(ui) {}

    // Percent-encodes exactly "?", "=", "&" and "+" and hands the result to the user interface as
    // a file URL's path (the generators pass "file:///" + full path; that form is kept).
    void hShowURL2(const QString& path) const;
    // The same encoding, then a URL parsed from the text.
    static QUrl hNSStrToUrl(const QString& text);
    // The encoding alone.
    static QString percentEncode(const QString& text);

private:
    UserInterface& ui_;
};
