#include "services/PhotoFileTypes.h"

#include <QFileInfo>

namespace PhotoFileTypes {

const QStringList& extensions() {
    static const QStringList list = {"png",  "jpg",  "jpeg", "tif",  "tiff",
                                     "heic", "heif", "avif", "webp", "jxl"};
    return list;
}

bool isPhotoFileName(const QString& fileName) {
    return extensions().contains(QFileInfo(fileName).suffix(), Qt::CaseInsensitive);
}

QString dialogPatterns() {
    QStringList patterns;
    for (const QString& ext : extensions()) patterns.append(QStringLiteral("*.") + ext);
    for (const QString& ext : extensions()) patterns.append(QStringLiteral("*.") + ext.toUpper());
    return patterns.join(u' ');
}

}  // namespace PhotoFileTypes
