#pragma once

#include <QByteArray>
#include <QString>

// Files written whole or not at all: the bytes go to a temporary file in the destination folder,
// are flushed to disk, and only then replace the final name in one rename. Temporary names follow
// one pattern, so what a crash left behind is recognised and removed by the next run.
namespace AtomicFile {

// A temporary name beside `path`: "." + kTemporaryMark + random + "-" + file name.
QString temporaryPathFor(const QString& path);
// True for a file name made by temporaryPathFor.
bool isTemporaryName(const QString& fileName);

// Writes `bytes` to `path`. On failure nothing changes under `path`, no temporary file remains and
// `error` (when given) says why.
bool write(const QString& path, const QByteArray& bytes, QString* error = nullptr);
// Writes `bytes` to `temporary` (a name made by temporaryPathFor) and flushes them to disk; on
// failure the file is gone and `error` says why.
bool writeTemporary(const QString& temporary, const QByteArray& bytes, QString* error = nullptr);
// Replaces `path` by the finished temporary file; removes the temporary file on failure.
bool commit(const QString& temporary, const QString& path, QString* error = nullptr);

// Removes the temporary files of this program left in `folder` (not in its subfolders).
void removeLeftovers(const QString& folder);

}  // namespace AtomicFile
