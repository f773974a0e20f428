#include "generators/common/OutputFolder.h"

#include <QFile>
#include <QFileInfo>

#include "collection/PhotoCollection.h"
#include "services/AtomicFile.h"
#include "services/cNSFileHandling.h"
#include "services/cToolBox.h"

OutputFolder::OutputFolder(const QString& destination) : destination_(destination) {}

const QStringList& OutputFolder::lightboxFiles() {
    static const QStringList files = {"close.gif",   "loading.gif",        "klOrvella.png",
                                      "overlay.png", "jquery.lightbox.js", "jquery02.lightbox.js",
                                      "next.png",    "close.png",          "previous.png"};
    return files;
}

QString OutputFolder::photoInside(const QString& destination, const QStringList& folders,
                                  const QList<PhotoEntry>& photos) {
    QStringList roots;
    for (const QString& folder : folders) {
        const QString canonical = QFileInfo(destination + folder).canonicalFilePath();
        if (!canonical.isEmpty()) roots.append(canonical + u'/');
    }
    for (const PhotoEntry& photo : photos) {
        const QString path = QFileInfo(photo.url.toLocalFile()).canonicalFilePath();
        for (const QString& root : roots)
            if (path.startsWith(root))
                return QStringLiteral(
                           "The photo %1 lies in %2, where the output is written. Move "
                           "it elsewhere or choose another output folder.")
                    .arg(photo.url.toLocalFile(), root);
    }
    return {};
}

void OutputFolder::addFailure(const QString& path, const QString& reason) {
    failures_.append(path + QStringLiteral(": ") + reason);
}

void OutputFolder::createFolders(const QStringList& folders) {
    const cNSFileHandling files;
    for (const QString& folder : folders) {
        const QString path = destination_ + folder;
        if (files.hCreateDirectory(path) == u"FAILED")
            addFailure(path, QStringLiteral("the folder cannot be created"));
        files.hAddIconToFile(path, QStringLiteral("klOrvella_folderIcon2"));
        AtomicFile::removeLeftovers(path);
    }
    AtomicFile::removeLeftovers(destination_);
}

namespace {

// Copies through a temporary file, so a full disk leaves no half file; an existing target stays.
bool copyKeeping(const QString& source, const QString& target, QString* error,
                 bool* copied = nullptr) {
    if (QFileInfo::exists(target)) return true;
    if (copied) *copied = true;
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        *error = in.errorString();
        return false;
    }
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError) {
        *error = in.errorString();
        return false;
    }
    return AtomicFile::write(target, bytes, error);
}

// True when `path` is a file holding exactly `bytes`.
bool holds(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (QFileInfo(path).size() != bytes.size() || !file.open(QIODevice::ReadOnly)) return false;
    return file.readAll() == bytes && file.error() == QFileDevice::NoError;
}

}  // namespace

void OutputFolder::copyLightboxFiles(const QString& folder) {
    for (const QString& name : lightboxFiles()) {
        QString error;
        const QString target = destination_ + folder + name;
        bool copied = false;
        if (!copyKeeping(":/lightbox/" + name, target, &error, &copied))
            addFailure(target, error);
        else if (copied)
            written_.append(folder + name);
    }
}

void OutputFolder::copyPattern(const QString& source, const QString& folderAndFileName) {
    QString error;
    const QString target = destination_ + folderAndFileName;
    bool copied = false;
    if (!copyKeeping(source, target, &error, &copied))
        addFailure(source, error);
    else if (copied)
        written_.append(folderAndFileName);
}

void OutputFolder::writeResource(const QString& resource, const QString& relativePath) {
    QFile in(resource);
    const QString path = destination_ + relativePath;
    QString error;
    if (!in.open(QIODevice::ReadOnly)) return addFailure(resource, in.errorString());
    const QByteArray bytes = in.readAll();
    if (!holds(path, bytes) && !AtomicFile::write(path, bytes, &error))
        return addFailure(path, error);
    written_.append(relativePath);
}

bool OutputFolder::writeText(const QString& relativePath, const QString& text, bool pageIcon) {
    const QString path = destination_ + relativePath;
    const QByteArray bytes = text.toUtf8();
    QString error;
    if (!holds(path, bytes) && !AtomicFile::write(path, bytes, &error)) {
        addFailure(path, error);
        return false;
    }
    written_.append(relativePath);
    if (pageIcon) cNSFileHandling().hAddIconToFile(path, QStringLiteral("klOrvella_HTMLicon"));
    return true;
}

void OutputFolder::openPage(const QString& relativePath, UserInterface& ui) const {
    cToolBox(ui).hShowURL2("file:///" + destination_ + relativePath);
}
