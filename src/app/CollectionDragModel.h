#pragma once

#include "collection/PhotoCollection.h"

// The collection as the thumbnail grid needs it for drag and drop: a drag carries the set of
// dragged positions and a drop only reorders.
class CollectionDragModel : public PhotoCollection {
    Q_OBJECT
public:
    using PhotoCollection::PhotoCollection;

    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
};
