#pragma once

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

// What publishes of an output folder sent where: ".orvella-publish" in the folder, beside the run
// record, JSON. It travels with the site (moved, copied or removed with it) and is never sent.
//
//   {"format": 1, "destinations": [{"destination": "sftp://ann@example.com/~/www",
//     "last": {"time": "2024-05-01T10:22:03Z", "sent": 3, "removed": 1, "complete": true},
//     "unfinished": ["KLimages_b/Sunset.jpeg"],
//     "files": [{"path": "index.html", "size": 1234, "sha256": "<hex>"}]}]}
//
// "files" are the files on the server that a publish sent, as they were sent; "unfinished" the
// paths whose temporary file may still be on the server (a publish that was stopped while sending
// them). No password or other secret is ever written here.
class PublishRecord {
  public:
    static const QString kFileName;  // ".orvella-publish"

    struct File {
        qint64 size = 0;
        QString sha256;
        bool operator==(const File&) const = default;
    };
    struct Destination {
        QString key;                // PublishDestination::key()
        QMap<QString, File> files;  // by path relative to the output folder
        QStringList unfinished;
        QDateTime time;  // of the last publish; invalid before the first has ended
        int sent = 0;
        int removed = 0;
        bool complete = false;
    };

    // The record of the output folder `folder` (ending with "/"); an empty one when there is none.
    // One that cannot be read or holds wrong types reads as empty, with the reason in `error`.
    static PublishRecord read(const QString& folder, QString* error);

    // Writes the record whole.
    bool write(QString* error) const;

    // The destination's part of the record, made empty when missing.
    Destination& destination(const QString& key);
    const QList<Destination>& destinations() const { return destinations_; }

  private:
    QString folder_;
    QList<Destination> destinations_;
};
