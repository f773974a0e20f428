#pragma once

#include <QStyledItemDelegate>

// One cell of the thumbnail grid: the cell image centred in a square, the file name under it.
// Photos left out of the output are dimmed; highlighted ones carry a star.
class PhotoCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    explicit PhotoCellDelegate(int imageSize, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    int imageSize_;
};
