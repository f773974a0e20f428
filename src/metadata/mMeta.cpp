#include "metadata/mMeta.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QScopeGuard>
#include <QStringDecoder>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exiv2/exiv2.hpp>
#include <filesystem>
#include <mutex>
#include <system_error>

#include "metadata/HeifHeader.h"
#include "services/AtomicFile.h"
#include "services/Log.h"

class mMeta::ImageSource {
  public:
    Exiv2::Image::AutoPtr image;
    qint64 width = 0;
    qint64 height = 0;
};

void mMeta::ImageSourceDeleter::operator()(ImageSource* source) const {
    delete source;
}

namespace {

const QString kNotSupported = QStringLiteral("This file type is not supported.");
const QString kNoComment = QStringLiteral("No user comment available.");
const QString kOk = QStringLiteral("OK");
const QString kFailed = QStringLiteral("Failed");

// Tree values longer than this (maker notes, thumbnails, binary blobs) are cut: the tree is for
// reading, not for carrying data.
constexpr int kMaxTreeValue = 300;

std::mutex xmpToolkitMutex;

void lockXmpToolkit(void*, bool lock) {
    if (lock)
        xmpToolkitMutex.lock();
    else
        xmpToolkitMutex.unlock();
}

// Exiv2 keeps process-wide state: its log level, and the XMP toolkit that it would otherwise
// start lazily, unguarded, from whichever thread reads XMP first.
void startExiv2Once() {
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        // HEIF, AVIF and JPEG XL in its container are read only when asked for.
        Exiv2::enableBMFF(true);
        Exiv2::XmpParser::initialize(lockXmpToolkit, nullptr);
    });
}

std::string nativePath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

// Only regular files are opened: directories, FIFOs and devices would fail late or block.
bool isRegularFile(const QString& path) {
    std::error_code error;
    return !path.isEmpty() &&
           std::filesystem::is_regular_file(std::filesystem::path(nativePath(path)), error);
}

// A JPEG XL codestream outside the container, which has no place for metadata.
bool isBareJxl(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(2) == QByteArrayLiteral("\xFF\x0A");
}

// A photo that is read but never written here: Exiv2 writes no ISO base media file (HEIF, AVIF,
// JPEG XL in its container), and a bare JPEG XL reads as an empty XMP holder.
bool isReadOnlyFormat(const Exiv2::Image& image) {
    return image.imageType() == Exiv2::ImageType::bmff ||
           image.imageType() == Exiv2::ImageType::xmp;
}

// Exiv2 finds no XMP in HEIF: it is taken from the file's own item.
void addHeifXmp(const QString& path, Exiv2::Image& image) {
    const std::string mime = image.mimeType();
    if (!image.xmpData().empty() ||
        (mime != "image/heic" && mime != "image/heif" && mime != "image/avif"))
        return;
    const QByteArray packet = HeifHeader::of(path).xmp;
    Exiv2::XmpData xmp;
    if (packet.isEmpty() || Exiv2::XmpParser::decode(xmp, packet.toStdString()) != 0) return;
    image.setXmpData(xmp);
}

// Opens the file (never through a network protocol, whatever the path looks like) and reads its
// metadata. Null when it is not a readable image.
Exiv2::Image::AutoPtr openImage(const QString& path) {
    startExiv2Once();
    if (!isRegularFile(path)) return Exiv2::Image::AutoPtr();
    try {
        Exiv2::BasicIo::AutoPtr io(new Exiv2::FileIo(nativePath(path)));
        Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(std::move(io));
        if (image.get() && image->good()) {
            image->readMetadata();
            if (image->imageType() == Exiv2::ImageType::bmff) addHeifXmp(path, *image);
            return image;
        }
    } catch (const Exiv2::AnyError& e) {
        klLog() << "Metadata of" << path << "not readable:" << e.what();
    } catch (const std::exception& e) {
        klLog() << "Metadata of" << path << "not readable:" << e.what();
    } catch (...) {
        klLog() << "Metadata of" << path << "not readable";
    }
    if (!isBareJxl(path)) return Exiv2::Image::AutoPtr();
    try {
        return Exiv2::ImageFactory::create(Exiv2::ImageType::xmp);
    } catch (...) {
        return Exiv2::Image::AutoPtr();
    }
}

// Metadata text is UTF-8 when the writer was modern, Latin-1 when it was old.
QString textFromBytes(const std::string& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    if (!utf8.hasError()) return text;
    return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
}

// The user comment without its character-set header and without the NUL padding that cameras
// put after it. Space padding is left for the caller's spaces-only rule.
QString userCommentText(const Exiv2::Exifdatum& datum) {
    std::string text;
    if (const auto* comment = dynamic_cast<const Exiv2::CommentValue*>(&datum.value()))
        text = comment->comment();
    else
        text = datum.toString();
    const auto nul = text.find('\0');
    if (nul != std::string::npos) text.resize(nul);
    return textFromBytes(text);
}

// The caption rule: a comment that splits at single spaces into length+1 pieces is empty or
// spaces only and reads as ""; anything else is returned untrimmed.
QString captionComment(const QString& comment) {
    if (comment.split(u' ').size() == comment.size() + 1) return QString();
    return comment;
}

QString exifText(const Exiv2::ExifData& exif, const char* key) {
    const auto it = exif.findKey(Exiv2::ExifKey(key));
    if (it == exif.end()) return QString();
    std::string text = it->toString();
    const auto nul = text.find('\0');
    if (nul != std::string::npos) text.resize(nul);
    return textFromBytes(text);
}

QStringList iptcValues(const Exiv2::IptcData& iptc, const char* key) {
    QStringList values;
    const Exiv2::IptcKey wanted(key);
    for (const auto& datum : iptc) {
        if (datum.tag() == wanted.tag() && datum.record() == wanted.record())
            values.append(textFromBytes(datum.toString()));
    }
    return values;
}

qint64 exifNumber(const Exiv2::ExifData& exif, const char* key) {
    const auto it = exif.findKey(Exiv2::ExifKey(key));
    if (it == exif.end() || it->count() < 1) return 0;
    return qint64(it->toLong(0));
}

void readPixelSize(mMeta::ImageSource& source) {
    const Exiv2::Image& image = *source.image;
    // HEIF turns the photo in its own boxes and ignores EXIF orientation: its size is the image
    // reader's to tell, as is that of JPEG XL.
    if (isReadOnlyFormat(image)) return;
    source.width = image.pixelWidth();
    source.height = image.pixelHeight();
    if (source.width > 0 && source.height > 0) return;
    const Exiv2::ExifData& exif = image.exifData();
    source.width = exifNumber(exif, "Exif.Photo.PixelXDimension");
    source.height = exifNumber(exif, "Exif.Photo.PixelYDimension");
    if (source.width > 0 && source.height > 0) return;
    source.width = exifNumber(exif, "Exif.Image.ImageWidth");
    source.height = exifNumber(exif, "Exif.Image.ImageLength");
    if (source.width <= 0 || source.height <= 0) source.width = source.height = 0;
}

quint32 bigEndian32(const QByteArray& data, qsizetype at) {
    if (at < 0 || at + 4 > data.size()) return 0;
    const auto* p = reinterpret_cast<const unsigned char*>(data.constData() + at);
    return (quint32(p[0]) << 24) | (quint32(p[1]) << 16) | (quint32(p[2]) << 8) | quint32(p[3]);
}

// The profile's description tag: the ASCII text of a version 2 'desc', or the first record of
// a version 4 'mluc'.
QString iccDescription(const QByteArray& icc) {
    const quint32 tagCount = bigEndian32(icc, 128);
    for (quint32 i = 0; i < tagCount && i < 1000; ++i) {
        const qsizetype entry = 132 + qsizetype(i) * 12;
        if (entry + 12 > icc.size()) break;
        if (icc.mid(entry, 4) != "desc") continue;
        const qsizetype offset = bigEndian32(icc, entry + 4);
        const qsizetype size = bigEndian32(icc, entry + 8);
        if (offset <= 0 || size < 12 || offset + size > icc.size()) return QString();
        const QByteArray tag = icc.mid(offset, size);
        if (tag.startsWith("desc")) {
            const qsizetype length = bigEndian32(tag, 8);
            if (length <= 0 || 12 + length > tag.size()) return QString();
            QByteArray text = tag.mid(12, length);
            const auto nul = text.indexOf('\0');
            if (nul >= 0) text.truncate(nul);
            return QString::fromLatin1(text).trimmed();
        }
        if (tag.startsWith("mluc")) {
            if (bigEndian32(tag, 8) < 1) return QString();
            const qsizetype length = bigEndian32(tag, 20);
            const qsizetype start = bigEndian32(tag, 24);
            if (start <= 0 || length <= 0 || start + length > tag.size()) return QString();
            QString text;
            for (qsizetype at = start; at + 1 < start + length; at += 2)
                text.append(QChar(char16_t((uchar(tag[at]) << 8) | uchar(tag[at + 1]))));
            const auto nul = text.indexOf(QChar(u'\0'));
            if (nul >= 0) text.truncate(nul);
            return text.trimmed();
        }
        return QString();
    }
    return QString();
}

// The number of colour components from the file's header (JPEG frame header, PNG IHDR), or 0.
int headerComponents(const QString& path, const std::string& mimeType) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return 0;
    if (mimeType == "image/png") {
        const QByteArray head = file.read(26);
        if (head.size() < 26) return 0;
        const int colourType = uchar(head[25]);
        return (colourType == 0 || colourType == 4) ? 1 : 3;
    }
    if (mimeType != "image/jpeg") return 0;
    qint64 at = 2;
    for (int segments = 0; segments < 500; ++segments) {
        if (!file.seek(at)) return 0;
        const QByteArray marker = file.read(4);
        if (marker.size() < 4 || uchar(marker[0]) != 0xFF) return 0;
        const int type = uchar(marker[1]);
        const qint64 length = (uchar(marker[2]) << 8) | uchar(marker[3]);
        const bool frame =
            type >= 0xC0 && type <= 0xCF && type != 0xC4 && type != 0xC8 && type != 0xCC;
        if (frame) {
            const QByteArray header = file.read(6);
            return header.size() == 6 ? uchar(header[5]) : 0;
        }
        if (type == 0xDA || type == 0xD9 || length < 2) return 0;
        at += 2 + length;
    }
    return 0;
}

QString printable(const std::string& bytes) {
    QString text = textFromBytes(bytes);
    const auto nul = text.indexOf(QChar(u'\0'));
    if (nul >= 0) text.truncate(nul);
    if (text.size() > kMaxTreeValue) text = text.left(kMaxTreeValue) + QStringLiteral("…");
    return text;
}

QString label(const std::string& tagLabel, const std::string& tagName) {
    return QString::fromStdString(tagLabel.empty() ? tagName : tagLabel);
}

// family -> group -> label -> values in stored order.
using Groups = QMap<QString, QMap<QString, QStringList>>;

template <typename Datum, typename Data>
void collect(Groups& groups, const Data& data, const Exiv2::ExifData* context) {
    for (const Datum& datum : data) {
        QString value;
        try {
            // A comment reads as its text, without the character-set header.
            if (const auto* comment = dynamic_cast<const Exiv2::CommentValue*>(&datum.value()))
                value = printable(comment->comment());
            else
                value = printable(datum.print(context));
        } catch (...) {
            value = printable(datum.toString());
        }
        QString key;
        try {
            key = label(datum.tagLabel(), datum.tagName());
        } catch (...) {
            key = QString::fromStdString(datum.key());
        }
        groups[QString::fromStdString(datum.groupName())][key].append(value);
    }
}

MetaTreeNode familyNode(const QString& family, const Groups& groups) {
    MetaTreeNode node{family, QString(), {}};
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        MetaTreeNode groupNode{group.key(), QString(), {}};
        for (auto leaf = group->cbegin(); leaf != group->cend(); ++leaf)
            groupNode.children.append({leaf.key(), leaf->join(QStringLiteral("; ")), {}});
        node.children.append(groupNode);
    }
    return node;
}

QList<MetaTreeNode> treeOf(const Exiv2::Image& image) {
    Groups exif, iptc, xmp;
    collect<Exiv2::Exifdatum>(exif, image.exifData(), &image.exifData());
    collect<Exiv2::Iptcdatum>(iptc, image.iptcData(), nullptr);
    collect<Exiv2::Xmpdatum>(xmp, image.xmpData(), nullptr);
    // "Exif" < "IPTC" < "XMP" in plain comparison, so the families are already in sorted order.
    QList<MetaTreeNode> tree;
    if (!exif.isEmpty()) tree.append(familyNode(QStringLiteral("Exif"), exif));
    if (!iptc.isEmpty()) tree.append(familyNode(QStringLiteral("IPTC"), iptc));
    if (!xmp.isEmpty()) tree.append(familyNode(QStringLiteral("XMP"), xmp));
    return tree;
}

bool writesExif(const Exiv2::Image& image) {
    const Exiv2::AccessMode mode = image.checkMode(Exiv2::mdExif);
    return mode == Exiv2::amWrite || mode == Exiv2::amReadWrite;
}

qsizetype jpegScanStart(const QByteArray& data) {
    qsizetype at = 2;
    while (at + 4 <= data.size()) {
        if (uchar(data[at]) != 0xFF) return -1;
        const int type = uchar(data[at + 1]);
        if (type == 0xDA) return at;
        if (type == 0xD9) return -1;
        at += 2 + ((uchar(data[at + 2]) << 8) | uchar(data[at + 3]));
    }
    return -1;
}

// Writing keeps the image data as it is, so a file cut short would stay broken with new
// metadata in it; such files are refused. The end-of-image marker cannot occur inside
// entropy-coded data, and a PNG ends with its IEND chunk.
// Every strip or tile that the first image directory names lies inside the file.
bool tiffDataInside(const Exiv2::ExifData& exif, qint64 fileSize) {
    for (const auto& [offsetsKey, countsKey] :
         {std::pair{"Exif.Image.StripOffsets", "Exif.Image.StripByteCounts"},
          std::pair{"Exif.Image.TileOffsets", "Exif.Image.TileByteCounts"}}) {
        const auto offsets = exif.findKey(Exiv2::ExifKey(offsetsKey));
        const auto counts = exif.findKey(Exiv2::ExifKey(countsKey));
        if (offsets == exif.end() || counts == exif.end()) continue;
        if (offsets->count() != counts->count() || offsets->count() == 0) return false;
        for (long i = 0; i < offsets->count(); ++i) {
            const qint64 end = qint64(offsets->toLong(i)) + qint64(counts->toLong(i));
            if (offsets->toLong(i) < 0 || counts->toLong(i) <= 0 || end > fileSize) return false;
        }
        return true;
    }
    return false;  // no image data at all
}

bool looksComplete(const QByteArray& data, const std::string& mimeType) {
    if (mimeType == "image/jpeg") {
        const qsizetype scan = jpegScanStart(data);
        return scan > 0 && data.indexOf("\xFF\xD9", scan) > scan;
    }
    if (mimeType == "image/png") return data.indexOf("IEND", 8) > 8;
    if (mimeType == "image/tiff") {
        try {
            Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(
                reinterpret_cast<const Exiv2::byte*>(data.constData()), long(data.size()));
            if (!image.get()) return false;
            image->readMetadata();
            return tiffDataInside(image->exifData(), data.size());
        } catch (...) {
            return false;
        }
    }
    return true;
}

// The longest comment a file can hold: the EXIF block of a JPEG must fit in one 64 KB segment,
// and other formats are held to the same size so a comment moves between them.
constexpr qsizetype kMaxCommentBytes = 60000;

// Writes the comment into a copy of the file beside it, checks the copy, then puts it in place:
// by a rename, or, for a file with other hard links, by rewriting the file's bytes so every link
// sees it. A failure at any point leaves the original untouched.
bool writeUserComment(const QString& givenPath, const std::string& mimeType, const QString& comment,
                      QString* error) {
    auto fail = [&](const QString& reason) {
        *error = reason;
        return false;
    };
    // Through a symbolic link the photo it points at is rewritten; the link stays a link.
    const QFileInfo given(givenPath);
    const QString path = given.isSymLink() ? given.canonicalFilePath() : givenPath;
    if (path.isEmpty()) return fail(QStringLiteral("no such file"));
    const bool ascii =
        std::all_of(comment.cbegin(), comment.cend(), [](QChar c) { return c.unicode() < 128; });
    const qsizetype bytes = ascii ? comment.size() : comment.size() * 2;
    if (bytes > kMaxCommentBytes)
        return fail(QStringLiteral("the comment is too long: %1 bytes, a photo holds at most %2")
                        .arg(bytes)
                        .arg(kMaxCommentBytes));
    QByteArray data;
    {
        QFile original(path);
        if (!original.open(QIODevice::ReadOnly)) return fail(original.errorString());
        data = original.readAll();
        if (original.error() != QFile::NoError) return fail(original.errorString());
    }
    if (!looksComplete(data, mimeType))
        return fail(QStringLiteral("the file is incomplete or damaged"));
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    // A read-only photo stays as it is, even where the folder would let a rename replace it.
    if ((status.st_mode & 0222) == 0 || ::access(QFile::encodeName(path).constData(), W_OK) != 0)
        return fail(QStringLiteral("the file is read-only"));

    const QString temporary = AtomicFile::temporaryPathFor(path);
    const auto removeTemporary = qScopeGuard([&] { QFile::remove(temporary); });
    {
        QFile copy(temporary);
        if (!copy.open(QIODevice::WriteOnly | QIODevice::NewOnly) ||
            copy.write(data) != data.size() || !copy.flush())
            return fail(copy.errorString());
    }
    data.clear();
    // The copy takes the original's permissions and owner before it replaces it.
    const QByteArray temporaryName = QFile::encodeName(temporary);
    if (::chmod(temporaryName.constData(), status.st_mode & 07777) != 0 ||
        (::chown(temporaryName.constData(), status.st_uid, status.st_gid) != 0 &&
         (status.st_uid != ::geteuid() || errno != EPERM)))
        return fail(QString::fromLocal8Bit(std::strerror(errno)));

    const std::string text =
        (ascii ? "charset=Ascii " : "charset=Unicode ") + comment.toStdString();
    try {
        Exiv2::Image::AutoPtr image = openImage(temporary);
        if (!image.get() || !writesExif(*image))
            return fail(QStringLiteral("this file type holds no EXIF comment"));
        Exiv2::ExifData exif = image->exifData();
        Exiv2::CommentValue value;
        if (value.read(text) != 0) return fail(QStringLiteral("the comment cannot be stored"));
        exif["Exif.Photo.UserComment"].setValue(&value);
        image->setExifData(exif);
        image->writeMetadata();
        // Read back from the written copy: the whole comment must be there.
        Exiv2::Image::AutoPtr check = openImage(temporary);
        const Exiv2::ExifData& written = check.get() ? check->exifData() : Exiv2::ExifData();
        const auto it = written.findKey(Exiv2::ExifKey("Exif.Photo.UserComment"));
        if (it == written.end() || userCommentText(*it) != comment)
            return fail(QStringLiteral("the comment did not read back whole"));
    } catch (const std::exception& e) {
        klLog() << "Metadata of" << path << "not written:" << e.what();
        return fail(QString::fromLocal8Bit(e.what()));
    } catch (...) {
        return fail(QStringLiteral("the metadata cannot be written"));
    }
    {
        const int fd = ::open(temporaryName.constData(), O_RDONLY | O_CLOEXEC);
        const bool synced = fd >= 0 && ::fsync(fd) == 0;
        if (fd >= 0) ::close(fd);
        if (!synced) return fail(QString::fromLocal8Bit(std::strerror(errno)));
    }

    if (status.st_nlink > 1) {
        QFile copy(temporary);
        QFile target(path);
        if (!copy.open(QIODevice::ReadOnly)) return fail(copy.errorString());
        const QByteArray written = copy.readAll();
        if (!target.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
            target.write(written) != written.size() || !target.flush())
            return fail(target.errorString());
        return true;
    }
    QString reason;
    if (!AtomicFile::commit(temporary, path, &reason)) return fail(reason);
    return true;
}

}  // namespace

mMeta::mMeta() {
    startExiv2Once();
}

mMeta::~mMeta() = default;

mMeta::ImageSourcePtr mMeta::getMyImageSource(const QString& path) const {
    Exiv2::Image::AutoPtr image = openImage(path);
    if (!image.get()) return nullptr;
    ImageSourcePtr source(new ImageSource);
    source->image = std::move(image);
    readPixelSize(*source);
    return source;
}

QString mMeta::hGetExifUcFromSource(ImageSourcePtr source, const QString& name) const {
    if (!source) return QString();
    const Exiv2::ExifData& exif = source->image->exifData();
    if (exif.empty()) return QString();
    if (name == u"EXIF User Comment") {
        const auto it = exif.findKey(Exiv2::ExifKey("Exif.Photo.UserComment"));
        if (it == exif.end()) return QString();
        return captionComment(userCommentText(*it));
    }
    // Every other name reads the creation date, kept on purpose.
    return exifText(exif, "Exif.Photo.DateTimeOriginal");
}

QString mMeta::hGetExifUc(const QString& path, const QString& name) const {
    return hGetExifUcFromSource(getMyImageSource(path), name);
}

QString mMeta::hGetSomeIPTC(const QString& path, const QString& name) {
    Exiv2::Image::AutoPtr image = openImage(path);
    if (!image.get()) return QString();
    const Exiv2::IptcData& iptc = image->iptcData();
    const auto text = [&](const char* key) {
        const QStringList values = iptcValues(iptc, key);
        return values.isEmpty() ? QString() : values.first();
    };
    if (name == u"IPTC Creator Title") {
        const QStringList titles = iptcValues(iptc, "Iptc.Application2.BylineTitle");
        myIPTCKeyValue = titles.isEmpty() ? QString() : titles.first();
    } else if (name == u"IPTC Caption") {
        myIPTCKeyValue = text("Iptc.Application2.Caption");
    } else if (name == u"IPTC Keyword") {
        QString joined;
        for (const QString& keyword : iptcValues(iptc, "Iptc.Application2.Keywords")) {
            // An empty keyword at the front adds no separator, kept on purpose.
            if (!joined.isEmpty()) joined += QStringLiteral("; ");
            joined += keyword;
        }
        myIPTCKeyValue = joined;
    } else if (name == u"IPTC City") {
        myIPTCKeyValue = text("Iptc.Application2.City");
    } else if (name == u"IPTC Caption Writer") {
        myIPTCKeyValue = text("Iptc.Application2.Writer");
    } else if (name == u"IPTC Copyrights") {
        myIPTCKeyValue = text("Iptc.Application2.Copyright");
    } else if (name == u"IPTC Country") {
        myIPTCKeyValue = text("Iptc.Application2.CountryName");
    } else if (name == u"IPTC Credits") {
        myIPTCKeyValue = text("Iptc.Application2.Credit");
    } else if (name == u"IPTC Headline") {
        myIPTCKeyValue = text("Iptc.Application2.Headline");
    } else if (name == u"IPTC Subject Code") {
        myIPTCKeyValue = iptcValues(iptc, "Iptc.Application2.Subject").join(QStringLiteral("; "));
    } else if (name == u"IPTC State Province") {
        myIPTCKeyValue = text("Iptc.Application2.ProvinceState");
    }
    // Any other name, "IPTC Description" among them, reads nothing and returns the previous
    // value of this object: kept on purpose.
    if (iptc.empty()) return QString();
    return myIPTCKeyValue;
}

QList<qint64> mMeta::hGetPixelFormatFromSource(const ImageSource& source) const {
    if (source.width <= 0 || source.height <= 0) return {};
    // Orientations 5 to 8 turn the photo a quarter: it is seen with its sides exchanged.
    const Exiv2::ExifData& exif = source.image->exifData();
    const auto it = exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
    const long orientation = it != exif.end() && it->count() > 0 ? it->toLong(0) : 1;
    if (orientation >= 5 && orientation <= 8) return {source.height, source.width};
    return {source.width, source.height};
}

QStringList mMeta::hGetPixelFormat(const QString& path) const {
    const ImageSourcePtr source = getMyImageSource(path);
    if (!source) return {};
    QStringList size;
    for (qint64 n : hGetPixelFormatFromSource(*source)) size.append(QString::number(n));
    return size;
}

QString mMeta::hGetColorProfile(const QString& path) const {
    const ImageSourcePtr source = getMyImageSource(path);
    if (!source) return QString();
    Exiv2::Image& image = *source->image;
    const Exiv2::ExifData& exif = image.exifData();

    QByteArray icc;
    if (image.iccProfileDefined()) {
        const Exiv2::DataBuf* profile = image.iccProfile();
        icc = QByteArray(reinterpret_cast<const char*>(profile->pData_), profile->size_);
    } else {
        const auto it = exif.findKey(Exiv2::ExifKey("Exif.Image.InterColorProfile"));
        if (it != exif.end() && it->size() > 0) {
            icc.resize(it->size());
            it->copy(reinterpret_cast<Exiv2::byte*>(icc.data()), Exiv2::bigEndian);
        }
    }
    if (!icc.isEmpty()) {
        const QString description = iccDescription(icc);
        if (!description.isEmpty()) return description;
    }
    if (image.imageType() == Exiv2::ImageType::bmff &&
        HeifHeader::of(path).colourPrimaries == HeifHeader::kDisplayP3)
        return QStringLiteral("Display P3");

    int components = headerComponents(path, image.mimeType());
    if (components == 0 && image.mimeType() == "image/tiff") {
        const qint64 photometric = exifNumber(exif, "Exif.Image.PhotometricInterpretation");
        const auto it = exif.findKey(Exiv2::ExifKey("Exif.Image.PhotometricInterpretation"));
        if (it != exif.end()) components = photometric <= 1 ? 1 : photometric == 5 ? 4 : 3;
    }
    if (components == 1) return QStringLiteral("Gray");
    if (components == 4) return QStringLiteral("CMYK");

    const auto space = exif.findKey(Exiv2::ExifKey("Exif.Photo.ColorSpace"));
    if (space != exif.end() && space->count() > 0 && space->toLong(0) == 0xFFFF &&
        exifText(exif, "Exif.Iop.InteroperabilityIndex") == u"R03")
        return QStringLiteral("Adobe RGB (1998)");
    return QStringLiteral("sRGB");
}

QList<MetaTreeNode> mMeta::propTree(const QString& path) {
    Exiv2::Image::AutoPtr image = openImage(path);
    myVarTree = image.get() ? treeOf(*image) : QList<MetaTreeNode>();
    return myVarTree;
}

QList<MetaTreeNode> mMeta::hiDoNothing(const QString& path) {
    Exiv2::Image::AutoPtr image = openImage(path);
    if (!image.get()) {
        tfExifUserComment = kNotSupported;
        myVarTree.clear();
        return myVarTree;
    }
    const Exiv2::ExifData& exif = image->exifData();
    const auto it = exif.findKey(Exiv2::ExifKey("Exif.Photo.UserComment"));
    tfExifUserComment = it != exif.end() ? captionComment(userCommentText(*it)) : kNoComment;
    myVarTree = treeOf(*image);
    return myVarTree;
}

bool mMeta::writeExifBlock(const QString& path, const QByteArray& block) {
    startExiv2Once();
    // libvips keeps EXIF as the JPEG APP1 payload: "Exif\0\0", then the TIFF structure.
    const QByteArray tiff = block.startsWith(QByteArrayLiteral("Exif\0\0")) ? block.mid(6) : block;
    if (tiff.isEmpty()) return false;
    try {
        Exiv2::ExifData incoming;
        Exiv2::ExifParser::decode(incoming, reinterpret_cast<const Exiv2::byte*>(tiff.constData()),
                                  uint32_t(tiff.size()));
        Exiv2::Image::AutoPtr image = openImage(path);
        if (!image.get() || !writesExif(*image)) return false;
        image->readMetadata();
        // The file's own tags (size, strips, compression) stay as its writer made them; the
        // embedded thumbnail of a JPEG has no place in another file.
        Exiv2::ExifData merged = image->exifData();
        for (const Exiv2::Exifdatum& datum : incoming) {
            if (datum.groupName() == "Thumbnail") continue;
            if (merged.findKey(Exiv2::ExifKey(datum.key())) == merged.end()) merged.add(datum);
        }
        image->setExifData(merged);
        image->writeMetadata();
        return true;
    } catch (const std::exception& e) {
        klLog() << "EXIF of" << path << "not written:" << e.what();
    } catch (...) {
        klLog() << "EXIF of" << path << "not written";
    }
    return false;
}

QByteArray mMeta::exifBlockUpright(const QByteArray& block) {
    startExiv2Once();
    const QByteArray header = QByteArrayLiteral("Exif\0\0");
    const bool headed = block.startsWith(header);
    const QByteArray tiff = headed ? block.mid(6) : block;
    if (tiff.isEmpty()) return {};
    try {
        Exiv2::ExifData exif;
        const Exiv2::ByteOrder order = Exiv2::ExifParser::decode(
            exif, reinterpret_cast<const Exiv2::byte*>(tiff.constData()), uint32_t(tiff.size()));
        exif["Exif.Image.Orientation"] = uint16_t(1);
        Exiv2::Blob out;
        Exiv2::ExifParser::encode(out, order, exif);
        if (out.empty()) return {};
        const QByteArray bytes(reinterpret_cast<const char*>(out.data()), qsizetype(out.size()));
        return headed ? header + bytes : bytes;
    } catch (const std::exception& e) {
        klLog() << "EXIF block not read:" << e.what();
    } catch (...) {
        klLog() << "EXIF block not read";
    }
    return {};
}

mMeta::OrientationAndXmp mMeta::orientationAndXmp(const QString& path) {
    OrientationAndXmp read;
    const Exiv2::Image::AutoPtr image = openImage(path);
    if (!image.get()) return read;
    const Exiv2::ExifData& exif = image->exifData();
    const auto it = exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
    if (it != exif.end() && it->count() > 0) read.orientation = int(it->toLong(0));
    read.xmp = QByteArray::fromStdString(image->xmpPacket());
    return read;
}

QString mMeta::hSetExifData(const QString& path, const QString& comment) const {
    writeError.clear();
    const ImageSourcePtr source = getMyImageSource(path);
    if (!source) {
        writeError = QStringLiteral("not a readable image");
        return kFailed;
    }
    if (isReadOnlyFormat(*source->image)) {
        writeError = QStringLiteral(
            "HEIF, AVIF and JPEG XL photos are read, never written: the file is unchanged");
        return kFailed;
    }
    const std::string mimeType = source->image->mimeType();
    return writeUserComment(path, mimeType, comment, &writeError) ? kOk : kFailed;
}
