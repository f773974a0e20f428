#include "app/PhotoGridView.h"

#include <QDrag>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QPainter>

PhotoGridView::PhotoGridView(QWidget* parent) : QListView(parent) {
    setViewMode(QListView::IconMode);
    // Static: the icon view must not move icons around by itself; drags are re-enabled below.
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setDragEnabled(true);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setUniformItemSizes(true);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle);
    setSpacing(4);
}

QRect PhotoGridView::cellRect(int row) const {
    // Cells have one size (the delegate's) and tile with the spacing between them.
    const int half = spacing() / 2;
    return visualRect(model()->index(row, 0)).adjusted(-half, -half, half, half);
}

int PhotoGridView::dropIndexAt(const QPoint& point) const {
    if (!model()) return -1;
    const int n = model()->rowCount();
    int lastOnLine = -1;
    for (int row = 0; row < n; ++row) {
        const QRect cell = cellRect(row);
        if (point.y() < cell.top() && row == 0) return 0;
        if (point.y() < cell.top() || point.y() > cell.bottom()) continue;
        if (point.x() < cell.center().x()) return row;
        lastOnLine = row;
    }
    return lastOnLine >= 0 ? lastOnLine + 1 : n;
}

void PhotoGridView::startDrag(Qt::DropActions) {
    // A plain drag: the icon view's own would also paint the dragged cells at the cursor, and
    // remove them after a move, which the drop has already made.
    const QModelIndexList indexes = selectedIndexes();
    if (indexes.isEmpty() || !model()) return;
    auto* drag = new QDrag(this);
    drag->setMimeData(model()->mimeData(indexes));
    const QImage image = currentIndex().data(Qt::DecorationRole).value<QImage>();
    if (!image.isNull())
        drag->setPixmap(QPixmap::fromImage(
            image.scaled(96, 96, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    drag->exec(Qt::MoveAction);
}

bool PhotoGridView::acceptsDrop(QDropEvent* event) const {
    return model() && model()->canDropMimeData(event->mimeData(), event->dropAction(), -1, -1, {});
}

void PhotoGridView::dragEnterEvent(QDragEnterEvent* event) {
    if (!acceptsDrop(event)) return event->ignore();
    event->setDropAction(event->source() == this ? Qt::MoveAction : Qt::CopyAction);
    event->accept();
}

void PhotoGridView::dragMoveEvent(QDragMoveEvent* event) {
    if (!acceptsDrop(event)) return event->ignore();
    event->setDropAction(event->source() == this ? Qt::MoveAction : Qt::CopyAction);
    event->accept();
    const QPoint point = event->position().toPoint();
    // Added photos always go at the end; only a reorder goes where the cursor is.
    dropIndex_ = event->source() == this ? dropIndexAt(point) : model()->rowCount();
    const QRect inner = viewport()->rect().adjusted(0, autoScrollMargin(), 0, -autoScrollMargin());
    if (!inner.contains(point)) startAutoScroll();
    viewport()->update();
}

void PhotoGridView::dragLeaveEvent(QDragLeaveEvent* event) {
    dropIndex_ = -1;
    stopAutoScroll();
    viewport()->update();
    event->accept();
}

void PhotoGridView::dropEvent(QDropEvent* event) {
    dropIndex_ = -1;
    stopAutoScroll();
    viewport()->update();
    if (!acceptsDrop(event)) return event->ignore();
    const bool inside = event->source() == this;
    const Qt::DropAction action = inside ? Qt::MoveAction : Qt::CopyAction;
    model()->dropMimeData(event->mimeData(), action, dropIndexAt(event->position().toPoint()), 0,
                          {});
    event->setDropAction(action);
    event->accept();
}

void PhotoGridView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    QPainter painter(viewport());
    const int n = model() ? model()->rowCount() : 0;
    if (n == 0) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect(), Qt::AlignCenter,
                         tr("Drop photos or folders here\nor choose Add Photos…"));
        return;
    }
    if (dropIndex_ < 0) return;
    // The marker: a bar in the gap before the cell at the drop index, or after the last one.
    const QRect cell = cellRect(std::min(dropIndex_, n - 1));
    const int x = dropIndex_ < n ? cell.left() : cell.right() + 1;
    painter.fillRect(QRect(x - 2, cell.top() + 4, 4, cell.height() - 8),
                     palette().color(QPalette::Highlight));
}
