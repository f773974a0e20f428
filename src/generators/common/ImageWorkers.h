#pragma once

#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class UserInterface;

// Makes the images of a run on every core while the calling thread waits for the photos in order.
// Photos whose outputs could meet (equal output keys, in any case) form one chain made in photo
// order by one worker, so the files are the same whatever the number of workers. Once the user
// cancels, no further photo is started.
class ImageWorkers {
  public:
    // `make(i)` makes the images of photo i on a worker thread. `threads` 0 means one per core.
    // Photo i holds `costs[i]` bytes of decoded pixels while it is made; a worker waits rather
    // than start a photo that takes the photos in the making beyond `budget` (a photo larger than
    // the budget is made alone). No costs: no limit.
    ImageWorkers(const QStringList& outputKeys, int threads, std::function<void(int)> make,
                 const UserInterface& ui, std::vector<qint64> costs = {}, qint64 budget = 0);
    // Waits for the workers.
    ~ImageWorkers();

    ImageWorkers(const ImageWorkers&) = delete;
    ImageWorkers& operator=(const ImageWorkers&) = delete;

    // Waits until photo i is made or skipped; false when it was skipped because of a cancel.
    bool waitFor(int photo);

    // The whole image stage of a run: makes the images of every photo (`make(i)` returns what
    // failed for photo i as "path: reason") and waits for them in photo order, stepping the
    // progress by `step` after each. Returns the failures in photo order; the paths of photos a
    // cancel left out are appended to `unfinished`.
    static QStringList makeAll(const QStringList& outputKeys, const QStringList& paths, int threads,
                               const std::function<QStringList(int)>& make, UserInterface& ui,
                               double step, QStringList* unfinished,
                               const std::vector<qint64>& costs = {}, qint64 budget = 0);

    // Warns, naming both files, of each photo whose images take the name of an earlier photo's
    // (the same base name in two folders, or "small.jpg" and "small.png").
    static void warnOfSharedNames(const QStringList& outputKeys, const QStringList& paths,
                                  UserInterface& ui);

  private:
    void work();
    void take(qint64 cost);
    void give(qint64 cost);

    std::function<void(int)> make_;
    const UserInterface& ui_;
    std::vector<std::vector<int>> chains_;
    std::atomic<size_t> next_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<char> state_;  // 0 waiting, 1 made, 2 skipped
    std::vector<qint64> costs_;
    qint64 budget_ = 0;
    qint64 inFlight_ = 0;  // the costs of the photos being made
    std::vector<std::thread> workers_;
};
