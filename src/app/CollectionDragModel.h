#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

#include "collection/PhotoCollection.h"

class CellImageCache;

// The collection as the thumbnail grid needs it for drag and drop: a drag inside the grid carries
// the set of dragged positions and its drop only reorders; files and folders dropped from a file
// manager are announced (photosDropped) to be added at the end.
class CollectionDragModel : public PhotoCollection {
    Q_OBJECT
  public:
    using PhotoCollection::PhotoCollection;

    // The photo files among dropped URLs, in their order: local files with a photo extension (any
    // case), and for a folder the photo files directly inside it, sorted by name.
    static QStringList photoFilesFromUrls(const QList<QUrl>& urls);

    // Where cell images come from when a record carries none: made as cells are drawn.
    void setCellImages(CellImageCache* images) { images_ = images; }

    QVariant data(const QModelIndex& index, int role) const override;

    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::MoveAction; }
    Qt::DropActions supportedDropActions() const override {
        return Qt::MoveAction | Qt::CopyAction;
    }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

  Q_SIGNALS:
    // Files and folders dropped from a file manager: the photo files among them, in order. The
    // window reads their headers off its thread and adds them at the end.
    void photosDropped(const QStringList& files);

  private:
    CellImageCache* images_ = nullptr;
};
