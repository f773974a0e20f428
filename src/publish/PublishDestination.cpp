#include "publish/PublishDestination.h"

#include <QUrl>

namespace {

struct Scheme {
    const char* name;
    PublishDestination::Protocol protocol;
    int port;
};
constexpr Scheme kSchemes[] = {{"sftp", PublishDestination::Protocol::Sftp, 22},
                               {"ftp", PublishDestination::Protocol::Ftp, 21},
                               {"ftps", PublishDestination::Protocol::Ftps, 21}};

bool hasControlCharacter(const QString& text) {
    for (const QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() == 0x7f) return true;
    return false;
}

// A name for people: only what would change its meaning when read back is encoded.
QString readable(const QString& name) {
    QString text;
    for (const QChar c : name) {
        if (c == u'%' || c == u' ' || c == u'#' || c == u'?' || c == u'/' || c == u'@' || c == u':')
            text += QString::asprintf("%%%02X", c.unicode());
        else
            text += c;
    }
    return text;
}

}  // namespace

std::optional<PublishDestination> PublishDestination::parse(const QString& text, QString* error) {
    const QString trimmed = text.trimmed();
    const qsizetype separator = trimmed.indexOf(QStringLiteral("://"));
    const QString schemeName = trimmed.left(separator).toLower();
    PublishDestination d;
    const Scheme* scheme = nullptr;
    for (const Scheme& s : kSchemes)
        if (schemeName == QLatin1String(s.name)) scheme = &s;
    if (separator < 0 || !scheme) {
        *error = QStringLiteral(
                     "\"%1\" is no destination: sftp://USER@HOST[:PORT]/PATH, "
                     "ftp://[USER@]HOST[:PORT]/PATH or ftps://[USER@]HOST[:PORT]/PATH")
                     .arg(text);
        return std::nullopt;
    }
    const QUrl url(trimmed, QUrl::TolerantMode);
    if (!url.isValid() || url.host().isEmpty()) {
        *error =
            QStringLiteral("\"%1\" names no server%2")
                .arg(text, url.isValid() ? QString() : QStringLiteral(": ") + url.errorString());
        return std::nullopt;
    }
    if (url.userInfo().contains(u':')) {
        *error = QStringLiteral(
            "a destination never holds a password: give it with --password-stdin (or in the "
            "window), not in the address");
        return std::nullopt;
    }
    if (url.hasQuery() || url.hasFragment()) {
        *error = QStringLiteral("\"%1\": a folder name with \"?\" or \"#\" is written %3F or %23")
                     .arg(text);
        return std::nullopt;
    }
    d.protocol_ = scheme->protocol;
    d.user_ = url.userName(QUrl::FullyDecoded);
    d.host_ = url.host(QUrl::FullyDecoded);
    d.port_ = url.port(scheme->port);
    const QString path = url.path(QUrl::FullyDecoded);
    QStringList folders = path.split(u'/', Qt::SkipEmptyParts);
    if (d.isSftp() && !folders.isEmpty() && folders.first() == u"~") {
        d.inHome_ = true;
        folders.removeFirst();
    }
    for (const QString& folder : folders) {
        if (folder == u"." || folder == u".." || folder == u"~" || hasControlCharacter(folder)) {
            *error = QStringLiteral("\"%1\": the folder name \"%2\" is not taken here")
                         .arg(text, readable(folder));
            return std::nullopt;
        }
    }
    if (d.isSftp() && !d.inHome_ && folders.isEmpty()) {
        *error = QStringLiteral(
                     "\"%1\" names no folder: add its path (sftp://USER@HOST/~/www for the folder "
                     "www in the home folder)")
                     .arg(text);
        return std::nullopt;
    }
    d.folders_ = folders;
    return d;
}

QString PublishDestination::text(bool forUser) const {
    QString text = QLatin1String(kSchemes[int(protocol_)].name) + QStringLiteral("://");
    if (!user_.isEmpty())
        text += (forUser ? readable(user_) : QString::fromLatin1(QUrl::toPercentEncoding(user_))) +
                u'@';
    text += host_.contains(u':') ? u'[' + host_ + u']' : host_;
    if (port_ != kSchemes[int(protocol_)].port) text += u':' + QString::number(port_);
    if (inHome_) text += QStringLiteral("/~");
    for (const QString& folder : folders_)
        text += u'/' +
                (forUser ? readable(folder) : QString::fromLatin1(QUrl::toPercentEncoding(folder)));
    if (folders_.isEmpty() && !inHome_) text += u'/';
    return text;
}

QString PublishDestination::key() const {
    return text(false);
}

QString PublishDestination::display() const {
    return text(true);
}

QStringList PublishDestination::segmentsOf(const QString& relative) const {
    return folders_ + relative.split(u'/', Qt::SkipEmptyParts);
}

QByteArray PublishDestination::url(const QString& relative) const {
    PublishDestination root = *this;
    root.folders_.clear();
    root.inHome_ = false;
    QByteArray url = root.key().toUtf8();
    if (url.endsWith('/')) url.chop(1);
    if (relative.isEmpty()) return url + '/';
    if (inHome_) url += "/~";
    for (const QString& segment : segmentsOf(relative))
        url += '/' + QUrl::toPercentEncoding(segment);
    return url;
}

QString PublishDestination::serverPath(const QString& relative) const {
    const QString path = segmentsOf(relative).join(u'/');
    // The SFTP server starts in the home folder, and an FTP login in the login folder.
    return isSftp() && !inHome_ ? u'/' + path : path;
}
