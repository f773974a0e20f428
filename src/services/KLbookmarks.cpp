#include "services/KLbookmarks.h"

#include <QDir>
#include <QFileInfo>

#include "services/Log.h"

namespace {
// The header of this program's bookmarks: a name and a format number, then a line break.
const QByteArray kHeader = QByteArrayLiteral("KLbookmark/1\n");
// A path longer than this is not one this program made.
constexpr qsizetype kMaxPath = 16 * 1024;
}  // namespace

QByteArray KLbookmarks::bookmarkForURL(const QUrl& url) {
    if (!url.isLocalFile()) {
        klLog() << "bookmark: not a local file:" << url.toString();
        return {};
    }
    const QString path = QDir::cleanPath(QFileInfo(url.toLocalFile()).absoluteFilePath());
    if (path.isEmpty() || path.size() > kMaxPath) return {};
    return kHeader + path.toUtf8();
}

QString KLbookmarks::pathInBookmark(const QByteArray& bookmark) {
    if (!bookmark.startsWith(kHeader) || bookmark.size() > kHeader.size() + kMaxPath * 4) return {};
    const QByteArray bytes = bookmark.mid(kHeader.size());
    if (bytes.isEmpty() || bytes.contains('\0') || !bytes.startsWith('/')) return {};
    const QString path = QString::fromUtf8(bytes);
    // Text that is not UTF-8 decodes with replacement characters: not this program's.
    if (path.toUtf8() != bytes) return {};
    return path;
}

QUrl KLbookmarks::urlForBookmark(const QByteArray& bookmark) {
    const QString path = pathInBookmark(bookmark);
    if (path.isEmpty()) {
        if (!bookmark.isEmpty()) klLog() << "bookmark: not recognised";
        return {};
    }
    if (!QFileInfo::exists(path)) {
        klLog() << "bookmark: stale," << path << "is gone";
        return {};
    }
    return QUrl::fromLocalFile(path);
}
