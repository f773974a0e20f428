// Presets databases damaged for real, through the manager and the command line, and stored rows
// that cannot be read.
#include <QDate>
#include <iostream>

#include "presets/PresetFixtures.h"
#include "presets/dbViewController.h"

using namespace presetfixtures;
using namespace testsupport;

// Every damage through every database action of the command line: each names the file and its
// fault, fails, and nothing writes to the file. `preset repair` moves it aside (beside an earlier
// one of the same day, which stays), or leaves a locked one where it is.
TEST(PresetFaults, DamagedDatabaseIsNamedNeverWrittenAndMovedAside) {
    for (const DamageCase& c : damages) {
        SCOPED_TRACE(c.name);
        const QString dir = freshDir(QStringLiteral("presets-damage-") + c.name);
        // orvella's own data folder under dir holds its presets database.
        const QString db = dir + "data/KeldraCom/klOrvella3.sql", file = dir + "a.orvpreset";
        const QProcessEnvironment env = homeIn(dir);
        savePresets(db, {"A", "B"});
        ASSERT_TRUE(cPresetManager::writePresetFile(
            file,
            cPresetManager::addPresetValuesToPLIST(SettingsStore(OutputKinds::registry()),
                                                   *PresetLayouts::find("gallery")),
            nullptr));
        const QString earlier = db + ".damaged-" + QDate::currentDate().toString(Qt::ISODate);
        writeFile(earlier, "an earlier one");
        Damaged damaged(db, c.name);
        if (!damaged.skipped.isEmpty()) {
            std::cout << "[  SKIPPED ] " << c.name << ": " << damaged.skipped << "\n";
            continue;
        }
        const QString before = Damaged::state(db);
        QString out, err;
        for (const QStringList& args :
             std::vector<QStringList>{{"preset", "list", "gallery"},
                                      {"preset", "save", "gallery", "New"},
                                      {"preset", "save", "gallery", "New", "--preset", "A"},
                                      {"preset", "remove", "A"},
                                      {"preset", "import", file, "I"}}) {
            EXPECT_EQ(orvellaOut(1, args, &err, &env), "");
            EXPECT_TRUE(err.startsWith("orvella preset: Presets Db failed to open.\n" + db + ": " +
                                       c.reason))
                << err;
            EXPECT_EQ(err.contains("`orvella preset repair` moves it aside"), c.movable);
        }
        EXPECT_EQ(Damaged::state(db), before);

        EXPECT_EQ(orvella({"preset", "repair"}, &out, &err, &env), c.movable ? 0 : 1);
        EXPECT_EQ(readFile(earlier), "an earlier one");
        if (!c.movable) {
            EXPECT_TRUE(err.contains(c.reason) && err.endsWith("; nothing was moved\n")) << err;
            EXPECT_EQ(Damaged::state(db), before);
            continue;
        }
        EXPECT_EQ(out, earlier + "-2\n") << err;
        EXPECT_EQ(Damaged::state(earlier + "-2"), before);
        EXPECT_EQ(orvellaOut(0, {"preset", "list", "gallery"}, nullptr, &env), "");
        orvellaOut(0, {"preset", "save", "gallery", "A"}, nullptr, &env);
        EXPECT_EQ(orvella({"preset", "repair"}, &out, &err, &env), 0);
        EXPECT_EQ(out + err, "orvella preset: " + db + " has no fault; nothing was moved.\n");
    }
}

// Rows that cannot be read are listed as damaged, by name where it survives, under every kind
// when their kind is lost, and loading one says why; the other rows load, save and remove as
// ever, and no control character of a row reaches the terminal or a page.
TEST(PresetFaults, DamagedRowsAreListedAndTheOthersWork) {
    const QString dir = freshDir("presets-damaged-rows");
    const QString db = dir + "data/KeldraCom/klOrvella3.sql";
    const QProcessEnvironment env = homeIn(dir);
    savePresets(db, {"Good", "NoValue", "Binary", "Nameless", "Kindless", "Bell"});
    sqlite(db,
           "UPDATE Presets SET StrField3 = 'Ti' || char(27) || '[2Jtle' || char(7), "
           "StrField61 = 'one' || char(1) || 'two' WHERE NameOfPreset = 'Good';"
           "UPDATE Presets SET StrField9 = NULL WHERE NameOfPreset = 'NoValue';"
           "UPDATE Presets SET StrField3 = X'FF00' WHERE NameOfPreset = 'Binary';"
           "UPDATE Presets SET NameOfPreset = NULL WHERE NameOfPreset = 'Nameless';"
           "UPDATE Presets SET Process = NULL WHERE NameOfPreset = 'Kindless';"
           "UPDATE Presets SET NameOfPreset = 'Bell' || char(7) WHERE NameOfPreset = 'Bell';");
    const QString said = "orvella preset: " + db + ": ";
    const QString noValue =
        "the preset \"NoValue\" cannot be read (row 2: field 9 holds no value)\n";
    const QString damaged[] = {
        noValue, "the preset \"Binary\" cannot be read (row 3: field 3 is not text)\n",
        "a preset cannot be read (row 4: field 0 holds no value)\n",
        "the preset \"Kindless\" cannot be read (row 5: field 1 holds no value)\n"};
    // clang-format off
    const std::vector<std::tuple<QStringList, int, QString, QString>> runs = {
        {{"preset", "list", "gallery"}, 1, "Good\nBell\uFFFD\n",
         said + damaged[0] + said + damaged[1] + said + damaged[2] + said + damaged[3]},
        {{"preset", "list", "slideshow"}, 1, "", said + damaged[3]},
        {{"preset", "save", "gallery", "New", "--preset", "NoValue"}, 1, "", said + noValue},
        {{"preset", "save", "gallery", "New", "--preset", "Good"}, 0, "New\n", ""},
        {{"preset", "remove", "NoValue"}, 0, "", ""},
        {{"preset", "list", "gallery"}, 1, "Good\nBell\uFFFD\nNew\n",
         said + damaged[1] + said + damaged[2] + said + damaged[3]},
    };
    // clang-format on
    for (const auto& [args, code, out, err] : runs) {
        QString printed, told;
        EXPECT_EQ(orvella(args, &printed, &told, &env), code) << args.join(' ');
        EXPECT_EQ(printed + told, out + err) << args.join(' ');
    }
    const QString photos = dir + "photos/";
    makePhoto(photos + "a.png");
    orvellaOut(0,
               {"generate", "gallery", "--out", dir + "site", "--preset", "New", "--set",
                "btShowTitle=1", photos},
               nullptr, &env);
    const QByteArray pages =
        readFile(dir + "site/myIndex.html") + readFile(dir + "site/index.html");
    EXPECT_TRUE(pages.contains("Ti[2Jtle") && pages.contains("onetwo"));
    for (const char c : pages) EXPECT_TRUE(uchar(c) >= 0x20 || c == '\n' || c == '\t') << int(c);
}
