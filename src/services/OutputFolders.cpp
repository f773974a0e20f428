#include "services/OutputFolders.h"

#include <QDir>
#include <QFileInfo>

namespace OutputFolders {

bool holds(const QString& folder, const QString& file) {
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    const QString own = QFileInfo(QFileInfo(file).absolutePath()).canonicalFilePath();
    return !canonical.isEmpty() && canonical == own;
}

QString prepare(const QString& out, const QStringList& files, QString* error) {
    if (out.isEmpty() || !QDir().mkpath(out)) {
        *error = QStringLiteral("cannot create the output folder ") + out;
        return {};
    }
    for (const QString& file : files) {
        if (holds(out, file)) {
            *error = QStringLiteral("the output folder is the folder of ") + file +
                     QStringLiteral("; choose another folder, originals are never overwritten");
            return {};
        }
    }
    return QFileInfo(out).canonicalFilePath() + u'/';
}

}  // namespace OutputFolders
