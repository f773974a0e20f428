// `orvella project save | show | build`, `orvella preset` and `orvella generate --preset`, run as
// the user runs them; their refusals are in RefusalCliTest.cpp.
#include <QDir>

#include "metadata/MetaFixtures.h"

using namespace testsupport;

namespace {

// The site under `dir`, without the record of the run: that names the photos it was made from.
QMap<QString, QByteArray> site(const QString& dir) {
    auto files = contentsUnder(dir);
    files.remove(".orvella-manifest");
    return files;
}

}  // namespace

// The sites a project builds alone (its photos gone from where they were) and those made from
// saved and exported presets are the site `generate` writes of the same photos and settings.
TEST(ProjectCli, ProjectsAndPresetsGiveTheSameSite) {
    for (const auto& [kind, word, sets] :
         {std::tuple{"gallery", "PhotoGallery",
                     QStringList{"tfPageTitle=Harbour view", "tfNumberOfColumns=2",
                                 "tfNumberOfRows=1", "tfHTMLbackgroundColor=102030",
                                 "pbFontFamily=Raleway", "btShowFileName=1"}},
          std::tuple{"slideshow", "SlideShow",
                     QStringList{"tfSsWebPageTitle=Harbour view", "cbSsWebPageTitle=1"}},
          std::tuple{"grid", "ResponsiveGrid",
                     QStringList{"tfRgWebPageTitle=Harbour view", "tfRGMaxColumns=3"}}}) {
        SCOPED_TRACE(kind);
        const QString dir = freshDir(QString("cli-same-site-") + kind);
        const QProcessEnvironment home = homeIn(dir);
        const auto run = [&](const QStringList& args) {
            return orvellaOut(0, args, nullptr, &home);
        };
        const QString src = dir + "src/";
        makePhoto(src + "b.png", 40, 60);
        for (const auto& [name, w, h, caption] : {std::tuple{"a.jpg", 60, 40, "Harbour\tat dawn"},
                                                  {"c.jpg", 50, 50, "Hills"},
                                                  {"d.tif", 64, 48, "Left out"}})
            metafixtures::tag(makePhoto(src + name, w, h), {QString("-UserComment=") + caption});
        QStringList settings;
        for (const QString& set : sets) settings << "--set" << set;
        const QStringList selection = {"--sort", "za",          "--unpublish",
                                       "d.tif",  "--highlight", "a.jpg"};
        const QString page = run(QStringList{"generate", kind, "--out", dir + "generated/"} +
                                 selection + settings + QStringList{src});
        const auto expected = site(dir + "generated/");
        EXPECT_GT(expected.size(), 4);

        // A second save of a name is stored as "_[x]"; an export takes --set over --preset.
        EXPECT_EQ(run(QStringList{"preset", "save", kind, "Look"} + settings), "Look\n");
        EXPECT_EQ(run({"preset", "save", kind, "Look"}), "Look_[x]\n");
        const QString file = dir + "look.orvpreset";
        EXPECT_EQ(run(QStringList{"preset", "export", kind, "--out", file, "--preset", "Look_[x]"} +
                      settings),
                  file + "\n");
        EXPECT_EQ(run({"preset", "import", file, "Imported"}), "Imported\n");
        for (const QString& preset : {QString("Look"), QString("Imported"), file}) {
            QDir(dir + "preset").removeRecursively();
            run(QStringList{"generate", kind, "--out", dir + "preset/", "--preset", preset} +
                selection + QStringList{src});
            EXPECT_TRUE(site(dir + "preset/") == expected) << preset;
        }
        const QByteArray text =
            readFile(run(QStringList{"generate", kind, "--out", dir + "changed/", "--preset",
                                     "Look", "--set", sets[0].section('=', 0, 0) + "=Changed"} +
                         selection + QStringList{src})
                         .trimmed());
        EXPECT_TRUE(text.contains("Changed") && !text.contains("Harbour view"));

        const QString project = dir + "project/Trip.orvprj";
        EXPECT_EQ(
            run(QStringList{"project", "save", dir + "project", "--name", "Trip", "--kind", kind} +
                selection + settings + QStringList{src}),
            project + "\n");
        EXPECT_EQ(run({"project", "show", project}),
                  word + QString("\n1\td.tif\t0\t0\t64x48\tH\tLeft out\n2\tc.jpg\t1\t0\t50x50\tV"
                                 "\tHills\n3\tb.png\t1\t0\t40x60\tV\t\n4\ta.jpg\t1\t1\t60x40\tH"
                                 "\tHarbour\\tat dawn\n"));
        // An empty name takes the page file name's.
        EXPECT_EQ(run({"project", "save", dir + "named", "--name", "", "--kind", "gallery", "--set",
                       "tfHTMLfileName=holiday", src + "a.jpg"}),
                  dir + "named/holiday.orvprj\n");
        ASSERT_TRUE(QDir(src).removeRecursively());
        EXPECT_EQ(run({"project", "build", project, "--out", dir + "built/", "--threads", "1"}),
                  QString(page).replace(dir + "generated/", dir + "built/"));
        EXPECT_TRUE(site(dir + "built/") == expected);
        EXPECT_EQ(QDir(dir + "project/photos").entryList(QDir::Files),
                  QStringList({"a.jpg", "b.png", "c.jpg", "d.tif"}));
    }
}
