#pragma once

#include <QByteArray>
#include <QUrl>

// Bookmarks of files and folders the user picked. This platform has no security-scoped
// bookmarks: a bookmark is a short header followed by the absolute path in UTF-8, so that data
// made elsewhere is recognised as foreign. Carried as text through
// cNSStringHandling::hConvertNSdToNSstr / hConvertNSstrToNSd (base64).
class KLbookmarks {
  public:
    // The bookmark of a local file or folder, or empty for a URL that is not a local path.
    static QByteArray bookmarkForURL(const QUrl& url);
    // The location of the bookmark; empty for foreign data and for a path that no longer exists
    // (a stale bookmark).
    static QUrl urlForBookmark(const QByteArray& bookmark);
    // The path a bookmark holds, whether or not it still exists; empty for foreign data.
    static QString pathInBookmark(const QByteArray& bookmark);
};
