#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "publish/PublishDestination.h"
#include "publish/PublishRecord.h"

// One connection to the server of a destination, through libcurl (SFTP over libssh2, FTP, FTP
// with TLS); kept open from one request to the next. Not thread-safe: one thread uses it.
//
// SFTP: the server's host key is looked up in ~/.ssh/known_hosts; an unknown key is refused unless
// the caller accepts it (it is then added to that file), a changed one always. The login tries the
// key file (the given one, else the first of ~/.ssh/id_ed25519, id_ecdsa and id_rsa), the SSH
// agent, then the password when there is one.
//
// A file is sent to a temporary name beside its place and then renamed into place, so a visitor
// (or a publish that is stopped) never finds a file cut short under its own name. OpenSSH's SFTP
// server does not rename over an existing file: the old file is first renamed aside, then removed.
class ServerConnection {
  public:
    struct Credentials {
        QString password;            // used (also to unlock the key file) when not empty
        QString identity;            // the private key file; empty for the usual ones in ~/.ssh
        bool acceptHostKey = false;  // trust an unknown host key and add it to known_hosts
        QString knownHosts;          // empty for ~/.ssh/known_hosts
    };
    enum class Failure { None, HostKeyUnknown, HostKeyChanged, LoginRefused, Connection, File };
    struct Outcome {
        Failure failure = Failure::None;
        QString message;  // the server's or libcurl's reason
        bool ok() const { return failure == Failure::None; }
    };

    ServerConnection(const PublishDestination& destination, const Credentials& credentials);
    ~ServerConnection();
    ServerConnection(const ServerConnection&) = delete;
    ServerConnection& operator=(const ServerConnection&) = delete;

    // Logs in, and removes the temporary files that sending the files at `unfinished` (relative
    // paths) may have left on the server.
    Outcome open(const QStringList& unfinished = {});
    // Sends the local file to `relative`. `sent` gets the size and SHA-256 of the bytes sent;
    // `progress` the bytes of this file sent so far.
    Outcome send(const QString& localPath, const QString& relative, PublishRecord::File* sent,
                 const std::function<void(qint64)>& progress = {});
    // Removes the file at `relative`; one that is not there counts as removed (SFTP).
    Outcome remove(const QString& relative);

    // The host key the server offered, "ssh-ed25519 SHA256:..." (as `ssh-keygen -l` shows it);
    // empty before an SFTP login.
    QString hostKey() const;
    QString knownHostsFile() const;

    // The names a file is sent under before it is renamed into place, and (SFTP) the old file's
    // name while it is replaced.
    static QString temporaryName(const QString& fileName);
    static QString replacedName(const QString& fileName);

    // Frees what the transfer libraries keep for the calling thread. A pooled worker thread that
    // made connections calls it when done: left to the thread's end, that freeing can race the
    // libraries' own clean-up when the process exits.
    static void releaseThread();

  private:
    struct Private;
    std::unique_ptr<Private> d;
};
