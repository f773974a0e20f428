#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "app/PresetsPanel.h"
#include "app/SupportDialogs.h"
#include "generators/OutputKinds.h"
#include "presets/PresetFixtures.h"
#include "presets/dbViewController.h"
#include "support/TestSupport.h"

using namespace testsupport;

namespace {

QStringList listed(const QListWidget* list) {
    QStringList names;
    for (int i = 0; i < list->count(); ++i) names.append(list->item(i)->text());
    return names;
}

}  // namespace

TEST(PresetsPanelTest, AddLoadRemoveExportImport) {
    const QString dir = freshDir("app-presets-panel");
    SettingsStore settings(OutputKinds::registry());
    RecordingUserInterface ui;
    PresetsPanel panel("gallery", settings, ui, dir + "p.sql");
    auto* list = panel.findChild<QListWidget*>("myPresetsTableView");
    auto* name = panel.findChild<QLineEdit*>("tfInputPDM");
    auto click = [&](const char* button) { panel.findChild<QPushButton*>(button)->click(); };
    ASSERT_TRUE(list && name);
    panel.show();

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
    EXPECT_TRUE(ui.alerts[0].description.startsWith("Error updating table.\n"));
    EXPECT_EQ(list->count(), 2);

    ASSERT_TRUE(panel.exportTo(dir + "look.orvpreset"));
    ASSERT_TRUE(settings.set("tfPageTitle", "Changed"));
    ASSERT_TRUE(panel.importFrom(dir + "look.orvpreset"));
    EXPECT_EQ(settings.text("tfPageTitle"), "First");
    writeFile(dir + "bad.orvpreset", "<html/>");
    EXPECT_FALSE(panel.importFrom(dir + "bad.orvpreset"));
    ASSERT_EQ(ui.alerts.size(), 2u);
    EXPECT_TRUE(ui.alerts[1].description.contains("bad.orvpreset is not a preset file"));

    list->setCurrentRow(0);
    click("btRemovePreset");
    EXPECT_EQ(listed(list), QStringList({"Summer_[x]"}));
}

// A damaged database is named with its fault above the list and moved aside by the panel's offer
// where that cures it (the faults themselves: tests/presets); a stored preset that cannot be read
// is listed as damaged and refused with its reason.
TEST(PresetsPanelTest, DamageIsShownAndMovedAside) {
    using namespace presetfixtures;
    dbViewController::lockWaitMs = 200;
    SettingsStore settings(OutputKinds::registry());
    for (const DamageCase& c : damages) {
        SCOPED_TRACE(c.name);
        const QString db = freshDir(QString("app-presets-") + c.name) + "p.sql";
        savePresets(db, {"A"});
        Damaged damaged(db, c.name);
        if (!damaged.skipped.isEmpty()) continue;  // said by the presets tests
        RecordingUserInterface ui;
        PresetsPanel panel("gallery", settings, ui, db);
        panel.refreshList();
        auto* problem = panel.findChild<QLabel*>("tfPresetsProblem");
        auto* repair = panel.findChild<QPushButton*>("btRepairPresets");
        EXPECT_TRUE(
            !problem->isHidden() &&
            problem->text().startsWith("Presets Db failed to open.\n" + db + ": " + c.reason))
            << problem->text();
        EXPECT_EQ(repair->isHidden(), !c.movable);
        EXPECT_EQ(panel.findChild<QListWidget*>("myPresetsTableView")->count(), 0);
        if (!c.movable) continue;
        repair->click();
        EXPECT_TRUE(problem->isHidden() && repair->isHidden());
        panel.findChild<QLineEdit*>("tfInputPDM")->setText("New");
        panel.findChild<QPushButton*>("btAddPreset")->click();
        EXPECT_EQ(listed(panel.findChild<QListWidget*>("myPresetsTableView")), QStringList{"New"});
    }

    const QString db = freshDir("app-presets-rows") + "p.sql";
    savePresets(db, {"Good", "Lost"});
    sqlite(db, "UPDATE Presets SET StrField9 = NULL WHERE NameOfPreset = 'Lost'");
    RecordingUserInterface ui;
    PresetsPanel panel("gallery", settings, ui, db);
    panel.refreshList();
    auto* list = panel.findChild<QListWidget*>("myPresetsTableView");
    EXPECT_EQ(listed(list), QStringList({"Good", "Lost (damaged)"}));
    const QString why = db + ": the preset \"Lost\" cannot be read (row 2: field 9 holds no value)";
    EXPECT_EQ(list->item(1)->toolTip(), why);
    list->setCurrentRow(1);
    panel.findChild<QPushButton*>("btLoadPreset")->click();
    ASSERT_EQ(ui.alerts.size(), 1u);
    EXPECT_EQ(ui.alerts[0].description, why);
}

TEST(PresetsPanelTest, PatternChooserSetsThePath) {
    const QString dir = freshDir("app-pattern-chooser");
    makePhoto(dir + "p.png", 20, 10);
    SettingsStore settings(OutputKinds::registry());
    PatternChooser chooser("Tb", "tfTbPatternPath", settings);
    int chosen = 0;
    QObject::connect(&chooser, &PatternChooser::chosen, [&] { ++chosen; });
    chooser.setPattern(dir + "p.png");
    EXPECT_EQ(settings.text("tfTbRdPatternPath"), dir + "p.png");
    EXPECT_EQ(chosen, 1);
    EXPECT_FALSE(chooser.findChild<QLabel*>("iwTbPatternImage")->pixmap().isNull());
}
