// Project files: what a save writes (read back by Python's plistlib, not by our reader), the photo
// copies, opening, the name rules, and hostile or damaged project files. Malformed property lists
// as such are the presets suite's; here only what the project's own rules add.
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

#include "collection/PhotoCollection.h"
#include "metadata/MetaFixtures.h"
#include "projects/ProjectFile.h"
#include "services/KLbookmarks.h"

using namespace metafixtures;
using namespace testsupport;
using Status = ProjectFile::OpenResult::Status;

namespace {

// The project file as Python's plistlib reads it, as JSON; fails unless every value is a string
// or a dictionary.
QJsonObject plistlib(const QString& file) {
    const QString script =
        "import json, plistlib, sys\n"
        "d = plistlib.load(open(sys.argv[1], 'rb'), fmt=plistlib.FMT_XML)\n"
        "ok = lambda v: all(map(ok, v.values())) if isinstance(v, dict) else isinstance(v, str)\n"
        "print(json.dumps(d)) if ok(d) else sys.exit('not a string')\n";
    QString out, err;
    EXPECT_EQ(runProgram("python3", {"-c", script, file}, &out, &err), 0) << err;
    return QJsonDocument::fromJson(out.toUtf8()).object();
}

QList<cCollectionViewItem> threePhotos(const QString& dir) {
    tag(makeImage(dir + "a.jpg", 60, 40), {"-UserComment=Harbour at dawn"});
    tag(makeImage(dir + "b.jpg", 40, 60), {"-UserComment=Tabs\tand \"quotes\" <&>"});
    PhotoCollection collection;
    collection.setCellImageSize(0);
    collection.appendPhotos({dir + "a.jpg", dir + "b.jpg", makeImage(dir + "c.png", 50, 50)});
    collection.setSelect(1, false);
    collection.setHighlight(2, true);
    return collection.arrangedObjects();
}

// A record, or a saved photo entry, as one line: name, caption, publish, highlight, pixels and
// orientation.
QString line(const cCollectionViewItem& r) {
    return QStringLiteral("%1|%2|%3|%4|%5|%6")
        .arg(r.myPhotoName, r.myPhotoDescription, QString::number(r.myPhotoSelect),
             QString::number(r.myPhotoHighLight), r.myPhotoPxSize, r.myPhotoOrientation);
}
QString line(const QJsonObject& e) {
    QStringList values;
    for (const char* key : {"name", "exif", "publish", "highlight", "pixels", "orientation"})
        values << e[key].toString();
    return e.size() == 6 ? values.join('|') : "not 6 keys";
}

}  // namespace

TEST(ProjectFile, ThreePhotosWrittenAsTheTablesSayAndOpenedAgain) {
    const QString dir = freshDir("projects-three"), folder = dir + "Trip";
    const QList<cCollectionViewItem> records = threePhotos(dir);
    ASSERT_EQ(records.size(), 3);
    SettingsStore settings =
        settingsWith({{"tfPageTitle", "Harbour & hills"}, {"tfNumberOfColumns", "5"}});
    const auto saved =
        ProjectFile::save(folder, "Summer", records, settings, ProjectFile::layoutForTab(0));
    ASSERT_TRUE(saved.ok) << saved.error;
    EXPECT_TRUE(saved.warnings.isEmpty()) << saved.warnings.join('\n');

    const QJsonObject root = plistlib(saved.projectFile);
    // destination, count, three entries, the 102 preset keys; no loadStatus.
    EXPECT_EQ(root.size(), 2 + 3 + 102);
    EXPECT_EQ(root["count"].toString(), "3");
    EXPECT_EQ(root["mySqlVal3"].toString() + root["mySqlVal10"].toString(), "Harbour & hills5");
    const QString destination = root["destination"].toString();
    EXPECT_FALSE(destination.contains('\n'));
    EXPECT_EQ(KLbookmarks::pathInBookmark(QByteArray::fromBase64(destination.toLatin1())), folder);
    const QStringList expected = {"a.jpg|Harbour at dawn|1|0|60x40|H",
                                  "b.jpg|Tabs\tand \"quotes\" <&>|0|0|40x60|V",
                                  "c.png||1|1|50x50|V"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(line(root[QString::number(i + 1)].toObject()), expected[i]);
        EXPECT_EQ(readFile(folder + "/photos/" + records[i].myPhotoName),
                  readFile(dir + records[i].myPhotoName));
    }

    // Opened from the project's own photos, with order, flags, captions and settings as saved.
    RecordingUserInterface ui;
    const auto opened = ProjectFile::open(folder, saved.projectFile, 0, &ui);
    ASSERT_EQ(opened.status, Status::Opened) << opened.message;
    ASSERT_EQ(opened.records.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(line(opened.records[i]), expected[i]);
        EXPECT_EQ(opened.records[i].path(), folder + "/photos/" + records[i].myPhotoName);
    }
    EXPECT_EQ(opened.dictionary.value("loadStatus"), "Succeeded to load photo(s)");
    EXPECT_EQ(std::tuple(ui.starts, ui.stops, ui.steps), std::tuple(1, 1, std::vector(3, 33.0)));
    SettingsStore loaded = settingsWith();
    ProjectFile::loadSettings(opened, loaded);
    EXPECT_EQ(loaded.text("tfPageTitle") + loaded.text("tfNumberOfColumns"), "Harbour & hills5");

    // A second save keeps the copies already there and replaces the project file.
    writeFile(dir + "a.jpg", "changed since the first save");
    QList<cCollectionViewItem> changed = records;
    changed[0].myPhotoDescription = "Harbour at dusk";
    const QByteArray firstCopy = readFile(folder + "/photos/a.jpg");
    ASSERT_TRUE(
        ProjectFile::save(folder, "Summer", changed, settings, ProjectFile::layoutForTab(0)).ok);
    EXPECT_EQ(readFile(folder + "/photos/a.jpg"), firstCopy);
    EXPECT_EQ(plistlib(saved.projectFile)["1"].toObject()["exif"].toString(), "Harbour at dusk");
    EXPECT_EQ(contentsUnder(folder + "/").keys(),  // no temporary file left
              QStringList({"Summer.orvprj", "photos/a.jpg", "photos/b.jpg", "photos/c.png"}));
}

TEST(ProjectFile, NameRules) {
    const SettingsStore page = settingsWith({{"tfHTMLfileName", "holiday"}});
    for (const auto& [typed, name] : std::vector<std::pair<QString, QString>>{
             {"Trip", "Trip"},
             {"", "holiday"},
             {"Enter your project name here", "holiday"},
             {"Enter project name here", "Enter project name here"}})
        EXPECT_EQ(ProjectFile::projectName(typed, page), name) << typed;

    // Names that would leave the folder, and no name at all, are refused before anything is made.
    const QString dir = freshDir("projects-names");
    for (const QString& name :
         QStringList{"../up", "a/b", "..", ".", "", QString("a") + QChar(0) + "b"}) {
        const auto refused =
            ProjectFile::save(dir + "g", name, {}, page, ProjectFile::layoutForTab(0));
        EXPECT_TRUE(!refused.ok && refused.refused && !refused.error.isEmpty()) << name;
    }
    EXPECT_FALSE(QFileInfo::exists(dir + "g"));
    EXPECT_FALSE(QFileInfo::exists(dir + "up.orvprj"));
}

// A photo that is gone is named; two photos of one file name keep the first copy and say so.
TEST(ProjectFile, CopiesThatCannotBeMadeAreReported) {
    const QString dir = freshDir("projects-copies");
    QDir().mkpath(dir + "other");
    QList<cCollectionViewItem> records = threePhotos(dir);
    PhotoCollection more;
    more.setCellImageSize(0);
    more.appendPhotos({makeImage(dir + "other/a.jpg")});
    records.append(more.arrangedObjects());
    QFile::remove(dir + "b.jpg");
    const auto saved =
        ProjectFile::save(dir + "p", "P", records, settingsWith(), ProjectFile::layoutForTab(0));
    ASSERT_TRUE(saved.ok);
    ASSERT_EQ(saved.warnings.size(), 2) << saved.warnings.join('\n');
    EXPECT_TRUE(saved.warnings[0].startsWith(dir + "b.jpg: not copied"));
    EXPECT_TRUE(saved.warnings[1].startsWith(dir + "other/a.jpg: another photo"));
    EXPECT_EQ(readFile(dir + "p/photos/a.jpg"), readFile(dir + "a.jpg"));
    EXPECT_EQ(plistlib(saved.projectFile)["count"].toString(), "4");
}

TEST(ProjectFile, CountAndLoadStatus) {
    const QString dir = freshDir("projects-count");
    auto count = [](const char* n) {
        return "<key>count</key><string>" + QByteArray(n) + "</string>";
    };
    const QByteArray entry =
        "<key>1</key><dict><key>name</key><string>a.jpg</string>"
        "<key>publish</key><string>1</string></dict>";
    const QByteArray failed = "<key>loadStatus</key><string>Failed to load photo(s)</string>";
    const QString loaded = "Succeeded to load photo(s)";
    // The file's entries; the records, "loadStatus" and whether a warning is given.
    const std::tuple<QByteArray, int, QString, bool> cases[] = {
        {count("0") + entry, 0, "", false},
        {entry, 0, "", false},  // no count
        {count("-4"), 0, "", false},
        {count("1") + entry, 1, loaded, false},
        {count("2147483647") + entry, 1, loaded, true},
        {count("many") + entry, 0, "", false},
        {count("2") + "<key>2</key><string>a.jpg</string>" + entry, 1, loaded, true},
        {count("0") + failed, 0, "Failed to load photo(s)", false},  // kept
        {count("1") + entry + failed, 1, loaded, false},             // replaced
    };
    for (const auto& [body, records, loadStatus, warned] : cases) {
        SCOPED_TRACE(body.toStdString());
        writeFile(dir + "p.orvprj", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + body +
                                        "</dict></plist>");
        const auto opened = ProjectFile::open(dir, dir + "p.orvprj");
        ASSERT_EQ(opened.status, Status::Opened) << opened.message;
        EXPECT_EQ(opened.records.size(), records);
        EXPECT_EQ(opened.dictionary.value("loadStatus"), loadStatus);
        EXPECT_EQ(opened.missingPhotos(), loadStatus == "Failed to load photo(s)");
        EXPECT_EQ(!opened.warnings.isEmpty(), warned);
        EXPECT_EQ(opened.layout->kind, "grid");
    }
}

// Photo names that would reach outside the photos folder refuse the whole project, which opens
// empty and without settings; nothing outside the folder changes.
TEST(ProjectFile, HostileAndDamagedProjects) {
    const QString dir = freshDir("projects-hostile"), folder = dir + "project/";
    QDir().mkpath(folder + "photos");
    tag(makeImage(dir + "secret.jpg"), {"-UserComment=outside"});
    const auto before = contentsUnder(dir);
    auto withName = [](const QByteArray& name) {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>count</key>"
               "<string>2</string><key>1</key><dict><key>name</key><string>ok.jpg</string></dict>"
               "<key>2</key><dict>" +
               name + "</dict></dict></plist>";
    };
    auto named = [&](const QByteArray& name) {
        return withName("<key>name</key><string>" + name + "</string>");
    };
    const std::tuple<QByteArray, Status, const char*> cases[] = {
        {named("../secret.jpg"), Status::Refused, "\"2\" has the name \"../secret.jpg\""},
        {named(".."), Status::Refused, "\"2\""},
        {named(QFile::encodeName(dir + "secret.jpg")), Status::Refused, "\"2\""},
        {named("..\\secret.jpg"), Status::Refused, "\"2\""},
        {named(""), Status::Refused, "\"2\""},
        {withName(""), Status::Refused, "\"2\""},  // no name
        {"<plist><dict><key>1</key><dict><key>name</key><dict/></dict></dict></plist>",
         Status::Unreadable, "not a string"},
    };
    for (const auto& [bytes, status, reason] : cases) {
        SCOPED_TRACE(bytes.toStdString());
        const QString file = folder + "p.orvprj";
        writeFile(file, bytes);
        const auto opened = ProjectFile::open(folder, file);
        EXPECT_EQ(opened.status, status);
        EXPECT_TRUE(opened.records.isEmpty() && opened.dictionary.isEmpty());
        EXPECT_TRUE(opened.message.startsWith(file) && opened.message.contains(reason))
            << opened.message;
        SettingsStore settings = settingsWith();
        ProjectFile::loadSettings(opened, settings);
        EXPECT_EQ(settings.text("tfSsWebPageTitle"), settingsWith().text("tfSsWebPageTitle"));
    }
    QFile::remove(folder + "p.orvprj");
    EXPECT_EQ(contentsUnder(dir), before);
}
