#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QUrl>

// Folders, copies, text files and the conversion of an image file into an output format. Every
// operation reports its outcome as a short result text and never shows a message.
class cNSFileHandling {
  public:
    // "EXISTS" (nothing done), "OK" or "FAILED"; creates missing parents.
    QString hCreateDirectory(const QString& path) const;
    // Custom file and folder icons do not exist on this platform: does nothing.
    void hAddIconToFile(const QString& path, const QString& iconResource) const;
    // Replaces the file with the text, in UTF-8, atomically (a reader never sees half a file).
    void hWritHTMLFile(const QString& path, const QString& text) const;
    void hWriteTextFile(const QString& path, const QString& text) const;
    // "OK" or "Failed".
    QString hCopyFileTo(const QString& source, const QString& destination) const;
    QString hCopyFileToDest(const QString& source, const QString& destination) const;
    // "Success" or "Failed".
    QString hCopyFolderTo(const QString& source, const QString& destination) const;

    // (The conversion of an image file into an output format, hSaveAsFileType, is an imaging
    // operation: KLImageHandling::hSaveAsFileType.)

    // True for a name that stays in the folder it is put in: not empty, no path separator, not
    // "." or "..", no NUL. Names from settings, presets and projects must pass before use.
    static bool isPlainFileName(const QString& name);

    // The file size as the platform formats it ("12.3 kB"); also kept in fileSize.
    QString getFileSize(const QString& path);

    bool hCheckIfFileExist(const QString& path) const;
    bool hDeleteFiles(const QString& path) const;
    bool hRenameFile(const QString& path, const QString& newPath) const;
    bool hTrashFile(const QString& path) const;
    bool hMoveFileTo(const QString& source, const QString& destination) const;
    bool hAliasFileTo(const QString& source, const QString& destination) const;
    void hShowInFinder(const QString& path) const;
    bool writeNSDataToFile(const QString& path, const QByteArray& data) const;
    QByteArray readNSDataFromFile(const QString& path) const;
    QStringList hReadTextFileLbyL(const QString& path) const;
    QDateTime hGetCreationDateFile(const QString& path) const;
    QDateTime hGetModificationDateFile(const QString& path) const;
    QString hGetFileType(const QString& path) const;

    QString fileSize;
};
