// The record of earlier runs, kept by a stand-in kind on stand-in photos.
#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "generators/common/OutputFolder.h"
#include "generators/common/RunManifest.h"
#include "services/AtomicFile.h"
#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::writeFile;

namespace {

// One run of a stand-in kind "test": pages, and "img/<name>.out" for each photo, made from the
// photo's bytes. Returns the photos whose derivative was made, in photo order.
struct StandInRun {
    RunOptions options = {};
    QStringList failingPhotos = {};  // the stand-in fails on these without writing anything
    QStringList pages = {QString("page.html")};
    QStringList failures = {};

    QStringList run(const QString& dest, const QStringList& photos, UserInterface& ui) {
        options.destination = dest;
        QStringList planned = pages, made;
        QList<QStringList> outputs;
        for (const QString& photo : photos)
            planned += outputs.emplace_back(
                QStringList{"img/" + QFileInfo(photo).completeBaseName() + ".out"});
        OutputFolder out(dest);
        RunManifest manifest(QString("test"), options, ui);
        manifest.removeEarlierFiles(planned, out);
        out.createFolders({QString("img/")});
        const auto make = manifest.keepingUnchanged(
            photos, outputs, RunManifest::settingsHash({"size=10"}), [&](int i) -> QStringList {
                made.append(QFileInfo(photos[i]).fileName());
                if (failingPhotos.contains(photos[i])) return {photos[i] + ": cannot be read"};
                AtomicFile::write(dest + outputs[i][0], testsupport::readFile(photos[i]));
                return {};
            });
        for (int i = 0; i < photos.size(); ++i) out.addFailures(make(i));
        for (const QString& page : pages) out.writeText(page, "<p>" + photos.join(',') + "</p>");
        manifest.save(out);
        failures = out.failures();
        return made;
    }
};

// Three stand-in photos a.jpg, b.jpg, c.jpg in a folder of their own.
QStringList makePhotos(const QString& name) {
    const QString src = freshDir(name + "-src");
    QStringList photos;
    for (const char* base : {"a", "b", "c"}) {
        photos.append(src + base + ".jpg");
        writeFile(photos.last(), QByteArray("photo ") + base);
    }
    return photos;
}

// The record of the stand-in kind for `file`, under the relative `path`.
QJsonObject recordFor(const QString& file, const QString& path) {
    const RunManifest::FileState state = RunManifest::stateOf(file);
    return {{"path", path}, {"kind", "test"}, {"size", state.size}, {"mtime", state.mtime}};
}

}  // namespace

TEST(RunManifest, SafeRelativePaths) {
    for (const char* safe : {"KLimages_b/a.jpeg", "myIndex.html", "a..b.jpeg"})
        EXPECT_TRUE(RunManifest::isSafeRelativePath(safe)) << safe;
    for (const char* unsafe :
         {"../outside.jpeg", "KLimages_b/../../x", "/etc/passwd", "KLimages_b//a.jpeg", "./a.jpeg",
          "KLimages_b\\a.jpeg", "", ".orvella-manifest", "img/"})
        EXPECT_FALSE(RunManifest::isSafeRelativePath(unsafe)) << unsafe;
}

// A photo that failed is made by the next run; what was written whole before a failure is kept.
TEST(RunManifest, PartlyFailedRunIsRecorded) {
    const QStringList photos = makePhotos("manifest-failed");
    const QString dest = freshDir("manifest-failed-out");
    RecordingUserInterface ui;
    StandInRun failing{.failingPhotos = {photos[1]}};
    EXPECT_EQ(failing.run(dest, photos, ui), QStringList({"a.jpg", "b.jpg", "c.jpg"}));
    EXPECT_EQ(failing.failures, QStringList({photos[1] + ": cannot be read"}));
    EXPECT_EQ(StandInRun().run(dest, photos, ui), QStringList({"b.jpg"}));
}

// A record that cannot be trusted is a warning naming it; the run makes everything, removes
// nothing, and leaves a good record behind.
TEST(RunManifest, DamagedRecordIsIgnoredWithAWarning) {
    const char* damaged[] = {
        R"({"format":1,"files":[)",
        R"([])",
        R"({"format":2,"files":[]})",
        R"({"format":1,"files":{}})",
        R"({"format":1,"files":[17]})",
        R"({"format":1,"files":[{"path":"img/c.out","kind":"test","size":"12","mtime":1}]})",
        R"({"format":1,"files":[{"path":"img/c.out","kind":"test","size":12,"mtime":1.5}]})",
        R"({"format":1,"files":[{"path":7,"kind":"test","size":1,"mtime":1}]})",
        R"({"format":1,"files":[{"path":"img/c.out","kind":"test","size":1,"mtime":1,
            "source":{"id":"x.jpg#00","size":-1.25,"mtime":1}}]})",
    };
    for (const char* text : damaged) {
        SCOPED_TRACE(text);
        const QStringList photos = makePhotos("manifest-damaged");
        const QString dest = freshDir("manifest-damaged-out");
        RecordingUserInterface ui;
        ASSERT_EQ(StandInRun().run(dest, photos, ui).size(), 3);
        writeFile(dest + RunManifest::kFileName, text);

        StandInRun clean;  // one photo fewer, with --clean
        clean.options.clean = true;
        EXPECT_EQ(clean.run(dest, photos.mid(0, 2), ui), QStringList({"a.jpg", "b.jpg"}));
        ASSERT_EQ(ui.alerts.size(), 1u);
        EXPECT_FALSE(ui.alerts[0].stopsRun);
        EXPECT_TRUE(ui.alerts[0].description.startsWith(dest + ".orvella-manifest: "))
            << ui.alerts[0].description;
        EXPECT_TRUE(QFile::exists(dest + "img/c.out"));

        EXPECT_EQ(StandInRun().run(dest, photos.mid(0, 2), ui), QStringList());
        EXPECT_EQ(ui.alerts.size(), 1u);
    }
}

// --clean removes recorded files the run does not write; not one changed since, nothing outside
// the folder. (The user's files and another kind's: tests/cli.)
TEST(RunManifest, CleanRemovesOnlyRecordedFilesItNoLongerWrites) {
    const QStringList photos = makePhotos("manifest-clean");
    const QString dest = freshDir("manifest-clean-out");
    const QString outside = freshDir("manifest-clean-outside");
    RecordingUserInterface ui;
    StandInRun{.pages = {"page.html", "page2.html"}}.run(dest, photos, ui);
    writeFile(dest + "img/changed.out", "written by a run");
    writeFile(outside + "victim.txt", "outside");
    writeFile(outside + "linked.out", "through a link");
    QFile::link(outside, dest + "img/elsewhere");

    // The record as it stands, plus records a run of this kind never made.
    QJsonArray files = QJsonDocument::fromJson(testsupport::readFile(dest + RunManifest::kFileName))
                           .object()
                           .value("files")
                           .toArray();
    files.append(recordFor(dest + "img/changed.out", "img/changed.out"));
    files.append(recordFor(outside + "victim.txt", "../manifest-clean-outside/victim.txt"));
    files.append(recordFor(outside + "linked.out", "img/elsewhere/linked.out"));
    writeFile(dest + RunManifest::kFileName,
              QJsonDocument(QJsonObject{{"format", 1}, {"files", files}}).toJson());
    writeFile(dest + "img/changed.out", "changed by the user");

    StandInRun clean;
    clean.options.clean = true;
    clean.run(dest, photos.mid(0, 1), ui);
    EXPECT_TRUE(clean.failures.isEmpty()) << clean.failures.join('\n');
    for (const char* gone : {"img/b.out", "img/c.out", "page2.html"})
        EXPECT_FALSE(QFile::exists(dest + gone)) << gone;
    for (const char* kept : {"img/a.out", "page.html", "img/changed.out"})
        EXPECT_TRUE(QFile::exists(dest + kept)) << kept;
    EXPECT_TRUE(QFile::exists(outside + "victim.txt") && QFile::exists(outside + "linked.out"));
    EXPECT_TRUE(ui.alerts.empty());

    // What is left stays recorded: a clean run of another set removes a.jpg's image in turn.
    clean.run(dest, photos.mid(1, 1), ui);
    EXPECT_FALSE(QFile::exists(dest + "img/a.out"));
    EXPECT_TRUE(QFile::exists(dest + "img/b.out"));
}
