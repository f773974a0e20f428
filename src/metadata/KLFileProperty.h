#pragma once

#include <QString>
#include <QStringList>

// Properties of a file that come from its name and the file system rather than its content.
class KLFileProperty {
public:
    // [file name with extension, extension, file name without extension]; the extension is
    // what follows the last dot of the name ("" when there is none or the name starts with it).
    QStringList hGetFileNameProps(const QString& path) const;

    // The file's colour label number as decimal text, or "none".
    QString klGetFileLabel(const QString& path) const;
};
