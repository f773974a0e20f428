#include "publish/PublishRecord.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "generators/common/RunManifest.h"
#include "services/AtomicFile.h"
#include "services/Log.h"

const QString PublishRecord::kFileName = QStringLiteral(".orvella-publish");

namespace {

constexpr int kFormat = 1;

bool isCount(const QJsonValue& value) {
    return value.isDouble() && value.toDouble() >= 0 && value.toDouble() == value.toInteger();
}

bool parseDestination(const QJsonValue& value, PublishRecord::Destination* d) {
    const QJsonObject o = value.toObject();
    if (!value.isObject() || !o.value(u"destination").isString() || !o.value(u"files").isArray() ||
        !(o.value(u"unfinished").isArray() || o.value(u"unfinished").isUndefined()) ||
        !(o.value(u"last").isObject() || o.value(u"last").isUndefined()))
        return false;
    d->key = o.value(u"destination").toString();
    for (const QJsonValue& f : o.value(u"files").toArray()) {
        const QJsonObject file = f.toObject();
        const QString path = file.value(u"path").toString();
        if (!f.isObject() || !file.value(u"path").isString() || !isCount(file.value(u"size")) ||
            !file.value(u"sha256").isString())
            return false;
        // A path that would leave the site is never used to name a file on the server.
        if (!RunManifest::isSafeRelativePath(path)) {
            klLog() << "publish record: ignoring the record of" << path;
            continue;
        }
        d->files.insert(path, {file.value(u"size").toInteger(), file.value(u"sha256").toString()});
    }
    for (const QJsonValue& path : o.value(u"unfinished").toArray()) {
        if (!path.isString()) return false;
        if (RunManifest::isSafeRelativePath(path.toString())) d->unfinished.append(path.toString());
    }
    const QJsonObject last = o.value(u"last").toObject();
    if (!last.isEmpty()) {
        if (!last.value(u"time").isString() || !isCount(last.value(u"sent")) ||
            !isCount(last.value(u"removed")) || !last.value(u"complete").isBool())
            return false;
        d->time = QDateTime::fromString(last.value(u"time").toString(), Qt::ISODate);
        d->sent = last.value(u"sent").toInt();
        d->removed = last.value(u"removed").toInt();
        d->complete = last.value(u"complete").toBool();
    }
    return true;
}

}  // namespace

PublishRecord PublishRecord::read(const QString& folder, QString* error) {
    PublishRecord record;
    record.folder_ = folder;
    const QString path = folder + kFileName;
    if (!QFileInfo::exists(path)) return record;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = path + QStringLiteral(": ") + file.errorString();
        return record;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    const QJsonObject root = document.object();
    bool ok = parseError.error == QJsonParseError::NoError && document.isObject() &&
              root.value(u"format").toInt() == kFormat && root.value(u"destinations").isArray();
    for (const QJsonValue& value : root.value(u"destinations").toArray()) {
        if (!ok) break;
        Destination d;
        ok = parseDestination(value, &d);
        record.destinations_.append(d);
    }
    if (!ok) {
        *error = QStringLiteral("%1: not a publish record of format %2").arg(path).arg(kFormat);
        record.destinations_.clear();
    }
    return record;
}

bool PublishRecord::write(QString* error) const {
    QJsonArray destinations;
    for (const Destination& d : destinations_) {
        QJsonArray files;
        for (auto it = d.files.cbegin(); it != d.files.cend(); ++it)
            files.append(
                QJsonObject{{"path", it.key()}, {"size", it->size}, {"sha256", it->sha256}});
        QJsonObject o{{"destination", d.key},
                      {"unfinished", QJsonArray::fromStringList(d.unfinished)},
                      {"files", files}};
        if (d.time.isValid())
            o.insert(u"last", QJsonObject{{"time", d.time.toUTC().toString(Qt::ISODate)},
                                          {"sent", d.sent},
                                          {"removed", d.removed},
                                          {"complete", d.complete}});
        destinations.append(o);
    }
    const QByteArray bytes =
        QJsonDocument(QJsonObject{{"format", kFormat}, {"destinations", destinations}}).toJson();
    const QString path = folder_ + kFileName;
    QString reason;
    if (AtomicFile::write(path, bytes, &reason)) return true;
    *error = path + QStringLiteral(": ") + reason;
    return false;
}

PublishRecord::Destination& PublishRecord::destination(const QString& key) {
    for (Destination& d : destinations_)
        if (d.key == key) return d;
    destinations_.append(Destination{key, {}, {}, {}, 0, 0, false});
    return destinations_.last();
}
