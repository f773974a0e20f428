// Photos of phones and the web added to the window: headers read (size, orientation, caption),
// cells drawn upright in the colours of their JPEG reference.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include "app/MainWindow.h"
#include "collection/PhotoCollection.h"
#include "support/FormatFixtures.h"
#include "support/TestSupport.h"

TEST(FormatsWindow, HeadersReadCellsUprightInTrueColours) {
    using namespace formatfixtures;
    const QString cells = testsupport::freshDir("app-formats");
    MainWindow window;
    auto* collection = window.findChild<PhotoCollection*>();
    window.addPhotos(QStringList{folder() + "photo.jpg", folder() + "tall.jpg"} + photos());
    QElapsedTimer timer;
    timer.start();
    while (QDir(cells).entryList(QDir::Files).size() < 14 && timer.elapsed() < 60000) {
        QApplication::processEvents(QEventLoop::AllEvents, 50);
        for (int row = 0; row < collection->count(); ++row) {
            // Asking for a cell's image is what drawing it does: it is made, then answered.
            const QModelIndex cell = collection->index(row);
            const QImage image = cell.data(Qt::DecorationRole).value<QImage>();
            if (!image.isNull()) image.save(cells + cell.data().toString() + ".png");
        }
    }
    ASSERT_EQ(collection->count(), 14);
    for (const cCollectionViewItem& record : collection->arrangedObjects()) {
        const QString reference = referenceOf(record.myPhotoName);
        EXPECT_EQ(record.myPhotoPxSize + record.myPhotoOrientation,
                  reference == u"tall" ? "300x480V" : "480x300H");
        EXPECT_EQ(record.myPhotoDescription,
                  testsupport::exiftool(folder() + record.myPhotoName, "UserComment"));
        const QString cell = cells + record.myPhotoName + ".png";
        EXPECT_EQ(QImage(cell).size(), QImage(cells + reference + ".jpg.png").size());
        EXPECT_LT(shownDifference(cell, cells + reference + ".jpg.png"), 4.0) << qPrintable(cell);
    }
}
