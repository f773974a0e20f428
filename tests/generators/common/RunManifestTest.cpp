// The record of earlier runs: which derivatives a run keeps, which files --clean removes, and what
// a damaged record does. The photos are stand-in files and the derivatives are made by a stand-in
// that records which photos it was asked for.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <functional>
#include <mutex>

#include "generators/common/ImageWorkers.h"
#include "generators/common/OutputFolder.h"
#include "generators/common/RunManifest.h"
#include "services/AtomicFile.h"
#include "support/TestSupport.h"

using testsupport::freshDir;

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// One run of a stand-in kind "test": a page, and "img/<name>.out" for each photo, made from the
// photo's bytes. Returns the photos whose derivative was made (in photo order).
struct StandInRun {
    QString settings = QStringLiteral("size=10");
    RunOptions options;
    QStringList failingPhotos;  // the stand-in fails on these without writing anything
    QStringList pages = {QStringLiteral("page.html")};

    QStringList run(const QString& dest, const QStringList& photos, UserInterface& ui,
                    QStringList* failures = nullptr) {
        options.destination = dest;
        QStringList sources, keys, planned;
        QList<QStringList> outputs;
        for (const QString& photo : photos) {
            sources.append(photo);
            keys.append(QFileInfo(photo).completeBaseName());
            outputs.append({"img/" + keys.last() + ".out"});
            planned += outputs.last();
        }
        planned += pages;
        OutputFolder out(dest);
        RunManifest manifest(QStringLiteral("test"), options, ui);
        manifest.removeEarlierFiles(planned, out);
        out.createFolders({QStringLiteral("img/")});
        std::mutex mutex;
        QStringList made;
        QStringList unfinished;
        out.addFailures(ImageWorkers::makeAll(
            keys, sources, 2,
            manifest.keepingUnchanged(
                sources, outputs, RunManifest::settingsHash({settings}),
                [&](int i) -> QStringList {
                    {
                        const std::lock_guard lock(mutex);
                        made.append(QFileInfo(sources[i]).fileName());
                    }
                    if (failingPhotos.contains(sources[i]))
                        return {sources[i] + ": cannot be read"};
                    QString error;
                    const QByteArray bytes = readFile(sources[i]) + settings.toUtf8();
                    if (!AtomicFile::write(dest + outputs[i][0], bytes, &error))
                        return {dest + outputs[i][0] + ": " + error};
                    return {};
                }),
            ui, 1, &unfinished));
        for (const QString& page : pages) out.writeText(page, "<p>" + photos.join(',') + "</p>");
        manifest.save(out);
        if (failures) *failures = out.failures();
        made.sort();
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

void setModified(const QString& path, const QDateTime& time) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
}

QJsonObject recordFor(const QString& dest, const QString& relative, const QString& kind) {
    const RunManifest::FileState state = RunManifest::stateOf(dest + relative);
    return {{"path", relative}, {"kind", kind}, {"size", state.size}, {"mtime", state.mtime}};
}

void writeManifest(const QString& dest, const QJsonArray& files) {
    writeFile(dest + RunManifest::kFileName,
              QJsonDocument(QJsonObject{{"format", 1}, {"files", files}}).toJson());
}

}  // namespace

TEST(RunManifest, SafeRelativePaths) {
    const struct {
        const char* path;
        bool safe;
    } cases[] = {
        {"KLimages_b/a.jpeg", true},   {"myIndex.html", true},
        {"a..b.jpeg", true},           {"../outside.jpeg", false},
        {"KLimages_b/../../x", false}, {"/etc/passwd", false},
        {"KLimages_b//a.jpeg", false}, {"./a.jpeg", false},
        {"KLimages_b\\a.jpeg", false}, {"", false},
        {".orvella-manifest", false},  {"img/", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RunManifest::isSafeRelativePath(QString::fromUtf8(c.path)), c.safe) << c.path;
}

// After a first run, a change to one input; the second run makes exactly the photos it touches.
TEST(RunManifest, SecondRunMakesOnlyWhatChanged) {
    const struct {
        const char* name;
        std::function<void(const QString& dest, const QStringList& photos)> change;
        QString settings;
        bool rebuild;
        QStringList made;
    } cases[] = {
        {"nothing", [](const QString&, const QStringList&) {}, "size=10", false, {}},
        {"photo replaced",
         [](const QString&, const QStringList& p) { writeFile(p[1], "another photo b"); },
         "size=10",
         false,
         {"b.jpg"}},
        {"photo touched",
         [](const QString&, const QStringList& p) {
             setModified(p[0], QDateTime::currentDateTime().addSecs(-3600));
         },
         "size=10",
         false,
         {"a.jpg"}},
        {"settings changed",
         [](const QString&, const QStringList&) {},
         "size=20",
         false,
         {"a.jpg", "b.jpg", "c.jpg"}},
        {"derivative deleted",
         [](const QString& d, const QStringList&) { QFile::remove(d + "img/c.out"); },
         "size=10",
         false,
         {"c.jpg"}},
        {"derivative altered, same size",
         [](const QString& d, const QStringList&) {
             writeFile(d + "img/a.out", QByteArray(readFile(d + "img/a.out").size(), 'x'));
         },
         "size=10",
         false,
         {"a.jpg"}},
        {"derivative replaced by a link",
         [](const QString& d, const QStringList&) {
             QFile::rename(d + "img/b.out", d + "b.keep");
             QFile::link(d + "b.keep", d + "img/b.out");
         },
         "size=10",
         false,
         {"b.jpg"}},
        {"rebuild",
         [](const QString&, const QStringList&) {},
         "size=10",
         true,
         {"a.jpg", "b.jpg", "c.jpg"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QStringList photos = makePhotos("manifest-keep");
        const QString dest = freshDir("manifest-keep-out");
        RecordingUserInterface ui;
        StandInRun first;
        ASSERT_EQ(first.run(dest, photos, ui), QStringList({"a.jpg", "b.jpg", "c.jpg"}));
        const QDateTime pageTime = QFileInfo(dest + "page.html").lastModified();
        c.change(dest, photos);

        StandInRun second;
        second.settings = c.settings;
        second.options.rebuild = c.rebuild;
        QStringList failures;
        EXPECT_EQ(second.run(dest, photos, ui, &failures), c.made);
        EXPECT_TRUE(failures.isEmpty()) << failures.join('\n').toStdString();
        EXPECT_TRUE(ui.alerts.empty());
        // Every derivative holds what a full run would write; an unchanged page is not rewritten.
        for (const QString& photo : photos)
            EXPECT_EQ(readFile(dest + "img/" + QFileInfo(photo).completeBaseName() + ".out"),
                      readFile(photo) + c.settings.toUtf8());
        EXPECT_EQ(QFileInfo(dest + "page.html").lastModified(), pageTime);
        // A third run finds everything as the second left it.
        StandInRun third;
        third.settings = c.settings;
        EXPECT_EQ(third.run(dest, photos, ui), QStringList());
    }
}

// Photos sharing an output name make it in turn, whatever the record says: the last one wins.
TEST(RunManifest, SharedOutputIsMadeByEachPhotoInTurn) {
    const QString src = freshDir("manifest-shared-src");
    writeFile(src + "one/x.jpg", "first x");
    writeFile(src + "two/x.jpg", "second x");
    const QString dest = freshDir("manifest-shared-out");
    RecordingUserInterface ui;
    const QStringList photos = {src + "one/x.jpg", src + "two/x.jpg"};
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(StandInRun().run(dest, photos, ui), QStringList({"x.jpg", "x.jpg"}));
        EXPECT_EQ(readFile(dest + "img/x.out"), "second xsize=10");
    }
}

// A photo that failed is made by the next run; what was written whole before a failure is kept.
TEST(RunManifest, PartlyFailedRunIsRecorded) {
    const QStringList photos = makePhotos("manifest-failed");
    const QString dest = freshDir("manifest-failed-out");
    RecordingUserInterface ui;
    StandInRun failing;
    failing.failingPhotos = {photos[1]};
    QStringList failures;
    EXPECT_EQ(failing.run(dest, photos, ui, &failures), QStringList({"a.jpg", "b.jpg", "c.jpg"}));
    EXPECT_EQ(failures, QStringList({photos[1] + ": cannot be read"}));
    EXPECT_EQ(StandInRun().run(dest, photos, ui), QStringList({"b.jpg"}));
}

// A record that cannot be trusted is a warning naming it; the run makes everything, removes
// nothing, and leaves a good record behind.
TEST(RunManifest, DamagedRecordIsIgnoredWithAWarning) {
    const char* damaged[] = {
        "{\"format\": 1, \"files\": [",
        "[]",
        "{\"format\": 2, \"files\": []}",
        "{\"format\": 1, \"files\": {}}",
        "{\"format\": 1, \"files\": [{\"path\": \"img/c.out\", \"kind\": \"test\", "
        "\"size\": \"12\", \"mtime\": 1}]}",
        "{\"format\": 1, \"files\": [{\"path\": \"img/c.out\", \"kind\": \"test\", "
        "\"size\": 12, \"mtime\": 1.5}]}",
        "{\"format\": 1, \"files\": [{\"path\": 7, \"kind\": \"test\", \"size\": 1, \"mtime\": "
        "1}]}",
        "{\"format\": 1, \"files\": [{\"path\": \"img/c.out\", \"kind\": \"test\", \"size\": 1, "
        "\"mtime\": 1, \"source\": {\"path\": \"/x.jpg\", \"size\": -1.25, \"mtime\": 1}}]}",
        "{\"format\": 1, \"files\": [17]}",
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
            << ui.alerts[0].description.toStdString();
        EXPECT_TRUE(QFile::exists(dest + "img/c.out"));

        EXPECT_EQ(StandInRun().run(dest, photos.mid(0, 2), ui), QStringList());
        EXPECT_EQ(ui.alerts.size(), 1u);
    }
}

// --clean removes recorded files of its kind the run does not write; nothing else.
TEST(RunManifest, CleanRemovesOnlyRecordedFilesItNoLongerWrites) {
    const QStringList photos = makePhotos("manifest-clean");
    const QString dest = freshDir("manifest-clean-out");
    const QString outside = freshDir("manifest-clean-outside");
    RecordingUserInterface ui;
    StandInRun first;
    first.pages = {"page.html", "page2.html"};
    first.run(dest, photos, ui);
    writeFile(dest + "mine.html", "the user's page");
    writeFile(dest + "img/mine.out", "the user's image");
    writeFile(dest + "img/changed.out", "written by a run");
    writeFile(dest + "other.html", "written by another kind");
    writeFile(outside + "victim.txt", "outside");
    writeFile(outside + "linked.out", "through a link");
    QFile::link(outside, dest + "img/elsewhere");

    StandInRun without;  // without --clean nothing goes
    without.run(dest, photos.mid(0, 1), ui);
    for (const char* kept : {"img/b.out", "img/c.out", "page2.html"})
        EXPECT_TRUE(QFile::exists(dest + kept)) << kept;

    // The record as it stands, plus records a run of this kind never made: they must not lead
    // --clean outside the folder, nor to a file of another kind or one changed since.
    QJsonArray files = QJsonDocument::fromJson(readFile(dest + ".orvella-manifest"))
                           .object()
                           .value("files")
                           .toArray();
    files.append(recordFor(dest, "img/changed.out", "test"));
    files.append(recordFor(dest, "other.html", "grid"));
    QJsonObject escape = recordFor(outside, "victim.txt", "test");
    escape["path"] = "../manifest-clean-outside/victim.txt";
    files.append(escape);
    QJsonObject linked = recordFor(outside, "linked.out", "test");
    linked["path"] = "img/elsewhere/linked.out";
    files.append(linked);
    writeManifest(dest, files);
    writeFile(dest + "img/changed.out", "changed by the user");

    StandInRun clean;
    clean.options.clean = true;
    QStringList failures;
    clean.run(dest, photos.mid(0, 1), ui, &failures);
    EXPECT_TRUE(failures.isEmpty()) << failures.join('\n').toStdString();
    for (const char* gone : {"img/b.out", "img/c.out", "page2.html"})
        EXPECT_FALSE(QFile::exists(dest + gone)) << gone;
    for (const char* kept :
         {"img/a.out", "page.html", "mine.html", "img/mine.out", "img/changed.out", "other.html"})
        EXPECT_TRUE(QFile::exists(dest + kept)) << kept;
    EXPECT_TRUE(QFile::exists(outside + "victim.txt"));
    EXPECT_TRUE(QFile::exists(outside + "linked.out"));
    EXPECT_TRUE(ui.alerts.empty());

    // What is left stays recorded: a clean run of another set removes a.jpg's image in turn.
    clean.run(dest, photos.mid(1, 1), ui);
    EXPECT_FALSE(QFile::exists(dest + "img/a.out"));
    EXPECT_TRUE(QFile::exists(dest + "img/b.out"));
    EXPECT_TRUE(QFile::exists(dest + "other.html"));
}
