#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMimeData>

#include "app/CollectionDragModel.h"
#include "app/SettingsForm.h"
#include "generators/OutputKinds.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {

// One application for the whole program: widgets need it.
struct ApplicationEnvironment : ::testing::Environment {
    int argc = 1;
    char* argv[2] = {const_cast<char*>("test"), nullptr};
    std::unique_ptr<QApplication> app;
    void SetUp() override {
        // The presets database and settings of the window stay in the build's test output.
        qputenv("XDG_DATA_HOME", ORVELLA_TEST_OUTPUT "/xdg-data");
        qputenv("XDG_CONFIG_HOME", ORVELLA_TEST_OUTPUT "/xdg-config");
        app = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { app.reset(); }
};
const auto* const environment = ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

QString names(const PhotoCollection& collection) {
    QStringList result;
    for (const cCollectionViewItem& record : collection.arrangedObjects())
        result.append(record.myPhotoName);
    return result.join(' ');
}

}  // namespace

TEST(SettingsFormTest, EditsLandInTheStoreAndRefreshShowsIt) {
    SettingsStore store(OutputKinds::registry());
    SettingsForm form(QStringLiteral("gallery"), store);
    auto type = [&](const QString& name, const QString& text) {
        auto* edit = form.findChild<QLineEdit*>(name);
        if (!edit) edit = form.findChild<QWidget*>(name)->findChild<QLineEdit*>();  // colour row
        edit->setText(text);
        Q_EMIT edit->editingFinished();
        return edit->text();
    };
    EXPECT_EQ(type("tfPageTitle", "Summer 2024"), "Summer 2024");
    EXPECT_EQ(type("tfHTMLbackgroundColor", "#abcdef"), "ABCDEF");
    EXPECT_EQ(type("ifNumberOfColumns", "five"), "4");  // refused: the stored value comes back
    form.findChild<QComboBox*>("pbJPGCompression")->setCurrentIndex(3);  // titles "1" to "9"
    form.findChild<QComboBox*>("pubPhotoGalleryModel")->setCurrentIndex(0);
    form.findChild<QCheckBox*>("btShowFileName")->setChecked(true);
    // Read back by canonical names and by aliases.
    for (const QString set :
         {"tfPageTitle=Summer 2024", "ascNSColorWellObjBGCt=ABCDEF", "ifNumberOfColumns=4",
          "pbJPGCompression=4", "pubTableTemplateChoice=0", "btShowFileName=1"})
        EXPECT_EQ(store.text(set.section('=', 0, 0)), set.section('=', 1));

    ASSERT_TRUE(store.set("tfNumberOfRows", "7") && store.set("pbTitleFontWeight", "Bold"));
    form.refresh();
    EXPECT_EQ(form.findChild<QLineEdit*>("ifNumberOfRows")->text(), "7");
    EXPECT_EQ(form.findChild<QComboBox*>("pbTitleFontWeight")->currentText(), "Bold");
}

// Dropped files are announced in order, the photos of a folder sorted by name, other files and URLs
// ignored; the collection is left to the window's reader.
TEST(CollectionDragModelTest, DroppedFilesAreAnnouncedInOrderFoldersSortedOthersIgnored) {
    const QString dir = freshDir("app-drop");
    QDir(dir).mkpath("folder/inner.jpg");  // a folder with a photo's name is not a photo
    for (const QString name :
         {"b.PNG", "a.jpeg", "folder/img10.JPG", "folder/Img2.tif", "folder/img1.TIFF"})
        makePhoto(dir + name);
    for (const QString name : {"notes.txt", "folder/clip.mov"}) writeFile(dir + name, "x");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(dir + "b.PNG"), QUrl::fromLocalFile(dir + "folder"),
                  QUrl::fromLocalFile(dir + "notes.txt"), QUrl("https://example.com/x.jpg"),
                  QUrl::fromLocalFile(dir + "a.jpeg"), QUrl::fromLocalFile(dir + "gone.jpg")});
    CollectionDragModel model;
    QStringList announced;
    QObject::connect(&model, &CollectionDragModel::photosDropped,
                     [&](const QStringList& dropped) { announced = dropped; });
    EXPECT_TRUE(model.dropMimeData(&data, Qt::CopyAction, 0, 0, {}));
    EXPECT_EQ(model.count(), 0);
    EXPECT_EQ(announced,
              QStringList({dir + "b.PNG", dir + "folder/img1.TIFF", dir + "folder/Img2.tif",
                           dir + "folder/img10.JPG", dir + "a.jpeg"}));
}

// Dragging photos within the grid carries their rows to the collection's drop (its rule:
// tests/collection).
TEST(CollectionDragModelTest, InternalDragMovesTheDraggedPhotos) {
    QList<cCollectionViewItem> records(5);
    for (int i = 0; i < 5; ++i) records[i].myPhotoName = QString(QChar('a' + i));
    CollectionDragModel model;
    model.appendRecords(records);
    std::unique_ptr<QMimeData> data(model.mimeData({model.index(2), model.index(0)}));
    model.dropMimeData(data.get(), Qt::MoveAction, -1, 0, {});
    EXPECT_EQ(names(model), "b c e a d");
    data.reset(model.mimeData({model.index(4)}));
    model.dropMimeData(data.get(), Qt::MoveAction, 0, 0, {});
    EXPECT_EQ(names(model), "d b c e a");
}
