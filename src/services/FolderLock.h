#pragma once

#include <QString>
#include <functional>

// One writer per output folder: a lock file holding the process id of the run that writes into
// the folder. A lock whose process is gone (a crash, a kill) is taken over. Released when the
// object goes.
class FolderLock {
  public:
    static const QString kFileName;  // ".orvella-lock"

    // Takes the lock of `folder` (ending with "/"). While another living process holds it, calls
    // `waiting(pid)` once and then waits, as long as `keepWaiting()` says so; with `keepWaiting`
    // null it does not wait.
    FolderLock(const QString& folder, const std::function<void(qint64 pid)>& waiting,
               const std::function<bool()>& keepWaiting);
    ~FolderLock();

    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool held() const { return held_; }
    // Whose lock stopped us (0: none), or why the lock could not be taken.
    qint64 holder() const { return holder_; }
    const QString& error() const { return error_; }

  private:
    bool tryTake();

    QString path_;
    bool held_ = false;
    qint64 holder_ = 0;
    QString error_;
};
