#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

// One row of the metadata activity log, shared by the single-file editor and the batch editor.
struct MetaLogRow {
    QDateTime LogDate;
    QString LogProcess = QStringLiteral("File Editing");
    QString LogAction = QStringLiteral("Edit meta data");
    QString LogStatus;
    QString LogI;      // file name of the input
    QString LogO;      // file name of the output (the same file)
    QString LogIpath;  // full input path
    QString LogOpath;  // full output path (the same path)

    // A row for a file edited in place, dated now.
    static MetaLogRow forFile(const QString& path, const QString& status);
    // "LogDate", "LogProcess", ... in column order.
    static QStringList columnNames();
    // The values in column order; the date as "yyyy-MM-dd HH:mm:ss".
    QStringList columns() const;
};

// The batch metadata editor: writes one EXIF user comment into many photo files, each with a
// fresh reader, and logs the successes only. A file the user may not write is skipped before
// anything is written.
class cEditMetaData {
  public:
    // What a batch reports while it runs; every member is optional. The bar goes from 0 to the
    // number of files and advances by one per success only, so after failures it stops short.
    struct Progress {
        std::function<void(int maximum)> started;
        std::function<void(int value)> advanced;
        std::function<void(const MetaLogRow& row)> logged;
        std::function<void(const QString& path, const QString& reason)> failed;
        std::function<void()> finished;
    };

    // A batch over files the user chose (taken as they are).
    void btEMDchooseFile(const QStringList& files, const QString& comment,
                         const Progress& progress = {});
    // A batch over the suitable files of a folder (see filesOfFolder).
    void btEMDchooseFolder(const QString& folder, const QString& comment,
                           const Progress& progress = {});

    // The files of `folder` a batch takes: every file but ".DS_Store" whose extension is jpg,
    // jpeg, tif, tiff, JPG, JPEG, TIF or TIFF, sorted by name; not recursive.
    static QStringList filesOfFolder(const QString& folder);
    // The extensions offered when the user chooses files.
    static QStringList fileExtensions();

    // Whether the user may write the file. The system must allow it (access(2) with W_OK) and
    // the file's mode must grant write permission to someone: a file whose write bits are all
    // off counts as read-only even for the superuser, whom the system would let write it.
    static bool isWritableByUser(const QString& path);
    // Writes the comment into one file. "OK", or "Failed" with the reason.
    static QString hWriteComment(const QString& path, const QString& comment,
                                 QString* reason = nullptr);

    QStringList myEMMfiles;
    int myLogCounter = 0;
    QList<MetaLogRow> myLogTableViewController;

  private:
    void run(const QStringList& files, const QString& comment, const Progress& progress);
};
