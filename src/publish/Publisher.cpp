#include "publish/Publisher.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <optional>

#include "generators/common/RunManifest.h"
#include "services/AtomicFile.h"
#include "services/FolderLock.h"
#include "services/Log.h"

namespace Publisher {

namespace {

bool isOwnFile(const QString& relative) {
    return relative == RunManifest::kFileName || relative == PublishRecord::kFileName ||
           relative == FolderLock::kFileName ||
           AtomicFile::isTemporaryName(QFileInfo(relative).fileName());
}

bool hasControlCharacter(const QString& text) {
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; });
}

bool isRefusal(ServerConnection::Failure failure) {
    using F = ServerConnection::Failure;
    return failure == F::HostKeyUnknown || failure == F::HostKeyChanged ||
           failure == F::LoginRefused;
}

// True when every file of the site is on the server as the record has it.
bool serverHoldsSite(const QList<SiteFile>& site, const PublishRecord::Destination& record) {
    return std::all_of(site.cbegin(), site.cend(), [&](const SiteFile& f) {
        return !f.unsendable.isEmpty() ||
               record.files.value(f.path) == PublishRecord::File{f.size, f.sha256};
    });
}

}  // namespace

int sendingRank(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == u"html" || suffix == u"htm") return 2;
    if (suffix == u"css" || suffix == u"js") return 1;
    return 0;
}

QList<SiteFile> siteFiles(const QString& folder) {
    QList<SiteFile> files;
    const QDir root(folder);
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info = it.nextFileInfo();
        const QString relative = root.relativeFilePath(info.filePath());
        if (isOwnFile(relative)) continue;
        QString why;
        if (info.isSymLink())
            why = QStringLiteral("a link is not sent");
        else if (!info.isFile())
            why = QStringLiteral("not a file");
        else if (hasControlCharacter(relative) || !RunManifest::isSafeRelativePath(relative))
            why = QStringLiteral("no server takes this name");
        QFile file(info.filePath());
        QCryptographicHash hash(QCryptographicHash::Sha256);
        if (why.isEmpty() && (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)))
            why = file.errorString();
        files.append({relative, info.size(),
                      why.isEmpty() ? QString::fromLatin1(hash.result().toHex()) : QString(), why});
    }
    std::sort(files.begin(), files.end(), [](const SiteFile& a, const SiteFile& b) {
        const int ra = sendingRank(a.path), rb = sendingRank(b.path);
        return ra != rb ? ra < rb : a.path < b.path;
    });
    return files;
}

Result testConnection(const PublishDestination& destination,
                      const ServerConnection::Credentials& credentials) {
    Result result;
    ServerConnection connection(destination, credentials);
    const ServerConnection::Outcome outcome = connection.open();
    result.hostKey = connection.hostKey();
    result.connected = outcome.ok();
    if (!outcome.ok()) {
        result.refusal = isRefusal(outcome.failure) ? outcome.failure : result.refusal;
        result.failures.append(outcome.message);
    }
    return result;
}

Result publish(const QString& folder, const PublishDestination& destination, const Options& options,
               const Callbacks& callbacks) {
    Result result;
    // A site is not sent while a run writes it, nor written while it is sent: one writer per
    // output folder, and a publish writes its record there.
    std::optional<FolderLock> lock;
    if (!options.dryRun) lock.emplace(folder, nullptr, nullptr);
    if (lock && !lock->held()) {
        result.failures.append(lock->reason());
        return result;
    }
    QString recordError;
    PublishRecord record = PublishRecord::read(folder, &recordError);
    if (!recordError.isEmpty())
        result.warnings.append(recordError +
                               QStringLiteral(". Every file is sent again, nothing is removed, "
                                              "and a new record is written."));
    const QList<SiteFile> site = siteFiles(folder);
    // A reference into the record: no destination is added while it is used.
    PublishRecord::Destination& sent = record.destination(destination.key());

    QList<SiteFile> toSend;
    qint64 bytesTotal = 0;
    QSet<QString> inSite;
    for (const SiteFile& file : site) {
        // One that cannot be sent now is still the site's: never removed from the server.
        inSite.insert(file.path);
        if (!file.unsendable.isEmpty()) {
            result.skipped.append(file.path + QStringLiteral(": not sent: ") + file.unsendable);
        } else if (sent.files.value(file.path) == PublishRecord::File{file.size, file.sha256}) {
            ++result.unchanged;
        } else {
            toSend.append(file);
            result.toSend.append(file.path);
            bytesTotal += file.size;
        }
    }
    if (options.removeOld) {
        for (auto it = sent.files.cbegin(); it != sent.files.cend(); ++it)
            if (!inSite.contains(it.key())) result.toRemove.append(it.key());
        // Pages first: none of the pages left links what goes.
        std::stable_sort(
            result.toRemove.begin(), result.toRemove.end(),
            [](const QString& a, const QString& b) { return sendingRank(a) > sendingRank(b); });
    }
    if (options.dryRun) {
        if (callbacks.file) {
            for (const QString& path : result.toSend)
                callbacks.file(QStringLiteral("would send ") + path);
            for (const QString& path : result.toRemove)
                callbacks.file(QStringLiteral("would remove ") + path);
        }
        return result;
    }

    ServerConnection connection(destination, options.credentials);
    const ServerConnection::Outcome opened = connection.open(sent.unfinished);
    result.hostKey = connection.hostKey();
    if (!opened.ok()) {
        result.refusal = isRefusal(opened.failure) ? opened.failure : result.refusal;
        result.failures.append(opened.message);
        return result;
    }
    result.connected = true;
    sent.unfinished.clear();

    Progress progress{0, int(toSend.size() + result.toRemove.size()), 0, bytesTotal};
    auto report = [&] {
        if (callbacks.progress) callbacks.progress(progress);
    };
    auto save = [&] {
        QString error;
        if (record.write(&error)) return true;
        result.failures.append(error + QStringLiteral(" (the publish stopped: what was sent can "
                                                      "no longer be recorded)"));
        return false;
    };
    auto stopped = [&] {
        result.cancelled = result.cancelled || (callbacks.cancelled && callbacks.cancelled());
        return result.cancelled;
    };
    report();
    bool going = true;
    for (qsizetype i = 0; going && i < toSend.size(); ++i) {
        const SiteFile& file = toSend[i];
        // A page is not sent when an image failed: it would show a gap.
        if (i > 0 && sendingRank(file.path) != sendingRank(toSend[i - 1].path) &&
            !result.failures.isEmpty()) {
            result.failures.append(
                QStringLiteral("%1 and %2 more: not sent, as files sent before them failed")
                    .arg(file.path)
                    .arg(toSend.size() - i - 1));
            break;
        }
        if (stopped()) break;
        if (!sent.unfinished.contains(file.path)) {
            sent.unfinished.append(file.path);
            if (!save()) break;
        }
        const qint64 before = progress.bytesDone;
        PublishRecord::File done;
        const ServerConnection::Outcome outcome =
            connection.send(folder + file.path, file.path, &done, [&](qint64 bytes) {
                progress.bytesDone = before + bytes;
                report();
            });
        progress.bytesDone = before + file.size;
        ++progress.filesDone;
        if (!outcome.ok()) {
            result.failures.append(file.path + QStringLiteral(": not sent: ") + outcome.message);
            going = outcome.failure == ServerConnection::Failure::File;
            report();
            continue;
        }
        sent.files.insert(file.path, done);
        sent.unfinished.removeAll(file.path);
        // The next file's temporary name is recorded with this one's arrival: one write a file.
        if (i + 1 < toSend.size()) sent.unfinished.append(toSend[i + 1].path);
        if (!save()) break;
        result.sent.append(file.path);
        if (callbacks.file) callbacks.file(QStringLiteral("sent ") + file.path);
        report();
    }
    const bool allSent = result.sent.size() == toSend.size();
    for (qsizetype i = 0; allSent && i < result.toRemove.size(); ++i) {
        const QString& path = result.toRemove[i];
        if (stopped()) break;
        const ServerConnection::Outcome outcome = connection.remove(path);
        ++progress.filesDone;
        if (!outcome.ok()) {
            result.failures.append(path + QStringLiteral(": not removed: ") + outcome.message);
            if (outcome.failure != ServerConnection::Failure::File) break;
            continue;
        }
        sent.files.remove(path);
        if (!save()) break;
        result.removed.append(path);
        if (callbacks.file) callbacks.file(QStringLiteral("removed ") + path);
        report();
    }
    if (allSent) sent.unfinished.clear();
    result.complete = serverHoldsSite(site, sent);
    sent.time = QDateTime::currentDateTimeUtc();
    sent.sent = int(result.sent.size());
    sent.removed = int(result.removed.size());
    sent.complete = result.complete && result.failures.isEmpty();
    save();
    klLog() << "publish:" << destination.display() << "sent" << result.sent.size() << "removed"
            << result.removed.size() << "unchanged" << result.unchanged;
    return result;
}

}  // namespace Publisher
