#include "services/cNSFileHandling.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QSaveFile>

#include "services/AtomicFile.h"
#include "services/Log.h"

namespace {

// Writes the bytes to the path through a temporary file and a rename.
bool writeAtomically(const QString& path, const QByteArray& bytes) {
    return AtomicFile::write(path, bytes);
}

bool copyItem(const QString& source, const QString& destination, QString* error) {
    const QFileInfo info(source);
    if (!info.exists()) {
        *error = QStringLiteral("“%1” does not exist").arg(source);
        return false;
    }
    if (QFileInfo::exists(destination)) {
        *error = QStringLiteral("“%1” already exists").arg(destination);
        return false;
    }
    if (!info.isDir()) {
        QFile file(source);
        if (!file.copy(destination)) {
            *error = file.errorString();
            return false;
        }
        return true;
    }
    if (!QDir().mkpath(destination)) {
        *error = QStringLiteral("cannot create “%1”").arg(destination);
        return false;
    }
    const QDir dir(source);
    const auto entries =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : entries) {
        if (!copyItem(dir.filePath(name), QDir(destination).filePath(name), error)) return false;
    }
    return true;
}

}  // namespace

QString cNSFileHandling::hCreateDirectory(const QString& path) const {
    if (QFileInfo::exists(path)) return QStringLiteral("EXISTS");
    return QDir().mkpath(path) ? QStringLiteral("OK") : QStringLiteral("FAILED");
}

void cNSFileHandling::hAddIconToFile(const QString&, const QString&) const {
    // Linux file managers have no custom icon per file or folder, so there is nothing to set.
}

bool cNSFileHandling::isPlainFileName(const QString& name) {
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') &&
           !name.contains(u'\\') && !name.contains(QChar(0));
}

void cNSFileHandling::hWritHTMLFile(const QString& path, const QString& text) const {
    if (!writeAtomically(path, text.toUtf8())) klLog() << "cannot write" << path;
}

void cNSFileHandling::hWriteTextFile(const QString& path, const QString& text) const {
    hWritHTMLFile(path, text);
}

QString cNSFileHandling::hCopyFileTo(const QString& source, const QString& destination) const {
    const QString parent = QFileInfo(destination).absolutePath();
    QDir().mkpath(parent);
    if (!QFileInfo(parent).isDir()) return QStringLiteral("Failed");
    if (QFileInfo(destination).isFile() || QFileInfo(destination).isSymLink())
        QFile::remove(destination);
    klLog() << "check";
    return QFile::copy(source, destination) ? QStringLiteral("OK") : QStringLiteral("Failed");
}

QString cNSFileHandling::hCopyFileToDest(const QString& source, const QString& destination) const {
    // Kept on purpose: the destination is made a folder first, so the copy onto it always fails.
    QDir().mkpath(destination);
    if (!QFileInfo::exists(destination)) return QStringLiteral("Failed");
    return QFile::copy(source, destination) ? QStringLiteral("OK") : QStringLiteral("Failed");
}

QString cNSFileHandling::hCopyFolderTo(const QString& source, const QString& destination) const {
    QString error;
    if (copyItem(source, destination, &error)) return QStringLiteral("Success");
    klLog() << QStringLiteral("Error: %1").arg(error);
    return QStringLiteral("Failed");
}

QString cNSFileHandling::getFileSize(const QString& path) {
    const QFileInfo info(path);
    // Decimal units, as file managers show file sizes.
    fileSize = QLocale::system().formattedDataSize(info.isFile() ? info.size() : 0, 1,
                                                   QLocale::DataSizeSIFormat);
    return fileSize;
}

bool cNSFileHandling::hCheckIfFileExist(const QString& path) const {
    return QFileInfo::exists(path);
}

bool cNSFileHandling::hDeleteFiles(const QString& path) const {
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink()) return QDir(path).removeRecursively();
    return QFile::remove(path);
}

bool cNSFileHandling::hRenameFile(const QString& path, const QString& newPath) const {
    if (QFileInfo::exists(newPath)) return false;
    return QDir().rename(path, newPath);
}

bool cNSFileHandling::hTrashFile(const QString& path) const {
    return QFile::moveToTrash(path);
}

bool cNSFileHandling::hMoveFileTo(const QString& source, const QString& destination) const {
    if (QFileInfo::exists(destination) || !QFileInfo::exists(source)) return false;
    if (QDir().rename(source, destination)) return true;
    // Across file systems a rename is refused: copy, then remove the original.
    QString error;
    if (!copyItem(source, destination, &error)) return false;
    return hDeleteFiles(source);
}

bool cNSFileHandling::hAliasFileTo(const QString& source, const QString& destination) const {
    return QFile::link(QFileInfo(source).absoluteFilePath(), destination);
}

void cNSFileHandling::hShowInFinder(const QString& path) const {
    // Core code opens nothing itself; the window offers this through its own user interface.
    klLog() << "show in file manager:" << path;
}

bool cNSFileHandling::writeNSDataToFile(const QString& path, const QByteArray& data) const {
    return writeAtomically(path, data);
}

QByteArray cNSFileHandling::readNSDataFromFile(const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

QStringList cNSFileHandling::hReadTextFileLbyL(const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    static const QRegularExpression newline(QStringLiteral("\r\n|\n|\r"));
    return QString::fromUtf8(file.readAll()).split(newline);
}

QDateTime cNSFileHandling::hGetCreationDateFile(const QString& path) const {
    const QFileInfo info(path);
    if (!info.exists()) return {};
    // Not every file system records a birth time; the last change is the closest it has.
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.metadataChangeTime();
}

QDateTime cNSFileHandling::hGetModificationDateFile(const QString& path) const {
    const QFileInfo info(path);
    return info.exists() ? info.lastModified() : QDateTime();
}

QString cNSFileHandling::hGetFileType(const QString& path) const {
    const QFileInfo info(path);
    if (info.isSymLink()) return QStringLiteral("NSFileTypeSymbolicLink");
    if (!info.exists()) return {};
    if (info.isDir()) return QStringLiteral("NSFileTypeDirectory");
    if (info.isFile()) return QStringLiteral("NSFileTypeRegular");
    return QStringLiteral("NSFileTypeUnknown");
}
