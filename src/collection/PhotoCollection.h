#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>

#include "collection/cCollectionViewItem.h"

class UserInterface;

// A published photo as every output kind receives it.
struct PhotoEntry {
    QUrl url;
    QString description;
    QString orientation = {};  // "H" or "V", of the upright photo
    int highlight = 0;
};

// The ordered collection of photo records the user works on, headless. It is also the item model
// the window's thumbnail grid shows (display role: the name; decoration role: the cell image;
// tool tip: path, pixel size and caption).
class PhotoCollection : public QAbstractListModel {
    Q_OBJECT
  public:
    enum class Sort { None, AtoZ, ZtoA };
    enum Role {
        SelectRole = Qt::UserRole + 1,
        HighlightRole,
        DescriptionRole,
        PixelSizeRole,
        PathRole
    };

    explicit PhotoCollection(QObject* parent = nullptr);

    // Photo files are taken by extension (PhotoFileTypes), in any case.
    static bool isPhotoFileName(const QString& fileName);
    // The photo files directly inside a folder, as a file manager lists them: by name,
    // case-insensitive, runs of digits by their value ("img2" before "img10").
    static QStringList photoFilesInFolder(const QString& folder);

    // Size of the cell images made when photos are added; 0 makes none (the command line).
    void setCellImageSize(int pixels) { cellImageSize_ = pixels; }

    // Appends the files in the given order: caption from the EXIF user comment, pixel size and
    // orientation from the header, published, not highlighted; duplicates allowed. A file that is
    // not a readable image is skipped with a logged reason. With `ui`, progress is reported (the
    // choose-photos flavour). Returns the number of records added.
    int appendPhotos(const QStringList& paths, UserInterface* ui = nullptr);
    // The files the last appendPhotos skipped, as "path: reason".
    const QStringList& skippedPhotos() const { return skipped_; }
    // Reads the record of one photo from its header: name, caption, upright pixel size and
    // orientation, published; the cell image when `cellImageSize` > 0. Thread-safe. False with the
    // reason when the file is not a readable image.
    static bool readRecord(const QString& path, int cellImageSize, cCollectionViewItem* record,
                           QString* reason);
    // Adds a record where the sort rule puts it (at the end without one).
    void insertRecord(cCollectionViewItem record);
    // Adds records as insertRecord does, with one insertion for the grid when no sort rule is in
    // force (thousands of photos read in batches).
    void insertRecords(QList<cCollectionViewItem> records);
    // Appends records as they stand (a project being opened, tests).
    void appendRecords(const QList<cCollectionViewItem>& records);

    void hRemoveAllPhoto();
    // Removes the records at these display positions; nothing when the set is empty.
    void hRemoveSelectedObject(const QSet<int>& selected);

    // Sort by file name, case-insensitive; the rule stays in force for later additions.
    void setSortingModeAz();
    void setSortingModezA();
    Sort sortMode() const { return sort_; }
    // No sort rule from now on: records keep the order they are given in (an opened project).
    void clearSortRule() { sort_ = Sort::None; }

    // The drop of a drag of these display positions at drop index D, moving records exactly as the
    // established algorithm does (including its multi-item behaviour). Returns true.
    bool acceptDrop(const QList<int>& draggedIndexes, int dropIndex);

    // Flags of one record by display position.
    void setSelect(int row, bool publish);
    void setHighlight(int row, bool highlight);
    // The same flag for many rows at once, with one change for the grid.
    void setSelect(const QList<int>& rows, bool publish);
    void setHighlight(const QList<int>& rows, bool highlight);
    void setDescription(int row, const QString& description);
    // Gives the cell image to the records of that photo that have none yet (images made on
    // another thread arrive here).
    void setCellImage(const QUrl& url, const QImage& image);

    int count() const { return int(records_.size()); }
    // The count as the window shows it ("%ld").
    QString tfImageCount() const { return QString::number(count()); }
    // The records in display order.
    const QList<cCollectionViewItem>& arrangedObjects() const { return records_; }

    // The published records in display order, for the generators.
    QList<PhotoEntry> hGetPhotosFromArrayController() const;
    // The same list as the Responsive Grid reads it (orientation and highlight are what it uses).
    QList<PhotoEntry> hGetGridPhotos() const { return hGetPhotosFromArrayController(); }

    // QAbstractListModel
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  Q_SIGNALS:
    void countChanged(int count);

  private:
    void setSortRule(Sort sort);
    void setFlag(const QList<int>& rows, qint32 cCollectionViewItem::*flag, bool on, int role);
    void applySort();

    QList<cCollectionViewItem> records_;
    QStringList skipped_;
    Sort sort_ = Sort::None;
    int cellImageSize_ = 160;
};
