#include "services/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace AtomicFile {

namespace {

const QString kMark = QStringLiteral(".orvella-tmp-");

QString systemError(int code) {
    return QString::fromLocal8Bit(std::strerror(code));
}

}  // namespace

QString temporaryPathFor(const QString& path) {
    const QFileInfo info(path);
    return info.absolutePath() + u'/' + kMark +
           QString::number(QRandomGenerator::global()->generate64(), 16) + u'-' + info.fileName();
}

bool isTemporaryName(const QString& fileName) {
    return fileName.startsWith(kMark);
}

bool write(const QString& path, const QByteArray& bytes, QString* error) {
    const QString temporary = temporaryPathFor(path);
    return writeTemporary(temporary, bytes, error) && commit(temporary, path, error);
}

bool writeTemporary(const QString& temporary, const QByteArray& bytes, QString* error) {
    const QByteArray name = QFile::encodeName(temporary);
    auto fail = [&](int code) {
        if (error) *error = systemError(code);
        ::unlink(name.constData());
        return false;
    };
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        if (error) *error = systemError(errno);
        return false;
    }
    const char* data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, data, size_t(left));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            const int code = n < 0 ? errno : ENOSPC;
            ::close(fd);
            return fail(code);
        }
        data += n;
        left -= n;
    }
    if (::fsync(fd) != 0) {
        const int code = errno;
        ::close(fd);
        return fail(code);
    }
    if (::close(fd) != 0) return fail(errno);
    return true;
}

bool commit(const QString& temporary, const QString& path, QString* error) {
    const QByteArray from = QFile::encodeName(temporary);
    if (std::rename(from.constData(), QFile::encodeName(path).constData()) != 0) {
        if (error) *error = systemError(errno);
        ::unlink(from.constData());
        return false;
    }
    return true;
}

void removeLeftovers(const QString& folder) {
    const QDir dir(folder);
    const QStringList names =
        dir.entryList({kMark + u'*'}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names)
        if (isTemporaryName(name)) QFile::remove(dir.filePath(name));
}

}  // namespace AtomicFile
