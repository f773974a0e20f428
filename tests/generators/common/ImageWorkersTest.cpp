#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "generators/common/ImageWorkers.h"
#include "support/TestSupport.h"

// Four workers, four photos of 100 bytes each and a budget of 300: three are made at once, and
// the fourth does not start until one of them is done. A photo larger than the budget is made
// alone rather than never.
TEST(ImageWorkers, BudgetStopsAFourthLargeDecodeFromStarting) {
    const std::tuple<std::vector<qint64>, qint64, int> cases[] = {
        {{100, 100, 100, 100}, 300, 3}, {{100, 100, 100, 100}, 0, 4}, {{500, 500}, 300, 1}};
    for (const auto& [costs, budget, atOnce] : cases) {
        std::mutex mutex;
        std::condition_variable changed;
        int running = 0, most = 0;
        bool release = false;
        RecordingUserInterface ui;
        const int photos = int(costs.size());
        {
            ImageWorkers workers(
                QStringList{"a", "b", "c", "d"}.mid(0, photos), 4,
                [&](int) {
                    std::unique_lock lock(mutex);
                    most = std::max(most, ++running);
                    changed.notify_all();
                    changed.wait(lock, [&] { return release; });
                    --running;
                },
                ui, costs, budget);
            std::unique_lock lock(mutex);
            // Waits for as many as may run at once, then gives a further one the chance to start.
            EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(60),
                                         [&] { return running == atOnce; }));
            changed.wait_for(lock, std::chrono::milliseconds(300),
                             [&] { return running > atOnce; });
            EXPECT_EQ(running, atOnce) << budget;
            release = true;
            changed.notify_all();
            lock.unlock();
            for (int i = 0; i < photos; ++i) EXPECT_TRUE(workers.waitFor(i));
        }
        EXPECT_EQ(most, atOnce) << budget;
    }
}
