#include "app/CollectionDragModel.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>
#include <algorithm>

namespace {
const QString kIndexesType = QStringLiteral("application/x-orvella-photo-indexes");
}

Qt::ItemFlags CollectionDragModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags f = PhotoCollection::flags(index) | Qt::ItemIsDragEnabled;
    if (!index.isValid()) f |= Qt::ItemIsDropEnabled;
    return f;
}

QStringList CollectionDragModel::mimeTypes() const { return {kIndexesType}; }

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
    return data && data->hasFormat(kIndexesType);
}

bool CollectionDragModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                       const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, 0, parent)) return false;
    QList<int> rows;
    QDataStream stream(data->data(kIndexesType));
    stream >> rows;
    // Dropping onto an item means "before it"; onto empty space, after the last one.
    const int dropIndex = row >= 0 ? row : parent.isValid() ? parent.row() : count();
    acceptDrop(rows, dropIndex);
    // The move is done here; the view must not remove the dragged rows again.
    return false;
}
