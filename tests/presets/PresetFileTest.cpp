// Preset files that are refused, or damaged at random (what an export holds and its round trip
// are in the layout tests).
#include <random>

#include "presets/PresetFixtures.h"
#include "presets/cPresetManager.h"
#include "presets/dbViewController.h"

using namespace presetfixtures;
using namespace testsupport;

namespace {

QByteArray plist(const QByteArray& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + body +
           "</dict></plist>\n";
}

}  // namespace

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
        QString message;
        cPresetManager::PresetDictionary dictionary{{"untouched", "yes"}};
        EXPECT_FALSE(cPresetManager::readPresetFile(file, &dictionary, &message));
        EXPECT_TRUE(message.startsWith(file + " is not a preset file") && message.contains(reason))
            << reason << ": " << message;
        EXPECT_EQ(dictionary.value("untouched"), "yes");
    }
    QString message;
    EXPECT_FALSE(cPresetManager::readPresetFile(dir + "missing.orvpreset", nullptr, &message));
    EXPECT_TRUE(message.contains("cannot be read")) << message;
}

// A few hundred damaged copies of a real preset file: each is refused with a message or read;
// whatever is read loads and saves without harm.
TEST(PresetFiles, MutatedFilesNeverCrash) {
    const QString dir = freshDir("presets-file-fuzz");
    const QString original = dir + "original.orvpreset";
    QString message;
    ASSERT_TRUE(cPresetManager::writePresetFile(
        original,
        cPresetManager::addPresetValuesToPLIST(SettingsStore(OutputKinds::registry()),
                                               *PresetLayouts::find("gallery")),
        &message));
    const QByteArray bytes = readFile(original);
    const QByteArray pieces[] = {"<",     ">",       "</string>", "<dict>", "<integer>1</integer>",
                                 "&",     "&#0;",    "]]>",       "'",      "<![CDATA[",
                                 "<key>", "\xff\xfe"};
    std::mt19937 random(12345);
    cPresetManager manager(dir + "p.sql");
    ASSERT_TRUE(dbViewController(dir + "p.sql").linkToPresetsDB());
    int accepted = 0;
    for (int round = 0; round < 300; ++round) {
        QByteArray mutated = bytes;
        for (int edits = 1 + int(random() % 4); edits > 0; --edits) {
            const auto at = qsizetype(random() % std::max<qsizetype>(mutated.size(), 1));
            const auto how = random() % 5;
            if (how == 0) mutated[at] = char(random() % 256);
            if (how == 1) mutated.truncate(at);
            if (how == 2) mutated.remove(at, 1 + int(random() % 40));
            if (how == 3) mutated.insert(at, pieces[random() % std::size(pieces)]);
            if (how == 4) mutated.insert(at, mutated.mid(random() % (mutated.size() + 1), 200));
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

TEST(SettingsStore, SetNormalisesOrRefuses) {
    // Popups by title or index, colours with or without "#" (also by the colour well's name),
    // checkboxes 0 or 1; `stored` is "" when the value is refused.
    const std::tuple<QString, QString, QString> cases[] = {
        {"pbTitleFontSize", "18px", "18px"},
        {"pbTitleFontSize", "2", "12px"},
        {"pbTitleFontSize", "19px", ""},
        {"pubPgMetaData", "IPTC City", "6"},
        {"pubPgMetaData", "0", "0"},
        {"pubPgMetaData", "14", ""},
        {"tfHTMLbackgroundColor", "#ff8800", "FF8800"},
        {"ascNSColorWellObjBGCt", "a0b1c2", "A0B1C2"},
        {"tfHTMLbackgroundColor", "ff88", ""},
        {"btShowTitle", "0", "0"},
        {"btShowTitle", "true", ""},
        {"noSuchControl", "1", ""}};
    for (const auto& [name, value, stored] : cases) {
        SCOPED_TRACE((name + " = " + value).toStdString());
        SettingsStore store(OutputKinds::registry());
        QString error;
        EXPECT_EQ(store.set(name, value, &error), !stored.isEmpty());
        if (stored.isEmpty())
            EXPECT_TRUE(error.contains(name)) << error;
        else
            EXPECT_EQ(store.text(name), stored);
    }
    EXPECT_EQ(SettingsStore(OutputKinds::registry()).index("pbTitleFontSize"), 12);  // "32px"
}
