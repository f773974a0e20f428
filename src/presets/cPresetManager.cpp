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

void apply(SettingsStore& settings, const PresetLayout& layout, const PresetField& field,
           const QString& text) {
    using E = FieldEncoding;
    if (field.encoding == E::Zero) return;
    const QString name = QString::fromLatin1(*field.loadInto ? field.loadInto : field.control);
    if (!knownControl(settings, name)) return;
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

cPresetManager::Outcome cPresetManager::storePresetFields(QStringList fields, QString* storedName,
                                                          QString* message) {
    const QString name = fields.value(0);
    if (name.trimmed().isEmpty()) {
        if (message) *message = QStringLiteral("A preset needs a name.");
        return Outcome::Refused;
    }
    // The presets list splits stored rows at "|".
    if (name.contains(u'|')) {
        if (message) *message = QStringLiteral("A preset name cannot hold \"|\".");
        return Outcome::Refused;
    }
    {
        dbViewController db(dbPath_);
        if (!db.linkToPresetsDB()) {
            if (message) *message = db.failure();
            return Outcome::Failed;
        }
    }
    dbViewController check(dbPath_);
    const QString found = check.checkPresetNameFromTableNamed(
        QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name, QStringLiteral("Process"),
        fields.value(1));
    // Checked once: a third save adds a second "_[x]" row.
    if (!found.isNull() && found == name) fields[0] = name + QStringLiteral("_[x]");
    dbViewController db(dbPath_);
    if (!db.insertSortingPresetToDB01(fields)) {
        if (message) *message = db.failure();
        return Outcome::Failed;
    }
    if (storedName) *storedName = fields[0];
    return Outcome::Ok;
}

cPresetManager::Outcome cPresetManager::addPresetValuesToDB(const SettingsStore& settings,
                                                            const PresetLayout& layout,
                                                            const QString& name,
                                                            QString* storedName, QString* message) {
    return storePresetFields(presetFields(settings, layout, name), storedName, message);
}

QList<cPresetManager::ListEntry> cPresetManager::hUpdateLoadPresetsTableView(const QString& table,
                                                                             const QString& column,
                                                                             const QString& value) {
    QList<ListEntry> entries;
    {
        dbViewController link(dbPath_);
        link.linkToPresetsDB();
    }
    dbViewController db(dbPath_);
    const QStringList rows = db.checkForActionType(table, column, value);
    if (rows.isEmpty()) {
        klLog() << "Empty array";
        return entries;
    }
    for (const QString& row : rows) {
        const QStringList items = row.split(u'|');
        const QString joined = items.value(0) + u'|' + items.value(1);
        // The piece after the first occurrence, up to a second one if the text recurs.
        const QStringList pieces = row.split(joined);
        entries.append({QStringLiteral("%1").arg(items.value(0)),
                        QStringLiteral("%1").arg(items.value(1)),
                        QStringLiteral("%1").arg(pieces.value(1))});
        ++myLogCounter;
    }
    myLogCounter = 0;
    return entries;
}

QStringList cPresetManager::presetNames(const PresetLayout& layout) {
    QStringList names;
    for (const ListEntry& entry : hUpdateLoadPresetsTableView(
             QStringLiteral("Presets"), QStringLiteral("Process"), layout.code))
        names.append(entry.nmPreset);
    return names;
}

cPresetManager::Outcome cPresetManager::hRemovePreset(const QString& name, QString* message) {
    {
        dbViewController link(dbPath_);
        if (!link.linkToPresetsDB()) {
            if (message) *message = link.failure();
            return Outcome::Failed;
        }
    }
    dbViewController db(dbPath_);
    const bool existed =
        !db.rowsWhere(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name).isEmpty();
    db.removePresetFromDatabase(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name);
    if (!existed) {
        if (message) *message = QStringLiteral("No preset is named \"%1\".").arg(name);
        return Outcome::Refused;
    }
    return Outcome::Ok;
}

cPresetManager::Outcome cPresetManager::loadPresetFromDB(SettingsStore& settings,
                                                         const PresetLayout& layout,
                                                         const QString& name, QString* message) {
    {
        dbViewController link(dbPath_);
        if (!link.linkToPresetsDB()) {
            if (message) *message = link.failure();
            return Outcome::Failed;
        }
    }
    dbViewController db(dbPath_);
    const QList<QStringList> rows =
        db.rowsWhere(QStringLiteral("Presets"), QStringLiteral("NameOfPreset"), name);
    // The newest of that name and kind.
    for (auto it = rows.crbegin(); it != rows.crend(); ++it) {
        if (it->value(1) != layout.code) continue;
        applyPresetFields(settings, layout, *it);
        return Outcome::Ok;
    }
    if (message)
        *message = QStringLiteral("No %1 preset is named \"%2\".").arg(kindTitle(layout), name);
    return Outcome::Refused;
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
