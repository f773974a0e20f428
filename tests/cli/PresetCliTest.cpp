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
    // The standard outputs of these runs, one after the other.
    QString runAll(const std::vector<QStringList>& runs) const {
        QString out;
        for (const QStringList& args : runs) out += run(args);
        return out;
    }
};

}  // namespace

// The names each command prints, --preset and --set together on an export, and an import read
// back with sqlite3; names and values with a quote are the presets database's tests.
TEST(PresetCli, SaveListExportImportRemove) {
    const Home home("cli-preset-flow");
    EXPECT_EQ(home.runAll({{"preset", "save", "gallery", "Summer"},
                           {"preset", "save", "gallery", "Summer", "--set", "tfPageTitle=Two"},
                           {"preset", "save", "slideshow", "Summer"}}),
              "Summer\nSummer_[x]\nSummer\n");
    const QString file = home.root + "look.orvpreset";
    EXPECT_EQ(home.run({"preset", "export", "gallery", "--out", file, "--preset", "Summer_[x]",
                        "--set", "tfNumberOfRows=5"}),
              file + "\n");
    EXPECT_EQ(home.run({"preset", "import", file, "Winter"}), "Winter\n");
    const auto row = presetfixtures::sqliteRows(
        home.db(), "SELECT StrField3, StrField9 FROM Presets WHERE NameOfPreset = 'Winter'");
    EXPECT_EQ(row.value(0)["StrField3"] + row.value(0)["StrField9"], "Two5");
    EXPECT_EQ(home.run({"preset", "remove", "Summer"}), "");
    EXPECT_EQ(home.runAll({{"preset", "list", "gallery"}, {"preset", "list", "slideshow"}}),
              "Summer_[x]\nWinter\n");
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
