// `orvella preset` and `orvella support`, each run with a scratch HOME, XDG_DATA_HOME and
// XDG_CONFIG_HOME. Their refusals are in RefusalCliTest.cpp; generating from a preset is in
// ProjectCliTest.cpp.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>

#include "presets/PresetFixtures.h"
#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::readFile;
using testsupport::writeFile;

namespace {

// The program with its own home folder.
struct Home {
    QString root;
    QProcessEnvironment env;
    explicit Home(const QString& name) : root(freshDir(name)), env(testsupport::homeIn(root)) {}
    QString db() const { return root + "data/KeldraCom/klOrvella3.sql"; }
    // Its standard output; the exit code is expected to be `code`.
    QString run(const QStringList& args, int code = 0, QString* err = nullptr) const {
        return testsupport::orvellaOut(code, args, err, &env);
    }
};

}  // namespace

TEST(PresetCli, SaveListExportImportRemove) {
    const Home home("cli-preset-flow");
    EXPECT_EQ(home.run({"preset", "save", "gallery", "Summer"}), "Summer\n");
    EXPECT_EQ(home.run({"preset", "save", "gallery", "Summer", "--set", "tfPageTitle=Two"}),
              "Summer_[x]\n");
    EXPECT_EQ(home.run({"preset", "save", "slideshow", "Summer"}), "Summer\n");
    EXPECT_EQ(home.run({"preset", "list", "gallery"}), "Summer\nSummer_[x]\n");

    const QString file = home.root + "look.orvpreset";
    EXPECT_EQ(home.run({"preset", "export", "gallery", "--out", file, "--preset", "Summer_[x]",
                        "--set", "tfNumberOfRows=5"}),
              file + "\n");
    const QString text = QString::fromUtf8(readFile(file));
    EXPECT_TRUE(text.contains("<key>mySqlVal3</key>\n\t\t<string>Two</string>"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("<key>mySqlVal9</key>\n\t\t<string>5</string>"));
    EXPECT_TRUE(text.contains("<string>PhotoGallery</string>"));
    EXPECT_EQ(home.run({"preset", "import", file, "Winter"}), "Winter\n");
    const auto rows = presetfixtures::sqliteRows(
        home.db(), "SELECT StrField3, StrField9 FROM Presets WHERE NameOfPreset = 'Winter'");
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0]["StrField3"], "Two");
    EXPECT_EQ(rows[0]["StrField9"], "5");

    EXPECT_EQ(home.run({"preset", "remove", "Summer"}), "");
    EXPECT_EQ(home.run({"preset", "list", "gallery"}), "Summer_[x]\nWinter\n");
    EXPECT_EQ(home.run({"preset", "list", "slideshow"}), "");
}

// Names and values with a single quote, typed or from a preset file, are refused; every table
// stays.
TEST(PresetCli, InjectionsAreRefused) {
    const Home home("cli-preset-injection");
    home.run({"preset", "save", "grid", "Keep"});
    const QString attack = "x'); DROP TABLE Presets; --";
    const QString file = home.root + "attack.orvpreset";
    home.run({"preset", "export", "gallery", "--out", file});
    QByteArray bytes = readFile(file);
    bytes.replace("<string>Photo Gallery</string>", "<string>" + attack.toUtf8() + "</string>");
    writeFile(file, bytes);
    QString err;
    for (const QStringList& args :
         {QStringList{"preset", "save", "gallery", attack},
          QStringList{"preset", "save", "gallery", "A", "--set", "tfPageTitle=" + attack},
          QStringList{"preset", "import", file, "Imported"}}) {
        home.run(args, 1, &err);
        EXPECT_TRUE(err.startsWith("orvella preset: Error updating table.\n")) << err.toStdString();
    }
    home.run({"preset", "remove", attack}, 2);
    QString tables;
    testsupport::runProgram("sqlite3", {home.db(), ".tables"}, &tables);
    EXPECT_EQ(tables.simplified(), "AppBookmarks AppResource Presets");
    EXPECT_EQ(home.run({"preset", "list", "grid"}), "Keep\n");

    writeFile(file, "<plist><dict><key>mySqlVal1</key><integer>1</integer></dict></plist>");
    home.run({"preset", "import", file, "Bad"}, 2, &err);
    EXPECT_TRUE(err.contains(file + " is not a preset file")) << err.toStdString();
}

TEST(SupportCli, SetShowImportAndVanishedRoot) {
    const Home home("cli-support");
    const QString root = home.root + "root";
    QDir().mkpath(root);
    QString err;
    home.run({"support", "show"}, 1, &err);
    EXPECT_TRUE(err.contains("no support folder is set")) << err.toStdString();

    const QString patterns = root + "/Keldra_SupportFiles/Patterns";
    const QString watermarks = root + "/Keldra_SupportFiles/Watermarks";
    const QString paths = root + "\n" + patterns + "\n" + watermarks + "\n";
    EXPECT_EQ(home.run({"support", "set", root}), paths);
    const QStringList builtIn = QDir(patterns).entryList(QDir::Files);
    EXPECT_GE(builtIn.size(), 3) << builtIn.join(' ').toStdString();
    for (const QString& name : builtIn) {
        EXPECT_TRUE(name.endsWith(".png"));
        EXPECT_FALSE(QImage(patterns + "/" + name).isNull()) << name.toStdString();
        EXPECT_TRUE(QFileInfo(patterns + "/" + name).isWritable());
    }
    EXPECT_TRUE(QDir(watermarks).entryList(QDir::Files).isEmpty());
    const QString config = QString::fromUtf8(readFile(home.root + "config/KeldraCom/Orvella.conf"));
    EXPECT_TRUE(config.contains("PatternsDestination=" + patterns)) << config.toStdString();
    EXPECT_TRUE(config.contains("WatermarksDestination=" + watermarks));
    EXPECT_TRUE(config.contains("SupportFilesDestination="));

    // Importing: images are copied, other files refused; a file imported onto itself stays.
    const QString mine = testsupport::makePhoto(home.root + "mine.png", 8, 8);
    writeFile(home.root + "notes.txt", "text");
    EXPECT_EQ(home.run({"support", "import", "patterns", mine}), patterns + "/mine.png\n");
    EXPECT_EQ(home.run({"support", "import", "watermarks", mine}), watermarks + "/mine.png\n");
    home.run({"support", "import", "patterns", home.root + "notes.txt"}, 1, &err);
    EXPECT_TRUE(err.contains("notes.txt")) << err.toStdString();
    EXPECT_EQ(home.run({"support", "import", "patterns", patterns + "/mine.png"}),
              patterns + "/mine.png\n");
    EXPECT_FALSE(QImage(patterns + "/mine.png").isNull());

    // Choosing the same root again keeps what was added.
    EXPECT_EQ(home.run({"support", "set", root}), paths);
    EXPECT_TRUE(QFileInfo::exists(patterns + "/mine.png"));
    EXPECT_EQ(home.run({"support", "show"}), paths);

    // The patterns folder gone: an import needs a new root first.
    QDir(patterns).removeRecursively();
    home.run({"support", "import", "patterns", mine}, 1);
    EXPECT_FALSE(QFileInfo::exists(patterns));

    // The root gone: the two lines; it cannot be chosen again.
    QDir(root).removeRecursively();
    EXPECT_EQ(home.run({"support", "show"}, 1, &err), "");
    EXPECT_TRUE(err.startsWith(
        "Oh! Your previous defined folder has gone!?\nSelect a new location please.\n"))
        << err.toStdString();
    home.run({"support", "set", root}, 2);
    home.run({"support", "show"}, 1);
}
