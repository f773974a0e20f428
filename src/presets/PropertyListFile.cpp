#include "presets/PropertyListFile.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "services/AtomicFile.h"

PlistDictionary::Entry& PlistDictionary::slot(const QString& key) {
    const auto found = index_.constFind(key);
    if (found != index_.constEnd()) return entries_[size_t(*found)];
    index_.insert(key, qsizetype(entries_.size()));
    entries_.push_back(Entry{key, {}, nullptr});
    return entries_.back();
}

void PlistDictionary::insert(const QString& key, const QString& text) {
    Entry& entry = slot(key);
    entry.text = text;
    entry.dict.reset();
}

void PlistDictionary::insert(const QString& key, const PlistDictionary& dictionary) {
    Entry& entry = slot(key);
    entry.text.clear();
    entry.dict = std::make_shared<const PlistDictionary>(dictionary);
}

const QString* PlistDictionary::text(const QString& key) const {
    const auto found = index_.constFind(key);
    if (found == index_.constEnd()) return nullptr;
    const Entry& entry = entries_[size_t(*found)];
    return entry.dict ? nullptr : &entry.text;
}

const PlistDictionary* PlistDictionary::dictionary(const QString& key) const {
    const auto found = index_.constFind(key);
    return found == index_.constEnd() ? nullptr : entries_[size_t(*found)].dict.get();
}

namespace PropertyListFile {

bool isXmlText(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') return false;
        if (c == 0xFFFE || c == 0xFFFF) return false;
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 >= text.size() || !text[i + 1].isLowSurrogate()) return false;
            ++i;
        } else if (QChar::isLowSurrogate(c)) {
            return false;
        }
    }
    return true;
}

namespace {

bool writeDictionary(QXmlStreamWriter& xml, const PlistDictionary& dictionary, QString* badKey) {
    xml.writeStartElement(QStringLiteral("dict"));
    for (const PlistDictionary::Entry& entry : dictionary.entries()) {
        if (!isXmlText(entry.key) || (!entry.dict && !isXmlText(entry.text))) {
            if (badKey) *badKey = entry.key;
            return false;
        }
        xml.writeTextElement(QStringLiteral("key"), entry.key);
        if (entry.dict) {
            if (!writeDictionary(xml, *entry.dict, badKey)) return false;
            continue;
        }
        // Carriage returns as references: a reader would turn a literal one into a line feed.
        xml.writeStartElement(QStringLiteral("string"));
        const QStringList parts = entry.text.split(u'\r');
        for (qsizetype i = 0; i < parts.size(); ++i) {
            if (i > 0) xml.writeEntityReference(QStringLiteral("#13"));
            xml.writeCharacters(parts[i]);
        }
        xml.writeEndElement();
    }
    xml.writeEndElement();
    return true;
}

struct Reader {
    QXmlStreamReader& xml;
    const Limits& limits;
    QString reason;

    bool refuse(const QString& why) {
        reason = why;
        return false;
    }
    bool xmlError() {
        return refuse(
            QStringLiteral("not XML (%1, line %2)").arg(xml.errorString()).arg(xml.lineNumber()));
    }

    // Reads the entries of the dictionary whose start element was just read.
    bool dictionary(int depth, PlistDictionary* result) {
        QString pendingKey;
        bool haveKey = false;
        while (xml.readNextStartElement()) {
            if (xml.name() == u"key") {
                if (haveKey)
                    return refuse(QStringLiteral("key \"%1\" has no value").arg(pendingKey));
                pendingKey = xml.readElementText();
                if (xml.hasError()) return xmlError();
                if (pendingKey.size() > limits.maxKeyChars)
                    return refuse(QStringLiteral("a key is too long"));
                haveKey = true;
                continue;
            }
            if (!haveKey) return refuse(QStringLiteral("a value without a key"));
            if (result->contains(pendingKey))
                return refuse(QStringLiteral("key \"%1\" appears twice").arg(pendingKey));
            if (xml.name() == u"dict" && depth < limits.maxDepth) {
                PlistDictionary inner;
                if (!dictionary(depth + 1, &inner)) return false;
                result->insert(pendingKey, inner);
                haveKey = false;
                continue;
            }
            if (xml.name() != u"string")
                return refuse(
                    QStringLiteral("the value of \"%1\" is not a string").arg(pendingKey));
            const QString value = xml.readElementText();  // an element inside is an error
            if (xml.hasError()) return xmlError();
            if (value.size() > limits.maxValueChars)
                return refuse(QStringLiteral("the value of \"%1\" is too long").arg(pendingKey));
            result->insert(pendingKey, value);
            haveKey = false;
        }
        if (xml.hasError()) return xmlError();
        if (haveKey) return refuse(QStringLiteral("key \"%1\" has no value").arg(pendingKey));
        return true;
    }
};

}  // namespace

bool toXml(const PlistDictionary& root, QByteArray* bytes, QString* badKey) {
    QByteArray out;
    QXmlStreamWriter xml(&out);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(-1);
    xml.writeStartDocument();
    xml.writeDTD(
        QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                       "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    if (!writeDictionary(xml, root, badKey)) return false;
    xml.writeEndElement();
    xml.writeEndDocument();
    if (xml.hasError()) return false;
    *bytes = out;
    return true;
}

bool write(const QString& path, const PlistDictionary& root, QString* error) {
    QByteArray bytes;
    QString badKey;
    if (!toXml(root, &bytes, &badKey)) {
        if (error)
            *error = QStringLiteral(
                         "the value of \"%1\" holds characters a property list cannot "
                         "carry; nothing was written")
                         .arg(badKey);
        return false;
    }
    return AtomicFile::write(path, bytes, error);
}

bool parse(const QByteArray& bytes, const Limits& limits, PlistDictionary* root, QString* reason) {
    QXmlStreamReader xml(bytes);
    Reader reader{xml, limits, {}};
    auto fail = [&](bool xmlError, const QString& why) {
        if (reason) *reason = xmlError ? (reader.xmlError(), reader.reason) : why;
        return false;
    };
    if (bytes.size() > limits.maxFileBytes)
        return fail(false, QStringLiteral("larger than %1 bytes").arg(limits.maxFileBytes));
    if (!xml.readNextStartElement()) return fail(xml.hasError(), QStringLiteral("empty"));
    if (xml.name() != u"plist")
        return fail(false, QStringLiteral("its root is not a property list"));
    if (!xml.readNextStartElement() || xml.name() != u"dict")
        return fail(xml.hasError(), QStringLiteral("it holds no dictionary"));
    PlistDictionary result;
    if (!reader.dictionary(1, &result)) return fail(false, reader.reason);
    // Nothing but the end may follow the dictionary.
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) return fail(false, QStringLiteral("more than one dictionary"));
    }
    if (xml.hasError()) return fail(true, {});
    if (root) *root = result;
    return true;
}

bool read(const QString& path, const Limits& limits, PlistDictionary* root, QString* reason) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (reason) *reason = QStringLiteral("cannot be read (%1)").arg(file.errorString());
        return false;
    }
    const QByteArray bytes = file.read(limits.maxFileBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        if (reason) *reason = QStringLiteral("cannot be read (%1)").arg(file.errorString());
        return false;
    }
    return parse(bytes, limits, root, reason);
}

}  // namespace PropertyListFile
