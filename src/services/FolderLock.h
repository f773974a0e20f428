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
    // Why the lock is not held, as the user reads it: the process writing into the folder, or the
    // lock file and why it could not be made.
    QString reason() const;

  private:
    bool tryTake();

    QString folder_, path_;
    bool held_ = false;
    qint64 holder_ = 0;  // whose lock stopped us
    QString error_;      // why the lock could not be taken
};
