#include "projects/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QUrl>

#include "imaging/CellImage.h"
#include "presets/SettingsStore.h"
#include "services/AtomicFile.h"
#include "services/KLbookmarks.h"
#include "services/Log.h"
#include "services/TextValues.h"
#include "services/UserInterface.h"
#include "services/cNSFileHandling.h"
#include "services/cNSStringHandling.h"

namespace ProjectFile {

namespace {

const QString kPresetKey = QStringLiteral("mySqlVal");
constexpr int kPresetFields = 102;

QString folderPath(const QString& folder) {
    QString path = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    if (!path.endsWith(u'/')) path += u'/';
    return path;
}

enum class Copy { Copied, Kept, Failed };

// Copies a photo file into the project without ever replacing a file already there: through a
// temporary file beside the target, renamed only when the whole copy is on disk.
Copy copyPhoto(const QString& source, const QString& target, QString* error) {
    if (QFileInfo::exists(target) || QFileInfo(target).isSymLink()) return Copy::Kept;
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        *error = in.errorString();
        return Copy::Failed;
    }
    const QString temporary = AtomicFile::temporaryPathFor(target);
    QFile out(temporary);
    if (!out.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        *error = out.errorString();
        return Copy::Failed;
    }
    auto fail = [&](const QString& why) {
        *error = why;
        out.close();
        QFile::remove(temporary);
        return Copy::Failed;
    };
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    for (;;) {
        const qint64 n = in.read(buffer.data(), buffer.size());
        if (n < 0) return fail(in.errorString());
        if (n == 0) break;
        if (out.write(buffer.constData(), n) != n) return fail(out.errorString());
    }
    if (!out.flush()) return fail(out.errorString());
    out.close();
    if (out.error() != QFileDevice::NoError) return fail(out.errorString());
    // rename() refuses to replace: a file that appeared meanwhile is kept.
    if (!QFile::rename(temporary, target)) {
        QFile::remove(temporary);
        if (QFileInfo::exists(target)) return Copy::Kept;
        *error = QStringLiteral("cannot be renamed into place");
        return Copy::Failed;
    }
    return Copy::Copied;
}

}  // namespace

QString missingPhotosText() {
    return QStringLiteral("One or more photos are missing.") + QChar(13) +
           QStringLiteral(
               "Did you removed the \"Photos\" folder, or moved the \"project\" folder?");
}

PropertyListFile::Limits readLimits() {
    PropertyListFile::Limits limits;
    limits.maxFileBytes = 64 * 1024 * 1024;
    limits.maxValueChars = 256 * 1024;
    limits.maxKeyChars = 64;
    limits.maxDepth = 2;
    return limits;
}

QString projectName(const QString& dialogText, const SettingsStore& settings) {
    if (dialogText.isEmpty() || dialogText == kNoNameText)
        return settings.registry().find(kPageNameControl) ? settings.text(kPageNameControl)
                                                          : QString();
    return dialogText;
}

const PresetLayout& layoutForTab(int index) {
    const QList<PresetLayout>& layouts = PresetLayouts::all();
    if (index >= 0 && index < layouts.size() - 1) return layouts[index];
    return layouts.last();
}

const PresetLayout& layoutForKindWord(const QString& word) {
    const QList<PresetLayout>& layouts = PresetLayouts::all();
    for (qsizetype i = 0; i + 1 < layouts.size(); ++i)
        if (layouts[i].fileWord == word) return layouts[i];
    return layouts.last();
}

PlistDictionary projectDictionary(const QString& folder, const QList<cCollectionViewItem>& records,
                                  const SettingsStore& settings, const PresetLayout& layout,
                                  const QString& publishDestination) {
    PlistDictionary root;
    const QByteArray bookmark = KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(folder));
    root.insert(QStringLiteral("destination"), cNSStringHandling::hConvertNSdToNSstr(bookmark));
    root.insert(QStringLiteral("count"), QString::number(records.size()));
    for (qsizetype i = 0; i < records.size(); ++i) {
        const cCollectionViewItem& record = records[i];
        PlistDictionary entry;
        entry.insert(QStringLiteral("publish"), QString::number(record.myPhotoSelect));
        entry.insert(QStringLiteral("name"), record.myPhotoName);
        entry.insert(QStringLiteral("exif"), record.myPhotoDescription);
        entry.insert(QStringLiteral("highlight"), QString::number(record.myPhotoHighLight));
        entry.insert(QStringLiteral("pixels"), record.myPhotoPxSize);
        entry.insert(QStringLiteral("orientation"), record.myPhotoOrientation);
        root.insert(QString::number(i + 1), entry);
    }
    const cPresetManager::PresetDictionary preset =
        cPresetManager::addPresetValuesToPLIST(settings, layout);
    for (int field = 0; field < kPresetFields; ++field) {
        const QString key = kPresetKey + QString::number(field);
        if (preset.contains(key)) root.insert(key, preset.value(key));
    }
    if (!publishDestination.isEmpty()) root.insert(kPublishKey, publishDestination);
    return root;
}

SaveResult save(const QString& folder, const QString& name,
                const QList<cCollectionViewItem>& records, const SettingsStore& settings,
                const PresetLayout& layout, const QString& publishDestination) {
    SaveResult result;
    auto refuse = [&](const QString& why) {
        result.refused = true;
        result.error = why;
        return result;
    };
    if (folder.isEmpty()) return refuse(QStringLiteral("No project folder was chosen."));
    const QString fileName = name + kExtension;
    if (name.isEmpty() || !cNSFileHandling::isPlainFileName(name) ||
        !cNSFileHandling::isPlainFileName(fileName))
        return refuse(
            name.isEmpty()
                ? QStringLiteral("The project has no name: enter one, or a page file name.")
                : QStringLiteral("\"%1\" cannot name a project: a project name is a file name, "
                                 "without \"/\" or \"..\".")
                      .arg(name));

    const QString root = folderPath(folder);
    const QString photos = root + kPhotosFolder + u'/';
    if (!QDir().mkpath(photos)) {
        result.error = QStringLiteral("%1: the folder cannot be created").arg(photos);
        return result;
    }
    // Photos whose copy went into photos/ during this save, by file name.
    QHash<QString, QString> copiedFrom;
    for (const cCollectionViewItem& record : records) {
        const QString source = QFileInfo(record.path()).absoluteFilePath();
        const QString copyName = QFileInfo(record.path()).fileName();
        if (!cNSFileHandling::isPlainFileName(copyName)) {
            result.warnings.append(
                QStringLiteral("%1: not a photo file; nothing was copied").arg(record.path()));
            continue;
        }
        const QString target = photos + copyName;
        const auto earlier = copiedFrom.constFind(copyName);
        if (earlier != copiedFrom.constEnd()) {
            if (*earlier != source)
                result.warnings.append(
                    QStringLiteral("%1: another photo of that name, %2, was copied already; "
                                   "the project shows that one")
                        .arg(source, *earlier));
            continue;
        }
        QString error;
        switch (copyPhoto(source, target, &error)) {
            case Copy::Copied:
            case Copy::Kept:
                copiedFrom.insert(copyName, source);
                break;
            case Copy::Failed:
                result.warnings.append(
                    QStringLiteral("%1: not copied into %2 (%3)").arg(source, photos, error));
                break;
        }
    }

    result.projectFile = root + fileName;
    QString error;
    if (!PropertyListFile::write(
            result.projectFile,
            projectDictionary(QDir::cleanPath(root), records, settings, layout, publishDestination),
            &error)) {
        result.error = QStringLiteral("%1: %2").arg(result.projectFile, error);
        return result;
    }
    result.ok = true;
    return result;
}

OpenResult open(const QString& projectFolder, const QString& projectFile, int cellImageSize,
                UserInterface* ui) {
    OpenResult result;
    PlistDictionary root;
    QString reason;
    if (!PropertyListFile::read(projectFile, readLimits(), &root, &reason)) {
        // Read as an empty dictionary: a count of 0, no photos, no settings.
        result.status = OpenResult::Status::Unreadable;
        result.message = QStringLiteral("%1 is not a project file: %2").arg(projectFile, reason);
        return result;
    }
    for (const PlistDictionary::Entry& entry : root.entries())
        if (!entry.dict) result.dictionary.insert(entry.key, entry.text);

    // A count larger than the entries the file can hold is read as that many.
    const QString* countText = root.text(QStringLiteral("count"));
    const qsizetype count =
        std::min<qsizetype>(countText ? TextValues::intValue(*countText) : 0, root.size());

    // Every name is checked before anything is used: a refused project changes nothing.
    for (qsizetype i = 1; i <= count; ++i) {
        const PlistDictionary* entry = root.dictionary(QString::number(i));
        if (!entry) continue;
        const QString* name = entry->text(QStringLiteral("name"));
        if (!name || !cNSFileHandling::isPlainFileName(*name)) {
            result.status = OpenResult::Status::Refused;
            result.message = QStringLiteral(
                                 "%1 was not opened: photo entry \"%2\" has the name \"%3\", which "
                                 "is not a plain file name in its \"photos\" folder.")
                                 .arg(projectFile)
                                 .arg(i)
                                 .arg(name ? QString(*name).replace(QChar(0), QStringLiteral("\\0"))
                                           : QString());
            result.dictionary.clear();
            return result;
        }
    }

    const QString photos = folderPath(projectFolder) + kPhotosFolder + u'/';
    if (ui) ui->progressStart();
    const double step = count < 1 ? 100 : double(100 / count);
    QStringList unusable;
    for (qsizetype i = 1; i <= count; ++i) {
        if (ui) ui->progressStep(step);
        const PlistDictionary* entry = root.dictionary(QString::number(i));
        if (!entry) {
            unusable.append(QString::number(i));
        } else {
            auto value = [entry](const char* key) {
                const QString* text = entry->text(QString::fromLatin1(key));
                return text ? *text : QString();
            };
            cCollectionViewItem record;
            const QString path = photos + value("name");
            record.myPhotoName = value("name");
            record.myPhotoDescription = value("exif");
            record.myPhotoSelect = TextValues::intValue(value("publish"));
            record.myPhotoURL = QUrl::fromLocalFile(path);
            record.myPhotoOrientation = value("orientation");
            record.myPhotoHighLight = TextValues::intValue(value("highlight"));
            record.myPhotoPxSize = value("pixels");
            if (cellImageSize > 0 && QFileInfo::exists(path))
                record.myPhoto = makeCellImage(path, cellImageSize);
            result.records.append(record);
        }
        result.dictionary.insert(kLoadStatus, kLoaded);
    }
    if (ui) ui->progressStop();
    if (!unusable.isEmpty()) {
        klLog() << "project" << projectFile << "has no photo entries" << unusable;
        const QString listed = unusable.size() > 5 ? unusable.mid(0, 5).join(QStringLiteral(", ")) +
                                                         QStringLiteral(", ...")
                                                   : unusable.join(QStringLiteral(", "));
        result.warnings.append(
            QStringLiteral("%1: photo entries missing or not a dictionary (%2); the others were "
                           "opened")
                .arg(projectFile, listed));
    }
    result.layout = &layoutForKindWord(result.dictionary.value(kPresetKey + QString::number(2)));
    result.status = OpenResult::Status::Opened;
    return result;
}

void loadSettings(const OpenResult& opened, SettingsStore& settings) {
    if (opened.status != OpenResult::Status::Opened || !opened.layout) return;
    cPresetManager::loadPresetValuesFromPLIST(settings, *opened.layout, opened.dictionary);
}

}  // namespace ProjectFile
