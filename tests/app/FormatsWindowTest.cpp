// A folder of photos of phones and the web in the window: headers read (size, orientation,
// caption), cells drawn upright in the colours of their JPEG reference.
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>

#include "app/MainWindow.h"
#include "collection/PhotoCollection.h"
#include "support/FormatFixtures.h"
#include "support/TestSupport.h"

TEST(FormatsWindow, FolderAddedWithCellsUprightInTrueColours) {
    const QString fixtures = formatfixtures::folder();
    MainWindow window;
    auto* collection = window.findChild<PhotoCollection*>();
    window.addPhotos({fixtures});
    QHash<QString, QImage> cells;
    QElapsedTimer timer;
    timer.start();
    while (cells.size() < 14 && timer.elapsed() < 60000) {
        QApplication::processEvents(QEventLoop::AllEvents, 50);
        for (const cCollectionViewItem& record : collection->arrangedObjects())
            if (!record.myPhoto.isNull())
                cells[record.myPhotoName] = record.myPhoto.convertToFormat(QImage::Format_RGB888);
    }
    ASSERT_EQ(collection->count(), 14);
    for (const cCollectionViewItem& record : collection->arrangedObjects()) {
        SCOPED_TRACE(record.myPhotoName.toStdString());
        const QString reference = formatfixtures::referenceOf(record.myPhotoName);
        EXPECT_EQ(record.myPhotoPxSize + record.myPhotoOrientation,
                  reference == u"tall" ? "300x480V" : "480x300H");
        EXPECT_EQ(record.myPhotoDescription,
                  testsupport::exiftool(fixtures + record.myPhotoName, "UserComment"));
        const QImage cell = cells[record.myPhotoName];
        const QImage expected = cells[reference + ".jpg"];
        ASSERT_EQ(cell.size(), expected.size());
        double sum = 0;
        for (int y = 0; y < cell.height(); ++y)
            for (int x = 0; x < cell.width() * 3; ++x)
                sum += std::abs(cell.constScanLine(y)[x] - expected.constScanLine(y)[x]);
        EXPECT_LT(sum / (cell.width() * cell.height() * 3), 4.0);
    }
}
