#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

// A property-list dictionary whose values are strings or, nested, dictionaries of the same kind;
// the form of preset files and project files. Keys keep the order they were first inserted in.
class PlistDictionary {
  public:
    struct Entry {
        QString key;
        QString text;                                 // a string value
        std::shared_ptr<const PlistDictionary> dict;  // a dictionary value; null for a string
    };

    // Inserts, or replaces the value of a key already there (which keeps its place).
    void insert(const QString& key, const QString& text);
    void insert(const QString& key, const PlistDictionary& dictionary);

    bool contains(const QString& key) const { return index_.contains(key); }
    // The string under `key`; null when the key is missing or holds a dictionary.
    const QString* text(const QString& key) const;
    // The dictionary under `key`; null when the key is missing or holds a string.
    const PlistDictionary* dictionary(const QString& key) const;
    const std::vector<Entry>& entries() const { return entries_; }
    qsizetype size() const { return qsizetype(entries_.size()); }

  private:
    Entry& slot(const QString& key);

    std::vector<Entry> entries_;
    QHash<QString, qsizetype> index_;
};

// Reading and writing such dictionaries as XML property lists (version 1.0).
namespace PropertyListFile {

// What a reader accepts; anything beyond is refused with the reason.
struct Limits {
    qint64 maxFileBytes = 2 * 1024 * 1024;
    qsizetype maxValueChars = 256 * 1024;
    qsizetype maxKeyChars = 64;
    int maxDepth = 1;  // 1: strings only; 2: dictionaries of strings inside the root; ...
};

// True when XML 1.0 can carry the text.
bool isXmlText(const QString& text);

// The XML of the dictionary. False, with the key (of the innermost dictionary) whose text XML
// cannot carry in `badKey`, when one can not be written.
bool toXml(const PlistDictionary& root, QByteArray* bytes, QString* badKey = nullptr);

// Writes the dictionary to `path` atomically; false with the reason in `error`.
bool write(const QString& path, const PlistDictionary& root, QString* error);

// Reads a dictionary of strings (and dictionaries, as deep as the limits allow). False with the
// reason, which does not name the file ("not XML (...)", "the value of "x" is not a string",
// "larger than ... bytes", ...); `root` is then left as it was.
bool read(const QString& path, const Limits& limits, PlistDictionary* root, QString* reason);
bool parse(const QByteArray& bytes, const Limits& limits, PlistDictionary* root, QString* reason);

}  // namespace PropertyListFile
