// The presets database read back with the sqlite3 program, and the layouts of the three kinds.
#include <QRegularExpression>

#include "presets/PresetFixtures.h"
#include "presets/cPresetManager.h"
#include "presets/dbViewController.h"

using namespace presetfixtures;
using Outcome = cPresetManager::Outcome;
using namespace testsupport;

namespace {

QString tablesOf(const QString& db) {
    QString out;
    runProgram("sqlite3", {db, ".tables"}, &out);
    return out.simplified();
}

QStringList names(cPresetManager& manager, const char* kind) {
    QList<cPresetManager::ListEntry> entries;
    QString message;
    EXPECT_EQ(manager.listPresets(*PresetLayouts::find(kind), &entries, &message), Outcome::Ok);
    QStringList names;
    for (const auto& entry : entries) names.append(entry.nmPreset);
    return names;
}

}  // namespace

TEST(PresetDatabase, FirstStartCreatesTheSchemaAndTwoRows) {
    const QString db = freshDir("presets-schema") + "sub/dir/klOrvella3.sql";
    ASSERT_TRUE(dbViewController(db).linkToPresetsDB());
    EXPECT_EQ(tablesOf(db), "AppBookmarks AppResource Presets");
    for (const QString table : {"Presets", "AppResource", "AppBookmarks"}) {
        SCOPED_TRACE(table.toStdString());
        const auto columns = sqliteRows(
            db, "SELECT name, type, pk FROM pragma_table_info('" + table + "') ORDER BY cid");
        ASSERT_EQ(columns.size(), 103);
        EXPECT_EQ(columns[0]["name"] + columns[0]["type"] + columns[0]["pk"], "IDINTEGER1");
        for (int at = 1; at <= 102; ++at)
            EXPECT_EQ(
                columns[at]["name"] + ' ' + columns[at]["type"].toUpper(),
                (table == u"Presets" ? column(at - 1) : "StrField" + QString::number(at - 1)) +
                    (at >= 22 && at <= 42 ? " INTEGER" : " TEXT"));
        // One first row, all fields but the first empty; no presets.
        auto rows = sqliteRows(db, "SELECT * FROM " + table);
        const QString first = table == u"AppResource" ? "appSys" : "myAppDestBookmark";
        ASSERT_EQ(rows.size(), table == u"Presets" ? 0 : 1);
        if (rows.isEmpty()) continue;
        EXPECT_EQ(rows[0].take("ID") + rows[0].take("StrField0"), "1" + first);
        EXPECT_EQ(QStringList(rows[0].values()).join(""), "");
    }
    // A later start finds the file and adds nothing.
    ASSERT_TRUE(dbViewController(db).linkToPresetsDB());
    EXPECT_EQ(sqliteRows(db, "SELECT * FROM AppResource, AppBookmarks").size(), 1);
}

// Neither a name nor a value becomes SQL: a single quote is refused before the database is
// reached (as it always was), other texts are stored as they are, and the tables stay.
TEST(PresetDatabase, QuotesAreRefusedAndInjectionsStayText) {
    const QString db = freshDir("presets-injection") + "p.sql";
    cPresetManager manager(db);
    const PresetLayout& gallery = *PresetLayouts::find("gallery");
    SettingsStore settings(OutputKinds::registry());
    savePresets(db, {"Keep"});
    const QString attack = "x'); DROP TABLE Presets; --";
    QString message;
    EXPECT_EQ(manager.addPresetValuesToDB(settings, gallery, attack, nullptr, &message),
              Outcome::Failed);
    EXPECT_EQ(message,
              "Error updating table.\nA preset's name or settings cannot hold a single quote (').");
    // Nor a value, typed or in a preset file.
    ASSERT_TRUE(settings.set("tfPageTitle", attack));
    EXPECT_EQ(manager.addPresetValuesToDB(settings, gallery, "A", nullptr, &message),
              Outcome::Failed);
    ASSERT_TRUE(cPresetManager::writePresetFile(
        db + ".orvpreset", cPresetManager::addPresetValuesToPLIST(settings, gallery), &message));
    EXPECT_EQ(manager.importPresetFile(db + ".orvpreset", "I", nullptr, &message), Outcome::Failed);
    // Reading, checking and removing with the attack as the value find nothing and drop nothing.
    dbViewController reader(db);
    EXPECT_TRUE(reader.checkForActionType("Presets", "NameOfPreset", attack).isEmpty());
    EXPECT_TRUE(
        reader.checkPresetNameFromTableNamed("Presets", "NameOfPreset", attack, "Process", "HTML1")
            .isNull());
    EXPECT_EQ(reader.removePresetFromDatabase("Presets", "NameOfPreset", attack),
              "preset not found");
    EXPECT_EQ(manager.hRemovePreset(attack, &message), Outcome::Refused);
    // Table and column names are identifiers, never text.
    EXPECT_FALSE(reader.insertRecordIntoTableNamed("Presets; DROP TABLE AppResource",
                                                   dbViewController::presetColumns(),
                                                   QStringList(102, "v")));
    // Without a single quote, the same kind of text is only text.
    const QString doubleQuoted = "x\"); DROP TABLE Presets; --";
    ASSERT_TRUE(settings.set("tfPageTitle", doubleQuoted));
    ASSERT_EQ(manager.addPresetValuesToDB(settings, gallery, doubleQuoted, nullptr, &message),
              Outcome::Ok);
    EXPECT_EQ(tablesOf(db), "AppBookmarks AppResource Presets");
    const auto rows = sqliteRows(db, "SELECT NameOfPreset, StrField3 FROM Presets ORDER BY ID");
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0]["NameOfPreset"] + rows[1]["NameOfPreset"] + rows[1]["StrField3"],
              "Keep" + doubleQuoted + doubleQuoted);
    EXPECT_EQ(sqliteRows(db, "SELECT ID FROM AppResource").size(), 1);
}

// The second and third saves of a name get "_[x]", per kind; removal goes across kinds; lists
// are oldest first; an entry's third value is the row after name and kind, up to where it recurs.
TEST(PresetDatabase, SuffixRemovalOrderAndListEntries) {
    const QString db = freshDir("presets-names") + "p.sql";
    cPresetManager manager(db);
    SettingsStore settings(OutputKinds::registry());
    QString message;
    auto save = [&](const char* kind, const QString& name) {
        QString stored;
        manager.addPresetValuesToDB(settings, *PresetLayouts::find(kind), name, &stored, &message);
        return stored;
    };
    for (const char* kind : {"slideshow", "gallery", "grid"}) {
        SCOPED_TRACE(kind);
        EXPECT_EQ(QStringList({save(kind, "Summer"), save(kind, "Summer"), save(kind, "Summer"),
                               save(kind, "Autumn")}),
                  QStringList({"Summer", "Summer_[x]", "Summer_[x]", "Autumn"}));
        EXPECT_EQ(names(manager, kind),
                  QStringList({"Summer", "Summer_[x]", "Summer_[x]", "Autumn"}));
    }
    const auto rows = sqliteRows(db, "SELECT Process, Action FROM Presets ORDER BY ID");
    ASSERT_EQ(rows.size(), 12);
    EXPECT_EQ(rows[0]["Process"] + rows[4]["Process"] + rows[8]["Process"],
              "SlideShow1HTML1ResponsiveGrid1");
    for (const auto& row : rows) EXPECT_EQ(row["Action"], "Batch");

    EXPECT_EQ(manager.hRemovePreset("Summer", &message), Outcome::Ok);
    for (const char* kind : {"slideshow", "gallery", "grid"})
        EXPECT_EQ(names(manager, kind), QStringList({"Summer_[x]", "Summer_[x]", "Autumn"}));
    EXPECT_EQ(manager.hRemovePreset("Summer_[x]", &message), Outcome::Ok);
    EXPECT_EQ(names(manager, "grid"), QStringList({"Autumn"}));
    EXPECT_EQ(manager.hRemovePreset("Summer", &message), Outcome::Refused);
    EXPECT_EQ(manager.addPresetValuesToDB(settings, *PresetLayouts::find("grid"), "a|b", nullptr,
                                          &message),
              Outcome::Refused);

    ASSERT_TRUE(settings.set("tfPageTitle", "P|HTML1 again"));
    save("gallery", "P");
    QList<cPresetManager::ListEntry> entries;
    ASSERT_EQ(
        manager.hUpdateLoadPresetsTableView("Presets", "Process", "HTML1", &entries, &message),
        Outcome::Ok);
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[1].nmPreset + entries[1].nmProces + entries[1].nmbrAction, "PHTML1|Batch|");
    EXPECT_EQ(manager.myLogCounter, 0);
}

// Per kind, a distinct value in every control: the stored row field by field, loaded back,
// exported under the same keys; export -> import -> load -> export gives the same fields (but the
// Slideshow's heading, which its loader puts into the Photo Gallery's).
TEST(PresetLayoutTest, FieldByFieldLoadExportAndImport) {
    for (const auto& [kind, rows] :
         {std::pair("gallery", galleryTable()), std::pair("slideshow", slideshowTable()),
          std::pair("grid", gridTable())}) {
        SCOPED_TRACE(kind);
        const QString dir = freshDir(QStringLiteral("presets-layout-") + kind);
        const PresetLayout& layout = *PresetLayouts::find(kind);
        QHash<int, QString> expected;
        const SettingsStore saved = distinctSettings(rows, dir, &expected);
        cPresetManager manager(dir + "p.sql");
        QString message, stored;
        ASSERT_EQ(manager.addPresetValuesToDB(saved, layout, "Layout", nullptr, &message),
                  Outcome::Ok);
        const auto row = sqliteRows(dir + "p.sql", "SELECT * FROM Presets").value(0);
        EXPECT_EQ(row["NameOfPreset"] + row["Process"] + row["Action"],
                  "Layout" + layout.code + "Batch");
        QHash<int, char> encodings;
        for (const Row& r : rows) encodings[r.field] = r.encoding;
        const auto first = cPresetManager::addPresetValuesToPLIST(saved, layout);
        ASSERT_EQ(first.size(), 102);
        EXPECT_TRUE(QRegularExpression("^\\d\\d-\\d\\d-\\d{4} \\d\\d:\\d\\d:\\d\\d$")
                        .match(first["mySqlVal0"])
                        .hasMatch());
        EXPECT_EQ(first["mySqlVal1"] + first["mySqlVal2"], layout.code + layout.fileWord);
        for (int field = 3; field <= 101; ++field) {
            const QString text = row[column(field)];
            EXPECT_EQ(encodings.value(field) == 'B' ? bookmarkPath(text) : text,
                      expected.value(field))
                << field;
            EXPECT_EQ(first["mySqlVal" + QString::number(field)], text) << field;
        }
        SettingsStore loaded(OutputKinds::registry());
        ASSERT_EQ(manager.loadPresetFromDB(loaded, layout, "Layout", &message), Outcome::Ok);
        for (const Row& r : rows) {
            if (r.encoding == 'Z' || r.control == u"tvSsTitle") continue;
            EXPECT_EQ(loaded.text(r.control),
                      r.encoding == 'L' ? expected[r.field] : saved.text(r.control))
                << r.control;
        }

        ASSERT_TRUE(cPresetManager::writePresetFile(dir + "a.orvpreset", first, &message));
        EXPECT_EQ(QDir(dir).entryList({"*.orvpreset*", ".*orvpreset*"}, QDir::Hidden | QDir::Files),
                  QStringList{"a.orvpreset"});
        ASSERT_EQ(manager.importPresetFile(dir + "a.orvpreset", "Imported", &stored, &message),
                  Outcome::Ok)
            << message;
        EXPECT_EQ(stored, "Imported");
        SettingsStore imported(OutputKinds::registry()), fromFile(OutputKinds::registry());
        ASSERT_EQ(manager.loadPreset(imported, layout, "Imported", &message), Outcome::Ok);
        const auto second = cPresetManager::addPresetValuesToPLIST(imported, layout);
        for (int field = 1; field <= 101; ++field) {
            const QString key = "mySqlVal" + QString::number(field);
            EXPECT_TRUE(second[key] == first[key] || (layout.kind == u"slideshow" && field == 7))
                << field;
        }
        // Loading the file itself gives the same as loading the stored preset.
        ASSERT_EQ(manager.loadPreset(fromFile, layout, dir + "a.orvpreset", &message), Outcome::Ok);
        EXPECT_EQ(cPresetManager::presetFields(fromFile, layout, "x"),
                  cPresetManager::presetFields(imported, layout, "x"));
    }
}

// The Slideshow loader: field 7 goes to the Photo Gallery's heading; a checkbox is on only for
// exactly "1"; a missing key switches off and selects index 0.
TEST(PresetLayoutTest, SlideshowLoaderQuirks) {
    const PresetLayout& slideshow = *PresetLayouts::find("slideshow");
    SettingsStore settings(OutputKinds::registry());
    const QString ssTitleBefore = settings.text("tvSsTitle");
    cPresetManager::loadPresetValuesFromPLIST(
        settings, slideshow, {{"mySqlVal1", "SlideShow1"}, {"mySqlVal7", "From the slideshow"}});
    EXPECT_EQ(settings.text("tvTitle"), "From the slideshow");  // a Photo Gallery control
    EXPECT_EQ(settings.text("tvSsTitle"), ssTitleBefore);
    for (const QString text : {"1", "true", "01", "", " 1", "2"}) {  // on for "1" alone
        const bool on = text == u"1";
        SettingsStore s(OutputKinds::registry());
        ASSERT_TRUE(s.set("cbSsAutorun", on ? "0" : "1"));
        cPresetManager::loadPresetValuesFromPLIST(
            s, slideshow, {{"mySqlVal1", "SlideShow1"}, {"mySqlVal23", text}});
        EXPECT_EQ(s.isOn("cbSsAutorun"), on) << text;
    }
    SettingsStore s(OutputKinds::registry());
    ASSERT_TRUE(s.set("cbSsShowDots", "1") && s.set("pubSlideTemplateChoice", "1"));
    cPresetManager::loadPresetValuesFromPLIST(s, slideshow, {{"mySqlVal1", "SlideShow1"}});
    EXPECT_FALSE(s.isOn("cbSsShowDots"));
    EXPECT_EQ(s.index("pubSlideTemplateChoice"), 0);
}

// The sample row, and the bookmark and image tables that only exist where someone made them.
TEST(PresetDatabase, SampleRowBookmarksAndImages) {
    const QString db = freshDir("presets-images") + "p.sql";
    ASSERT_TRUE(dbViewController(db).linkToPresetsDB());
    ASSERT_TRUE(dbViewController(db).insertSortingPresetToDB());
    const auto sample = sqliteRows(db, "SELECT * FROM Presets").value(0);
    EXPECT_EQ(sample["NameOfPreset"] + sample["Process"] + sample["Action"] + sample["StrField3"] +
                  sample["StrField101"],
              "myPresetNameSortingByHandLoc1Loc99");

    // Without the tables nothing is stored or found.
    dbViewController(db).hSaveSecurityScopedBookmarks("mark");
    dbViewController missing(db);
    missing.SaveImagesToSql("bytes", "a.png");
    EXPECT_TRUE(missing.LoadImagesFromSql("a.png").isEmpty());

    sqlite(db,
           "CREATE TABLE Image (Image BLOB); CREATE TABLE IMAGES (URL TEXT, IMAGE BLOB); "
           "INSERT INTO AppBookmarks (StrField0, StrField1, StrField2) "
           "VALUES ('dest', 'root', X'00FF01')");
    const QByteArray mark("bin\0ary'", 8);
    dbViewController(db).hSaveSecurityScopedBookmarks(mark);
    // The bound row, then the statement once more with nothing bound.
    EXPECT_EQ(sqliteRows(db, "SELECT group_concat(hex(Image), '|') AS h FROM Image")[0]["h"],
              mark.toHex().toUpper() + "|");
    EXPECT_EQ(dbViewController(db).hGetBookMarkedFolders(
                  "AppBookmarks", "StrField0", "dest", "StrField1", "root", "StrField0, StrField2"),
              QByteArray("\x00\xff\x01", 3));

    // Images use the connection an insert left open.
    dbViewController images(db);
    ASSERT_TRUE(images.insertSortingPresetToDB());
    images.SaveImagesToSql(mark, "x'y.png");
    EXPECT_EQ(images.LoadImagesFromSql("x'y.png"), mark);
    EXPECT_TRUE(images.LoadImagesFromSql("other.png").isEmpty());
}
