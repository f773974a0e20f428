#include "collection/PhotoCollection.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "imaging/CellImage.h"
#include "imaging/KLImageHandling.h"
#include "metadata/mMeta.h"
#include "services/Log.h"
#include "services/PhotoFileTypes.h"
#include "services/UserInterface.h"

namespace {

// File names as a file manager lists them: case-insensitive, runs of digits by their value
// ("img2" before "img10"), whatever the locale.
bool namedBefore(const QString& a, const QString& b) {
    // The digits of the run starting at k, without leading zeros; k moves past the run.
    auto number = [](const QString& s, qsizetype& k) {
        while (k < s.size() && s[k] == u'0') ++k;
        const qsizetype start = k;
        while (k < s.size() && s[k].isDigit()) ++k;
        return QStringView(s).mid(start, k - start);
    };
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            const QStringView x = number(a, i);
            const QStringView y = number(b, j);
            if (x.size() != y.size()) return x.size() < y.size();
            if (x != y) return x < y;
            continue;
        }
        const QChar x = a[i++].toCaseFolded();
        const QChar y = b[j++].toCaseFolded();
        if (x != y) return x < y;
    }
    return a.size() - i < b.size() - j;
}

// Case-insensitive order of file names; `descending` reverses it. Equal names keep their order.
bool before(const cCollectionViewItem& a, const cCollectionViewItem& b, bool descending) {
    const int order = QString::compare(a.myPhotoName, b.myPhotoName, Qt::CaseInsensitive);
    return descending ? order > 0 : order < 0;
}

// Why no image can be made of the file, in the words every run uses.
QString unreadableReason(const QString& path) {
    int width = 0;
    int height = 0;
    QString reason;
    return PhotoDecoder::uprightSize(path, &width, &height, &reason)
               ? QStringLiteral("not a readable image")
               : reason;
}

}  // namespace

PhotoCollection::PhotoCollection(QObject* parent) : QAbstractListModel(parent) {}

bool PhotoCollection::isPhotoFileName(const QString& fileName) {
    return PhotoFileTypes::isPhotoFileName(fileName);
}

QStringList PhotoCollection::photoFilesInFolder(const QString& folder) {
    // Names only: a folder of thousands of photos is listed without a look at each file.
    const QDir dir(folder);
    QStringList names = dir.entryList(QDir::Files);
    names.removeIf([](const QString& name) { return !isPhotoFileName(name); });
    // QCollator's numeric mode needs ICU, which a build may lack: compare by hand.
    std::stable_sort(names.begin(), names.end(), namedBefore);
    QStringList files;
    files.reserve(names.size());
    for (const QString& name : std::as_const(names)) files.append(dir.absoluteFilePath(name));
    return files;
}

bool PhotoCollection::readRecord(const QString& path, int cellImageSize,
                                 cCollectionViewItem* record, QString* reason) {
    const mMeta meta;
    // One header read serves both: the size first, then the caption, which consumes it.
    mMeta::ImageSourcePtr source = meta.getMyImageSource(path);
    if (!source || !PhotoDecoder::holdsItsType(path, reason)) {
        if (!source) *reason = unreadableReason(path);
        return false;
    }
    QList<qint64> size = meta.hGetPixelFormatFromSource(*source);
    const QString caption =
        meta.hGetExifUcFromSource(std::move(source), QStringLiteral("EXIF User Comment"));
    // HEIF and JPEG XL: the size as the image reader sees the photo, turned.
    if (int width = 0, height = 0;
        size.isEmpty() && PhotoDecoder::uprightSize(path, &width, &height))
        size = {width, height};
    if (size.size() < 2 || size[0] <= 0 || size[1] <= 0) {
        *reason = QStringLiteral("no pixel size");
        return false;
    }
    record->myPhotoName = QFileInfo(path).fileName();
    record->myPhotoURL = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    record->myPhotoDescription = caption;
    record->myPhotoSelect = 1;
    record->myPhotoHighLight = 0;
    record->myPhotoOrientation = size[0] > size[1] ? QStringLiteral("H") : QStringLiteral("V");
    record->myPhotoPxSize = QStringLiteral("%1x%2").arg(size[0]).arg(size[1]);
    if (cellImageSize > 0) record->myPhoto = makeCellImage(path, cellImageSize);
    return true;
}

void PhotoCollection::insertRecord(cCollectionViewItem record) {
    // With a sort rule in force the record goes where the rule puts it, after equal names.
    int row = count();
    if (sort_ != Sort::None) {
        const bool descending = sort_ == Sort::ZtoA;
        const auto it = std::upper_bound(
            records_.cbegin(), records_.cend(), record,
            [descending](const auto& a, const auto& b) { return before(a, b, descending); });
        row = int(it - records_.cbegin());
    }
    beginInsertRows({}, row, row);
    records_.insert(row, std::move(record));
    endInsertRows();
    Q_EMIT countChanged(count());
}

void PhotoCollection::insertRecords(QList<cCollectionViewItem> records) {
    if (records.isEmpty()) return;
    if (sort_ != Sort::None) {
        for (cCollectionViewItem& record : records) insertRecord(std::move(record));
        return;
    }
    beginInsertRows({}, count(), count() + int(records.size()) - 1);
    records_.append(std::move(records));
    endInsertRows();
    Q_EMIT countChanged(count());
}

int PhotoCollection::appendPhotos(const QStringList& paths, UserInterface* ui) {
    if (paths.isEmpty()) {
        if (ui) ui->progressStop();
        return 0;
    }
    if (ui) ui->progressStart();
    const int step = 100 / int(paths.size());  // integer steps: 3 files give 33 each, 150 give 0
    int added = 0;
    skipped_.clear();
    for (const QString& path : paths) {
        if (ui) ui->progressStep(step);
        cCollectionViewItem record;
        QString reason;
        if (!readRecord(path, cellImageSize_, &record, &reason)) {
            klLog() << QStringLiteral("skipped %1: %2").arg(path, reason);
            skipped_.append(path + QStringLiteral(": ") + reason);
            continue;
        }
        insertRecord(std::move(record));
        ++added;
    }
    if (ui) ui->progressStop();
    return added;
}

void PhotoCollection::appendRecords(const QList<cCollectionViewItem>& records) {
    if (records.isEmpty()) return;
    beginResetModel();
    records_.append(records);
    applySort();
    endResetModel();
    Q_EMIT countChanged(count());
}

void PhotoCollection::hRemoveAllPhoto() {
    beginResetModel();
    records_.clear();
    endResetModel();
    Q_EMIT countChanged(count());
}

void PhotoCollection::hRemoveSelectedObject(const QSet<int>& selected) {
    QList<int> rows;
    for (const int row : selected) {
        if (row >= 0 && row < count()) rows.append(row);
    }
    if (rows.isEmpty()) return;
    QList<bool> removed(count(), false);
    for (const int row : rows) removed[row] = true;
    beginResetModel();
    QList<cCollectionViewItem> kept;
    kept.reserve(count() - rows.size());
    for (int row = 0; row < count(); ++row)
        if (!removed[row]) kept.append(std::move(records_[row]));
    records_ = std::move(kept);
    endResetModel();
    Q_EMIT countChanged(count());
}

void PhotoCollection::setSortingModeAz() {
    setSortRule(Sort::AtoZ);
}

void PhotoCollection::setSortingModezA() {
    setSortRule(Sort::ZtoA);
}

void PhotoCollection::setSortRule(Sort sort) {
    sort_ = sort;
    beginResetModel();
    applySort();
    endResetModel();
    Q_EMIT countChanged(count());
}

void PhotoCollection::applySort() {
    if (sort_ == Sort::None) return;
    const bool descending = sort_ == Sort::ZtoA;
    std::stable_sort(records_.begin(), records_.end(), [descending](const auto& a, const auto& b) {
        return before(a, b, descending);
    });
}

bool PhotoCollection::acceptDrop(const QList<int>& draggedIndexes, int dropIndex) {
    QList<int> sources;
    for (const int index : draggedIndexes) {
        if (index >= 0 && index < count() && !sources.contains(index)) sources.append(index);
    }
    if (sources.isEmpty()) return true;
    std::sort(sources.begin(), sources.end());
    // A manual order replaces a sort rule; otherwise the drop would be undone at once.
    sort_ = Sort::None;

    int target = std::clamp(dropIndex, 0, count()) - 1;
    beginResetModel();
    for (const int source : sources) {
        // Kept on purpose: the source positions are those before the drop and are not adjusted as
        // earlier moves shift the records, so a multi-item drag can move other records.
        const int n = count();
        if (target + 1 != n) ++target;
        cCollectionViewItem record = records_.takeAt(source);
        records_.insert(target, std::move(record));
    }
    endResetModel();
    Q_EMIT countChanged(count());
    return true;
}

void PhotoCollection::setSelect(int row, bool publish) {
    if (row < 0 || row >= count()) return;
    records_[row].myPhotoSelect = publish ? 1 : 0;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {SelectRole});
}

void PhotoCollection::setHighlight(int row, bool highlight) {
    if (row < 0 || row >= count()) return;
    records_[row].myPhotoHighLight = highlight ? 1 : 0;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {HighlightRole});
}

void PhotoCollection::setSelect(const QList<int>& rows, bool publish) {
    setFlag(rows, &cCollectionViewItem::myPhotoSelect, publish, SelectRole);
}

void PhotoCollection::setHighlight(const QList<int>& rows, bool highlight) {
    setFlag(rows, &cCollectionViewItem::myPhotoHighLight, highlight, HighlightRole);
}

void PhotoCollection::setFlag(const QList<int>& rows, qint32 cCollectionViewItem::*flag, bool on,
                              int role) {
    int first = count();
    int last = -1;
    for (const int row : rows) {
        if (row < 0 || row >= count()) continue;
        records_[row].*flag = on ? 1 : 0;
        first = std::min(first, row);
        last = std::max(last, row);
    }
    if (last >= 0) Q_EMIT dataChanged(index(first), index(last), {role});
}

void PhotoCollection::setDescription(int row, const QString& description) {
    if (row < 0 || row >= count()) return;
    records_[row].myPhotoDescription = description;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {DescriptionRole});
}

void PhotoCollection::setCellImage(const QUrl& url, const QImage& image) {
    for (int row = 0; row < count(); ++row) {
        if (records_[row].myPhotoURL != url || !records_[row].myPhoto.isNull()) continue;
        records_[row].myPhoto = image;
        const QModelIndex changed = index(row);
        Q_EMIT dataChanged(changed, changed, {Qt::DecorationRole});
    }
}

QList<PhotoEntry> PhotoCollection::hGetPhotosFromArrayController() const {
    QList<PhotoEntry> photos;
    klLog() << QStringLiteral("count: %1:").arg(count());
    for (const cCollectionViewItem& record : records_) {
        // The diagnostic lines are kept as they always were, "flag NOT set" included for every
        // record.
        klLog() << "loop entered";
        klLog() << "flag NOT set";
        if (record.myPhotoSelect == 1) {
            klLog() << "flag set";
            photos.append({record.myPhotoURL, record.myPhotoDescription, record.myPhotoOrientation,
                           record.myPhotoHighLight});
        }
    }
    klLog() << QStringLiteral("hGetPhotosFromArrayController: %1").arg(photos.size());
    return photos;
}

int PhotoCollection::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant PhotoCollection::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    const cCollectionViewItem& record = records_[index.row()];
    switch (role) {
        case Qt::DisplayRole:
            return record.myPhotoName;
        case Qt::DecorationRole:
            return record.myPhoto;
        case Qt::ToolTipRole: {
            QString tip = QDir::toNativeSeparators(record.path()) + u'\n' + record.myPhotoPxSize;
            if (!record.myPhotoDescription.isEmpty()) tip += u'\n' + record.myPhotoDescription;
            if (record.myPhotoSelect != 1) tip += QStringLiteral("\n(not published)");
            return tip;
        }
        case SelectRole:
            return record.myPhotoSelect;
        case HighlightRole:
            return record.myPhotoHighLight;
        case DescriptionRole:
            return record.myPhotoDescription;
        case PixelSizeRole:
            return record.myPhotoPxSize;
        case PathRole:
            return record.path();
        default:
            return {};
    }
}

bool PhotoCollection::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.row() >= count()) return false;
    // A checkbox sends a bool or a check state; ticked (true, Qt::Checked) counts as set.
    switch (role) {
        case SelectRole:
            setSelect(index.row(), value.toInt() != 0);
            return true;
        case HighlightRole:
            setHighlight(index.row(), value.toInt() != 0);
            return true;
        case DescriptionRole:
            setDescription(index.row(), value.toString());
            return true;
        default:
            return false;
    }
}

Qt::ItemFlags PhotoCollection::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
           Qt::ItemNeverHasChildren;
}
