// `orvella preset`, `orvella support` and `orvella generate --preset`, each run with a scratch
// HOME, XDG_DATA_HOME and XDG_CONFIG_HOME.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QProcess>

#include "presets/PresetFixtures.h"
#include "support/TestSupport.h"

using presetfixtures::sqliteRows;
using testsupport::freshDir;
using testsupport::readFile;
using testsupport::writeFile;

namespace {

// The program with its own home folder.
struct Home {
    QString root;
    explicit Home(const QString& name) : root(freshDir(name)) {}
    QString db() const { return root + "data/KeldraCom/klOrvella3.sql"; }
    QString config() const { return root + "config/KeldraCom/Orvella.conf"; }

    int run(const QStringList& args, QString* out = nullptr, QString* err = nullptr) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", root + "home");
        env.insert("XDG_DATA_HOME", root + "data");
        env.insert("XDG_CONFIG_HOME", root + "config");
        return testsupport::runProgram(ORVELLA_BINARY, args, out, err, 180000, &env);
    }
    QString out(const QStringList& args) const {
        QString text, err;
        EXPECT_EQ(run(args, &text, &err), 0) << args.join(' ').toStdString() << "\n"
                                             << err.toStdString();
        return text;
    }
};

QString tables(const QString& db) {
    QString out;
    testsupport::runProgram("sqlite3", {db, ".tables"}, &out);
    return out.simplified();
}

}  // namespace

TEST(PresetCli, SaveListExportImportRemove) {
    const Home home("cli-preset-flow");
    EXPECT_EQ(home.out({"preset", "save", "gallery", "Summer"}), "Summer\n");
    EXPECT_EQ(home.out({"preset", "save", "gallery", "Summer", "--set", "tfPageTitle=Two"}),
              "Summer_[x]\n");
    EXPECT_EQ(home.out({"preset", "save", "slideshow", "Summer"}), "Summer\n");
    EXPECT_EQ(home.out({"preset", "list", "gallery"}), "Summer\nSummer_[x]\n");
    ASSERT_TRUE(QFileInfo::exists(home.db()));

    const QString file = home.root + "look.orvpreset";
    EXPECT_EQ(home.out({"preset", "export", "gallery", "--out", file, "--preset", "Summer_[x]",
                        "--set", "tfNumberOfRows=5"}),
              file + "\n");
    const QString text = QString::fromUtf8(readFile(file));
    EXPECT_TRUE(text.contains("<key>mySqlVal3</key>\n\t\t<string>Two</string>"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("<key>mySqlVal9</key>\n\t\t<string>5</string>"));
    EXPECT_TRUE(text.contains("<string>PhotoGallery</string>"));
    EXPECT_EQ(home.out({"preset", "import", file, "Winter"}), "Winter\n");
    const auto rows = sqliteRows(home.db(),
                                 "SELECT StrField3, StrField9 FROM Presets WHERE "
                                 "NameOfPreset = 'Winter'");
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0]["StrField3"], "Two");
    EXPECT_EQ(rows[0]["StrField9"], "5");

    EXPECT_EQ(home.out({"preset", "remove", "Summer"}), "");
    EXPECT_EQ(home.out({"preset", "list", "gallery"}), "Summer_[x]\nWinter\n");
    EXPECT_EQ(home.out({"preset", "list", "slideshow"}), "");

    const std::vector<std::pair<QStringList, int>> refusals = {
        {{"preset", "save", "photos", "A"}, 2},
        {{"preset", "save", "gallery"}, 2},
        {{"preset", "save", "gallery", "A", "--preset", "NoSuchPreset"}, 2},
        {{"preset", "save", "gallery", "A", "--set", "tfNoSuch=1"}, 2},
        {{"preset", "save", "gallery", "A", "--set", "tfHTMLTitleColor=red"}, 2},
        {{"preset", "export", "gallery"}, 2},
        {{"preset", "export", "slideshow", "--out", file + "2", "--preset", file}, 2},
        {{"preset", "import", home.root + "missing.orvpreset", "A"}, 2},
        {{"preset", "remove", "NoSuchPreset"}, 2},
        {{"preset", "frobnicate"}, 2},
        {{"generate", "gallery", "--out", home.root + "o", "--preset", "NoSuchPreset"}, 2},
    };
    for (const auto& [args, code] : refusals) {
        QString err;
        EXPECT_EQ(home.run(args, nullptr, &err), code) << args.join(' ').toStdString();
        EXPECT_FALSE(err.isEmpty());
    }
    EXPECT_FALSE(QFileInfo::exists(file + "2"));
    EXPECT_EQ(home.out({"preset", "list", "gallery"}), "Summer_[x]\nWinter\n");
}

// Names and values with a single quote, typed or from a preset file, are refused; every table
// stays.
TEST(PresetCli, InjectionsAreRefused) {
    const Home home("cli-preset-injection");
    home.out({"preset", "save", "grid", "Keep"});
    const QString attack = "x'); DROP TABLE Presets; --";
    const QString file = home.root + "attack.orvpreset";
    home.out({"preset", "export", "gallery", "--out", file});
    QByteArray bytes = readFile(file);
    bytes.replace("<string>Photo Gallery</string>", "<string>" + attack.toUtf8() + "</string>");
    writeFile(file, bytes);
    for (const QStringList& args :
         {QStringList{"preset", "save", "gallery", attack},
          QStringList{"preset", "save", "gallery", "A", "--set", "tfPageTitle=" + attack},
          QStringList{"preset", "import", file, "Imported"}}) {
        QString err;
        EXPECT_EQ(home.run(args, nullptr, &err), 1) << args.join(' ').toStdString();
        EXPECT_TRUE(err.startsWith("orvella preset: Error updating table.\n")) << err.toStdString();
    }
    QString err;
    EXPECT_EQ(home.run({"preset", "remove", attack}, nullptr, &err), 2);
    EXPECT_EQ(tables(home.db()), "AppBookmarks AppResource Presets");
    EXPECT_EQ(home.out({"preset", "list", "grid"}), "Keep\n");

    writeFile(file, "<plist><dict><key>mySqlVal1</key><integer>1</integer></dict></plist>");
    EXPECT_EQ(home.run({"preset", "import", file, "Bad"}, nullptr, &err), 2);
    EXPECT_TRUE(err.contains(file + " is not a preset file")) << err.toStdString();
}

namespace {

// Every file under the folder by relative path, with its bytes.
QMap<QString, QByteArray> filesUnder(const QString& dir) {
    QMap<QString, QByteArray> files;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files.insert(QDir(dir).relativeFilePath(path), readFile(path));
    }
    return files;
}

}  // namespace

TEST(PresetCli, GalleryFromAPresetEqualsTheSameSettings) {
    const Home home("cli-preset-generate");
    const QString photos = home.root + "photos/";
    QDir().mkpath(photos);
    for (const char* name : {"a.png", "b.png", "c.png"})
        ASSERT_EQ(
            testsupport::runProgram("vips", {"black", photos + name, "60", "40", "--bands", "3"}),
            0);
    const QStringList sets = {"--set", "tfPageTitle=From a preset",
                              "--set", "tfNumberOfRows=1",
                              "--set", "ifNumberOfColumns=2",
                              "--set", "tfSmallCropWidth=40",
                              "--set", "tfSmallCropHeight=30",
                              "--set", "tfBigCropWidth=80",
                              "--set", "tfHTMLbackgroundColor=102030",
                              "--set", "pbFontFamily=Raleway",
                              "--set", "btShowFileName=1"};
    EXPECT_EQ(home.out(QStringList{"preset", "save", "gallery", "Look"} + sets), "Look\n");
    const QString file = home.root + "look.orvpreset";
    home.out(QStringList{"preset", "export", "gallery", "--out", file} + sets);

    const QString bySet = home.root + "by-set/";
    const QString byName = home.root + "by-name/";
    const QString byFile = home.root + "by-file/";
    home.out(QStringList{"generate", "gallery", "--out", bySet} + sets + QStringList{photos});
    home.out({"generate", "gallery", "--out", byName, "--preset", "Look", photos});
    home.out({"generate", "gallery", "--out", byFile, "--preset", file, photos});
    const auto expected = filesUnder(bySet);
    ASSERT_TRUE(expected.contains("myIndex.html"));
    EXPECT_TRUE(expected["myIndex.html"].contains("From a preset"));
    for (const QString& dir : {byName, byFile}) {
        const auto actual = filesUnder(dir);
        EXPECT_EQ(actual.keys(), expected.keys()) << dir.toStdString();
        for (const QString& name : expected.keys()) {
            if (name.endsWith(".html") || name.endsWith(".css")) {
                EXPECT_EQ(actual.value(name), expected.value(name)) << name.toStdString();
            }
        }
    }
    // Later --set values override the preset.
    const QString overridden = home.root + "overridden/";
    home.out({"generate", "gallery", "--out", overridden, "--preset", "Look", "--set",
              "tfPageTitle=Changed", photos});
    const QByteArray page = readFile(overridden + "myIndex.html");
    EXPECT_TRUE(page.contains("Changed"));
    EXPECT_FALSE(page.contains("From a preset"));
}

TEST(SupportCli, SetShowImportAndVanishedRoot) {
    const Home home("cli-support");
    const QString root = home.root + "root";
    QDir().mkpath(root);
    QString out, err;
    EXPECT_EQ(home.run({"support", "show"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("no support folder is set")) << err.toStdString();

    const QString patterns = root + "/Keldra_SupportFiles/Patterns";
    const QString watermarks = root + "/Keldra_SupportFiles/Watermarks";
    const QString paths = root + "\n" + patterns + "\n" + watermarks + "\n";
    EXPECT_EQ(home.out({"support", "set", root}), paths);
    const QStringList builtIn = QDir(patterns).entryList(QDir::Files);
    EXPECT_GE(builtIn.size(), 3) << builtIn.join(' ').toStdString();
    for (const QString& name : builtIn) {
        EXPECT_TRUE(name.endsWith(".png"));
        EXPECT_FALSE(QImage(patterns + "/" + name).isNull()) << name.toStdString();
        EXPECT_TRUE(QFileInfo(patterns + "/" + name).isWritable());
    }
    EXPECT_TRUE(QDir(watermarks).entryList(QDir::Files).isEmpty());
    const QString config = QString::fromUtf8(readFile(home.config()));
    EXPECT_TRUE(config.contains("PatternsDestination=" + patterns)) << config.toStdString();
    EXPECT_TRUE(config.contains("WatermarksDestination=" + watermarks));
    EXPECT_TRUE(config.contains("SupportFilesDestination="));

    // Importing: images are copied, other files refused.
    const QString mine = home.root + "mine.png";
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(mine));
    writeFile(home.root + "notes.txt", "text");
    EXPECT_EQ(home.out({"support", "import", "patterns", mine}), patterns + "/mine.png\n");
    EXPECT_EQ(home.out({"support", "import", "watermarks", mine}), watermarks + "/mine.png\n");
    EXPECT_EQ(home.run({"support", "import", "patterns", home.root + "notes.txt"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("notes.txt")) << err.toStdString();
    EXPECT_EQ(home.run({"support", "import", "fonts", mine}), 2);
    // Importing a file onto itself leaves it.
    EXPECT_EQ(home.out({"support", "import", "patterns", patterns + "/mine.png"}),
              patterns + "/mine.png\n");
    EXPECT_FALSE(QImage(patterns + "/mine.png").isNull());

    // Choosing the same root again keeps what was added.
    EXPECT_EQ(home.out({"support", "set", root}), paths);
    EXPECT_TRUE(QFileInfo::exists(patterns + "/mine.png"));
    EXPECT_EQ(home.out({"support", "show"}), paths);

    // The patterns folder gone: an import needs a new root first.
    QDir(patterns).removeRecursively();
    EXPECT_EQ(home.run({"support", "import", "patterns", mine}, &out, &err), 1);
    EXPECT_FALSE(QFileInfo::exists(patterns));

    // The root gone: the two lines.
    QDir(root).removeRecursively();
    EXPECT_EQ(home.run({"support", "show"}, &out, &err), 1);
    EXPECT_EQ(out, "");
    EXPECT_TRUE(err.startsWith(
        "Oh! Your previous defined folder has gone!?\nSelect a new location please.\n"))
        << err.toStdString();
    EXPECT_EQ(home.run({"support", "set", root}, &out, &err), 2);  // not a folder any more
    EXPECT_EQ(home.run({"support", "show"}, &out, &err), 1);
}
