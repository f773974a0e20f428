#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

#include "publish/PublishDestination.h"
#include "publish/PublishRecord.h"
#include "publish/ServerConnection.h"

// Publishing an output folder: sends what is new or changed since the last publish to the same
// destination (size and SHA-256 against the publish record), images and other files first, then
// stylesheets and scripts, then pages, so a page never reaches the server before what it shows;
// with `removeOld`, then removes from the server the files an earlier publish sent there that the
// site no longer has. Nothing else on the server is ever removed. The record is written after
// each file that reached its place, so a publish that is stopped or killed is completed by the
// next one. The run record, the publish record and temporary files are never sent.
namespace Publisher {

struct Options {
    bool dryRun = false;     // plan only: nothing is sent, the server is not contacted
    bool removeOld = false;  // --delete
    ServerConnection::Credentials credentials;
};

struct Progress {
    int filesDone = 0;
    int filesTotal = 0;
    qint64 bytesDone = 0;
    qint64 bytesTotal = 0;
};

// Called on the publishing thread.
struct Callbacks {
    std::function<void(const Progress&)> progress;
    // One line per file: "sent PATH", "removed PATH", "would send PATH", "would remove PATH".
    std::function<void(const QString&)> file;
    // Asked between files: true stops the publish before the next one.
    std::function<bool()> cancelled;
};

struct Result {
    bool complete = false;  // the server holds the whole site, as the record knows it
    // Nothing was sent: the server, its host key or the login was refused.
    ServerConnection::Failure refusal = ServerConnection::Failure::None;
    bool connected = false;  // the login succeeded (always false on a dry run)
    bool cancelled = false;
    QStringList sent, removed;     // relative paths
    QStringList toSend, toRemove;  // what the plan held (all of it, also on a dry run)
    int unchanged = 0;
    QString hostKey;       // as ServerConnection::hostKey()
    QStringList failures;  // "PATH: reason", or the connection's reason
    QStringList skipped;   // "PATH: not sent: reason" for files of the site no server takes
    QStringList warnings;
};

struct SiteFile {
    QString path;  // relative to the output folder, "/"-separated
    qint64 size = 0;
    QString sha256;
    QString unsendable;  // why it cannot be sent (a link, unreadable, a name no server takes)
};

// The files of the site in `folder` (ending with "/"), with their size and SHA-256, in the order of
// sending. The records and temporary files of this program are left out.
QList<SiteFile> siteFiles(const QString& folder);

// Images and other files 0, stylesheets and scripts 1, pages 2: the order of sending.
int sendingRank(const QString& path);

// Publishes the output folder `folder` (ending with "/") to `destination`.
Result publish(const QString& folder, const PublishDestination& destination, const Options& options,
               const Callbacks& callbacks = {});

// Logs in to the destination's server: the host key and the credentials, nothing sent.
Result testConnection(const PublishDestination& destination,
                      const ServerConnection::Credentials& credentials);

}  // namespace Publisher
