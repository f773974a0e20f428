// The conversion of a working image into the output format: the imaging part of cNSFileHandling.

#include <QFile>
#include <QFileInfo>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <vips/vips8>

#include "imaging/ImageFileIo.h"
#include "services/Log.h"
#include "services/cNSFileHandling.h"

using vips::VError;
using vips::VImage;

namespace {

// The compression title as a JPEG quality: "1".."8" are tenths, anything else 0.9.
int jpegQuality(const QString& compression) {
    static const QStringList steps = {"1", "2", "3", "4", "5", "6", "7", "8"};
    const qsizetype step = steps.indexOf(compression);
    return step >= 0 ? int(step + 1) * 10 : 90;
}

// One page the size of the image (one point per pixel) holding the whole image.
bool writePdf(const QString& source, const QString& output) {
    const QImage image = ImageFileIo::toQImage(ImageFileIo::open(source, true));
    if (image.isNull()) return false;
    const QString temporary = output + QStringLiteral(".tmp");
    {
        QPdfWriter pdf(temporary);
        pdf.setResolution(72);
        pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
        pdf.setPageSize(QPageSize(QSizeF(image.width(), image.height()), QPageSize::Point,
                                  QString(), QPageSize::ExactMatch));
        QPainter painter;
        if (!painter.begin(&pdf)) {
            QFile::remove(temporary);
            return false;
        }
        painter.drawImage(QRect(0, 0, image.width(), image.height()), image);
        painter.end();
    }
    QFile::remove(output);
    return QFile::rename(temporary, output);
}

}  // namespace

SaveAsResult cNSFileHandling::hSaveAsFileType(const QString& path, const QString& format,
                                              const QString& compression,
                                              const QString& folder) const {
    const QString baseName = QFileInfo(path).completeBaseName();
    const QString output = folder + baseName + u'.' + format;

    QString type;
    bool keepMetadata = false;
    if (format == u"png") {
        type = QStringLiteral("public.png");
        keepMetadata = true;
    } else if (format == u"tiff") {
        type = QStringLiteral("public.tiff");
        keepMetadata = true;
    } else if (format == u"bmp") {
        type = QStringLiteral("public.bmp");
    } else if (format == u"gif") {
        type = QStringLiteral("com.compuserve.gif");
    } else if (format == u"jpeg") {
        type = QStringLiteral("public.jpeg");
    } else if (format == u"jp2") {
        type = QStringLiteral("public.jp2");
    }

    int width = 0;
    int height = 0;
    const bool readable =
        (format == u"pdf" || !type.isEmpty()) && ImageFileIo::pixelSize(path, &width, &height);
    bool written = false;
    if (readable) {
        try {
            if (format == u"pdf") {
                written = writePdf(path, output);
            } else {
                written = ImageFileIo::save(ImageFileIo::open(path, true), output, type,
                                            keepMetadata, jpegQuality(compression)) == u"OK";
            }
        } catch (const VError& e) {
            vips_error_clear();  // the message is in e
            klLog() << "conversion failed:" << path << e.what();
        }
        if (!written) klLog() << "not converted:" << output;
    }
    // The working file goes unless it was just rewritten in place; also when nothing was
    // written, so that a format such as "jpg" (no format here) leaves no working file behind.
    const bool samePath =
        QFileInfo(output).absoluteFilePath() == QFileInfo(path).absoluteFilePath();
    if (!samePath || !written) QFile::remove(path);
    return {QUrl::fromLocalFile(output), format, baseName};
}
