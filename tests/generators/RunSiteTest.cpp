// What every kind's run shares, through the one run driver, for each kind in turn: the files do not
// depend on the number of workers, bad photos are named and the others made, refusals write
// nothing, a cancel writes no page, and runs at once in one process write what they write alone.
#include <QFileInfo>
#include <atomic>
#include <thread>

#include "generators/GeneratorFixtures.h"
#include "generators/OutputKinds.h"
#include "generators/common/RunManifest.h"

using namespace gen;

namespace {

RunResult run(const QString& kind, const QString& dir, const QStringList& paths, UserInterface& ui,
              int threads = 2) {
    return OutputKinds::find(kind)->run(entries(paths), store(), ui,
                                        RunOptions{.destination = dir, .threads = threads});
}

// Every file of a run (the hidden run record aside) by relative path.
QMap<QString, QByteArray> contents(const QString& dir) {
    QMap<QString, QByteArray> files;
    for (const QString& f : filesUnder(dir)) files.insert(f, testsupport::readFile(dir + f));
    return files;
}

const QStringList kKinds = {"gallery", "slideshow", "grid"};

// Cancels once the first photo's progress step arrives.
struct CancellingUserInterface : RecordingUserInterface {
    void progressStep(double increment) override {
        RecordingUserInterface::progressStep(increment);
        if (increment >= 1) cancel = true;
    }
    bool isCancelled() const override { return cancel; }
    std::atomic<bool> cancel{false};
};

}  // namespace

// Bad photos of every sort are named with their reason and the others made; one worker or all of
// them give the same files byte for byte, also for two photos whose images take one name.
TEST(RunSite, WorkersAndBadPhotosInEveryKind) {
    const QString src = freshDir("runsite-bad-src");
    testsupport::writeFile(src + "empty.jpg", "");
    testsupport::writeFile(src + "corrupt.jpg",
                           QByteArray("\xFF\xD8\xFF\xE0 not really a jpeg", 23).repeated(20));
    QDir().mkpath(src + "folder.png");
    const QStringList bad = {"empty.jpg", "corrupt.jpg", "folder.png", "missing.png"};
    QStringList photos = {makePhoto(src, "t0.png", 60, 50), makePhoto(src, "t1.png", 70, 90),
                          makePhoto(src + "other/", "t0.png", 90, 90),
                          makePhoto(src, "t2.png", 80, 50)};
    for (int i = 0; i < bad.size(); ++i) photos.insert(2 * i + 1, src + bad[i]);
    for (const QString& kind : kKinds) {
        SCOPED_TRACE(kind);
        QList<QMap<QString, QByteArray>> outputs;
        for (const int threads : {1, 0}) {
            const QString dir =
                freshDir(QStringLiteral("runsite-bad-%1-%2").arg(kind).arg(threads));
            RecordingUserInterface ui;
            const RunResult result = run(kind, dir, photos, ui, threads);
            EXPECT_TRUE(result.ok && !result.cancelled && QFile::exists(result.firstPage));
            QStringList named;
            for (const QString& failure : result.failures)
                named.append(QFileInfo(failure.section(": ", 0, 0)).fileName());
            EXPECT_EQ(named, bad) << result.failures.join('\n');
            for (const QString& name : bad)  // and nothing is made of them
                EXPECT_EQ(filesUnder(dir).filter(QFileInfo(name).completeBaseName() + "."),
                          QStringList());
            outputs.append(contents(dir));
        }
        EXPECT_EQ(outputs[0].keys(), outputs[1].keys());
        EXPECT_TRUE(outputs[0] == outputs[1]);
    }
}

// No photo, or a photo inside a folder the run writes into: one alert that stops the run, and
// nothing is written.
TEST(RunSite, RefusalsWriteNothing) {
    for (const QString& kind : kKinds) {
        const QString dir = freshDir("runsite-refused-" + kind);
        const QString imageFolder = kind == u"gallery"     ? "KLimages_b/"
                                    : kind == u"slideshow" ? "KLSsImages/"
                                                           : "KLovImages/";
        const QString inside = makePhoto(dir + imageFolder, "inside.png", 40, 30);
        for (const auto& [photos, title] :
             {std::pair{QStringList{}, QStringLiteral("Sorry, you forgot to select photos.|")},
              std::pair{QStringList{inside},
                        "Sorry, a photo lies where the " + kind + " is written.|"}}) {
            RecordingUserInterface ui;
            EXPECT_FALSE(run(kind, dir, photos, ui).ok);
            EXPECT_TRUE(alerts(ui).startsWith(title) && alerts(ui).endsWith("|stops\n") &&
                        ui.alerts.size() == 1 && ui.stops == 1)
                << alerts(ui);
            EXPECT_EQ(filesUnder(dir), QStringList{imageFolder + "inside.png"});
        }
    }
}

// A cancel stops the workers before their next photo, names what was not made, writes no page,
// removes nothing that was there and records what it made.
TEST(RunSite, CancelWritesNoPage) {
    const QString src = freshDir("runsite-cancel-src");
    QStringList photos;
    for (int i = 0; i < 6; ++i)
        photos.append(makePhoto(src, QStringLiteral("p%1.png").arg(i), 60, 40));
    for (const QString& kind : kKinds) {
        SCOPED_TRACE(kind);
        const QString dir = freshDir("runsite-cancel-" + kind);
        testsupport::writeFile(dir + "mine.html", "mine");
        CancellingUserInterface ui;
        const RunResult result = run(kind, dir, photos, ui, 1);
        EXPECT_TRUE(result.ok && result.cancelled && ui.opened.isEmpty());
        EXPECT_TRUE(!result.unfinished.isEmpty() && photos.endsWith(result.unfinished.last()));
        EXPECT_EQ(filesUnder(dir).filter(".html"), QStringList{"mine.html"});
        EXPECT_TRUE(QFile::exists(dir + RunManifest::kFileName));
    }
}

// Runs of different kinds, and of one kind into two folders, at once in one process: each writes
// exactly what it writes alone.
TEST(RunSite, RunsAtOnceMatchTheirSingleRuns) {
    const QStringList photos = cameraPhotos(3);
    const QStringList runs = {"gallery", "grid", "slideshow", "gallery"};
    QList<QMap<QString, QByteArray>> alone;
    QStringList dirs;
    for (int i = 0; i < runs.size(); ++i) {
        const QString dir = freshDir(QStringLiteral("runsite-alone-%1").arg(i));
        SilentUserInterface ui;
        ASSERT_TRUE(run(runs[i], dir, photos, ui).failures.isEmpty());
        alone.append(contents(dir));
        dirs.append(freshDir(QStringLiteral("runsite-together-%1").arg(i)));
    }
    std::vector<std::thread> threads;
    std::vector<RunResult> results(size_t(runs.size()));
    for (int i = 0; i < runs.size(); ++i)
        threads.emplace_back([&, i] {
            SilentUserInterface ui;
            results[size_t(i)] = run(runs[i], dirs[i], photos, ui);
        });
    for (std::thread& t : threads) t.join();
    for (int i = 0; i < runs.size(); ++i) {
        EXPECT_TRUE(results[size_t(i)].ok && results[size_t(i)].failures.isEmpty());
        const QMap<QString, QByteArray> together = contents(dirs[i]);
        EXPECT_TRUE(together == alone[i] && !together.isEmpty()) << runs[i];
    }
}
