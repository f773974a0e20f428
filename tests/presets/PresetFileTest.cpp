// Preset files: what an export holds, export -> import -> export, and files that are refused.
#include <QRegularExpression>
#include <random>

#include "presets/PresetFixtures.h"
#include "presets/cPresetManager.h"
#include "presets/dbViewController.h"

using namespace presetfixtures;
using testsupport::freshDir;
using testsupport::readFile;
using testsupport::writeFile;

namespace {

QByteArray plist(const QByteArray& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + body +
           "</dict></plist>\n";
}

}  // namespace

TEST(PresetFiles, ExportHoldsTheKeysOfTheKind) {
    const QString dir = freshDir("presets-file-keys");
    SettingsStore settings(OutputKinds::registry());
    ASSERT_TRUE(settings.set("pbImageFormat", "png") && settings.set("pbJPGCompression", "3"));
    ASSERT_TRUE(settings.set("tvTitle", "Line one\r\nline two & <three>"));
    for (const PresetLayout& layout : PresetLayouts::all()) {
        SCOPED_TRACE(layout.kind.toStdString());
        const auto dictionary = cPresetManager::addPresetValuesToPLIST(settings, layout);
        ASSERT_EQ(dictionary.size(), 102);
        EXPECT_TRUE(QRegularExpression("^\\d\\d-\\d\\d-\\d{4} \\d\\d:\\d\\d:\\d\\d$")
                        .match(dictionary["mySqlVal0"])
                        .hasMatch())
            << dictionary["mySqlVal0"].toStdString();
        EXPECT_EQ(dictionary["mySqlVal1"], layout.code);
        EXPECT_EQ(dictionary["mySqlVal2"], layout.fileWord);
        const QString file = dir + layout.kind + ".orvpreset";
        QString message;
        ASSERT_TRUE(cPresetManager::writePresetFile(file, dictionary, &message))
            << message.toStdString();
        cPresetManager::PresetDictionary read;
        ASSERT_TRUE(cPresetManager::readPresetFile(file, &read, &message)) << message.toStdString();
        EXPECT_EQ(read, dictionary);
        EXPECT_EQ(QDir(dir).entryList(QDir::Hidden | QDir::Files).filter(layout.kind).size(), 1);
    }
    const auto gallery =
        cPresetManager::addPresetValuesToPLIST(settings, *PresetLayouts::find("gallery"));
    EXPECT_EQ(gallery["mySqlVal21"], "png");
    EXPECT_EQ(gallery["mySqlVal32"], "png");
    EXPECT_EQ(gallery["mySqlVal22"], "3");
    EXPECT_EQ(gallery["mySqlVal33"], "3");
    EXPECT_EQ(gallery["mySqlVal61"], "Line one\r\nline two & <three>");
    EXPECT_EQ(gallery["mySqlVal62"], "0");
    EXPECT_EQ(gallery["mySqlVal63"], "");
    const auto slideshow =
        cPresetManager::addPresetValuesToPLIST(settings, *PresetLayouts::find("slideshow"));
    EXPECT_EQ(slideshow["mySqlVal2"], "SlideShow");
    EXPECT_EQ(slideshow["mySqlVal13"], "");
}

namespace {

// Export, import under a name, load it and export again: the same fields (the Slideshow's
// heading aside, which its loader puts into the Photo Gallery's).
void checkRoundTrip(const char* kind, const std::vector<Row>& table) {
    const QString dir = freshDir(QStringLiteral("presets-file-roundtrip-") + kind);
    QHash<int, QString> expected;
    const SettingsStore settings = distinctSettings(table, dir, &expected);
    const PresetLayout& layout = *PresetLayouts::find(kind);
    const auto first = cPresetManager::addPresetValuesToPLIST(settings, layout);
    QString message, stored;
    ASSERT_TRUE(cPresetManager::writePresetFile(dir + "a.orvpreset", first, &message));
    cPresetManager manager(dir + "p.sql");
    ASSERT_EQ(manager.importPresetFile(dir + "a.orvpreset", "Imported", &stored, &message),
              cPresetManager::Outcome::Ok)
        << message.toStdString();
    EXPECT_EQ(stored, "Imported");
    SettingsStore loaded(OutputKinds::registry());
    ASSERT_EQ(manager.loadPreset(loaded, layout, "Imported", &message),
              cPresetManager::Outcome::Ok);
    const auto second = cPresetManager::addPresetValuesToPLIST(loaded, layout);
    for (int field = 1; field <= 101; ++field) {
        if (layout.kind == u"slideshow" && field == 7) continue;
        const QString key = "mySqlVal" + QString::number(field);
        EXPECT_EQ(second[key], first[key]) << field;
    }
    // Loading the file itself gives the same as loading the stored preset.
    SettingsStore fromFile(OutputKinds::registry());
    ASSERT_EQ(manager.loadPreset(fromFile, layout, dir + "a.orvpreset", &message),
              cPresetManager::Outcome::Ok);
    EXPECT_EQ(cPresetManager::presetFields(fromFile, layout, "x"),
              cPresetManager::presetFields(loaded, layout, "x"));
}

}  // namespace

TEST(PresetFiles, GalleryExportImportExport) {
    checkRoundTrip("gallery", galleryTable());
}
TEST(PresetFiles, SlideshowExportImportExport) {
    SKIP_WITHOUT_KIND("slideshow");
    checkRoundTrip("slideshow", slideshowTable());
}
TEST(PresetFiles, GridExportImportExport) {
    SKIP_WITHOUT_KIND("grid");
    checkRoundTrip("grid", gridTable());
}

TEST(PresetFiles, MalformedFilesAreRefused) {
    const QString dir = freshDir("presets-file-refused");
    const QByteArray kind = "<key>mySqlVal1</key><string>HTML1</string>";
    const std::vector<std::pair<QByteArray, const char*>> cases = {
        {"", "not XML"},
        {"just text", "not XML"},
        {"<plist><dict><key>a</key>", "not XML"},
        {"<html><body/></html>", "root is not a property list"},
        {"<plist><array/></plist>", "holds no dictionary"},
        {plist(kind + "<key>mySqlVal3</key><integer>3</integer>"), "is not a string"},
        {plist(kind + "<key>mySqlVal3</key><dict><key>a</key><string>b</string></dict>"),
         "is not a string"},
        {plist(kind + "<key>mySqlVal3</key><string>a<b/>c</string>"), "not XML"},
        {plist(kind + "<key>mySqlVal3</key>"), "has no value"},
        {plist(kind + "<string>x</string><string>y</string>"), "without a key"},
        {plist(kind + "<key>mySqlVal1</key><string>HTML1</string>"), "appears twice"},
        {plist("<key>mySqlVal1</key><string>Sorting</string>"), "names no output kind"},
        {plist(kind + "<key>mySqlVal3</key><string>" + QByteArray(300 * 1024, 'a') + "</string>"),
         "too long"},
        {QByteArray(3 * 1024 * 1024, ' '), "larger than"},
        {"<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\">"
         "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
         "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
         "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">]>"
         "<plist><dict>" +
             kind + "<key>mySqlVal3</key><string>&d;&d;&d;&d;&d;&d;</string></dict></plist>",
         "not XML"},
        {plist(kind) + "<plist><dict/></plist>", "not XML"},
    };
    int i = 0;
    for (const auto& [bytes, reason] : cases) {
        const QString file = dir + QString::number(i++) + ".orvpreset";
        writeFile(file, bytes);
        SCOPED_TRACE(reason);
        QString message;
        cPresetManager::PresetDictionary dictionary{{"untouched", "yes"}};
        EXPECT_FALSE(cPresetManager::readPresetFile(file, &dictionary, &message));
        EXPECT_TRUE(message.startsWith(file + " is not a preset file")) << message.toStdString();
        EXPECT_TRUE(message.contains(reason)) << message.toStdString();
        EXPECT_EQ(dictionary.value("untouched"), "yes");
    }
    QString message;
    EXPECT_FALSE(cPresetManager::readPresetFile(dir + "missing.orvpreset", nullptr, &message));
    EXPECT_TRUE(message.contains("cannot be read")) << message.toStdString();
}

// An injection carried by a preset file is refused on import like a typed one.
TEST(PresetFiles, ImportedQuotesAreRefused) {
    const QString dir = freshDir("presets-file-injection");
    const QString file = dir + "attack.orvpreset";
    writeFile(file, plist("<key>mySqlVal1</key><string>HTML1</string><key>mySqlVal3</key>"
                          "<string>x'); DROP TABLE Presets; --</string>"));
    cPresetManager manager(dir + "p.sql");
    QString message;
    EXPECT_EQ(manager.importPresetFile(file, "Attack", nullptr, &message),
              cPresetManager::Outcome::Failed);
    EXPECT_EQ(message, "Error updating table.");
    EXPECT_EQ(sqliteRows(dir + "p.sql", "SELECT count(*) AS n FROM Presets")[0]["n"], "0");
}

// A few hundred damaged copies of a real preset file: each is refused with a message or read;
// whatever is read loads and saves without harm.
TEST(PresetFiles, MutatedFilesNeverCrash) {
    const QString dir = freshDir("presets-file-fuzz");
    QHash<int, QString> expected;
    const SettingsStore settings = distinctSettings(galleryTable(), dir, &expected);
    const QString original = dir + "original.orvpreset";
    QString message;
    ASSERT_TRUE(cPresetManager::writePresetFile(
        original, cPresetManager::addPresetValuesToPLIST(settings, *PresetLayouts::find("gallery")),
        &message));
    const QByteArray bytes = readFile(original);
    const QByteArray pieces[] = {
        "<",         ">", "</string>", "<dict>", "<integer>1</integer>", "&", "&#0;", "]]>",
        "<![CDATA[", "'", "\xff\xfe",  "<key>"};
    std::mt19937 random(12345);
    cPresetManager manager(dir + "p.sql");
    manager.presetNames(*PresetLayouts::find("gallery"));  // the database exists from here on
    int accepted = 0;
    for (int round = 0; round < 300; ++round) {
        QByteArray mutated = bytes;
        const int edits = 1 + int(random() % 4);
        for (int e = 0; e < edits; ++e) {
            const int at = int(random() % std::max<qsizetype>(mutated.size(), 1));
            switch (random() % 5) {
                case 0:
                    mutated[at] = char(random() % 256);
                    break;
                case 1:
                    mutated.truncate(at);
                    break;
                case 2:
                    mutated.remove(at, 1 + int(random() % 40));
                    break;
                case 3:
                    mutated.insert(at, pieces[random() % std::size(pieces)]);
                    break;
                case 4:
                    mutated.insert(
                        at,
                        mutated.mid(int(random() % std::max<qsizetype>(mutated.size(), 1)), 200));
                    break;
            }
        }
        const QString file = dir + "m.orvpreset";
        writeFile(file, mutated);
        cPresetManager::PresetDictionary dictionary;
        QString why;
        if (!cPresetManager::readPresetFile(file, &dictionary, &why)) {
            EXPECT_FALSE(why.isEmpty());
            continue;
        }
        ++accepted;
        const PresetLayout* layout = cPresetManager::layoutOf(dictionary);
        ASSERT_TRUE(layout);
        SettingsStore loaded(OutputKinds::registry());
        cPresetManager::loadPresetValuesFromPLIST(loaded, *layout, dictionary);
        if (round % 10 == 0) manager.importPresetFile(file, "Fuzz", nullptr, &why);
    }
    EXPECT_GT(accepted, 0);
    EXPECT_LT(accepted, 300);
    EXPECT_EQ(sqliteRows(dir + "p.sql", "SELECT count(*) AS n FROM AppResource")[0]["n"], "1");
}
