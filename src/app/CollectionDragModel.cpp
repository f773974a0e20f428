#include "app/CollectionDragModel.h"

#include <QDataStream>
#include <QFileInfo>
#include <QIODevice>
#include <QMimeData>
#include <algorithm>

#include "app/CellImageCache.h"

namespace {

const QString kIndexesType = QStringLiteral("application/x-orvella-photo-indexes");
const QString kUrlsType = QStringLiteral("text/uri-list");

}  // namespace

QStringList CollectionDragModel::photoFilesFromUrls(const QList<QUrl>& urls) {
    QStringList files;
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) continue;
        const QFileInfo info(url.toLocalFile());
        if (info.isDir()) {
            files += photoFilesInFolder(info.absoluteFilePath());
        } else if (info.isFile() && isPhotoFileName(info.fileName())) {
            files.append(info.absoluteFilePath());
        }
    }
    return files;
}

QVariant CollectionDragModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DecorationRole || !images_ || !index.isValid() || index.row() >= count())
        return PhotoCollection::data(index, role);
    const cCollectionViewItem& record = arrangedObjects()[index.row()];
    return record.myPhoto.isNull() ? images_->image(record.path()) : record.myPhoto;
}

Qt::ItemFlags CollectionDragModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags f = PhotoCollection::flags(index) | Qt::ItemIsDragEnabled;
    if (!index.isValid()) f |= Qt::ItemIsDropEnabled;
    return f;
}

QStringList CollectionDragModel::mimeTypes() const {
    return {kIndexesType, kUrlsType};
}

QMimeData* CollectionDragModel::mimeData(const QModelIndexList& indexes) const {
    QList<int> rows;
    for (const QModelIndex& index : indexes) rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << rows;
    auto* data = new QMimeData;
    data->setData(kIndexesType, bytes);
    return data;
}

bool CollectionDragModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                          const QModelIndex&) const {
    if (!data) return false;
    if (data->hasFormat(kIndexesType)) return true;
    // Checked cheaply while the drag moves; folders are looked into only on the drop.
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.cbegin(), urls.cend(), [](const QUrl& url) {
        return url.isLocalFile() &&
               (QFileInfo(url.toLocalFile()).isDir() || isPhotoFileName(url.toLocalFile()));
    });
}

bool CollectionDragModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                       const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, 0, parent)) return false;
    if (!data->hasFormat(kIndexesType)) {
        // Added photos go at the end, as the Add Photos button puts them.
        const QStringList files = photoFilesFromUrls(data->urls());
        if (files.isEmpty()) return false;
        Q_EMIT photosDropped(files);
        return true;
    }
    QList<int> rows;
    QDataStream stream(data->data(kIndexesType));
    stream >> rows;
    // Dropping onto an item means "before it"; onto empty space, after the last one.
    const int dropIndex = row >= 0 ? row : parent.isValid() ? parent.row() : count();
    acceptDrop(rows, dropIndex);
    // The move is done here; the view must not remove the dragged rows again.
    return false;
}
