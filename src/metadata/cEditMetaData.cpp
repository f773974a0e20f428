#include "metadata/cEditMetaData.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "metadata/mMeta.h"

MetaLogRow MetaLogRow::forFile(const QString& path, const QString& status) {
    MetaLogRow row;
    row.LogDate = QDateTime::currentDateTime();
    row.LogStatus = status;
    row.LogI = row.LogO = QFileInfo(path).fileName();
    row.LogIpath = row.LogOpath = path;
    return row;
}

QStringList MetaLogRow::columnNames() {
    return {"LogDate", "LogProcess", "LogAction", "LogStatus",
            "LogI",    "LogO",       "LogIpath",  "LogOpath"};
}

QStringList MetaLogRow::columns() const {
    return {LogDate.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
            LogProcess,
            LogAction,
            LogStatus,
            LogI,
            LogO,
            LogIpath,
            LogOpath};
}

QStringList cEditMetaData::fileExtensions() {
    return {"jpg", "jpeg", "tif", "tiff"};
}

QStringList cEditMetaData::filesOfFolder(const QString& folder) {
    static const QStringList extensions = {"jpg", "jpeg", "tif", "tiff",
                                           "JPG", "JPEG", "TIF", "TIFF"};
    QStringList files;
    const QDir dir(folder);
    for (const QFileInfo& entry :
         dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name)) {
        if (entry.fileName() == u".DS_Store") continue;
        if (extensions.contains(entry.suffix())) files.append(entry.absoluteFilePath());
    }
    return files;
}

bool cEditMetaData::isWritableByUser(const QString& path) {
    const QByteArray native = QFile::encodeName(path);
    struct stat status {};
    if (::stat(native.constData(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) return false;
    return ::access(native.constData(), W_OK) == 0;
}

QString cEditMetaData::hWriteComment(const QString& path, const QString& comment, QString* reason) {
    auto failed = [&](const QString& why) {
        if (reason) *reason = why;
        return QStringLiteral("Failed");
    };
    if (!QFileInfo(path).isFile()) return failed(QStringLiteral("no such file"));
    // Checked first: the writer replaces the file by a rename, which a read-only file's folder
    // would allow.
    if (!isWritableByUser(path)) return failed(QStringLiteral("the file is read-only"));
    const mMeta reader;  // a fresh reader for every file
    if (reader.hSetExifData(path, comment) != u"OK")
        return failed(QStringLiteral("not written: ") + reader.writeError);
    return QStringLiteral("OK");
}

void cEditMetaData::btEMDchooseFile(const QStringList& files, const QString& comment,
                                    const Progress& progress) {
    run(files, comment, progress);
}

void cEditMetaData::btEMDchooseFolder(const QString& folder, const QString& comment,
                                      const Progress& progress) {
    run(filesOfFolder(folder), comment, progress);
}

void cEditMetaData::run(const QStringList& files, const QString& comment,
                        const Progress& progress) {
    myEMMfiles = files;
    if (progress.started) progress.started(int(files.size()));
    int value = 0;
    for (const QString& path : files) {
        QString reason;
        if (hWriteComment(path, comment, &reason) == u"OK") {
            const MetaLogRow row = MetaLogRow::forFile(path, QStringLiteral("OK"));
            myLogTableViewController.append(row);
            myLogCounter = int(myLogTableViewController.size());
            if (progress.logged) progress.logged(row);
            if (progress.advanced) progress.advanced(++value);
        } else if (progress.failed) {
            progress.failed(path, reason);  // not logged, and the bar does not advance
        }
    }
    if (progress.finished) progress.finished();
}
