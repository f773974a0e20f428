#pragma once

#include <QImage>
#include <QString>
#include <QUrl>

// One photo of the collection, the single photo record of the whole application.
struct cCollectionViewItem {
    QString myPhotoName = QStringLiteral("pictureName");
    QUrl myPhotoURL;
    QString myPhotoDescription = QStringLiteral("Fantastisch");
    QString myPhotoOrientation;  // "H" landscape, "V" otherwise (square too)
    qint32 myPhotoHighLight = 0;  // only 1 counts as set
    qint32 myPhotoSelect = 1;     // 1 = publish
    QImage myPhoto;               // the cell image, made at thumbnail size
    QString myPhotoPxSize;        // "4000x3000"

    QString path() const { return myPhotoURL.toLocalFile(); }
};
