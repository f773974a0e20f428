#pragma once

#include <QString>
#include <QStringList>

// The one rule for tools that write copies of photos into an output folder: the folder is made
// when missing, and it may never be the folder of one of the photos, so an original is never
// overwritten.
namespace OutputFolders {

// The output folder as a canonical path ending with "/", created when missing; or "" with the
// reason in `error` when it cannot be created or holds one of `files`.
QString prepare(const QString& out, const QStringList& files, QString* error);

// True when `folder` is the folder that holds `file` (compared after resolving links and "..").
bool holds(const QString& folder, const QString& file);

}  // namespace OutputFolders
