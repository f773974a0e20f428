// Project files: what a save writes (read back by Python's plistlib, not by our reader), the photo
// copies, opening, the name rules, and hostile or damaged project files.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "collection/PhotoCollection.h"
#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "projects/ProjectFile.h"
#include "services/KLbookmarks.h"
#include "services/cNSStringHandling.h"
#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::readFile;
using testsupport::runProgram;
using testsupport::writeFile;
using Status = ProjectFile::OpenResult::Status;

namespace {

// A JPEG or PNG of that size, with an EXIF user comment when `caption` is given.
QString makePhoto(const QString& dir, const QString& name, int w, int h, const QString& caption) {
    EXPECT_EQ(runProgram("vips", {"black", dir + name, QString::number(w), QString::number(h),
                                  "--bands", "3"}),
              0);
    if (!caption.isEmpty()) {
        EXPECT_EQ(runProgram("exiftool",
                             {"-q", "-overwrite_original", "-UserComment=" + caption, dir + name}),
                  0);
    }
    return dir + name;
}

// The project file as Python's plistlib reads it, as JSON (every value must be a string or a
// dictionary, or the script fails).
QJsonObject plistlib(const QString& file) {
    const QString script = R"(
import json, plistlib, sys
with open(sys.argv[1], 'rb') as f:
    d = plistlib.load(f, fmt=plistlib.FMT_XML)
def check(v):
    if isinstance(v, dict):
        for x in v.values(): check(x)
    elif not isinstance(v, str):
        raise SystemExit('not a string: %r' % (v,))
check(d)
print(json.dumps(d))
)";
    QString out, err;
    EXPECT_EQ(runProgram("python3", {"-c", script, file}, &out, &err), 0) << err.toStdString();
    return QJsonDocument::fromJson(out.toUtf8()).object();
}

// Every file under a folder, relative path to contents.
QMap<QString, QByteArray> tree(const QString& dir) {
    QMap<QString, QByteArray> files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files.insert(QDir(dir).relativeFilePath(path), readFile(path));
    }
    return files;
}

// Three photos: b unpublished, c highlighted.
QList<cCollectionViewItem> threePhotos(const QString& dir) {
    PhotoCollection collection;
    collection.setCellImageSize(0);
    collection.appendPhotos({makePhoto(dir, "a.jpg", 60, 40, "Harbour at dawn"),
                             makePhoto(dir, "b.jpg", 40, 60, "Tabs\tand \"quotes\" <&>"),
                             makePhoto(dir, "c.png", 50, 50, "")});
    collection.setSelect(1, false);
    collection.setHighlight(2, true);
    return collection.arrangedObjects();
}

}  // namespace

TEST(ProjectFile, ThreePhotosWrittenAsTheTablesSayAndOpenedAgain) {
    const QString dir = freshDir("projects-three");
    const QString folder = dir + "Trip";
    const QList<cCollectionViewItem> records = threePhotos(dir);
    ASSERT_EQ(records.size(), 3);
    SettingsStore settings =
        testsupport::settingsWith({{"tfPageTitle", "Harbour & hills"}, {"tfNumberOfColumns", "5"}});
    const ProjectFile::SaveResult saved =
        ProjectFile::save(folder, "Summer", records, settings, ProjectFile::layoutForTab(0));
    ASSERT_TRUE(saved.ok) << saved.error.toStdString();
    EXPECT_TRUE(saved.warnings.isEmpty()) << saved.warnings.join('\n').toStdString();
    EXPECT_EQ(saved.projectFile, folder + "/Summer.orvprj");

    const QJsonObject root = plistlib(saved.projectFile);
    // destination, count, three entries, the 102 preset keys; no loadStatus.
    EXPECT_EQ(root.size(), 2 + 3 + 102);
    EXPECT_FALSE(root.contains("loadStatus"));
    EXPECT_EQ(root["count"].toString(), "3");
    const QString destination = root["destination"].toString();
    EXPECT_FALSE(destination.contains('\n'));
    EXPECT_EQ(KLbookmarks::pathInBookmark(QByteArray::fromBase64(destination.toLatin1())), folder);
    struct Entry {
        const char* key;
        const char* publish;
        const char* name;
        const char* exif;
        const char* highlight;
        const char* pixels;
        const char* orientation;
    };
    for (const Entry& e :
         std::vector<Entry>{{"1", "1", "a.jpg", "Harbour at dawn", "0", "60x40", "H"},
                            {"2", "0", "b.jpg", "Tabs\tand \"quotes\" <&>", "0", "40x60", "V"},
                            {"3", "1", "c.png", "", "1", "50x50", "V"}}) {
        SCOPED_TRACE(e.key);
        const QJsonObject entry = root[e.key].toObject();
        EXPECT_EQ(entry.size(), 6);
        EXPECT_EQ(entry["publish"].toString(), e.publish);
        EXPECT_EQ(entry["name"].toString(), e.name);
        EXPECT_EQ(entry["exif"].toString(), e.exif);
        EXPECT_EQ(entry["highlight"].toString(), e.highlight);
        EXPECT_EQ(entry["pixels"].toString(), e.pixels);
        EXPECT_EQ(entry["orientation"].toString(), e.orientation);
        // The copy holds the photo's bytes.
        EXPECT_EQ(readFile(folder + "/photos/" + e.name), readFile(dir + e.name));
    }
    EXPECT_EQ(root["mySqlVal1"].toString(), "HTML1");
    EXPECT_EQ(root["mySqlVal2"].toString(), "PhotoGallery");
    EXPECT_EQ(root["mySqlVal3"].toString(), "Harbour & hills");
    EXPECT_EQ(root["mySqlVal10"].toString(), "5");
    EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
              QStringList({"photos", "Summer.orvprj"}));

    // Opened from the project's own photos, with order, flags, captions and settings as saved.
    RecordingUserInterface ui;
    const ProjectFile::OpenResult opened = ProjectFile::open(folder, saved.projectFile, 0, &ui);
    ASSERT_EQ(opened.status, Status::Opened) << opened.message.toStdString();
    ASSERT_EQ(opened.records.size(), 3);
    for (int i = 0; i < 3; ++i) {
        const cCollectionViewItem& a = records[i];
        const cCollectionViewItem& b = opened.records[i];
        EXPECT_EQ(b.myPhotoName, a.myPhotoName);
        EXPECT_EQ(b.myPhotoDescription, a.myPhotoDescription);
        EXPECT_EQ(b.myPhotoSelect, a.myPhotoSelect);
        EXPECT_EQ(b.myPhotoHighLight, a.myPhotoHighLight);
        EXPECT_EQ(b.myPhotoPxSize, a.myPhotoPxSize);
        EXPECT_EQ(b.myPhotoOrientation, a.myPhotoOrientation);
        EXPECT_EQ(b.path(), folder + "/photos/" + a.myPhotoName);
    }
    EXPECT_EQ(opened.dictionary.value("loadStatus"), "Succeeded to load photo(s)");
    EXPECT_EQ(opened.layout->kind, "gallery");
    EXPECT_EQ(ui.starts, 1);
    EXPECT_EQ(ui.stops, 1);
    EXPECT_EQ(ui.steps, std::vector<double>(3, 33));
    SettingsStore loaded(OutputKinds::registry());
    ProjectFile::loadSettings(opened, loaded);
    EXPECT_EQ(loaded.text("tfPageTitle"), "Harbour & hills");
    EXPECT_EQ(loaded.text("tfNumberOfColumns"), "5");

    // A second save keeps the copies already there and replaces the project file.
    writeFile(dir + "a.jpg", "changed since the first save");
    QList<cCollectionViewItem> changed = records;
    changed[0].myPhotoDescription = "Harbour at dusk";
    const QByteArray firstCopy = readFile(folder + "/photos/a.jpg");
    const ProjectFile::SaveResult again =
        ProjectFile::save(folder, "Summer", changed, settings, ProjectFile::layoutForTab(0));
    ASSERT_TRUE(again.ok) << again.error.toStdString();
    EXPECT_EQ(readFile(folder + "/photos/a.jpg"), firstCopy);
    EXPECT_EQ(plistlib(saved.projectFile)["1"].toObject()["exif"].toString(), "Harbour at dusk");
    EXPECT_EQ(tree(folder).size(), 4);  // no temporary file left
}

// Each tab's kind is written under "mySqlVal2" and chooses its loader on opening; an unknown
// word chooses the Responsive Grid's.
TEST(ProjectFile, KindOfTheSelectedTabChoosesTheLoader) {
    const QString dir = freshDir("projects-kinds");
    const QList<cCollectionViewItem> records = threePhotos(dir);
    struct Case {
        int tab;
        const char* word;
        const char* kind;
        const char* setting;
    };
    for (const Case& c : std::vector<Case>{{0, "PhotoGallery", "gallery", "tfPageTitle"},
                                           {1, "SlideShow", "slideshow", "tfSsWebPageTitle"},
                                           {2, "ResponsiveGrid", "grid", "tfRgWebPageTitle"},
                                           {7, "ResponsiveGrid", "grid", "tfRgWebPageTitle"}}) {
        SCOPED_TRACE(c.word);
        const QString folder = dir + QString::number(c.tab);
        const SettingsStore settings = testsupport::settingsWith({{c.setting, "Kind test"}});
        const auto saved =
            ProjectFile::save(folder, "P", records, settings, ProjectFile::layoutForTab(c.tab));
        ASSERT_TRUE(saved.ok) << saved.error.toStdString();
        EXPECT_EQ(plistlib(saved.projectFile)["mySqlVal2"].toString(), c.word);
        const auto opened = ProjectFile::open(folder, saved.projectFile);
        ASSERT_EQ(opened.status, Status::Opened);
        EXPECT_EQ(opened.layout->kind, c.kind);
        SettingsStore loaded(OutputKinds::registry());
        ProjectFile::loadSettings(opened, loaded);
        EXPECT_EQ(loaded.text(c.setting), "Kind test");
    }
    for (const auto& [word, kind] :
         std::vector<std::pair<QString, QString>>{{"PhotoGallery", "gallery"},
                                                  {"SlideShow", "slideshow"},
                                                  {"Sorting", "grid"},
                                                  {"", "grid"}})
        EXPECT_EQ(ProjectFile::layoutForKindWord(word).kind, kind) << qPrintable(word);
}

TEST(ProjectFile, NameRules) {
    const SettingsStore page = testsupport::settingsWith({{"tfHTMLfileName", "holiday"}});
    for (const auto& [typed, name] : std::vector<std::pair<QString, QString>>{
             {"Trip", "Trip"},
             {"", "holiday"},
             {"Enter your project name here", "holiday"},
             {"Enter project name here", "Enter project name here"}})
        EXPECT_EQ(ProjectFile::projectName(typed, page), name) << qPrintable(typed);

    const QString dir = freshDir("projects-names");
    const SettingsStore settings(OutputKinds::registry());
    const auto untouched = ProjectFile::save(
        dir + "f", ProjectFile::projectName(ProjectFile::kInitialNameText, settings), {}, settings,
        ProjectFile::layoutForTab(0));
    ASSERT_TRUE(untouched.ok);
    EXPECT_TRUE(QFile::exists(dir + "f/Enter project name here.orvprj"));

    // Names that would leave the folder, and no name at all, are refused before anything is made.
    for (const QString& name :
         QStringList{"../up", "a/b", "..", ".", "", QString("a") + QChar(0) + "b"}) {
        const auto refused =
            ProjectFile::save(dir + "g", name, {}, settings, ProjectFile::layoutForTab(0));
        EXPECT_FALSE(refused.ok);
        EXPECT_TRUE(refused.refused) << qPrintable(name);
        EXPECT_FALSE(refused.error.isEmpty());
    }
    EXPECT_FALSE(QFileInfo::exists(dir + "g"));
    EXPECT_FALSE(QFileInfo::exists(dir + "up.orvprj"));
}

// A photo that is gone is named; two photos of one file name keep the first copy and say so. The
// project is written all the same.
TEST(ProjectFile, CopiesThatCannotBeMadeAreReported) {
    const QString dir = freshDir("projects-copies");
    QDir().mkpath(dir + "other");
    QList<cCollectionViewItem> records = threePhotos(dir);
    PhotoCollection more;
    more.setCellImageSize(0);
    more.appendPhotos({makePhoto(dir + "other/", "a.jpg", 30, 30, "")});
    records.append(more.arrangedObjects());
    QFile::remove(dir + "b.jpg");
    const auto saved =
        ProjectFile::save(dir + "p", "P", records, SettingsStore(OutputKinds::registry()),
                          ProjectFile::layoutForTab(0));
    ASSERT_TRUE(saved.ok);
    ASSERT_EQ(saved.warnings.size(), 2) << saved.warnings.join('\n').toStdString();
    EXPECT_TRUE(saved.warnings[0].startsWith(dir + "b.jpg: not copied"));
    EXPECT_TRUE(saved.warnings[1].startsWith(dir + "other/a.jpg: another photo"));
    EXPECT_EQ(readFile(dir + "p/photos/a.jpg"), readFile(dir + "a.jpg"));
    EXPECT_EQ(plistlib(saved.projectFile)["count"].toString(), "4");
}

TEST(ProjectFile, CountAndLoadStatus) {
    const QString dir = freshDir("projects-count");
    auto project = [&](const QByteArray& body) {
        const QString file = dir + "p.orvprj";
        writeFile(file, "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + body +
                            "</dict></plist>");
        return ProjectFile::open(dir, file);
    };
    const QByteArray entry =
        "<dict><key>name</key><string>a.jpg</string><key>publish</key><string>1</string></dict>";
    struct Case {
        const char* what;
        QByteArray body;
        int records;
        const char* loadStatus;
        bool warned;
    };
    const QByteArray failed = "<key>loadStatus</key><string>Failed to load photo(s)</string>";
    for (const Case& c : std::vector<Case>{
             {"count 0", "<key>count</key><string>0</string><key>1</key>" + entry, 0, "", false},
             {"no count", "<key>1</key>" + entry, 0, "", false},
             {"negative", "<key>count</key><string>-4</string>", 0, "", false},
             {"one", "<key>count</key><string>1</string><key>1</key>" + entry, 1,
              "Succeeded to load photo(s)", false},
             {"far larger", "<key>count</key><string>2147483647</string><key>1</key>" + entry, 1,
              "Succeeded to load photo(s)", true},
             {"not a number", "<key>count</key><string>many</string><key>1</key>" + entry, 0, "",
              false},
             {"entry not a dictionary",
              "<key>count</key><string>2</string><key>1</key><string>a.jpg</string><key>2</key>" +
                  entry,
              1, "Succeeded to load photo(s)", true},
             {"failed status kept", "<key>count</key><string>0</string>" + failed, 0,
              "Failed to load photo(s)", false},
             {"failed status replaced",
              "<key>count</key><string>1</string><key>1</key>" + entry + failed, 1,
              "Succeeded to load photo(s)", false}}) {
        SCOPED_TRACE(c.what);
        const auto opened = project(c.body);
        ASSERT_EQ(opened.status, Status::Opened) << opened.message.toStdString();
        EXPECT_EQ(opened.records.size(), c.records);
        EXPECT_EQ(opened.dictionary.value("loadStatus"), c.loadStatus);
        EXPECT_EQ(opened.missingPhotos(), QString(c.loadStatus) == "Failed to load photo(s)");
        EXPECT_EQ(!opened.warnings.isEmpty(), c.warned);
        EXPECT_EQ(opened.layout->kind, "grid");
    }
}

// Photo names that would reach outside the photos folder refuse the whole project; files that are
// no property-list dictionary open as an empty project without settings. Nothing outside the
// folder is read or changed either way.
TEST(ProjectFile, HostileAndDamagedProjects) {
    const QString dir = freshDir("projects-hostile");
    const QString folder = dir + "project/";
    QDir().mkpath(folder + "photos");
    makePhoto(dir, "secret.jpg", 20, 20, "outside");
    const auto before = tree(dir);
    auto withName = [](const QByteArray& name) {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>count</key>"
               "<string>2</string><key>1</key><dict><key>name</key><string>ok.jpg</string></dict>"
               "<key>2</key><dict><key>name</key><string>" +
               name + "</string></dict></dict></plist>";
    };
    QString good;
    {
        const auto saved =
            ProjectFile::save(dir + "good", "G", threePhotos(dir + "good-"),
                              SettingsStore(OutputKinds::registry()), ProjectFile::layoutForTab(1));
        ASSERT_TRUE(saved.ok);
        good = QString::fromUtf8(readFile(saved.projectFile));
    }
    struct Case {
        const char* what;
        QByteArray bytes;
        Status status;
        const char* reason;
    };
    const std::vector<Case> cases = {
        {"parent", withName("../secret.jpg"), Status::Refused,
         "\"2\" has the name \"../secret.jpg\""},
        {"dot dot", withName(".."), Status::Refused, "\"2\""},
        {"absolute", withName(QFile::encodeName(dir + "secret.jpg")), Status::Refused, "\"2\""},
        {"backslash", withName("..\\secret.jpg"), Status::Refused, "\"2\""},
        {"empty", withName(""), Status::Refused, "\"2\""},
        {"no name", withName("x").replace("<key>name</key><string>x</string>", ""), Status::Refused,
         "\"2\""},
        {"NUL", withName("a&#0;b"), Status::Unreadable, "not XML"},
        {"truncated", good.toUtf8().left(good.size() / 2), Status::Unreadable, "not XML"},
        {"array root", "<plist version=\"1.0\"><array><string>a</string></array></plist>",
         Status::Unreadable, "holds no dictionary"},
        {"not XML", "\x89PNG\r\n", Status::Unreadable, "not XML"},
        {"empty file", "", Status::Unreadable, "not XML"},
        {"integer value", "<plist><dict><key>count</key><integer>1</integer></dict></plist>",
         Status::Unreadable, "not a string"},
        {"too deep", "<plist><dict><key>1</key><dict><key>name</key><dict/></dict></dict></plist>",
         Status::Unreadable, "not a string"},
        {"duplicate key",
         "<plist><dict><key>count</key><string>1</string><key>count</key><string>2</string>"
         "</dict></plist>",
         Status::Unreadable, "appears twice"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const QString file = folder + "p.orvprj";
        writeFile(file, c.bytes);
        const auto opened = ProjectFile::open(folder, file);
        EXPECT_EQ(opened.status, c.status);
        EXPECT_TRUE(opened.records.isEmpty());
        EXPECT_TRUE(opened.dictionary.isEmpty());
        EXPECT_TRUE(opened.message.startsWith(file)) << opened.message.toStdString();
        EXPECT_TRUE(opened.message.contains(c.reason)) << opened.message.toStdString();
        SettingsStore settings(OutputKinds::registry());
        ProjectFile::loadSettings(opened, settings);
        EXPECT_EQ(settings.text("tfSsWebPageTitle"),
                  SettingsStore(OutputKinds::registry()).text("tfSsWebPageTitle"));
    }
    QFile::remove(folder + "p.orvprj");
    auto after = tree(dir);
    for (auto it = after.begin(); it != after.end();)
        it = it.key().startsWith("good") ? after.erase(it) : std::next(it);
    EXPECT_EQ(after.keys(), before.keys());
    EXPECT_EQ(after, before);
}
