#include "app/PhotoCellDelegate.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "collection/PhotoCollection.h"

namespace {
constexpr int kPadding = 6;
constexpr double kUnpublishedOpacity = 0.3;
}  // namespace

PhotoCellDelegate::PhotoCellDelegate(int imageSize, QObject* parent)
    : QStyledItemDelegate(parent), imageSize_(imageSize) {}

QSize PhotoCellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {imageSize_ + 2 * kPadding, imageSize_ + 3 * kPadding + option.fontMetrics.height()};
}

void PhotoCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QPalette& palette = opt.palette;
    const bool selected = opt.state & QStyle::State_Selected;
    const bool published = index.data(PhotoCollection::SelectRole).toInt() == 1;
    const bool highlighted = index.data(PhotoCollection::HighlightRole).toInt() == 1;

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect cell = opt.rect.adjusted(1, 1, -1, -1);
    if (selected) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette.color(QPalette::Highlight));
        painter->drawRoundedRect(cell, 6, 6);
    }

    const QRect square(cell.left() + kPadding - 1, cell.top() + kPadding - 1, imageSize_,
                       imageSize_);
    const QImage image = index.data(Qt::DecorationRole).value<QImage>();
    if (!published) painter->setOpacity(kUnpublishedOpacity);
    if (image.isNull()) {
        // Not made yet (cell images arrive from a worker) or not readable.
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette.color(QPalette::Mid));
        painter->drawRoundedRect(square.adjusted(16, 16, -16, -16), 4, 4);
    } else {
        QRect target(QPoint(0, 0), image.size().scaled(square.size(), Qt::KeepAspectRatio));
        target.moveCenter(square.center());
        painter->drawImage(target, image);
    }

    const QRect text(cell.left() + kPadding, square.bottom() + kPadding,
                     cell.width() - 2 * kPadding, opt.fontMetrics.height());
    painter->setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(opt.font);
    painter->drawText(text, Qt::AlignHCenter | Qt::AlignVCenter,
                      opt.fontMetrics.elidedText(opt.text, Qt::ElideMiddle, text.width()));
    painter->setOpacity(1.0);

    if (highlighted) {
        // A star badge in the top right corner of the square.
        const QPointF c(square.right() - 12, square.top() + 12);
        QPainterPath star;
        for (int i = 0; i < 10; ++i) {
            const double radius = i % 2 == 0 ? 9.0 : 4.0;
            const double angle = -M_PI / 2 + i * M_PI / 5;
            const QPointF p = c + QPointF(radius * std::cos(angle), radius * std::sin(angle));
            i == 0 ? star.moveTo(p) : star.lineTo(p);
        }
        star.closeSubpath();
        painter->setPen(QPen(QColor(90, 60, 0), 1));
        painter->setBrush(QColor(255, 196, 0));
        painter->drawPath(star);
    }
    painter->restore();
}
