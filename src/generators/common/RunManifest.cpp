#include "generators/common/RunManifest.h"

#include <sys/stat.h>

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include "generators/common/OutputFolder.h"
#include "services/AtomicFile.h"
#include "services/Log.h"
#include "services/UserInterface.h"

const QString RunManifest::kFileName = QStringLiteral(".orvella-manifest");

namespace {

constexpr qint64 kFormat = 1;

std::optional<qint64> integerOf(const QJsonValue& value) {
    if (!value.isDouble()) return std::nullopt;
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    const qint64 n = value.toInteger(none);
    if (n == none) return std::nullopt;
    return n;
}

// The records of a manifest's text; an error (and no records) when anything has the wrong type.
QHash<QString, RunManifest::Record> parse(const QByteArray& bytes, QString* error) {
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = QStringLiteral("not JSON (%1 at byte %2)")
                     .arg(parseError.errorString())
                     .arg(parseError.offset);
        return {};
    }
    const QJsonObject root = document.object();
    if (!document.isObject() || integerOf(root.value(u"format")) != kFormat ||
        !root.value(u"files").isArray()) {
        *error = QStringLiteral("not a manifest of format %1").arg(kFormat);
        return {};
    }
    QHash<QString, RunManifest::Record> records;
    const QJsonArray files = root.value(u"files").toArray();
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QJsonObject file = files[i].toObject();
        const QJsonValue path = file.value(u"path");
        const QJsonValue kind = file.value(u"kind");
        const QJsonValue settings = file.value(u"settings");
        const QJsonValue source = file.value(u"source");
        const std::optional<qint64> size = integerOf(file.value(u"size"));
        const std::optional<qint64> mtime = integerOf(file.value(u"mtime"));
        RunManifest::Record record;
        bool ok = files[i].isObject() && path.isString() && !path.toString().isEmpty() &&
                  kind.isString() && size && *size >= 0 && mtime &&
                  (settings.isUndefined() || settings.isString()) &&
                  (source.isUndefined() || source.isObject());
        if (ok && source.isObject()) {
            const QJsonObject s = source.toObject();
            const std::optional<qint64> sourceSize = integerOf(s.value(u"size"));
            const std::optional<qint64> sourceMtime = integerOf(s.value(u"mtime"));
            ok = s.value(u"id").isString() && !s.value(u"id").toString().isEmpty() && sourceSize &&
                 sourceMtime;
            if (ok) {
                record.source = s.value(u"id").toString();
                record.sourceSize = *sourceSize;
                record.sourceMtime = *sourceMtime;
            }
        }
        if (!ok) {
            *error = QStringLiteral("file record %1 is not as expected").arg(i + 1);
            return {};
        }
        record.kind = kind.toString();
        record.size = *size;
        record.mtime = *mtime;
        record.settings = settings.toString();
        if (!RunManifest::isSafeRelativePath(path.toString())) {
            // Never trusted, never touched.
            klLog() << "manifest: ignoring the record of" << path.toString();
            continue;
        }
        records.insert(path.toString(), record);
    }
    return records;
}

QByteArray serialize(const QMap<QString, RunManifest::Record>& records) {
    QJsonArray files;
    for (auto it = records.cbegin(); it != records.cend(); ++it) {
        const RunManifest::Record& r = it.value();
        QJsonObject file{
            {"path", it.key()}, {"kind", r.kind}, {"size", r.size}, {"mtime", r.mtime}};
        if (!r.settings.isEmpty()) file.insert(u"settings", r.settings);
        if (!r.source.isEmpty())
            file.insert(
                u"source",
                QJsonObject{{"id", r.source}, {"size", r.sourceSize}, {"mtime", r.sourceMtime}});
        files.append(file);
    }
    return QJsonDocument(QJsonObject{{"format", kFormat}, {"files", files}}).toJson();
}

bool matches(const RunManifest::FileState& state, const RunManifest::Record& record) {
    return state.exists && state.size == record.size && state.mtime == record.mtime;
}

}  // namespace

RunManifest::RunManifest(const QString& kind, const RunOptions& options, UserInterface& ui)
    : kind_(kind),
      destination_(options.destination),
      clean_(options.clean),
      rebuild_(options.rebuild) {
    const QString path = destination_ + kFileName;
    if (!QFileInfo::exists(path)) return;
    QFile file(path);
    QString error;
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
    } else {
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError)
            error = file.errorString();
        else
            earlier_ = parse(bytes, &error);
    }
    if (error.isEmpty()) return;
    trusted_ = false;
    earlier_.clear();
    ui.alert(QStringLiteral("The record of earlier runs is not used"),
             QStringLiteral("%1: %2. Every image is made again, no file of an earlier run is "
                            "removed, and a new record is written.")
                 .arg(path, error),
             false);
}

QString RunManifest::sourceId(const QString& photoPath) {
    const QString absolute = QFileInfo(photoPath).absoluteFilePath();
    return QFileInfo(absolute).fileName() + u'#' +
           QString::fromLatin1(
               QCryptographicHash::hash(absolute.toUtf8(), QCryptographicHash::Sha256).toHex());
}

QString RunManifest::settingsHash(const QStringList& values) {
    QJsonArray array{QStringLiteral("orvella " ORVELLA_VERSION)};
    for (const QString& value : values) array.append(value);
    return QString::fromLatin1(
        QCryptographicHash::hash(QJsonDocument(array).toJson(QJsonDocument::Compact),
                                 QCryptographicHash::Sha256)
            .toHex());
}

RunManifest::FileState RunManifest::stateOf(const QString& path, bool ownFile) {
    struct stat st {};
    const QByteArray name = QFile::encodeName(path);
    const int rc = ownFile ? ::lstat(name.constData(), &st) : ::stat(name.constData(), &st);
    if (rc != 0 || !S_ISREG(st.st_mode)) return {};
    return {true, qint64(st.st_size), qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec,
            quint64(st.st_ino)};
}

bool RunManifest::isSafeRelativePath(const QString& path) {
    if (path.isEmpty() || path == kFileName || path.contains(u'\\') || path.contains(QChar(0)))
        return false;
    const QStringList segments = path.split(u'/');
    return std::none_of(segments.cbegin(), segments.cend(),
                        [](const QString& s) { return s.isEmpty() || s == u"." || s == u".."; });
}

void RunManifest::removeEarlierFiles(const QStringList& planned, OutputFolder& out) {
    if (!clean_) return;
    const QSet<QString> keep(planned.cbegin(), planned.cend());
    const QString root = QFileInfo(destination_).canonicalFilePath() + u'/';
    QStringList paths = earlier_.keys();
    paths.sort();
    for (const QString& relative : paths) {
        const Record& record = earlier_[relative];
        if (record.kind != kind_ || keep.contains(relative)) continue;
        const QString path = destination_ + relative;
        const FileState state = stateOf(path);
        if (!state.exists) continue;
        if (!matches(state, record)) {
            // Changed since it was written: it is no longer ours to remove.
            klLog() << "manifest: keeping" << path << "changed since an earlier run wrote it";
            continue;
        }
        if (root.size() < 2 || !QFileInfo(path).canonicalFilePath().startsWith(root)) continue;
        QFile file(path);
        if (!file.remove())
            out.addFailure(path, QStringLiteral("the file of an earlier run cannot be removed: ") +
                                     file.errorString());
    }
}

bool RunManifest::unchanged(const QString& relativePath, const Record& wanted) const {
    const auto it = earlier_.constFind(relativePath);
    if (it == earlier_.constEnd()) return false;
    const Record& r = *it;
    return r.kind == wanted.kind && r.settings == wanted.settings && r.source == wanted.source &&
           r.sourceSize == wanted.sourceSize && r.sourceMtime == wanted.sourceMtime &&
           matches(stateOf(destination_ + relativePath), r);
}

void RunManifest::recordMade(const QString& relativePath, const Record& record) {
    const std::lock_guard lock(mutex_);
    made_.insert(relativePath, record);
}

std::function<QStringList(int)> RunManifest::keepingUnchanged(
    const QStringList& sources, const QList<QStringList>& outputs, const QString& settings,
    std::function<QStringList(int)> make) {
    return [this, &sources, &outputs, settings, make = std::move(make)](int i) -> QStringList {
        const QString& source = sources[i];
        const QStringList& files = outputs[i];
        const FileState photo = stateOf(source, false);
        Record wanted{kind_, 0, 0, settings, sourceId(source), photo.size, photo.mtime};
        bool keep = !rebuild_ && photo.exists && !files.isEmpty();
        if (keep) {
            // A derivative that an earlier photo of this run made again is not the one recorded.
            const std::lock_guard lock(mutex_);
            keep = std::none_of(files.cbegin(), files.cend(),
                                [&](const QString& f) { return made_.contains(f); });
        }
        if (keep && std::all_of(files.cbegin(), files.cend(),
                                [&](const QString& f) { return unchanged(f, wanted); }))
            return {};

        std::vector<FileState> before;
        for (const QString& file : files) before.push_back(stateOf(destination_ + file));
        const QStringList failures = make(i);
        // Files are written whole or not at all: one that changed was written by this photo.
        for (qsizetype k = 0; k < files.size(); ++k) {
            const FileState after = stateOf(destination_ + files[k]);
            if (!after.exists || after == before[size_t(k)]) continue;
            Record made = wanted;
            made.size = after.size;
            made.mtime = after.mtime;
            recordMade(files[k], made);
        }
        return failures;
    };
}

void RunManifest::save(OutputFolder& out) {
    QMap<QString, Record> records;
    // Files of earlier runs still there as they were written stay recorded.
    for (auto it = earlier_.cbegin(); it != earlier_.cend(); ++it)
        if (matches(stateOf(destination_ + it.key()), it.value())) records.insert(it.key(), *it);
    for (const QString& relative : out.writtenFiles()) {
        const FileState state = stateOf(destination_ + relative);
        if (state.exists && isSafeRelativePath(relative))
            records.insert(relative, Record{kind_, state.size, state.mtime, {}, {}, 0, 0});
    }
    {
        const std::lock_guard lock(mutex_);
        for (auto it = made_.cbegin(); it != made_.cend(); ++it)
            if (matches(stateOf(destination_ + it.key()), it.value()))
                records.insert(it.key(), *it);
    }
    QString error;
    const QString path = destination_ + kFileName;
    if (!AtomicFile::write(path, serialize(records), &error)) out.addFailure(path, error);
}
