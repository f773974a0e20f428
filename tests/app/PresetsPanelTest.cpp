#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "app/PresetsPanel.h"
#include "app/SupportDialogs.h"
#include "generators/OutputKinds.h"
#include "services/SupportFolders.h"
#include "support/TestSupport.h"

namespace {

QStringList listed(const QListWidget* list) {
    QStringList names;
    for (int i = 0; i < list->count(); ++i) names.append(list->item(i)->text());
    return names;
}

}  // namespace

// Add, list, load, remove, export and import through the panel's own widgets.
TEST(PresetsPanelTest, AddLoadRemoveExportImport) {
    const QString dir = testsupport::freshDir("app-presets-panel");
    SettingsStore settings(OutputKinds::registry());
    RecordingUserInterface ui;
    PresetsPanel panel("gallery", settings, ui, dir + "p.sql");
    auto* list = panel.findChild<QListWidget*>("myPresetsTableView");
    auto* name = panel.findChild<QLineEdit*>("tfInputPDM");
    auto click = [&](const char* button) { panel.findChild<QPushButton*>(button)->click(); };
    ASSERT_TRUE(list && name);
    EXPECT_EQ(list->count(), 0);

    ASSERT_TRUE(settings.set("tfPageTitle", "First"));
    name->setText("Summer");
    click("btAddPreset");
    ASSERT_TRUE(settings.set("tfPageTitle", "Second"));
    click("btAddPreset");
    EXPECT_EQ(listed(list), QStringList({"Summer", "Summer_[x]"}));

    QStringList loadedKinds;
    QObject::connect(&panel, &PresetsPanel::loaded,
                     [&](const QString& kind) { loadedKinds.append(kind); });
    list->setCurrentRow(0);
    click("btLoadPreset");
    EXPECT_EQ(settings.text("tfPageTitle"), "First");
    EXPECT_EQ(loadedKinds, QStringList({"gallery"}));

    // A refusal reaches the alert sheet and the panel goes on.
    name->setText("it's");
    click("btAddPreset");
    ASSERT_EQ(ui.alerts.size(), 1u);
    EXPECT_EQ(ui.alerts[0].description, "Error updating table.");
    EXPECT_EQ(list->count(), 2);

    ASSERT_TRUE(panel.exportTo(dir + "look.orvpreset"));
    ASSERT_TRUE(settings.set("tfPageTitle", "Changed"));
    ASSERT_TRUE(panel.importFrom(dir + "look.orvpreset"));
    EXPECT_EQ(settings.text("tfPageTitle"), "First");
    testsupport::writeFile(dir + "bad.orvpreset", "<html/>");
    EXPECT_FALSE(panel.importFrom(dir + "bad.orvpreset"));
    ASSERT_EQ(ui.alerts.size(), 2u);
    EXPECT_TRUE(ui.alerts[1].description.contains("bad.orvpreset is not a preset file"));

    list->setCurrentRow(0);
    click("btRemovePreset");
    EXPECT_EQ(listed(list), QStringList({"Summer_[x]"}));
}

// The pattern chooser writes the pattern path and shows the image.
TEST(PresetsPanelTest, PatternChooserSetsThePath) {
    const QString dir = testsupport::freshDir("app-pattern-chooser");
    testsupport::makePhoto(dir + "p.png", 20, 10);
    SettingsStore settings(OutputKinds::registry());
    PatternChooser chooser("Tb", "tfTbPatternPath", settings);
    int chosen = 0;
    QObject::connect(&chooser, &PatternChooser::chosen, [&] { ++chosen; });
    chooser.setPattern(dir + "p.png");
    EXPECT_EQ(settings.text("tfTbRdPatternPath"), dir + "p.png");
    EXPECT_EQ(chosen, 1);
    EXPECT_FALSE(chooser.findChild<QLabel*>("iwTbPatternImage")->pixmap().isNull());
    EXPECT_TRUE(chooser.findChild<QWidget*>("pubTbImageLookUp"));
}
