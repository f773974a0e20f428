#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QSet>

#include "app/CollectionDragModel.h"
#include "app/PhotoCellDelegate.h"
#include "app/PhotoGridView.h"
#include "app/SettingsForm.h"
#include "support/TestSupport.h"

void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}

namespace {

// One application for the whole program: widgets need it.
class ApplicationEnvironment : public ::testing::Environment {
  public:
    void SetUp() override { app_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

  private:
    int argc_ = 1;
    char name_[8] = "test";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};
const auto* const environment = ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

QStringList names(const PhotoCollection& collection) {
    QStringList result;
    for (const cCollectionViewItem& record : collection.arrangedObjects())
        result.append(record.myPhotoName);
    return result;
}

QList<cCollectionViewItem> records(const QStringList& names) {
    QList<cCollectionViewItem> result(names.size());
    for (qsizetype i = 0; i < names.size(); ++i) result[i].myPhotoName = names[i];
    return result;
}

}  // namespace

TEST(SettingsFormTest, EditsLandInTheStoreAndRefreshShowsIt) {
    SettingsStore store;
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
    form.findChild<QComboBox*>("scImageCropThumbPos")->setCurrentIndex(1);
    form.findChild<QCheckBox*>("btShowFileName")->setChecked(true);
    const std::vector<std::pair<QString, QString>> expected = {
        {"tfPageTitle", "Summer 2024"},      {"tfHTMLbackgroundColor", "ABCDEF"},
        {"ascNSColorWellObjBGCt", "ABCDEF"}, {"ifNumberOfColumns", "4"},
        {"pbJPGCompression", "4"},           {"pubTableTemplateChoice", "0"},
        {"scImageCropThumbPos", "1"},        {"btShowFileName", "1"}};
    for (const auto& [name, value] : expected)
        EXPECT_EQ(store.text(name), value) << qPrintable(name);

    ASSERT_TRUE(store.set("tfNumberOfRows", "7") && store.set("pbTitleFontWeight", "Bold") &&
                store.set("cbPgShowMetaData", "0"));
    form.refresh();
    EXPECT_EQ(form.findChild<QLineEdit*>("ifNumberOfRows")->text(), "7");
    EXPECT_EQ(form.findChild<QComboBox*>("pbTitleFontWeight")->currentText(), "Bold");
    EXPECT_FALSE(form.findChild<QCheckBox*>("cbPgShowMetaData")->isChecked());

    QSet<QString> labels;  // every control shown once, under a label of its own in its section
    for (const ControlSpec* control : ControlRegistry::standard().controls("gallery")) {
        EXPECT_FALSE(control->label.isEmpty() || control->section.isEmpty())
            << qPrintable(control->name);
        EXPECT_FALSE(labels.contains(control->section + u'/' + control->label))
            << qPrintable(control->name);
        labels.insert(control->section + u'/' + control->label);
        EXPECT_TRUE(form.findChild<QWidget*>(control->name)) << qPrintable(control->name);
    }
}

TEST(CollectionDragModelTest, DroppedFilesAreAddedInOrderFoldersSortedOthersIgnored) {
    const QString dir = testsupport::freshDir("app-drop");
    QDir(dir).mkpath("folder/inner.jpg");  // a folder with a photo's name is not a photo
    for (const QString name : {"b.PNG", "a.jpeg", "notes.txt", "folder/img10.JPG",
                               "folder/Img2.tif", "folder/img1.TIFF", "folder/clip.mov"}) {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        ASSERT_TRUE(image.save(dir + name, "PNG"));
    }
    const QList<QUrl> urls = {
        QUrl::fromLocalFile(dir + "b.PNG"),     QUrl::fromLocalFile(dir + "folder"),
        QUrl::fromLocalFile(dir + "notes.txt"), QUrl("https://example.com/x.jpg"),
        QUrl::fromLocalFile(dir + "a.jpeg"),    QUrl::fromLocalFile(dir + "gone.jpg")};
    const QStringList files = CollectionDragModel::photoFilesFromUrls(urls);
    EXPECT_EQ(files, QStringList({dir + "b.PNG", dir + "folder/img1.TIFF", dir + "folder/Img2.tif",
                                  dir + "folder/img10.JPG", dir + "a.jpeg"}));

    CollectionDragModel model;
    model.setCellImageSize(0);
    model.appendRecords(records({"first"}));
    QStringList announced;
    QObject::connect(&model, &CollectionDragModel::photosDropped,
                     [&](const QStringList& dropped) { announced = dropped; });
    QMimeData data, textOnly;
    data.setUrls(urls);
    textOnly.setUrls({QUrl::fromLocalFile(dir + "notes.txt")});
    EXPECT_FALSE(model.canDropMimeData(&textOnly, Qt::CopyAction, -1, -1, {}));
    // Dropped on the grid, before the first photo: added at the end all the same.
    PhotoGridView grid;
    grid.setModel(&model);
    QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(grid.viewport(), &enter);  // makes the grid the drop target
    QDropEvent drop(QPointF(2, 2), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(grid.viewport(), &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(names(model),
              QStringList({"first", "b.PNG", "img1.TIFF", "Img2.tif", "img10.JPG", "a.jpeg"}));
    EXPECT_EQ(announced, files);
}

TEST(CollectionDragModelTest, InternalDragMovesAsTheCollectionDoes) {
    CollectionDragModel dragged;
    dragged.appendRecords(records({"a", "b", "c", "d", "e"}));
    PhotoCollection reference;
    reference.appendRecords(records({"a", "b", "c", "d", "e"}));
    std::unique_ptr<QMimeData> data(dragged.mimeData({dragged.index(2), dragged.index(0)}));
    dragged.dropMimeData(data.get(), Qt::MoveAction, -1, -1, {});  // on the empty space after all
    reference.acceptDrop({0, 2}, 5);
    EXPECT_EQ(names(dragged), names(reference));

    // The grid's drop index: before a cell from its left half, after it from its right half, the
    // end below the last line.
    PhotoGridView grid;
    grid.setItemDelegate(new PhotoCellDelegate(100, &grid));
    grid.setModel(&dragged);
    grid.resize(500, 600);
    grid.show();
    const QRect third = grid.visualRect(dragged.index(2));
    ASSERT_TRUE(third.isValid());
    EXPECT_EQ(grid.dropIndexAt(third.center() - QPoint(10, 0)), 2);
    EXPECT_EQ(grid.dropIndexAt(third.center() + QPoint(10, 0)), 3);
    EXPECT_EQ(grid.dropIndexAt(QPoint(5, 590)), 5);
}
