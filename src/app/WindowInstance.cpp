#include "app/WindowInstance.h"

#include <QDataStream>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>

#include "services/Log.h"

namespace {

// A message: this tag, then the paths as a QStringList; the answer: a qint32.
constexpr quint32 kTag = 0x4f525631;  // "ORV1"
constexpr auto kStreamVersion = QDataStream::Qt_6_0;

}  // namespace

WindowInstance::WindowInstance(QObject* parent) : QObject(parent) {}

QString WindowInstance::socketPath() {
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (!runtime.isEmpty()) return QDir(runtime).filePath(QStringLiteral("orvella.window"));
    // Without a runtime folder Qt places a plain name in the temporary folder: one per user.
    return QStringLiteral("orvella-window-") + qEnvironmentVariable("USER", QStringLiteral("user"));
}

int WindowInstance::handOver(const QStringList& paths, int answerTimeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(socketPath());
    if (!socket.waitForConnected(2000)) return kNoWindow;
    QByteArray message;
    QDataStream out(&message, QIODevice::WriteOnly);
    out.setVersion(kStreamVersion);
    out << kTag << paths;
    socket.write(message);
    if (!socket.waitForBytesWritten(answerTimeoutMs)) return kNoAnswer;
    QDataStream in(&socket);
    in.setVersion(kStreamVersion);
    while (true) {
        in.startTransaction();
        qint32 added = 0;
        in >> added;
        if (in.commitTransaction()) return added < 0 ? kNoAnswer : added;
        if (!socket.waitForReadyRead(answerTimeoutMs)) return kNoAnswer;
    }
}

bool WindowInstance::listen(std::function<int(const QStringList&)> open) {
    open_ = std::move(open);
    server_ = new QLocalServer(this);
    const QString path = socketPath();
    // The runtime folder is the user's own. Elsewhere only the user may connect; Qt then puts
    // the socket in place by a rename, which replaces any socket already there.
    if (QDir::isRelativePath(path)) server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(path)) {
        if (server_->serverError() != QAbstractSocket::AddressInUseError) {
            klLog() << "single window: cannot listen on" << path << ":" << server_->errorString();
            return false;
        }
        // The socket exists: a window answers on it, or it was left behind by one that died.
        QLocalSocket probe;
        probe.connectToServer(path);
        if (probe.waitForConnected(2000)) return false;
        QLocalServer::removeServer(path);
        if (!server_->listen(path)) {
            klLog() << "single window: cannot listen on" << path << ":" << server_->errorString();
            return false;
        }
    }
    connect(server_, &QLocalServer::newConnection, this, &WindowInstance::serve);
    return true;
}

void WindowInstance::serve() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            QDataStream in(socket);
            in.setVersion(kStreamVersion);
            in.startTransaction();
            quint32 tag = 0;
            QStringList paths;
            in >> tag >> paths;
            if (!in.commitTransaction()) return;  // the rest has not arrived yet
            qint32 added = -1;
            if (tag == kTag)
                added = open_(paths);
            else
                klLog() << "single window: a message of another kind was ignored";
            QByteArray answer;
            QDataStream out(&answer, QIODevice::WriteOnly);
            out.setVersion(kStreamVersion);
            out << added;
            socket->write(answer);
            socket->disconnectFromServer();  // after the answer is written
        });
    }
}
