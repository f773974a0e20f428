#include "services/SupportFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QUrl>

#include "services/KLbookmarks.h"
#include "services/Log.h"
#include "services/cNSFileHandling.h"

namespace SupportFolders {

namespace {

// The program's own patterns, compiled in as resources.
const QString kBuiltInPatterns = QStringLiteral(":/patterns");

QString stored(const char* key) {
    return QSettings().value(QLatin1String(key)).toString();
}

void store(QSettings& settings, const char* key, const QVariant& value) {
    settings.setValue(QLatin1String(key), value);
    settings.sync();
}

// Copied resources are read-only; the user's copies are theirs to change.
void makeWritable(const QString& folder) {
    const QDir dir(folder);
    for (const QFileInfo& info : dir.entryInfoList(QDir::Files)) {
        QFile::setPermissions(info.absoluteFilePath(), info.permissions() | QFile::WriteOwner);
    }
}

}  // namespace

bool setLibraryDestination(const QString& root, QString* error) {
    const QFileInfo info(root);
    if (!info.isDir()) {
        if (error) *error = QStringLiteral("%1 is not a folder").arg(root);
        return false;
    }
    const QString path = QDir::cleanPath(info.absoluteFilePath());
    QSettings settings;
    store(settings, kRootKey, KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(path)));

    const cNSFileHandling files;
    const QString support = path + QStringLiteral("/Keldra_SupportFiles");
    files.hCreateDirectory(support);
    const QString patterns = support + QStringLiteral("/Patterns");
    store(settings, kPatternsKey, patterns);
    // Fails, leaving the folder as it is, when the patterns folder exists already.
    if (files.hCopyFolderTo(kBuiltInPatterns, patterns) == u"Success") makeWritable(patterns);
    const QString watermarks = support + QStringLiteral("/Watermarks");
    files.hCreateDirectory(watermarks);
    store(settings, kWatermarksKey, watermarks);
    if (settings.status() != QSettings::NoError) {
        if (error) *error = QStringLiteral("cannot write %1").arg(settings.fileName());
        return false;
    }
    return true;
}

bool hasRoot() {
    return !QSettings().value(QLatin1String(kRootKey)).toByteArray().isEmpty();
}

QString rootPath() {
    const QByteArray bookmark = QSettings().value(QLatin1String(kRootKey)).toByteArray();
    if (bookmark.isEmpty()) return {};
    const QUrl url = KLbookmarks::urlForBookmark(bookmark);
    return url.isEmpty() ? QString() : url.toLocalFile();
}

QString preferencesText() {
    if (!hasRoot()) return {};
    const QString root = rootPath();
    if (!root.isEmpty()) return root;
    return QLatin1String(kGoneLine1) + u'\r' + QLatin1String(kGoneLine2);
}

QString patternsPath() {
    return stored(kPatternsKey);
}
QString watermarksPath() {
    return stored(kWatermarksKey);
}

bool importNeedsRoot(bool watermarks) {
    const QString destination = watermarks ? watermarksPath() : patternsPath();
    if (destination.isEmpty() || !QFileInfo::exists(destination)) {
        klLog() << "Need to be created again";
        return true;
    }
    if (!hasRoot()) {
        klLog() << "Need to be created again";
        return true;
    }
    return false;
}

QStringList importImages(bool watermarks, const QStringList& files, QStringList* failures) {
    return importImagesInto(watermarks ? watermarksPath() : patternsPath(), files, failures);
}

QStringList importImagesInto(const QString& destination, const QStringList& files,
                             QStringList* failures) {
    const QStringList suffixes = importImageSuffixes();
    const cNSFileHandling fileHandling;
    QStringList written;
    for (const QString& file : files) {
        const QFileInfo info(file);
        auto fail = [&](const QString& why) {
            if (failures) failures->append(QStringLiteral("%1: %2").arg(file, why));
        };
        if (!info.isFile()) {
            fail(QStringLiteral("no such file"));
            continue;
        }
        if (!suffixes.contains(info.suffix().toLower())) {
            fail(QStringLiteral("not a PNG or JPEG image"));
            continue;
        }
        const QString target = destination + u'/' + info.fileName();
        // The copy replaces a file of the same name: never the very file being imported.
        if (QFileInfo(target).canonicalFilePath() == info.canonicalFilePath()) {
            written.append(target);
            continue;
        }
        if (fileHandling.hCopyFileTo(info.absoluteFilePath(), target) != u"OK") {
            fail(QStringLiteral("cannot copy to %1").arg(target));
            continue;
        }
        written.append(target);
    }
    return written;
}

QString chooserStartFolder(int lookUpIndex) {
    if (lookUpIndex == 0) return {};
    return lookUpIndex == 1 ? watermarksPath() : patternsPath();
}

QStringList patternImageSuffixes() {
    return {"pdf", "png", "jpg", "jpeg", "tif", "tiff", "gif", "psd", "tga", "targa"};
}

QStringList importImageSuffixes() {
    return {"png", "jpg", "jpeg"};
}

}  // namespace SupportFolders
