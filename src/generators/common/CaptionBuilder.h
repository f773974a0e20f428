#pragma once

#include <QString>
#include <QStringList>

#include "collection/PhotoCollection.h"
#include "metadata/mMeta.h"

// Builds the caption of each photo from a kind's caption items (names joined by ";"), in order:
// empty values and unknown names are skipped, the values joined by the separator. It holds one
// metadata reader for the whole run, so use it from one thread, in photo order (the reader's
// remembered IPTC value depends on that order).
class CaptionBuilder {
  public:
    // "Show Filename" gives the file name with its extension in the gallery, the base name in the
    // other kinds.
    enum class FileName { WithExtension, BaseName };

    CaptionBuilder(const QString& items, const QString& separator, FileName rule);

    QString caption(const PhotoEntry& photo);

    // The captions of a run: one per photo in photo order, read by one builder; none when the
    // kind shows no captions (`shown` false).
    static QStringList captions(bool shown, const QString& items, const QString& separator,
                                FileName rule, const QList<PhotoEntry>& photos);

    // The caption item names every kind's metadata popup offers.
    static const QStringList& itemNames();
    // The IPTC names among them.
    static const QStringList& iptcNames();
    // The caption list with one more item: the item alone when the list is empty.
    static QString withItem(const QString& list, const QString& item);

  private:
    QStringList items_;
    QString separator_;
    FileName rule_;
    mMeta meta_;
};

// The captions a kind's pages show: whether any, which items, their separator and what "Show
// Filename" gives.
struct CaptionRequest {
    bool shown = false;
    QString items;
    QString separator;
    CaptionBuilder::FileName fileName = CaptionBuilder::FileName::BaseName;
};
