#include "generators/common/ImageWorkers.h"

#include <QHash>
#include <QThread>
#include <algorithm>
#include <exception>

#include "services/Log.h"
#include "services/UserInterface.h"

ImageWorkers::ImageWorkers(const QStringList& outputKeys, int threads,
                           std::function<void(int)> make, const UserInterface& ui,
                           std::vector<qint64> costs, qint64 budget)
    : make_(std::move(make)),
      ui_(ui),
      state_(size_t(outputKeys.size()), 0),
      costs_(std::move(costs)),
      budget_(budget) {
    QHash<QString, int> chainOf;
    for (int i = 0; i < outputKeys.size(); ++i) {
        const QString key = outputKeys[i].toLower();
        const auto it = chainOf.constFind(key);
        if (it != chainOf.constEnd()) {
            chains_[size_t(*it)].push_back(i);
        } else {
            chainOf.insert(key, int(chains_.size()));
            chains_.push_back({i});
        }
    }
    const int wanted = threads > 0 ? threads : QThread::idealThreadCount();
    const int count = std::clamp(wanted, 1, std::max(1, int(chains_.size())));
    for (int t = 0; t < count; ++t) workers_.emplace_back([this] { work(); });
}

ImageWorkers::~ImageWorkers() {
    for (std::thread& t : workers_) t.join();
}

bool ImageWorkers::waitFor(int photo) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return state_[size_t(photo)] != 0; });
    return state_[size_t(photo)] == 1;
}

QStringList ImageWorkers::makeAll(const QStringList& outputKeys, const QStringList& paths,
                                  int threads, const std::function<QStringList(int)>& make,
                                  UserInterface& ui, double step, QStringList* unfinished,
                                  const std::vector<qint64>& costs, qint64 budget) {
    warnOfSharedNames(outputKeys, paths, ui);
    std::vector<QStringList> failures(size_t(outputKeys.size()));
    {
        ImageWorkers workers(
            outputKeys, threads, [&](int i) { failures[size_t(i)] = make(i); }, ui, costs, budget);
        const int total = int(outputKeys.size());
        ui.progressPhotos(0, total);
        for (int i = 0; i < total; ++i) {
            if (!workers.waitFor(i)) unfinished->append(paths.value(i));
            ui.progressStep(step);
            ui.progressPhotos(i + 1, total);
        }
    }
    QStringList all;
    for (const QStringList& photoFailures : failures) all += photoFailures;
    return all;
}

void ImageWorkers::warnOfSharedNames(const QStringList& outputKeys, const QStringList& paths,
                                     UserInterface& ui) {
    QHash<QString, int> first;
    QStringList shared;
    for (int i = 0; i < outputKeys.size(); ++i) {
        const auto it = first.constFind(outputKeys[i].toLower());
        if (it == first.constEnd())
            first.insert(outputKeys[i].toLower(), i);
        else
            shared.append(QStringLiteral("%1 and %2 both make the images named \"%3\".")
                              .arg(paths.value(*it), paths.value(i), outputKeys[i]));
    }
    if (shared.isEmpty()) return;
    // One alert for all of them: the window shows each alert as a sheet.
    ui.alert(QStringLiteral("Photos make images of the same name"),
             shared.join(u'\n') + QStringLiteral("\nThe images of the later photo replace those "
                                                 "of the earlier one."),
             false);
}

void ImageWorkers::work() {
    for (;;) {
        const size_t chain = next_.fetch_add(1);
        if (chain >= chains_.size()) return;
        for (const int photo : chains_[chain]) {
            const qint64 cost = costs_.empty() ? 0 : costs_[size_t(photo)];
            take(cost);
            const bool skip = ui_.isCancelled();
            if (!skip) {
                try {
                    make_(photo);
                } catch (const std::exception& e) {
                    klLog() << "image work failed for photo" << photo << e.what();
                } catch (...) {
                    klLog() << "image work failed for photo" << photo;
                }
            }
            give(cost);
            {
                std::lock_guard lock(mutex_);
                state_[size_t(photo)] = skip ? 2 : 1;
            }
            changed_.notify_all();
        }
    }
}

void ImageWorkers::take(qint64 cost) {
    if (budget_ <= 0) return;
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return inFlight_ == 0 || inFlight_ + cost <= budget_; });
    inFlight_ += cost;
}

void ImageWorkers::give(qint64 cost) {
    if (budget_ <= 0) return;
    {
        std::lock_guard lock(mutex_);
        inFlight_ -= cost;
    }
    changed_.notify_all();
}
