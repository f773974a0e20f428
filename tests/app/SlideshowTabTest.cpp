// The Slideshow tab of the main window: its settings from the registry, its action, and the two
// boxes that keep a way of moving between slides.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

#include "app/FormChecks.h"
#include "app/MainWindow.h"
#include "app/SettingsForm.h"
#include "generators/OutputKinds.h"

TEST(SlideshowTab, SettingsActionAndAWayToMove) {
    MainWindow window;
    auto* tabs = window.findChild<QTabWidget*>();
    ASSERT_TRUE(tabs && tabs->count() >= 2);
    EXPECT_EQ(tabs->tabText(1), "Slideshow");
    QWidget* tab = tabs->widget(1);
    QStringList buttons;
    for (const QPushButton* b : tab->findChildren<QPushButton*>()) buttons << b->text();
    EXPECT_TRUE(buttons.contains("Create Slideshow…") && buttons.contains("Add Item") &&
                buttons.contains("Clear Items"))
        << buttons.join(", ").toStdString();
    expectEveryControlShown(QStringLiteral("slideshow"), *tab);

    auto* autorun = tab->findChild<QCheckBox*>("cbSsAutorun");
    auto* arrows = tab->findChild<QCheckBox*>("cbSsShowNavigationBtn");
    ASSERT_TRUE(autorun && arrows && autorun->isChecked() && arrows->isChecked());
    autorun->setChecked(false);  // the buttons stay
    EXPECT_TRUE(arrows->isChecked() && !autorun->isChecked());
    arrows->setChecked(false);  // now the show runs by itself
    EXPECT_TRUE(autorun->isChecked() && !arrows->isChecked());
    autorun->setChecked(false);  // and without the timer the buttons come back
    EXPECT_TRUE(arrows->isChecked() && !autorun->isChecked());

    // A colour typed in the dot colour's hex field.
    auto* dot = tab->findChild<QWidget*>("tfSsHTMLDotColor")->findChild<QLineEdit*>();
    dot->setText("#a1b2c3");
    Q_EMIT dot->editingFinished();
    EXPECT_EQ(dot->text(), "A1B2C3");
}
