#include "services/FolderLock.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QThread>
#include <cerrno>
#include <csignal>
#include <cstring>

const QString FolderLock::kFileName = QStringLiteral(".orvella-lock");

namespace {

// The process id written in a lock file; 0 when there is none or it cannot be read.
qint64 holderOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return 0;
    bool ok = false;
    const qint64 pid = file.read(32).trimmed().toLongLong(&ok);
    return ok && pid > 0 ? pid : 0;
}

bool isAlive(qint64 pid) {
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

}  // namespace

FolderLock::FolderLock(const QString& folder, const std::function<void(qint64)>& waiting,
                       const std::function<bool()>& keepWaiting)
    : folder_(folder), path_(folder + kFileName) {
    bool told = false;
    while (!tryTake()) {
        if (!error_.isEmpty() || !keepWaiting || !keepWaiting()) return;
        if (!told && waiting) waiting(holder_);
        told = true;
        QThread::msleep(100);
    }
}

QString FolderLock::reason() const {
    return error_.isEmpty() ? QStringLiteral(
                                  "Process %1 is writing into %2. Try again when it has "
                                  "finished.")
                                  .arg(holder_)
                                  .arg(folder_)
                            : path_ + QStringLiteral(": ") + error_;
}

FolderLock::~FolderLock() {
    if (held_) QFile::remove(path_);
}

bool FolderLock::tryTake() {
    const QByteArray name = QFile::encodeName(path_);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd >= 0) {
        const QByteArray pid = QByteArray::number(qint64(::getpid())) + '\n';
        const bool written = ::write(fd, pid.constData(), size_t(pid.size())) == pid.size();
        ::close(fd);
        if (!written) {
            error_ = QString::fromLocal8Bit(std::strerror(errno));
            ::unlink(name.constData());
            return false;
        }
        held_ = true;
        holder_ = 0;
        return true;
    }
    if (errno != EEXIST) {
        error_ = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    holder_ = holderOf(path_);
    // A lock of a process that is gone, or one whose writer died before writing its id, is stale.
    if (holder_ == 0 || !isAlive(holder_)) {
        ::unlink(name.constData());
        return tryTake();
    }
    return false;
}
