// The presets database read back with the sqlite3 program, and the layouts of the three kinds.
#include <QFileInfo>

#include "presets/PresetFixtures.h"
#include "presets/cPresetManager.h"
#include "presets/dbViewController.h"

using namespace presetfixtures;
using testsupport::freshDir;

namespace {

QString tablesOf(const QString& db) {
    QString out;
    testsupport::runProgram("sqlite3",
                            {db,
                             "SELECT name FROM sqlite_master WHERE type = 'table' "
                             "AND name NOT LIKE 'sqlite_%' ORDER BY name"},
                            &out);
    return out.simplified();
}

int countRows(const QString& db, const QString& table) {
    return sqliteRows(db, "SELECT count(*) AS n FROM " + table).value(0).value("n").toInt();
}

QStringList names(cPresetManager& manager, const char* kind) {
    return manager.presetNames(*PresetLayouts::find(kind));
}

}  // namespace

TEST(PresetDatabase, FirstStartCreatesTheSchemaAndTwoRows) {
    const QString db = freshDir("presets-schema") + "sub/dir/klOrvella3.sql";
    ASSERT_TRUE(dbViewController(db).linkToPresetsDB());
    ASSERT_TRUE(QFileInfo::exists(db));
    EXPECT_EQ(tablesOf(db), "AppBookmarks AppResource Presets");

    for (const QString table : {"Presets", "AppResource", "AppBookmarks"}) {
        SCOPED_TRACE(table.toStdString());
        const auto columns = sqliteRows(
            db, "SELECT cid, name, type, pk FROM pragma_table_info('" + table + "') ORDER BY cid");
        ASSERT_EQ(columns.size(), 103);
        const QString schema =
            sqliteRows(db, "SELECT sql FROM sqlite_master WHERE name = '" + table + "'")
                .value(0)
                .value("sql");
        EXPECT_EQ(columns[0]["name"], "ID");
        EXPECT_EQ(columns[0]["type"], "INTEGER");
        EXPECT_EQ(columns[0]["pk"], "1");
        for (int position = 1; position <= 102; ++position) {
            const QString name = table == u"Presets" ? column(position - 1)
                                                     : "StrField" + QString::number(position - 1);
            EXPECT_EQ(columns[position]["name"], name);
            const QString type = position >= 22 && position <= 42 ? "Integer" : "Text";
            EXPECT_EQ(columns[position]["type"].toUpper(), type.toUpper()) << position;
            EXPECT_TRUE(schema.contains("\"" + name + "\" " + type + ",") ||
                        schema.contains("\"" + name + "\" " + type + ")"))
                << name.toStdString();
        }
    }
    const auto resource = sqliteRows(db, "SELECT * FROM AppResource");
    ASSERT_EQ(resource.size(), 1);
    EXPECT_EQ(resource[0]["StrField0"], "appSys");
    const auto bookmarks = sqliteRows(db, "SELECT * FROM AppBookmarks");
    ASSERT_EQ(bookmarks.size(), 1);
    EXPECT_EQ(bookmarks[0]["StrField0"], "myAppDestBookmark");
    for (int i = 1; i <= 101; ++i) {
        EXPECT_EQ(resource[0]["StrField" + QString::number(i)], "");
        EXPECT_EQ(bookmarks[0]["StrField" + QString::number(i)], "");
    }
    EXPECT_EQ(countRows(db, "Presets"), 0);

    // A later start finds the file and adds nothing.
    ASSERT_TRUE(dbViewController(db).linkToPresetsDB());
    EXPECT_EQ(countRows(db, "AppResource"), 1);
    EXPECT_EQ(countRows(db, "AppBookmarks"), 1);
}

TEST(PresetDatabase, OpenFailureHasItsMessage) {
    const QString dir = freshDir("presets-open-failure");
    QDir().mkpath(dir + "klOrvella3.sql");  // a folder where the file should be: cannot open
    dbViewController db(dir + "klOrvella3.sql");
    EXPECT_FALSE(db.insertSortingPresetToDB());
    EXPECT_EQ(db.failure(), "Presets Db failed to open.");
}

// Numeric texts in the Integer columns come back in SQLite's canonical form; text stays.
TEST(PresetDatabase, IntegerColumnsGiveCanonicalText) {
    const QString db = freshDir("presets-affinity") + "p.sql";
    ASSERT_TRUE(dbViewController(db).linkToPresetsDB());
    QStringList fields(102, QString());
    fields[0] = "canon";
    fields[1] = "HTML1";
    fields[2] = "Batch";
    const std::vector<std::tuple<int, QString, QString>> cases = {
        {21, "2.0", "2"}, {22, "007", "7"},   {23, "12.5", "12.5"}, {24, "abc", "abc"},
        {41, "-3", "-3"}, {20, "007", "007"}, {42, "2.0", "2.0"}};
    for (const auto& [field, value, stored] : cases) fields[field] = value;
    dbViewController writer(db);
    ASSERT_TRUE(writer.insertSortingPresetToDB01(fields)) << writer.failure().toStdString();
    const auto row = sqliteRows(db, "SELECT * FROM Presets").value(0);
    const QStringList read =
        dbViewController(db).checkForActionType("Presets", "Process", "HTML1").value(0).split('|');
    ASSERT_EQ(read.size(), 102);
    for (const auto& [field, value, stored] : cases) {
        EXPECT_EQ(row[column(field)], stored) << field;
        EXPECT_EQ(read[field], stored) << field;
    }
}

// Neither a name nor a value becomes SQL: a single quote is refused before the database is
// reached, other texts are stored as they are, and the tables stay.
TEST(PresetDatabase, QuotesAreRefusedAndInjectionsStayText) {
    const QString db = freshDir("presets-injection") + "p.sql";
    cPresetManager manager(db);
    const PresetLayout& gallery = *PresetLayouts::find("gallery");
    SettingsStore settings(OutputKinds::registry());
    QString stored, message;
    ASSERT_EQ(manager.addPresetValuesToDB(settings, gallery, "Keep", &stored, &message),
              cPresetManager::Outcome::Ok);

    const QString attack = "x'); DROP TABLE Presets; --";
    EXPECT_EQ(manager.addPresetValuesToDB(settings, gallery, attack, &stored, &message),
              cPresetManager::Outcome::Failed);
    EXPECT_EQ(message, "Error updating table.");
    ASSERT_TRUE(settings.set("tfPageTitle", attack));
    message.clear();
    EXPECT_EQ(manager.addPresetValuesToDB(settings, gallery, "Valued", &stored, &message),
              cPresetManager::Outcome::Failed);
    EXPECT_EQ(message, "Error updating table.");
    // Reading, checking and removing with the attack as the value find nothing and drop nothing.
    dbViewController reader(db);
    EXPECT_TRUE(reader.checkForActionType("Presets", "NameOfPreset", attack).isEmpty());
    EXPECT_TRUE(
        dbViewController(db)
            .checkPresetNameFromTableNamed("Presets", "NameOfPreset", attack, "Process", "HTML1")
            .isNull());
    EXPECT_EQ(dbViewController(db).removePresetFromDatabase("Presets", "NameOfPreset", attack),
              "preset not found");
    EXPECT_EQ(manager.hRemovePreset(attack, &message), cPresetManager::Outcome::Refused);
    // Table and column names are identifiers, never text.
    EXPECT_FALSE(dbViewController(db).insertRecordIntoTableNamed("Presets; DROP TABLE AppResource",
                                                                 dbViewController::presetColumns(),
                                                                 QStringList(102, "v")));

    // Without a single quote, the same kind of text is only text.
    const QString doubleQuoted = "x\"); DROP TABLE Presets; --";
    ASSERT_TRUE(settings.set("tfPageTitle", doubleQuoted));
    ASSERT_EQ(manager.addPresetValuesToDB(settings, gallery, doubleQuoted, &stored, &message),
              cPresetManager::Outcome::Ok);
    EXPECT_EQ(tablesOf(db), "AppBookmarks AppResource Presets");
    const auto rows = sqliteRows(db, "SELECT NameOfPreset, StrField3 FROM Presets ORDER BY ID");
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0]["NameOfPreset"], "Keep");
    EXPECT_EQ(rows[1]["NameOfPreset"], doubleQuoted);
    EXPECT_EQ(rows[1]["StrField3"], doubleQuoted);
    EXPECT_EQ(countRows(db, "AppResource"), 1);
}

// The second and third saves of a name get "_[x]", per kind; removal goes across kinds; lists
// are oldest first.
TEST(PresetDatabase, SuffixRemovalAndOrderPerKind) {
    const QString db = freshDir("presets-names") + "p.sql";
    cPresetManager manager(db);
    SettingsStore settings(OutputKinds::registry());
    auto save = [&](const char* kind, const QString& name) {
        QString stored, message;
        EXPECT_EQ(manager.addPresetValuesToDB(settings, *PresetLayouts::find(kind), name, &stored,
                                              &message),
                  cPresetManager::Outcome::Ok)
            << message.toStdString();
        return stored;
    };
    for (const char* kind : {"slideshow", "gallery", "grid"}) {
        SCOPED_TRACE(kind);
        EXPECT_EQ(save(kind, "Summer"), "Summer");
        EXPECT_EQ(save(kind, "Summer"), "Summer_[x]");
        EXPECT_EQ(save(kind, "Summer"), "Summer_[x]");
        EXPECT_EQ(save(kind, "Autumn"), "Autumn");
        EXPECT_EQ(names(manager, kind),
                  QStringList({"Summer", "Summer_[x]", "Summer_[x]", "Autumn"}));
    }
    const auto rows = sqliteRows(db, "SELECT Process, Action FROM Presets ORDER BY ID");
    ASSERT_EQ(rows.size(), 12);
    EXPECT_EQ(rows[0]["Process"], "SlideShow1");
    EXPECT_EQ(rows[4]["Process"], "HTML1");
    EXPECT_EQ(rows[8]["Process"], "ResponsiveGrid1");
    for (const auto& row : rows) EXPECT_EQ(row["Action"], "Batch");

    QString message;
    EXPECT_EQ(manager.hRemovePreset("Summer", &message), cPresetManager::Outcome::Ok);
    for (const char* kind : {"slideshow", "gallery", "grid"})
        EXPECT_EQ(names(manager, kind), QStringList({"Summer_[x]", "Summer_[x]", "Autumn"}));
    EXPECT_EQ(manager.hRemovePreset("Summer_[x]", &message), cPresetManager::Outcome::Ok);
    EXPECT_EQ(names(manager, "grid"), QStringList({"Autumn"}));
    EXPECT_EQ(manager.hRemovePreset("Summer", &message), cPresetManager::Outcome::Refused);
    EXPECT_EQ(manager.addPresetValuesToDB(settings, *PresetLayouts::find("grid"), "a|b", nullptr,
                                          &message),
              cPresetManager::Outcome::Refused);
}

// The list entry's third value is the row after name and kind, up to where that text recurs.
TEST(PresetDatabase, ListEntriesSplitAtNameAndKind) {
    const QString db = freshDir("presets-list") + "p.sql";
    cPresetManager manager(db);
    SettingsStore settings(OutputKinds::registry());
    ASSERT_TRUE(settings.set("tfPageTitle", "P|HTML1 again"));
    QString message;
    ASSERT_EQ(manager.addPresetValuesToDB(settings, *PresetLayouts::find("gallery"), "P", nullptr,
                                          &message),
              cPresetManager::Outcome::Ok);
    const auto entries = manager.hUpdateLoadPresetsTableView("Presets", "Process", "HTML1");
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].nmPreset, "P");
    EXPECT_EQ(entries[0].nmProces, "HTML1");
    EXPECT_EQ(entries[0].nmbrAction, "|Batch|");
    EXPECT_EQ(manager.myLogCounter, 0);
}

namespace {

// Saves settings with a distinct value in every control of the table and checks the stored row
// field by field against the table.
void checkLayout(const char* kind, const std::vector<Row>& table) {
    const QString dir = freshDir(QStringLiteral("presets-layout-") + kind);
    QHash<int, QString> expected;
    const SettingsStore settings = distinctSettings(table, dir, &expected);
    QString stored, message;
    ASSERT_EQ(
        cPresetManager(dir + "p.sql")
            .addPresetValuesToDB(settings, *PresetLayouts::find(kind), "Layout", &stored, &message),
        cPresetManager::Outcome::Ok)
        << message.toStdString();
    const auto rows = sqliteRows(dir + "p.sql", "SELECT * FROM Presets");
    ASSERT_EQ(rows.size(), 1);
    const auto& row = rows[0];
    EXPECT_EQ(row["NameOfPreset"], "Layout");
    EXPECT_EQ(row["Process"], PresetLayouts::find(kind)->code);
    EXPECT_EQ(row["Action"], "Batch");
    QHash<int, char> encodings;
    for (const Row& r : table) encodings[r.field] = r.encoding;
    for (int field = 3; field <= 101; ++field) {
        SCOPED_TRACE(field);
        const QString text = row[column(field)];
        if (encodings.value(field) == 'B')
            EXPECT_EQ(bookmarkPath(text), expected[field]) << text.toStdString();
        else
            EXPECT_EQ(text, expected.value(field))
                << "expected \"" << expected.value(field).toStdString() << "\"";
    }
}

// Saves, then loads into fresh settings: every control of the table comes back.
void checkLoad(const char* kind, const std::vector<Row>& table) {
    const QString dir = freshDir(QStringLiteral("presets-load-") + kind);
    QHash<int, QString> expected;
    const SettingsStore saved = distinctSettings(table, dir, &expected);
    cPresetManager manager(dir + "p.sql");
    const PresetLayout& layout = *PresetLayouts::find(kind);
    QString message;
    ASSERT_EQ(manager.addPresetValuesToDB(saved, layout, "Back", nullptr, &message),
              cPresetManager::Outcome::Ok);
    SettingsStore loaded(OutputKinds::registry());
    ASSERT_EQ(manager.loadPresetFromDB(loaded, layout, "Back", &message),
              cPresetManager::Outcome::Ok);
    for (const Row& row : table) {
        if (row.encoding == 'Z') continue;
        SCOPED_TRACE(row.control);
        // The Slideshow's heading goes into the Photo Gallery's (see SlideshowLoaderQuirks).
        if (QString(row.control) == u"tvSsTitle") continue;
        QString want = saved.text(row.control);
        if (row.encoding == 'L') want = expected[row.field];
        EXPECT_EQ(loaded.text(row.control), want);
    }
}

}  // namespace

TEST(PresetLayoutTest, GalleryFieldByField) {
    checkLayout("gallery", galleryTable());
}
TEST(PresetLayoutTest, GalleryLoadsBack) {
    checkLoad("gallery", galleryTable());
}

TEST(PresetLayoutTest, SlideshowFieldByField) {
    SKIP_WITHOUT_KIND("slideshow");
    checkLayout("slideshow", slideshowTable());
}
TEST(PresetLayoutTest, SlideshowLoadsBack) {
    SKIP_WITHOUT_KIND("slideshow");
    checkLoad("slideshow", slideshowTable());
}
TEST(PresetLayoutTest, GridFieldByField) {
    SKIP_WITHOUT_KIND("grid");
    checkLayout("grid", gridTable());
}
TEST(PresetLayoutTest, GridLoadsBack) {
    SKIP_WITHOUT_KIND("grid");
    checkLoad("grid", gridTable());
}

// A kind whose controls are not in the registry saves empty fields and loads without harm.
TEST(PresetLayoutTest, UnknownControlsGiveEmptyFields) {
    const QString dir = freshDir("presets-unknown");
    for (const PresetLayout& layout : PresetLayouts::all()) {
        SettingsStore settings(OutputKinds::registry());
        const QStringList fields = cPresetManager::presetFields(settings, layout, "n");
        ASSERT_EQ(fields.size(), 102);
        for (const PresetField& field : layout.fields) {
            const ControlSpec* control = OutputKinds::registry().find(field.control);
            if (field.encoding == FieldEncoding::Zero) {
                EXPECT_EQ(fields[field.field], "0");
            } else if (!control) {
                EXPECT_EQ(fields[field.field], "") << field.control;
            }
        }
        QStringList hostile(102, "zz'|\n");
        cPresetManager::applyPresetFields(settings, layout, hostile);
    }
}

// The Slideshow loader: field 7 goes to the Photo Gallery's heading; a checkbox is on only for
// exactly "1"; a missing key switches off and selects index 0.
TEST(PresetLayoutTest, SlideshowLoaderQuirks) {
    const PresetLayout& slideshow = *PresetLayouts::find("slideshow");
    SettingsStore settings(OutputKinds::registry());
    cPresetManager::loadPresetValuesFromPLIST(
        settings, slideshow, {{"mySqlVal1", "SlideShow1"}, {"mySqlVal7", "From the slideshow"}});
    EXPECT_EQ(settings.text("tvTitle"), "From the slideshow");  // a Photo Gallery control

    SKIP_WITHOUT_KIND("slideshow");
    const QString ssTitleBefore = settings.text("tvSsTitle");
    EXPECT_EQ(settings.text("tvSsTitle"), ssTitleBefore);
    const std::vector<std::pair<QString, bool>> boxes = {
        {"1", true}, {"true", false}, {"01", false}, {"", false}, {" 1", false}, {"2", false}};
    for (const auto& [text, on] : boxes) {
        SCOPED_TRACE(text.toStdString());
        SettingsStore s(OutputKinds::registry());
        ASSERT_TRUE(s.set("cbSsAutorun", on ? "0" : "1"));
        cPresetManager::loadPresetValuesFromPLIST(
            s, slideshow, {{"mySqlVal1", "SlideShow1"}, {"mySqlVal23", text}});
        EXPECT_EQ(s.isOn("cbSsAutorun"), on);
    }
    SettingsStore s(OutputKinds::registry());
    ASSERT_TRUE(s.set("cbSsShowDots", "1"));
    ASSERT_TRUE(s.set("pubSlideTemplateChoice", "1"));
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
    EXPECT_EQ(sample["NameOfPreset"], "myPresetName");
    EXPECT_EQ(sample["Process"], "Sorting");
    EXPECT_EQ(sample["Action"], "ByHand");
    EXPECT_EQ(sample["StrField3"], "Loc1");
    EXPECT_EQ(sample["StrField101"], "Loc99");

    // Without the tables nothing is stored or found.
    dbViewController(db).hSaveSecurityScopedBookmarks("mark");
    dbViewController missing(db);
    missing.SaveImagesToSql("bytes", "a.png");
    EXPECT_TRUE(missing.LoadImagesFromSql("a.png").isEmpty());

    ASSERT_EQ(testsupport::runProgram("sqlite3", {db,
                                                  "CREATE TABLE Image (Image BLOB); CREATE "
                                                  "TABLE IMAGES (URL TEXT, IMAGE BLOB)"}),
              0);
    const QByteArray mark("bin\0ary'", 8);
    dbViewController(db).hSaveSecurityScopedBookmarks(mark);
    const auto marks = sqliteRows(db, "SELECT hex(Image) AS h FROM Image ORDER BY rowid");
    ASSERT_EQ(marks.size(), 2);  // the bound row, then the statement once more with nothing bound
    EXPECT_EQ(marks[0]["h"], QString::fromLatin1(mark.toHex().toUpper()));
    EXPECT_EQ(marks[1]["h"], "");

    ASSERT_EQ(testsupport::runProgram("sqlite3",
                                      {db,
                                       "INSERT INTO AppBookmarks (StrField0, StrField1, StrField2) "
                                       "VALUES ('dest', 'root', X'00FF01')"}),
              0);
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
