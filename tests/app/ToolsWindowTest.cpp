#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QTableWidget>
#include <QTreeWidget>

#include "app/FormChecks.h"
#include "app/MetadataPanels.h"
#include "app/SettingsForm.h"
#include "app/ToolsPanels.h"
#include "app/ToolsWindow.h"
#include "generators/OutputKinds.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {

QString photo(const QString& path, QColor colour = QColor(128, 128, 128)) {
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(colour);
    EXPECT_TRUE(image.save(path));
    return path;
}

QString cell(const QTableWidget* table, int row, int column) {
    return table->item(row, column) ? table->item(row, column)->text() : QString();
}

}  // namespace

TEST(ToolsWindowTest, FourTabsAndAToolsMenu) {
    QMainWindow main;
    addToolsMenu(&main);
    QMenu* tools = nullptr;
    for (QAction* action : main.menuBar()->actions())
        if (action->text() == "&Tools") tools = action->menu();
    ASSERT_TRUE(tools);
    ASSERT_EQ(tools->actions().size(), 4);
    tools->actions()[2]->trigger();
    auto* window = main.findChild<ToolsWindow*>();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->tabs()->count(), 4);
    EXPECT_EQ(window->tabs()->currentWidget(), window->metadataEditor());
    tools->actions()[0]->trigger();  // the same window, another tab
    EXPECT_EQ(main.findChildren<ToolsWindow*>().size(), 1);
    EXPECT_EQ(window->tabs()->currentWidget(), window->watermark());
}

TEST(ToolsWindowTest, EnhancementChoiceSetsTheDefaultValue) {
    ColorEffectsPanel panel;
    QLineEdit* value = panel.tfDefaultEnhanceValue;
    EXPECT_EQ(value->text(), "0.0");
    for (const auto& [index, typed, shown] :
         std::vector<std::tuple<int, QString, QString>>{{2, "9", "0.75"},
                                                        {1, "9", "0.5"},
                                                        {4, "3.3", "3.3"},
                                                        {3, "9", "0.0"},
                                                        {10, "1.5", "1.5"},
                                                        {0, "9", "0.0"}}) {
        value->setText(typed);
        panel.pubEnhanceChoice->setCurrentIndex(index);
        EXPECT_EQ(value->text(), shown) << index;
    }
}

TEST(ToolsWindowTest, ColourEffectsRefuseThePhotosFolderAndWriteElsewhere) {
    const QString dir = freshDir("app-tools/effects");
    const QString file = photo(dir + "a.jpg");
    ColorEffectsPanel panel;
    panel.batch->setPhotos({file, photo(dir + "b.PNG")});
    panel.batch->setOutputFolder(dir);
    EXPECT_FALSE(panel.apply(true));
    panel.batch->setOutputFolder(dir + "out");
    panel.pubColorConversions->setCurrentIndex(4);
    ASSERT_TRUE(panel.apply(true));
    panel.batch->waitForFinished();
    EXPECT_EQ(panel.batch->logLines(),
              (QStringList{file + ": OK",
                           dir + "b.PNG: skipped (not a tif, tiff, jpg, jpeg or png file name)"}));
    const QImage sepia(dir + "out/a.jpg");  // the effect chosen, not another
    EXPECT_GT(qRed(sepia.pixel(30, 20)), qBlue(sepia.pixel(30, 20)) + 20);
}

TEST(ToolsWindowTest, WatermarkPanelShowsEveryControlAndStampsWithTheSecondFont) {
    const QString dir = freshDir("app-tools/watermark");
    WatermarkPanel panel;
    expectEveryControlShown("watermark", *panel.form());
    // The position grid and the form's popup show the same setting.
    auto grids = panel.findChildren<PositionGrid*>();
    ASSERT_EQ(grids.size(), 2);
    grids[0]->findChildren<QAbstractButton*>()[2]->click();
    EXPECT_EQ(panel.settings().text("scWaterMarkPos"), "2");
    EXPECT_EQ(panel.form()->findChild<QComboBox*>("scWaterMarkPos")->currentIndex(), 2);
    panel.form()->findChild<QComboBox*>("scWaterMarkPos")->setCurrentIndex(6);
    EXPECT_TRUE(grids[0]->findChildren<QAbstractButton*>()[6]->isChecked());

    const QString file = photo(dir + "a.png");
    panel.batch()->setPhotos({file});
    panel.batch()->setOutputFolder(dir + "out");
    ASSERT_TRUE(panel.settings().text("cbFontList").isEmpty());
    ASSERT_TRUE(panel.stamp(true));
    panel.batch()->waitForFinished();
    EXPECT_EQ(panel.batch()->logLines(), QStringList{file + ": OK"});
    const QStringList fonts = OutputKinds::registry().find("cbFontList")->items;
    ASSERT_GT(fonts.size(), 1);
    EXPECT_EQ(panel.settings().text("cbFontList"), fonts[1]);
    EXPECT_EQ(panel.form()->findChild<QComboBox*>("cbFontList")->currentText(), fonts[1]);

    EXPECT_EQ(panel.preview()->text(), "No image");
    panel.settings().setText("tfWaterMarkImageFilePath", photo(dir + "mark.png", Qt::red));
    panel.showWatermarkImage();
    EXPECT_FALSE(panel.preview()->pixmap().isNull());
}

TEST(ToolsWindowTest, BatchCommentLogsTwoOfThreeAndStopsTheBarShort) {
    const QString dir = freshDir("app-tools/batch");
    const QStringList files = {photo(dir + "1.jpg"), photo(dir + "2.jpg"), photo(dir + "3.jpg")};
    ASSERT_TRUE(QFile::setPermissions(files[1], QFile::ReadOwner | QFile::ReadGroup));
    BatchCommentPanel panel;
    panel.tfEMDuserCommentField->setText("Window batch");
    ASSERT_TRUE(panel.runBatch(files));
    panel.waitForFinished();
    ASSERT_EQ(panel.theLogTable->rowCount(), 2);  // what each row holds: tests/metadata
    EXPECT_EQ(cell(panel.theLogTable, 1, 7), files[2]);
    EXPECT_EQ(std::pair(panel.lastProgressValue, panel.lastProgressMaximum), std::pair(2, 3));
    EXPECT_TRUE(panel.myProgressBarke->isHidden());
    EXPECT_TRUE(panel.status->text().contains("2.jpg (the file is read-only)"))
        << panel.status->text();
}

// The editor shows a photo's comment and tree, writes the comment and logs it; a file that is not
// an image shows the "not supported" text and no tree, and applying fails and is logged.
TEST(ToolsWindowTest, MetadataEditorShowsEditsAndLogs) {
    const QString dir = freshDir("app-tools/editor");
    const QString file = photo(dir + "a.jpg");
    runProgram("exiftool",
               {"-q", "-overwrite_original", "-UserComment=Before", "-IPTC:City=Lyon", file});
    writeFile(dir + "notes.jpg", "plain words");
    MetadataEditorPanel panel;
    for (const auto& [path, shown, tree, logged] :
         {std::tuple{file, "Before", "Exif IPTC", "OK"},
          std::tuple{dir + "notes.jpg", "This file type is not supported.", "", "Failed"}}) {
        panel.hiDoNothing(path);
        panel.waitForFinished();
        EXPECT_EQ(panel.tfExifUserComment->text(), shown);
        QStringList top;
        for (int i = 0; i < panel.mTree->topLevelItemCount(); ++i)
            top << panel.mTree->topLevelItem(i)->text(0);
        EXPECT_EQ(top.mid(0, 2).join(' '), tree);
        panel.tfExifUserComment->setText("After");
        panel.btApplyExifUserComment();
        panel.waitForFinished();
        EXPECT_EQ(cell(panel.themMetaLogTable, panel.themMetaLogTable->rowCount() - 1, 3), logged);
    }
    EXPECT_EQ(exiftool(file, "UserComment"), "After");
    EXPECT_EQ(cell(panel.themMetaLogTable, 0, 5), "a.jpg");
}
