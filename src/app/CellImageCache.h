#pragma once

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QThreadPool>

// Puts the calling worker thread of a pool the window owns behind the window's own thread: with
// every core reading photos, the window would otherwise wait its turn for each frame.
void lowerThisThreadPriority();

// Cell images made when a cell is drawn, not when a photo is added: the grid asks for the cells it
// shows, workers make them newest request first (the cells on screen after a scroll come before
// those scrolled past), and the images stay in a cache of bounded size.
class CellImageCache : public QObject {
    Q_OBJECT
  public:
    CellImageCache(int size, qint64 budgetBytes, QObject* parent = nullptr);
    ~CellImageCache() override;

    // The cell image of a photo file when it is made; otherwise a null image, and it is made.
    QImage image(const QString& path);
    // Images asked for and made so far (evicted ones included).
    int requestCount() const { return requests_; }
    int madeCount() const { return made_; }

  Q_SIGNALS:
    void ready(const QString& path);

  private:
    void work();
    void take(const QString& path, const QImage& image);

    const int size_;
    QCache<QString, QImage> images_;  // cost in kilobytes
    QSet<QString> requested_;         // asked for and not yet made
    QMutex mutex_;                    // guards queue_ and stopping_
    QStringList queue_;               // newest last
    bool stopping_ = false;
    QThreadPool pool_;
    int requests_ = 0;
    int made_ = 0;
};
