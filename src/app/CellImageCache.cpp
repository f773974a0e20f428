#include "app/CellImageCache.h"

#include <QMutexLocker>
#if defined(Q_OS_LINUX)
#include <sys/resource.h>
#include <unistd.h>
#endif

#include "imaging/CellImage.h"

namespace {
// Requests beyond these are cells scrolled past long ago; they are asked for again when shown.
constexpr qsizetype kQueueLimit = 400;
}  // namespace

void lowerThisThreadPriority() {
#if defined(Q_OS_LINUX)
    thread_local bool lowered = false;
    if (lowered) return;
    lowered = true;
    // Linux gives each thread its own nice value; the thread keeps it for good.
    setpriority(PRIO_PROCESS, id_t(gettid()), 10);
#endif
}

CellImageCache::CellImageCache(int size, qint64 budgetBytes, QObject* parent)
    : QObject(parent), size_(size), images_(qMax<qint64>(1, budgetBytes / 1024)) {}

CellImageCache::~CellImageCache() {
    {
        const QMutexLocker lock(&mutex_);
        stopping_ = true;
        queue_.clear();
    }
    pool_.waitForDone();
}

QImage CellImageCache::image(const QString& path) {
    if (const QImage* cached = images_.object(path)) return *cached;
    if (requested_.contains(path)) {
        // Asked for again: it is on screen, so it moves to the front of the queue.
        const QMutexLocker lock(&mutex_);
        if (queue_.removeOne(path)) queue_.append(path);
        return {};
    }
    requested_.insert(path);
    ++requests_;
    {
        const QMutexLocker lock(&mutex_);
        queue_.append(path);
        while (queue_.size() > kQueueLimit) requested_.remove(queue_.takeFirst());
    }
    pool_.start([this] { work(); });
    return {};
}

void CellImageCache::work() {
    lowerThisThreadPriority();
    QString path;
    {
        const QMutexLocker lock(&mutex_);
        if (stopping_ || queue_.isEmpty()) return;
        path = queue_.takeLast();
    }
    const QImage image = makeCellImage(path, size_);
    QMetaObject::invokeMethod(
        this, [this, path, image] { take(path, image); }, Qt::QueuedConnection);
}

void CellImageCache::take(const QString& path, const QImage& image) {
    requested_.remove(path);
    ++made_;
    // A file that gives no image keeps a null one, so it is not tried again at every paint.
    images_.insert(path, new QImage(image), qMax<qsizetype>(1, image.sizeInBytes() / 1024));
    Q_EMIT ready(path);
}
