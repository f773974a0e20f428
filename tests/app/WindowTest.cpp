// The main window: its tabs, one per output kind, its grid and its cells.
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>

#include "app/CellImageCache.h"
#include "app/CollectionDragModel.h"
#include "app/FormChecks.h"
#include "app/MainWindow.h"
#include "app/PhotoGridView.h"
#include "app/SupportDialogs.h"
#include "collection/PhotoCollection.h"
#include "services/SupportFolders.h"
#include "support/FormatFixtures.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {

void waitUntil(const std::function<bool()>& done, int ms = 20000) {
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 50);
}

}  // namespace

// Each tab shows every control of its kind under a label of its own and its buttons; the
// Highlight box can be used on the grid's tab only; whichever tab is shown, the window fits a
// 1366 x 768 screen (less a panel and the title bar): the settings scroll instead.
TEST(Window, EveryKindHasItsTab) {
    MainWindow window;
    window.addPhotos({makePhoto(freshDir("app-window-tabs") + "a.png")});
    QAbstractItemView* view = window.findChild<PhotoGridView*>();
    ASSERT_TRUE(view);
    waitUntil([&] { return view->model()->rowCount() > 0; });
    ASSERT_EQ(view->model()->rowCount(), 1);
    view->setCurrentIndex(view->model()->index(0, 0));
    QCheckBox* highlight = nullptr;
    for (QCheckBox* box : window.findChildren<QCheckBox*>())
        if (box->text() == "Highlight") highlight = box;
    auto* tabs = window.findChild<QTabWidget*>();
    ASSERT_TRUE(tabs && highlight);
    const std::tuple<const char*, const char*, QStringList, bool> cases[] = {
        {"gallery", "Photo Gallery", {"Create Photo Gallery…"}, false},
        {"slideshow", "Slideshow", {"Create Slideshow…", "Add Item", "Clear Items"}, false},
        {"grid", "Responsive Grid", {"Create Responsive Grid…"}, true},
    };
    ASSERT_EQ(tabs->count(), std::size(cases));
    for (int i = 0; i < tabs->count(); ++i) {
        const auto& [kind, title, wanted, highlighted] = cases[i];
        SCOPED_TRACE(kind);
        tabs->setCurrentIndex(i);
        EXPECT_EQ(tabs->tabText(i), title);
        EXPECT_GT(expectEveryControlShown(kind, *tabs->widget(i)), 20);
        QStringList buttons;
        for (const QPushButton* b : tabs->widget(i)->findChildren<QPushButton*>())
            buttons << b->text();
        for (const QString& button : wanted)
            EXPECT_TRUE(buttons.contains(button)) << buttons.join(", ");
        EXPECT_EQ(highlight->isEnabled(), highlighted);
        const QSize needed = window.minimumSizeHint().expandedTo(window.minimumSize());
        EXPECT_LE(needed.width(), 1366);
        EXPECT_LE(needed.height(), 700);
    }
    // The size a user gives the window is the size it opens with next time.
    MainWindow resized;
    resized.resize(700, 500);
    resized.close();
    EXPECT_EQ(MainWindow().size(), QSize(700, 500));

    // About names the version the command line gives.
    QString version;
    ASSERT_EQ(orvella({"--version"}, &version), 0);
    window.findChild<QAction*>("actionAbout")->trigger();
    auto* about = window.findChild<QMessageBox*>("aboutBox");
    ASSERT_TRUE(about);
    EXPECT_EQ(about->text() + "\n", version);
    about->close();

    // The slideshow keeps a way of moving between slides (each edit: tests/generators/slideshow).
    auto* autorun = tabs->widget(1)->findChild<QCheckBox*>("cbSsAutorun");
    auto* arrows = tabs->widget(1)->findChild<QCheckBox*>("cbSsShowNavigationBtn");
    ASSERT_TRUE(autorun && arrows);
    autorun->setChecked(false);
    arrows->setChecked(false);  // now the show runs by itself
    EXPECT_TRUE(autorun->isChecked() && !arrows->isChecked());
}

// At 10,000 photos the grid is one view over the model: every row answers from its record, cell
// images are made only for the rows drawn, and no widget stands for a photo.
TEST(Window, TenThousandPhotosAreRowsNotWidgets) {
    const QString photo = makePhoto(freshDir("app-window-10k") + "a.png");
    QList<cCollectionViewItem> records(10000);
    for (int i = 0; i < records.size(); ++i) {
        records[i].myPhotoName = QString("p%1.png").arg(i, 5, 10, QChar('0'));
        records[i].myPhotoURL =
            QUrl::fromLocalFile(i < 50 ? photo : "/gone/" + records[i].myPhotoName);
    }
    MainWindow window;
    window.show();
    auto* grid = window.findChild<PhotoGridView*>();
    auto* model = qobject_cast<CollectionDragModel*>(grid->model());
    auto* cells = window.findChild<CellImageCache*>();
    ASSERT_TRUE(model && cells);
    const qsizetype widgets = window.findChildren<QWidget*>().size();
    model->appendRecords(records);
    waitUntil([&] { return !model->index(0).data(Qt::DecorationRole).value<QImage>().isNull(); });
    EXPECT_EQ(model->rowCount(), 10000);
    EXPECT_EQ(model->index(9999).data().toString(), "p09999.png");
    EXPECT_EQ(model->index(9999).data(PhotoCollection::PathRole).toString(), "/gone/p09999.png");
    EXPECT_FALSE(model->index(0).data(Qt::DecorationRole).value<QImage>().isNull());
    EXPECT_EQ(window.findChildren<QWidget*>().size(), widgets);
    EXPECT_GT(cells->requestCount(), 0);
    EXPECT_LT(cells->requestCount(), 200);
}

// No question before the photos: with no support root chosen, the preferences (as an import or a
// pattern chooser would) take the folder in the user's data folder and build the tree there.
TEST(Window, SupportRootDefaultsToTheUsersDataFolder) {
    QSettings().remove(SupportFolders::kRootKey);
    const QString root = SupportDialogs::defaultRoot();
    QDir(root).removeRecursively();
    PreferencesDialog preferences(nullptr);
    EXPECT_TRUE(root.startsWith(qEnvironmentVariable("XDG_DATA_HOME") + "/")) << root;
    EXPECT_EQ(SupportFolders::rootPath(), root);
    EXPECT_EQ(SupportFolders::patternsPath(), root + "/Keldra_SupportFiles/Patterns");
    EXPECT_FALSE(QDir(SupportFolders::patternsPath()).isEmpty());  // the built-in patterns
    EXPECT_TRUE(QFileInfo(SupportFolders::watermarksPath()).isDir());
    EXPECT_EQ(preferences.findChild<QLabel*>("tfLibraryFilePath")->text(), root);
}

// Photos of phones and the web added to the window: headers read (size, orientation, caption),
// cells drawn upright in the colours of their JPEG reference.
TEST(FormatsWindow, HeadersReadCellsUprightInTrueColours) {
    using namespace formatfixtures;
    const QString cells = freshDir("app-formats");
    MainWindow window;
    auto* collection = window.findChild<PhotoCollection*>();
    window.addPhotos(QStringList{folder() + "photo.jpg", folder() + "tall.jpg"} + photos());
    waitUntil(
        [&] {
            for (int row = 0; row < collection->count(); ++row) {
                // Asking for a cell's image is what drawing it does: it is made, then answered.
                const QModelIndex cell = collection->index(row);
                const QImage image = cell.data(Qt::DecorationRole).value<QImage>();
                if (!image.isNull()) image.save(cells + cell.data().toString() + ".png");
            }
            return QDir(cells).entryList(QDir::Files).size() == 14;
        },
        60000);
    ASSERT_EQ(collection->count(), 14);
    for (const cCollectionViewItem& record : collection->arrangedObjects()) {
        const QString reference = referenceOf(record.myPhotoName);
        EXPECT_EQ(record.myPhotoPxSize + record.myPhotoOrientation,
                  reference == u"tall" ? "300x480V" : "480x300H");
        EXPECT_EQ(record.myPhotoDescription,
                  exiftool(folder() + record.myPhotoName, "UserComment"));
        const QString cell = cells + record.myPhotoName + ".png";
        EXPECT_EQ(QImage(cell).size(), QImage(cells + reference + ".jpg.png").size());
        EXPECT_LT(shownDifference(cell, cells + reference + ".jpg.png"), 4.0) << cell;
    }
}
