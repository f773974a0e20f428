// The Responsive Grid tab of the window: its settings form, and the Highlight box it enables.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QImage>
#include <QPushButton>
#include <QTabWidget>

#include "app/FormChecks.h"
#include "app/MainWindow.h"
#include "app/PhotoGridView.h"
#include "app/SettingsForm.h"
#include "generators/OutputKinds.h"
#include "support/TestSupport.h"

// Every grid control is shown under a label of its own in its section, with the caption buttons.
TEST(GridTab, FormShowsEveryControl) {
    SettingsStore store(OutputKinds::registry());
    SettingsForm form(QStringLiteral("grid"), store);
    EXPECT_GE(expectEveryControlShown(QStringLiteral("grid"), form), 25);
}

// The grid comes after the gallery (the slideshow, when there, between them) and is the one tab
// where the Highlight box can be used.
TEST(GridTab, ThirdKindEnablesHighlight) {
    const QList<OutputKind>& kinds = OutputKinds::all();
    ASSERT_EQ(kinds.last().name, "grid");
    EXPECT_EQ(kinds.first().name, "gallery");
    EXPECT_TRUE(kinds.last().usesHighlight && !kinds.first().usesHighlight);

    const QString dir = testsupport::freshDir("app-grid-tab");
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    ASSERT_TRUE(image.save(dir + "a.png"));
    MainWindow window;
    window.addPhotos({dir + "a.png"});
    QAbstractItemView* view = window.findChild<PhotoGridView*>();
    ASSERT_TRUE(view);
    QElapsedTimer timer;
    timer.start();
    while (view->model()->rowCount() == 0 && timer.elapsed() < 20000)
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    ASSERT_EQ(view->model()->rowCount(), 1);
    view->setCurrentIndex(view->model()->index(0, 0));

    auto* tabs = window.findChild<QTabWidget*>();
    QCheckBox* highlight = nullptr;
    for (QCheckBox* box : window.findChildren<QCheckBox*>())
        if (box->text() == "Highlight") highlight = box;
    ASSERT_TRUE(tabs && highlight);
    EXPECT_EQ(tabs->tabText(tabs->count() - 1), "Responsive Grid");
    tabs->setCurrentIndex(0);
    EXPECT_FALSE(highlight->isEnabled());
    tabs->setCurrentIndex(tabs->count() - 1);
    EXPECT_TRUE(highlight->isEnabled());
    bool hasAction = false;
    for (QPushButton* button : tabs->widget(tabs->count() - 1)->findChildren<QPushButton*>())
        hasAction = hasAction || button->text().startsWith("Create Responsive Grid");
    EXPECT_TRUE(hasAction);
}
