// The window at scale, driven as a user would, on the offscreen platform: adds a folder of photos,
// scrolls the grid, sorts, selects, publishes and removes all, saves and opens the project. Prints
// each figure with its target. Run by bench/window, which makes the photos.
//   orvella_window_bench PHOTO_FOLDER WORK_FOLDER
#include <sys/resource.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QListView>
#include <QScrollBar>
#include <QTimer>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>

#include "app/CellImageCache.h"
#include "app/MainWindow.h"
#include "app/ProjectActions.h"
#include "collection/PhotoCollection.h"

namespace {

// CPU time of the calling thread in milliseconds: a frame's own cost, whatever else the machine
// runs meanwhile.
double threadCpuMs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1000.0 + double(t.tv_nsec) / 1e6;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

// The longest time the event loop did not come round, seen by a timer that asks to run every
// millisecond; and the most CPU time the window's thread spent in one such gap, which is the
// window's own share of a pause when other programs keep the cores busy.
class PauseMeter : public QObject {
  public:
    PauseMeter() {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1);
        connect(&timer_, &QTimer::timeout, this, [this] {
            longest_ = std::max(longest_, double(clock_.restart()));
            const double cpu = threadCpuMs();
            busiest_ = std::max(busiest_, cpu - cpu_);
            cpu_ = cpu;
        });
        clock_.start();
        cpu_ = threadCpuMs();
        timer_.start();
    }
    // The longest pause and its CPU time since the last call, in milliseconds.
    std::pair<double, double> take() {
        const std::pair result{std::max(longest_, double(clock_.elapsed())), busiest_};
        longest_ = busiest_ = 0;
        clock_.restart();
        cpu_ = threadCpuMs();
        return result;
    }

  private:
    QTimer timer_;
    QElapsedTimer clock_;
    double longest_ = 0;
    double busiest_ = 0;
    double cpu_ = 0;
};

// Prints the longest pause since the last one printed.
void pauseLine(PauseMeter& pauses, const char* while_) {
    const auto [wall, cpu] = pauses.take();
    std::printf("  %-44s %9.1f ms   (target <= 100 ms; CPU of the window's thread %.1f ms)\n",
                (std::string("longest event-loop pause while ") + while_).c_str(), wall, cpu);
    std::fflush(stdout);
}

// Runs the event loop until `done` is true or `limitMs` has passed; false on the limit. The loop
// sleeps between events as the window's own does.
bool waitFor(const std::function<bool()>& done, int limitMs) {
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done() || clock.elapsed() > limitMs) loop.quit();
    });
    poll.start(5);
    if (!done()) loop.exec();
    return done();
}

void line(const char* what, double value, const char* unit, const char* target) {
    std::printf("  %-44s %9.1f %-4s (target %s)\n", what, value, unit, target);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: orvella_window_bench PHOTO_FOLDER WORK_FOLDER\n", stderr);
        return 2;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Orvella"));
    QApplication::setOrganizationName(QStringLiteral("KeldraCom"));
    const QString photos = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    const QString work = QDir(QString::fromLocal8Bit(argv[2])).absolutePath();

    MainWindow window;
    window.resize(1366, 740);
    window.show();
    auto* grid = window.findChild<QListView*>(QStringLiteral("photoGrid"));
    auto* cells = window.findChild<CellImageCache*>();
    auto* collection = qobject_cast<PhotoCollection*>(grid->model());
    waitFor([] { return false; }, 1000);  // shown and drawn once before the clock starts

    PauseMeter pauses;
    QElapsedTimer clock;
    qint64 firstRow = -1;
    qint64 firstCell = -1;
    QObject::connect(collection, &QAbstractItemModel::rowsInserted, [&] {
        if (firstRow < 0) firstRow = clock.elapsed();
    });
    QObject::connect(cells, &CellImageCache::ready, [&] {
        if (firstCell < 0) firstCell = clock.elapsed();
    });
    bool added = false;
    QObject::connect(&window, &MainWindow::photosAdded, [&] { added = true; });

    QFile loadavg(QStringLiteral("/proc/loadavg"));
    loadavg.open(QIODevice::ReadOnly);
    std::printf("the window with a folder of photos, %d cores, load average %s\n",
                QThread::idealThreadCount(), loadavg.readLine().split(' ').value(0).constData());
    clock.start();
    window.openFiles({photos});
    const qint64 listed = clock.elapsed();
    if (!waitFor([&] { return added; }, 600000)) {
        std::fputs("the photos were not all added within 10 minutes\n", stderr);
        return 1;
    }
    const qint64 allHeaders = clock.elapsed();
    const int count = collection->count();
    // The cells of the first screen are made by now or soon.
    waitFor([&] { return cells->madeCount() >= 20; }, 30000);
    std::printf("  %d photos\n", count);
    line("folder listed (on the window's thread)", double(listed), "ms", "-");
    line("first rows in the grid", double(firstRow), "ms", "< 1000 ms");
    line("first cell images drawn", double(firstCell), "ms", "< 1000 ms");
    line("all headers read", double(allHeaders) / 1000.0, "s", "-");
    line("headers read per second", count / (double(allHeaders) / 1000.0), "/s",
         ">= the command line's photos per second");
    pauseLine(pauses, "adding");
    line("peak memory after adding", peakMegabytes(), "MB", "< 600 MB");

    // Scrolling a screen at a time through the whole grid, each screen drawn as it comes; the
    // cells are made behind it, newest request first.
    QScrollBar* bar = grid->verticalScrollBar();
    const int screens = 60;
    const int made = cells->madeCount();
    QElapsedTimer scroll;
    scroll.start();
    qint64 slowestFrame = 0;
    double costliestFrame = 0;
    for (int i = 1; i <= screens; ++i) {
        QElapsedTimer frame;
        frame.start();
        const double cpu = threadCpuMs();
        bar->setValue(bar->maximum() * i / screens);
        grid->viewport()->repaint();
        slowestFrame = std::max(slowestFrame, frame.elapsed());
        costliestFrame = std::max(costliestFrame, threadCpuMs() - cpu);
        waitFor([] { return false; }, 16);  // a frame at 60 Hz
    }
    const double scrollSeconds = double(scroll.elapsed()) / 1000.0;
    line("slowest frame while scrolling", double(slowestFrame), "ms", "<= 16 ms");
    line("  its CPU time on the window's thread", costliestFrame, "ms", "<= 16 ms");
    line("cell images made per second while scrolling", (cells->madeCount() - made) / scrollSeconds,
         "/s", ">= the command line's photos per second");
    pauseLine(pauses, "scrolling");

    // The actions, each timed until the grid has been drawn again.
    const auto timed = [&](const std::function<void()>& action) {
        QElapsedTimer t;
        t.start();
        action();
        QCoreApplication::processEvents();
        grid->viewport()->repaint();
        return double(t.elapsed());
    };
    const auto trigger = [&](const char* name) {
        return timed([&] { window.findChild<QAction*>(QString::fromLatin1(name))->trigger(); });
    };
    auto* publish = window.findChild<QCheckBox*>(QStringLiteral("publish"));
    line("sort A to Z", trigger("sortAz"), "ms", "< 1000 ms");
    line("sort Z to A", trigger("sortZa"), "ms", "< 1000 ms");
    line("select all", timed([&] { grid->selectAll(); }), "ms", "< 1000 ms");
    line("leave all out (untick Publish)", timed([&] { publish->click(); }), "ms", "< 1000 ms");
    line("publish all (tick Publish)", timed([&] { publish->click(); }), "ms", "< 1000 ms");

    ProjectActions* projects = window.projectActions();
    projects->saveDialog = [&] {
        return std::optional(std::pair{work + QStringLiteral("/project"), QStringLiteral("bench")});
    };
    QDir().mkpath(work + QStringLiteral("/project"));
    const double save = timed([&] { projects->saveProject(); });
    line("save the project (photos copied)", save / 1000.0, "s", "measured");
    pauseLine(pauses, "saving");
    pauses.take();
    line("remove all", trigger("removeAll"), "ms", "< 1000 ms");
    pauses.take();
    const double open = timed([&] {
        projects->openProjectFile(work + QStringLiteral("/project"),
                                  work + QStringLiteral("/project/bench.orvprj"));
    });
    line("open the project", open / 1000.0, "s", "measured");
    pauseLine(pauses, "opening");
    std::printf("  photos in the opened project: %d\n", collection->count());
    line("peak memory at the end", peakMegabytes(), "MB", "< 600 MB");
    return 0;
}
