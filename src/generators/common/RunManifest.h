#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <mutex>

#include "generators/common/GeneratorRun.h"

class OutputFolder;
class UserInterface;

// The record of the files that runs wrote into an output folder: ".orvella-manifest" there, JSON.
//
//   {"format": 1, "files": [{"path": "KLimages_b/Sunset.jpeg", "kind": "gallery",
//     "size": 81234, "mtime": 1712345678123456789, "settings": "<sha-256 hex>",
//     "source": {"id": "Sunset.jpg#<sha-256 hex>", "size": 4011234, "mtime":
//     1701234567000000000}}]}
//
// Paths are relative to the output folder; mtimes are nanoseconds since 1970; "settings" and
// "source" belong to derivatives of a photo. A photo is known by its file name and the hash of its
// absolute path, so the record, uploaded with the site, does not publish the user's folders. The
// record serves two things:
// - a derivative whose photo (path, size, mtime) and settings are those recorded, and which is
//   still the file recorded (size, mtime), is kept instead of made again (not with `rebuild`);
// - with `clean`, files recorded by earlier runs of the same kind that this run does not write
//   are removed before anything is written. Nothing unrecorded is ever removed, nor a recorded file
//   that changed since, nor a path that would leave the output folder.
//
// A run reads the record when it starts (one that cannot be read or holds wrong types is not
// trusted: a warning, and the run goes on as if there were none) and writes it whole at its end,
// with the files it wrote and those of earlier runs that are still there unchanged.
class RunManifest {
  public:
    static const QString kFileName;  // ".orvella-manifest"

    // A file as found on disk; `exists` false when there is none (or it is not a regular file).
    struct FileState {
        bool exists = false;
        qint64 size = 0;
        qint64 mtime = 0;  // nanoseconds since 1970
        quint64 inode = 0;
        bool operator==(const FileState&) const = default;
    };
    struct Record {
        QString kind;
        qint64 size = 0;
        qint64 mtime = 0;
        QString settings;  // empty for pages, stylesheets and support files
        QString source;    // the photo's sourceId, empty when the file has none
        qint64 sourceSize = 0;
        qint64 sourceMtime = 0;
    };

    // Reads the record in `options.destination` for a run of `kind` ("gallery").
    RunManifest(const QString& kind, const RunOptions& options, UserInterface& ui);

    RunManifest(const RunManifest&) = delete;
    RunManifest& operator=(const RunManifest&) = delete;

    // With `options.clean`: removes the recorded files of this kind that are not in `planned`
    // (paths relative to the output folder that this run writes). What cannot be removed is added
    // to `out`'s failures.
    void removeEarlierFiles(const QStringList& planned, OutputFolder& out);

    // Wraps a photo's `make(i)` for ImageWorkers: photo i (at `sources[i]`, whose derivatives are
    // `outputs[i]`, relative paths, made with settings of hash `settings`) is left alone when every
    // derivative is unchanged; else it is made and the derivatives it wrote are recorded.
    // Thread-safe; the lists must outlive the returned function.
    std::function<QStringList(int)> keepingUnchanged(const QStringList& sources,
                                                     const QList<QStringList>& outputs,
                                                     const QString& settings,
                                                     std::function<QStringList(int)> make);

    // Records what `out` wrote and writes the record whole; a failure goes to `out`.
    void save(OutputFolder& out);

    // How the record names the photo at `photoPath`: its file name and the hash of its absolute
    // path.
    static QString sourceId(const QString& photoPath);
    // The hash of the settings a derivative depends on (with the program's version, whose image
    // code may differ).
    static QString settingsHash(const QStringList& values);
    // The state of the file at `path` (not following a final symbolic link when `ownFile`).
    static FileState stateOf(const QString& path, bool ownFile = true);
    // True for a recorded path that stays inside the output folder: relative, no "..", no "."
    // segment, no backslash, no empty segment.
    static bool isSafeRelativePath(const QString& path);

    // For the tests: the records read when the run started, and whether they were trusted.
    const QHash<QString, Record>& earlier() const { return earlier_; }
    bool trusted() const { return trusted_; }

  private:
    bool unchanged(const QString& relativePath, const Record& wanted) const;
    void recordMade(const QString& relativePath, const Record& record);

    QString kind_;
    QString destination_;
    bool clean_ = false;
    bool rebuild_ = false;
    bool trusted_ = true;
    QHash<QString, Record> earlier_;
    std::mutex mutex_;
    QHash<QString, Record> made_;  // derivatives written by this run
};
