#include "presets/cPresetManager.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>
#include <cmath>

#include "presets/PropertyListFile.h"
#include "presets/SettingsStore.h"
#include "presets/dbViewController.h"
#include "services/AtomicFile.h"
#include "services/KLbookmarks.h"
#include "services/Log.h"
#include "services/TextValues.h"
#include "services/cNSStringHandling.h"

namespace {

constexpr int kFields = dbViewController::kFieldCount;
const QString kKeyPrefix = QStringLiteral("mySqlVal");

QString key(int field) {
    return kKeyPrefix + QString::number(field);
}

const ControlSpec* knownControl(const SettingsStore& settings, const QString& name) {
    const ControlSpec* control = settings.registry().find(name);
    if (!control) klLog() << "preset: no control" << name << "- the field stays empty";
    return control;
}

QString bookmarkText(const QString& path) {
    if (path.isEmpty()) return {};
    const QByteArray bookmark = KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(path));
    if (bookmark.isEmpty()) klLog() << "preset: no bookmark for" << path;
    return bookmark.isEmpty() ? QString() : cNSStringHandling::hConvertNSdToNSstr(bookmark);
}

QString pathOfBookmarkText(const QString& text) {
    const QUrl url = KLbookmarks::urlForBookmark(cNSStringHandling::hConvertNSstrToNSd(text));
    return url.isEmpty() ? QString() : url.toLocalFile();
}

QString encode(const SettingsStore& settings, const PresetField& field) {
    using E = FieldEncoding;
    if (field.encoding == E::Zero) return QStringLiteral("0");
    const QString name = QString::fromLatin1(field.control);
    if (!knownControl(settings, name)) return {};
    switch (field.encoding) {
        case E::Text:
        case E::TextView:
            return settings.text(name);
        case E::Number:
        case E::Flag:
        case E::State:
            return QString::number(settings.integer(name));
        case E::Title:
            return settings.title(name);
        case E::Index:
        case E::IndexD:
        case E::Segment:
            return QString::number(settings.index(name));
        case E::Slider: {
            const double value = TextValues::doubleValue(settings.text(name));
            return QString::number(qint64(std::trunc(value)));
        }
        case E::FolderMark:
        case E::ImageMark:
            return bookmarkText(settings.text(name));
        case E::Zero:
            break;
    }
    return {};
}

void setOrLog(SettingsStore& settings, const QString& name, const QString& value) {
    QString error;
    if (!settings.set(name, value, &error)) klLog() << "preset: not loaded:" << error;
}

bool isControl(QChar c) {
    return c.category() == QChar::Other_Control;
}

// A stored text as the settings may take it: no control characters, which would reach the pages
// (a text view keeps its tabs and line breaks).
QString withoutControls(const QString& text, bool multiLine) {
    QString kept;
    for (const QChar c : text)
        if (!isControl(c) || (multiLine && (c == u'\t' || c == u'\n' || c == u'\r')))
            kept.append(c);
    return kept;
}

void apply(SettingsStore& settings, const PresetLayout& layout, const PresetField& field,
           const QString& stored) {
    using E = FieldEncoding;
    if (field.encoding == E::Zero) return;
    const QString name = QString::fromLatin1(*field.loadInto ? field.loadInto : field.control);
    if (!knownControl(settings, name)) return;
    const QString text = withoutControls(stored, field.encoding == E::TextView);
    if (text.size() != stored.size()) klLog() << "preset: control characters left out of" << name;
    switch (field.encoding) {
        case E::Text:
        case E::TextView:
        case E::Title:
            setOrLog(settings, name, text);
            break;
        case E::Number:
        case E::Index:
        case E::IndexD:
        case E::Segment:
            setOrLog(settings, name, QString::number(TextValues::intValue(text)));
            break;
        case E::Flag:
        case E::State: {
            const bool on =
                layout.strictCheckboxes ? text == u"1" : TextValues::intValue(text) == 1;
            setOrLog(settings, name, on ? QStringLiteral("1") : QStringLiteral("0"));
            break;
        }
        case E::Slider:
            setOrLog(settings, name,
                     QString::number(qint64(std::trunc(TextValues::doubleValue(text)))));
            break;
        case E::FolderMark: {
            if (text.isEmpty()) {
                settings.setText(name, QString());
                break;
            }
            QString path = pathOfBookmarkText(text);
            if (path.isEmpty()) {
                klLog() << "preset: the folder of" << name << "cannot be reached; kept as it was";
                break;
            }
            if (!path.endsWith(u'/')) path += u'/';
            settings.setText(name, path);
            break;
        }
        case E::ImageMark: {
            // The stored text first; the path only when the bookmark resolves.
            settings.setText(name, text);
            const QString path = text.isEmpty() ? QString() : pathOfBookmarkText(text);
            if (!path.isEmpty()) settings.setText(name, path);
            break;
        }
        case E::Zero:
            break;
    }
}

QString kindTitle(const PresetLayout& layout) {
    return layout.kind;
}

}  // namespace

cPresetManager::cPresetManager(const QString& dbPath) : dbPath_(dbPath) {}

QStringList cPresetManager::presetFields(const SettingsStore& settings, const PresetLayout& layout,
                                         const QString& name) {
    QStringList fields(kFields, QString());
    fields[0] = name;
    fields[1] = layout.code;
    fields[2] = QStringLiteral("Batch");
    for (const PresetField& field : layout.fields) fields[field.field] = encode(settings, field);
    return fields;
}

void cPresetManager::applyPresetFields(SettingsStore& settings, const PresetLayout& layout,
                                       const QStringList& fields) {
    for (const PresetField& field : layout.fields)
        apply(settings, layout, field,
              field.field < fields.size() ? fields[field.field] : QString());
}

cPresetManager::Outcome cPresetManager::failed(const DbFailure& failure, QString* message) {
    failure_ = failure;
    if (message) *message = failure.text();
    return Outcome::Failed;
}

cPresetManager::Outcome cPresetManager::failed(const dbViewController& db, QString* message) {
    return failed(db.fault(), message);
}

QString cPresetManager::displayName(const QString& name) {
    QString shown = name;
    for (QChar& c : shown)
        if (isControl(c)) c = QChar::ReplacementCharacter;
    return shown;
}

QString cPresetManager::damageOf(const dbViewController::StoredRow& row) const {
    const QString name = row.lostFields.contains(0) || row.fields.value(0).isEmpty()
                             ? QStringLiteral("a preset")
                             : QStringLiteral("the preset \"%1\"").arg(displayName(row.fields[0]));
    return QStringLiteral("%1 cannot be read (row %2: %3)")
        .arg(name, QString::number(row.id), row.damage);
}

cPresetManager::Outcome cPresetManager::storePresetFields(QStringList fields, QString* storedName,
                                                          QString* message) {
    failure_ = {};
    const QString name = fields.value(0);
    auto refuse = [&](const QString& why) {
        if (message) *message = why;
        return Outcome::Refused;
    };
    if (name.trimmed().isEmpty()) return refuse(QStringLiteral("A preset needs a name."));
    // The presets list splits stored rows at "|".
    if (name.contains(u'|')) return refuse(QStringLiteral("A preset name cannot hold \"|\"."));
    if (std::any_of(name.cbegin(), name.cend(), isControl))
        return refuse(QStringLiteral("A preset name cannot hold control characters."));
    // Read through first: a file that cannot be read is never written to.
    dbViewController db(dbPath_);
    QList<dbViewController::StoredRow> rows;
    if (!db.linkToPresetsDB() ||
        !db.readRows(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name, &rows))
        return failed(db, message);
    // Checked once: a third save adds a second "_[x]" row.
    if (std::any_of(rows.cbegin(), rows.cend(), [&](const dbViewController::StoredRow& row) {
            return row.matches && row.fields.value(1) == fields.value(1);
        }))
        fields[0] = name + QStringLiteral("_[x]");
    if (!db.insertSortingPresetToDB01(fields)) return failed(db, message);
    if (storedName) *storedName = fields[0];
    return Outcome::Ok;
}

cPresetManager::Outcome cPresetManager::addPresetValuesToDB(const SettingsStore& settings,
                                                            const PresetLayout& layout,
                                                            const QString& name,
                                                            QString* storedName, QString* message) {
    return storePresetFields(presetFields(settings, layout, name), storedName, message);
}

cPresetManager::Outcome cPresetManager::hUpdateLoadPresetsTableView(const QString& table,
                                                                    const QString& column,
                                                                    const QString& value,
                                                                    QList<ListEntry>* entries,
                                                                    QString* message) {
    failure_ = {};
    entries->clear();
    dbViewController db(dbPath_);
    QList<dbViewController::StoredRow> rows;
    if (!db.linkToPresetsDB() || !db.readRows(table, column, value, &rows))
        return failed(db, message);
    if (rows.isEmpty()) klLog() << "Empty array";
    for (const dbViewController::StoredRow& row : rows) {
        if (!row.damage.isEmpty()) {
            entries->append({row.fields.value(0), row.fields.value(1), QString(),
                             db.dbFilePath() + QStringLiteral(": ") + damageOf(row), row.id});
            continue;
        }
        const QString text = row.fields.join(u'|');
        const QString joined = row.fields.value(0) + u'|' + row.fields.value(1);
        // The piece after the first occurrence, up to a second one if the text recurs.
        const QStringList pieces = text.split(joined);
        entries->append({QStringLiteral("%1").arg(row.fields.value(0)),
                         QStringLiteral("%1").arg(row.fields.value(1)),
                         QStringLiteral("%1").arg(pieces.value(1)), QString(), row.id});
        ++myLogCounter;
    }
    myLogCounter = 0;
    return Outcome::Ok;
}

cPresetManager::Outcome cPresetManager::hRemovePreset(const QString& name, QString* message) {
    failure_ = {};
    dbViewController db(dbPath_);
    QList<dbViewController::StoredRow> rows;
    if (!db.linkToPresetsDB() ||
        !db.readRows(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name, &rows))
        return failed(db, message);
    if (std::none_of(rows.cbegin(), rows.cend(),
                     [](const dbViewController::StoredRow& row) { return row.matches; })) {
        if (message) *message = QStringLiteral("No preset is named \"%1\".").arg(name);
        return Outcome::Refused;
    }
    db.removePresetFromDatabase(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name);
    return db.fault().failed() ? failed(db, message) : Outcome::Ok;
}

cPresetManager::Outcome cPresetManager::loadPresetFromDB(SettingsStore& settings,
                                                         const PresetLayout& layout,
                                                         const QString& name, QString* message) {
    failure_ = {};
    dbViewController db(dbPath_);
    QList<dbViewController::StoredRow> rows;
    if (!db.linkToPresetsDB() ||
        !db.readRows(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name, &rows))
        return failed(db, message);
    // The newest of that name and kind; a row whose kind is lost may be it.
    for (auto it = rows.crbegin(); it != rows.crend(); ++it) {
        if (!it->matches || (it->fields.value(1) != layout.code && !it->lostFields.contains(1)))
            continue;
        if (!it->damage.isEmpty())
            return failed({QString(), db.dbFilePath(), damageOf(*it), DbFault::DamagedRow},
                          message);
        applyPresetFields(settings, layout, it->fields);
        return Outcome::Ok;
    }
    if (message)
        *message = QStringLiteral("No %1 preset is named \"%2\".").arg(kindTitle(layout), name);
    return Outcome::Refused;
}

cPresetManager::Outcome cPresetManager::repairDatabase(QString* movedTo, QString* message) {
    failure_ = {};
    movedTo->clear();
    dbViewController db(dbPath_);
    const QString path = db.dbFilePath();
    if (db.verifyPresetsDb()) {
        if (message) *message = QStringLiteral("%1 has no fault; nothing was moved.").arg(path);
        return Outcome::Ok;
    }
    DbFailure fault = db.fault();
    if (!fault.movable()) {
        fault.reason += QStringLiteral("; nothing was moved");
        return failed(fault, message);
    }
    QString error;
    if (!dbViewController::moveAside(path, QDate::currentDate(), movedTo, &error))
        return failed({QString(), QString(), error, DbFault::Other}, message);
    klLog() << path << "(" << fault.reason << ") was moved to" << *movedTo;
    dbViewController fresh(dbPath_);
    if (!fresh.linkToPresetsDB()) return failed(fresh, message);
    if (message)
        *message = QStringLiteral("%1 (%2) was moved to %3; a new presets database was started.")
                       .arg(path, fault.reason, *movedTo);
    return Outcome::Ok;
}

cPresetManager::Outcome cPresetManager::loadPreset(SettingsStore& settings,
                                                   const PresetLayout& layout,
                                                   const QString& nameOrFile, QString* message) {
    if (!QFileInfo::exists(nameOrFile))
        return loadPresetFromDB(settings, layout, nameOrFile, message);
    PresetDictionary dictionary;
    if (!readPresetFile(nameOrFile, &dictionary, message)) return Outcome::Refused;
    const PresetLayout* fileLayout = layoutOf(dictionary);
    if (fileLayout != &layout) {
        if (message)
            *message = QStringLiteral("%1 is a %2 preset, not a %3 one")
                           .arg(nameOrFile, fileLayout->kind, layout.kind);
        return Outcome::Refused;
    }
    loadPresetValuesFromPLIST(settings, layout, dictionary);
    return Outcome::Ok;
}

cPresetManager::PresetDictionary cPresetManager::addPresetValuesToPLIST(
    const SettingsStore& settings, const PresetLayout& layout) {
    const QStringList fields = presetFields(settings, layout, QString());
    PresetDictionary dictionary;
    dictionary.insert(key(0),
                      QDateTime::currentDateTime().toString(QStringLiteral("MM-dd-yyyy HH:mm:ss")));
    dictionary.insert(key(1), layout.code);
    dictionary.insert(key(2), layout.fileWord);
    for (int field = 3; field < kFields; ++field) dictionary.insert(key(field), fields[field]);
    return dictionary;
}

void cPresetManager::loadPresetValuesFromPLIST(SettingsStore& settings, const PresetLayout& layout,
                                               const PresetDictionary& dictionary) {
    QStringList fields;
    for (int field = 0; field < kFields; ++field) fields.append(dictionary.value(key(field)));
    applyPresetFields(settings, layout, fields);
}

const PresetLayout* cPresetManager::layoutOf(const PresetDictionary& dictionary) {
    const QString code = dictionary.value(key(1));
    for (const PresetLayout& layout : PresetLayouts::all())
        if (layout.code == code) return &layout;
    return nullptr;
}

bool cPresetManager::writePresetFile(const QString& path, const PresetDictionary& dictionary,
                                     QString* message) {
    PlistDictionary root;
    for (int field = 0; field < kFields; ++field) {
        const QString value = dictionary.value(key(field));
        if (!PropertyListFile::isXmlText(value)) {
            if (message)
                *message = QStringLiteral(
                               "%1: field %2 holds characters a preset file cannot "
                               "carry; nothing was written")
                               .arg(path)
                               .arg(field);
            return false;
        }
        root.insert(key(field), value);
    }
    QString error;
    if (!PropertyListFile::write(path, root, &error)) {
        if (message) *message = QStringLiteral("%1: %2").arg(path, error);
        return false;
    }
    return true;
}

bool cPresetManager::readPresetFile(const QString& path, PresetDictionary* dictionary,
                                    QString* message) {
    auto refuse = [&](const QString& why) {
        if (message) *message = QStringLiteral("%1 is not a preset file: %2").arg(path, why);
        return false;
    };
    PropertyListFile::Limits limits;
    limits.maxFileBytes = kMaxFileBytes;
    limits.maxValueChars = kMaxValueChars;
    PlistDictionary root;
    QString why;
    if (!PropertyListFile::read(path, limits, &root, &why)) return refuse(why);
    PresetDictionary result;
    for (const PlistDictionary::Entry& entry : root.entries()) result.insert(entry.key, entry.text);
    if (!layoutOf(result))
        return refuse(
            QStringLiteral("\"mySqlVal1\" names no output kind (HTML1, SlideShow1 or "
                           "ResponsiveGrid1)"));
    if (dictionary) *dictionary = result;
    return true;
}

cPresetManager::Outcome cPresetManager::importPresetFile(const QString& path, const QString& name,
                                                         QString* storedName, QString* message,
                                                         const PresetLayout** layoutFound) {
    PresetDictionary dictionary;
    if (!readPresetFile(path, &dictionary, message)) return Outcome::Refused;
    const PresetLayout& layout = *layoutOf(dictionary);
    if (layoutFound) *layoutFound = &layout;
    // The layout's fields as the file has them; every other field empty.
    QStringList fields(kFields, QString());
    fields[0] = name;
    fields[1] = layout.code;
    fields[2] = QStringLiteral("Batch");
    for (const PresetField& field : layout.fields)
        fields[field.field] = field.encoding == FieldEncoding::Zero
                                  ? QStringLiteral("0")
                                  : dictionary.value(key(field.field));
    return storePresetFields(fields, storedName, message);
}
