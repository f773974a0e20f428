#include "services/cNSFileHandling.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "services/AtomicFile.h"
#include "services/Log.h"

namespace {

// Writes the bytes to the path through a temporary file and a rename.
bool writeAtomically(const QString& path, const QByteArray& bytes) {
    return AtomicFile::write(path, bytes);
}

bool copyItem(const QString& source, const QString& destination, QString* error) {
    const QFileInfo info(source);
    if (!info.exists()) {
        *error = QStringLiteral("“%1” does not exist").arg(source);
        return false;
    }
    if (QFileInfo::exists(destination)) {
        *error = QStringLiteral("“%1” already exists").arg(destination);
        return false;
    }
    if (!info.isDir()) {
        QFile file(source);
        if (!file.copy(destination)) {
            *error = file.errorString();
            return false;
        }
        return true;
    }
    if (!QDir().mkpath(destination)) {
        *error = QStringLiteral("cannot create “%1”").arg(destination);
        return false;
    }
    const QDir dir(source);
    const auto entries =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : entries) {
        if (!copyItem(dir.filePath(name), QDir(destination).filePath(name), error)) return false;
    }
    return true;
}

// XML property lists.

const QString kDateFormat = QStringLiteral("yyyy-MM-ddTHH:mm:ssZ");

QVariant readPlistValue(QXmlStreamReader& xml);

QVariantMap readPlistDict(QXmlStreamReader& xml) {
    QVariantMap map;
    QString key;
    bool haveKey = false;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"key") {
            key = xml.readElementText();
            haveKey = true;
        } else if (haveKey) {
            map.insert(key, readPlistValue(xml));
            haveKey = false;
        } else {
            xml.skipCurrentElement();
        }
    }
    return map;
}

QVariant readPlistValue(QXmlStreamReader& xml) {
    const QStringView name = xml.name();
    if (name == u"dict") return readPlistDict(xml);
    if (name == u"array") {
        QVariantList list;
        while (xml.readNextStartElement()) list.append(readPlistValue(xml));
        return list;
    }
    if (name == u"true" || name == u"false") {
        const bool value = name == u"true";
        xml.skipCurrentElement();
        return value;
    }
    const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
    if (name == u"string") return text;
    if (name == u"integer") return text.trimmed().toLongLong();
    if (name == u"real") return QLocale::c().toDouble(text.trimmed());
    if (name == u"data") {
        QString compact = text;
        compact.remove(QRegularExpression(QStringLiteral("\\s")));
        return QByteArray::fromBase64(compact.toLatin1());
    }
    if (name == u"date") {
        QDateTime date = QDateTime::fromString(text.trimmed(), Qt::ISODate);
        return date.toUTC();
    }
    return {};
}

void writePlistValue(QXmlStreamWriter& xml, const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::QVariantMap: {
            xml.writeStartElement(QStringLiteral("dict"));
            const QVariantMap map = value.toMap();
            for (auto it = map.cbegin(); it != map.cend(); ++it) {
                xml.writeTextElement(QStringLiteral("key"), it.key());
                writePlistValue(xml, it.value());
            }
            xml.writeEndElement();
            return;
        }
        case QMetaType::QVariantList:
        case QMetaType::QStringList: {
            xml.writeStartElement(QStringLiteral("array"));
            for (const QVariant& item : value.toList()) writePlistValue(xml, item);
            xml.writeEndElement();
            return;
        }
        case QMetaType::Bool:
            xml.writeEmptyElement(value.toBool() ? QStringLiteral("true")
                                                 : QStringLiteral("false"));
            return;
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
            xml.writeTextElement(QStringLiteral("integer"), value.toString());
            return;
        case QMetaType::Double:
        case QMetaType::Float:
            xml.writeTextElement(
                QStringLiteral("real"),
                QLocale::c().toString(value.toDouble(), 'g', QLocale::FloatingPointShortest));
            return;
        case QMetaType::QByteArray:
            xml.writeTextElement(QStringLiteral("data"),
                                 QString::fromLatin1(value.toByteArray().toBase64()));
            return;
        case QMetaType::QDateTime:
            xml.writeTextElement(QStringLiteral("date"),
                                 value.toDateTime().toUTC().toString(kDateFormat));
            return;
        default:
            xml.writeTextElement(QStringLiteral("string"), value.toString());
            return;
    }
}

}  // namespace

QString cNSFileHandling::hCreateDirectory(const QString& path) const {
    if (QFileInfo::exists(path)) return QStringLiteral("EXISTS");
    return QDir().mkpath(path) ? QStringLiteral("OK") : QStringLiteral("FAILED");
}

void cNSFileHandling::hAddIconToFile(const QString&, const QString&) const {
    // Linux file managers have no custom icon per file or folder, so there is nothing to set.
}

bool cNSFileHandling::isPlainFileName(const QString& name) {
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') &&
           !name.contains(u'\\') && !name.contains(QChar(0));
}

void cNSFileHandling::hWritHTMLFile(const QString& path, const QString& text) const {
    if (!writeAtomically(path, text.toUtf8())) klLog() << "cannot write" << path;
}

void cNSFileHandling::hWriteTextFile(const QString& path, const QString& text) const {
    hWritHTMLFile(path, text);
}

QString cNSFileHandling::hCopyFileTo(const QString& source, const QString& destination) const {
    const QString parent = QFileInfo(destination).absolutePath();
    QDir().mkpath(parent);
    if (!QFileInfo(parent).isDir()) return QStringLiteral("Failed");
    if (QFileInfo(destination).isFile() || QFileInfo(destination).isSymLink())
        QFile::remove(destination);
    klLog() << "check";
    return QFile::copy(source, destination) ? QStringLiteral("OK") : QStringLiteral("Failed");
}

QString cNSFileHandling::hCopyFileToDest(const QString& source, const QString& destination) const {
    // Kept on purpose: the destination is made a folder first, so the copy onto it always fails.
    QDir().mkpath(destination);
    if (!QFileInfo::exists(destination)) return QStringLiteral("Failed");
    return QFile::copy(source, destination) ? QStringLiteral("OK") : QStringLiteral("Failed");
}

QString cNSFileHandling::hCopyFolderTo(const QString& source, const QString& destination) const {
    QString error;
    if (copyItem(source, destination, &error)) return QStringLiteral("Success");
    klLog() << QStringLiteral("Error: %1").arg(error);
    return QStringLiteral("Failed");
}

QString cNSFileHandling::getFileSize(const QString& path) {
    const QFileInfo info(path);
    // Decimal units, as file managers show file sizes.
    fileSize = QLocale::system().formattedDataSize(info.isFile() ? info.size() : 0, 1,
                                                   QLocale::DataSizeSIFormat);
    return fileSize;
}

bool cNSFileHandling::hCheckIfFileExist(const QString& path) const {
    return QFileInfo::exists(path);
}

bool cNSFileHandling::hDeleteFiles(const QString& path) const {
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink()) return QDir(path).removeRecursively();
    return QFile::remove(path);
}

bool cNSFileHandling::hRenameFile(const QString& path, const QString& newPath) const {
    if (QFileInfo::exists(newPath)) return false;
    return QDir().rename(path, newPath);
}

bool cNSFileHandling::hTrashFile(const QString& path) const {
    return QFile::moveToTrash(path);
}

bool cNSFileHandling::hMoveFileTo(const QString& source, const QString& destination) const {
    if (QFileInfo::exists(destination) || !QFileInfo::exists(source)) return false;
    if (QDir().rename(source, destination)) return true;
    // Across file systems a rename is refused: copy, then remove the original.
    QString error;
    if (!copyItem(source, destination, &error)) return false;
    return hDeleteFiles(source);
}

bool cNSFileHandling::hAliasFileTo(const QString& source, const QString& destination) const {
    return QFile::link(QFileInfo(source).absoluteFilePath(), destination);
}

void cNSFileHandling::hShowInFinder(const QString& path) const {
    // Core code opens nothing itself; the window offers this through its own user interface.
    klLog() << "show in file manager:" << path;
}

QVariantMap cNSFileHandling::readPlist(const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QXmlStreamReader xml(&file);
    if (!xml.readNextStartElement() || xml.name() != u"plist") return {};
    if (!xml.readNextStartElement() || xml.name() != u"dict") return {};
    QVariantMap map = readPlistDict(xml);
    if (xml.hasError()) {
        klLog() << "property list" << path << "is malformed:" << xml.errorString();
        return {};
    }
    return map;
}

bool cNSFileHandling::writeToPlist(const QString& path, const QVariantMap& map) const {
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(-1);  // one tab per level
    xml.writeStartDocument();
    xml.writeDTD(
        QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                       "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    writePlistValue(xml, map);
    xml.writeEndElement();
    xml.writeEndDocument();
    return writeAtomically(path, bytes);
}

bool cNSFileHandling::writeNSDataToFile(const QString& path, const QByteArray& data) const {
    return writeAtomically(path, data);
}

QByteArray cNSFileHandling::readNSDataFromFile(const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

QStringList cNSFileHandling::hReadTextFileLbyL(const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    static const QRegularExpression newline(QStringLiteral("\r\n|\n|\r"));
    return QString::fromUtf8(file.readAll()).split(newline);
}

QDateTime cNSFileHandling::hGetCreationDateFile(const QString& path) const {
    const QFileInfo info(path);
    if (!info.exists()) return {};
    // Not every file system records a birth time; the last change is the closest it has.
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.metadataChangeTime();
}

QDateTime cNSFileHandling::hGetModificationDateFile(const QString& path) const {
    const QFileInfo info(path);
    return info.exists() ? info.lastModified() : QDateTime();
}

QString cNSFileHandling::hGetFileType(const QString& path) const {
    const QFileInfo info(path);
    if (info.isSymLink()) return QStringLiteral("NSFileTypeSymbolicLink");
    if (!info.exists()) return {};
    if (info.isDir()) return QStringLiteral("NSFileTypeDirectory");
    if (info.isFile()) return QStringLiteral("NSFileTypeRegular");
    return QStringLiteral("NSFileTypeUnknown");
}
