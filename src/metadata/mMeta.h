#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>

// One node of a file's metadata tree: a display name, a value ("" for a group) and, for a group,
// its children.
struct MetaTreeNode {
    QString key;
    QString val;
    QList<MetaTreeNode> children;
};

// Reads the metadata shown next to photos: the EXIF user comment and creation date, the IPTC
// caption items, the pixel size and colour profile; writes the EXIF user comment of one file.
// Readers never fail: a file that cannot be read gives empty values. An mMeta object remembers its
// last IPTC value (see hGetSomeIPTC), so it must not be shared between threads.
class mMeta {
  public:
    // An open image file with its metadata read; opaque outside the metadata code.
    class ImageSource;
    struct ImageSourceDeleter {
        void operator()(ImageSource* source) const;
    };
    using ImageSourcePtr = std::unique_ptr<ImageSource, ImageSourceDeleter>;

    mMeta();
    ~mMeta();

    // A new image source on the file, or null when it cannot be opened as an image.
    ImageSourcePtr getMyImageSource(const QString& path) const;

    // "EXIF User Comment": the comment, "" when missing or made only of spaces (not trimmed
    // otherwise). Any other name: the EXIF creation date as stored, or "".
    QString hGetExifUcFromSource(ImageSourcePtr source, const QString& name) const;
    QString hGetExifUc(const QString& path, const QString& name) const;

    // The IPTC item of that name. An unknown name (such as "IPTC Description") reads nothing and
    // returns the value of this object's previous IPTC read, kept on purpose.
    QString hGetSomeIPTC(const QString& path, const QString& name);

    // [pixel width, pixel height] of the photo as it is seen (EXIF orientation applied), from the
    // file's header, or an empty list when unknown.
    QList<qint64> hGetPixelFormatFromSource(const ImageSource& source) const;
    // [width, height] as decimal text, or an empty list.
    QStringList hGetPixelFormat(const QString& path) const;
    // The name of the image's colour space ("sRGB", "Adobe RGB (1998)", "Gray", ...), or "".
    QString hGetColorProfile(const QString& path) const;

    // Every EXIF, IPTC and XMP property of the file as a tree, groups first by family; also kept
    // in myVarTree. Empty when the file is not a readable image.
    QList<MetaTreeNode> propTree(const QString& path);
    // Shows a file in the editor: sets tfExifUserComment (the comment, or a "not supported" or
    // "no comment" message) and returns the tree.
    QList<MetaTreeNode> hiDoNothing(const QString& path);

    // Writes the EXIF user comment into the file (creating the EXIF block when missing), through a
    // checked copy beside it. The file keeps its permissions, owner and hard links. "OK", or
    // "Failed" with the reason in writeError: the file is then unchanged (also when it is
    // incomplete, or the comment longer than a photo can hold).
    QString hSetExifData(const QString& path, const QString& comment) const;
    // Writes a whole EXIF block (as a JPEG carries it, "Exif\0\0" first) into the file in place,
    // keeping the file's own image structure tags. For writers that cannot store EXIF themselves.
    static bool writeExifBlock(const QString& path, const QByteArray& block);
    // The same EXIF block (with or without the "Exif\0\0" header) with its orientation set to 1,
    // for pixels that were turned upright. Empty when the block cannot be read.
    static QByteArray exifBlockUpright(const QByteArray& block);

    // For image readers that leave them out (JPEG XL): the EXIF orientation of the photo (1 when
    // it has none) and its XMP packet (empty when none).
    struct OrientationAndXmp {
        int orientation = 1;
        QByteArray xmp;
    };
    static OrientationAndXmp orientationAndXmp(const QString& path);

    QList<MetaTreeNode> myVarTree;
    mutable QString writeError;
    QString tfExifUserComment;
    QString myIPTCKeyValue;
};
