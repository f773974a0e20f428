// What every kind's run shares, through the one run driver.
#include <atomic>
#include <thread>

#include "generators/GeneratorFixtures.h"
#include "generators/OutputKinds.h"

using namespace gen;

namespace {

RunResult run(const QString& kind, const QString& dir, const QStringList& paths, UserInterface& ui,
              int threads = 2) {
    return OutputKinds::find(kind)->run(entries(paths), store(), ui,
                                        RunOptions{.destination = dir, .threads = threads});
}

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

// A cancel stops the workers before their next photo, names what was not made, writes no page,
// removes nothing that was there and records what it made.
TEST(RunSite, CancelWritesNoPage) {
    const QString src = freshDir("runsite-cancel-src");
    QStringList photos;
    for (int i = 0; i < 6; ++i) photos.append(makePhoto(src, QString("p%1.png").arg(i), 60, 40));
    for (const QString kind : {"gallery", "slideshow", "grid"}) {
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

// Bad photos are named and the others made; runs of different kinds, and of one kind into two
// folders, at once with all workers write byte for byte what each writes alone with one worker,
// also for two photos whose images take one name.
TEST(RunSite, RunsAtOnceMatchTheirSingleRunsAndNameBadPhotos) {
    const QString src = freshDir("runsite-src");
    testsupport::writeFile(src + "empty.jpg", "");
    testsupport::writeFile(src + "corrupt.jpg",
                           QByteArray("\xFF\xD8\xFF\xE0 not really a jpeg", 23).repeated(20));
    QDir().mkpath(src + "folder.png");
    const QStringList bad = {"empty.jpg", "corrupt.jpg", "folder.png", "missing.png"};
    QStringList photos = cameraPhotos(2) << makePhoto(src, "t0.png", 60, 50)
                                         << makePhoto(src + "other/", "t0.png", 90, 90);
    for (int i = 0; i < bad.size(); ++i) photos.insert(2 * i + 1, src + bad[i]);
    const QStringList runs = {"gallery", "grid", "slideshow", "gallery"};
    QList<QMap<QString, QByteArray>> alone;
    QStringList dirs;
    for (int i = 0; i < runs.size(); ++i) {
        SCOPED_TRACE(runs[i]);
        const QString dir = freshDir(QString("runsite-alone-%1").arg(i));
        SilentUserInterface ui;
        const RunResult result = run(runs[i], dir, photos, ui, 1);
        EXPECT_TRUE(result.ok && !result.cancelled && QFile::exists(result.firstPage));
        EXPECT_TRUE(QDir(dir + "KLovPatterns").exists());  // made with every run, a pattern or not
        QStringList named;
        for (const QString& failure : result.failures)
            named.append(QFileInfo(failure.section(": ", 0, 0)).fileName());
        EXPECT_EQ(named, bad) << result.failures.join('\n');
        for (const QString& name : bad)  // and nothing is made of them
            EXPECT_EQ(filesUnder(dir).filter(QFileInfo(name).completeBaseName() + "."),
                      QStringList());
        alone.append(siteUnder(dir));
        dirs.append(freshDir(QString("runsite-together-%1").arg(i)));
    }
    std::vector<std::thread> threads;
    std::vector<RunResult> results(size_t(runs.size()));
    for (int i = 0; i < runs.size(); ++i)
        threads.emplace_back([&, i] {
            SilentUserInterface ui;
            results[size_t(i)] = run(runs[i], dirs[i], photos, ui, 0);
        });
    for (std::thread& t : threads) t.join();
    for (int i = 0; i < runs.size(); ++i) {
        EXPECT_TRUE(results[size_t(i)].ok && results[size_t(i)].failures.size() == bad.size());
        const QMap<QString, QByteArray> together = siteUnder(dirs[i]);
        EXPECT_TRUE(together == alone[i] && !together.isEmpty()) << runs[i];
    }
}
