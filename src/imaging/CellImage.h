#pragma once

#include <QImage>
#include <QString>

// The thumbnail shown in a cell of the collection grid: the photo shrunk on load to fit a
// `size` x `size` box, 8-bit sRGB without alpha. A null image when the file cannot be read.
QImage makeCellImage(const QString& path, int size);
