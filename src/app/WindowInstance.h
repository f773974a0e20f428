#pragma once

#include <QObject>
#include <QStringList>
#include <functional>

class QLocalServer;

// One window per user: the open window listens on a local socket in the user's runtime folder,
// and a later start hands its files to it instead of opening a second window.
class WindowInstance : public QObject {
    Q_OBJECT
  public:
    // What a later start gets back: how many photos the open window added, or that no window
    // listens, or that one listens but did not answer.
    enum HandOver { kNoWindow = -1, kNoAnswer = -2 };

    explicit WindowInstance(QObject* parent = nullptr);

    // The socket of this user's window.
    static QString socketPath();

    // Sends these paths (absolute) to the open window and waits for its answer: the number of
    // photos it added (0 or more), or kNoWindow / kNoAnswer.
    static int handOver(const QStringList& paths, int answerTimeoutMs = 60000);

    // Listens for later starts; `open` runs on this thread with each start's paths and returns
    // the number of photos added. A socket left behind by a window that died is replaced. False
    // when another window listens already or the socket cannot be made.
    bool listen(std::function<int(const QStringList&)> open);

  private:
    void serve();

    QLocalServer* server_ = nullptr;
    std::function<int(const QStringList&)> open_;
};
