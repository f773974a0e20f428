#pragma once

#include <QListView>

// The thumbnail grid of the collection. Every drop goes to the model at the insertion point under
// the cursor (a line marks it): a drag inside the grid reorders, files and folders from a file
// manager are added. The icon view's own drop handling would only move the icons on the screen.
class PhotoGridView : public QListView {
    Q_OBJECT
  public:
    explicit PhotoGridView(QWidget* parent = nullptr);

    // The drop index for a point of the viewport: the position of the cell whose left half holds
    // it, the one after when it is in the right half, the end below the last line.
    int dropIndexAt(const QPoint& point) const;

  protected:
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    bool acceptsDrop(QDropEvent* event) const;
    QRect cellRect(int row) const;

    int dropIndex_ = -1;  // where the marker is drawn while a drag is over the grid
};
