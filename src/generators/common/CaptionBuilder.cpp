#include "generators/common/CaptionBuilder.h"

#include <QFileInfo>

CaptionBuilder::CaptionBuilder(const QString& items, const QString& separator, FileName rule)
    : items_(items.split(u';')), separator_(separator), rule_(rule) {}

const QStringList& CaptionBuilder::iptcNames() {
    static const QStringList names = {
        "IPTC Creator Title",  "IPTC Description",  "IPTC Keyword",       "IPTC City",
        "IPTC Caption Writer", "IPTC Copyrights",   "IPTC Country",       "IPTC Credits",
        "IPTC Headline",       "IPTC Subject Code", "IPTC State Province"};
    return names;
}

const QStringList& CaptionBuilder::itemNames() {
    static const QStringList names =
        QStringList{"Show Filename", "EXIF User Comment", "EXIF Creation Date"} + iptcNames();
    return names;
}

QString CaptionBuilder::withItem(const QString& list, const QString& item) {
    return list.isEmpty() ? item : list + u';' + item;
}

QStringList CaptionBuilder::captions(bool shown, const QString& items, const QString& separator,
                                     FileName rule, const QList<PhotoEntry>& photos) {
    QStringList all;
    if (!shown) return all;
    CaptionBuilder builder(items, separator, rule);
    for (const PhotoEntry& photo : photos) all.append(builder.caption(photo));
    return all;
}

QString CaptionBuilder::caption(const PhotoEntry& photo) {
    const QString path = photo.url.toLocalFile();
    QString caption;
    for (const QString& item : items_) {
        QString value;
        if (item == u"Show Filename")
            value = rule_ == FileName::WithExtension ? QFileInfo(path).fileName()
                                                     : QFileInfo(path).completeBaseName();
        else if (item == u"EXIF User Comment")
            value = photo.description;
        else if (item == u"EXIF Creation Date")
            value = meta_.hGetExifUc(path, item);
        else if (iptcNames().contains(item))
            value = meta_.hGetSomeIPTC(path, item);
        if (value.isEmpty()) continue;
        caption = caption.isEmpty() ? value : caption + separator_ + value;
    }
    return caption;
}
