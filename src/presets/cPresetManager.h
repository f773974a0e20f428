#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include "presets/PresetLayouts.h"
#include "presets/dbViewController.h"

class SettingsStore;

// Saving, listing, removing and loading presets of the three output kinds, and carrying them in
// preset files. A preset is the 102 fields of a kind's layout (PresetLayouts) read from, and put
// back into, a SettingsStore by control name; a control name the registry does not know (a kind
// not built in) gives an empty field on saving and is skipped on loading, with a log line.
//
// Every database action uses a fresh dbViewController on the file given here (default: the
// user's presets database). A database that cannot be read is reported with its file and reason,
// never as an empty list, and never written to. A stored row that cannot be read is listed as
// damaged and refused on loading; the other rows work. Control characters a row carries are left
// out of the settings it loads (a text view keeps its tabs and line breaks).
class cPresetManager {
  public:
    // Refused: the request cannot be carried out as asked (unknown name, bad file), exit 2 on the
    // command line. Failed: the database failed (its fixed message, the file and the reason) or
    // the preset asked for cannot be read, exit 1; failure() tells which fault.
    enum class Outcome { Ok, Refused, Failed };

    // One entry of the presets list.
    struct ListEntry {
        QString nmPreset;    // the name
        QString nmProces;    // the kind code
        QString nmbrAction;  // the rest of the row after name and kind
        // Why the row cannot be read, naming the file, the preset (when its name survives) and the
        // row; "" for a sound row.
        QString damage;
        qint64 rowId = 0;
    };

    // A preset dictionary: "mySqlVal0" (time stamp) to "mySqlVal101".
    using PresetDictionary = QMap<QString, QString>;

    explicit cPresetManager(const QString& dbPath = QString());

    // The 102 fields of a preset of the layout's kind, named `name`, read from the settings.
    static QStringList presetFields(const SettingsStore& settings, const PresetLayout& layout,
                                    const QString& name);
    // Puts fields 3 to 101 into the settings, as the kind's loader does.
    static void applyPresetFields(SettingsStore& settings, const PresetLayout& layout,
                                  const QStringList& fields);

    // Saves the settings as a preset named `name` ("name_[x]" when the kind has one of that name
    // already); `storedName` gets the name stored.
    Outcome addPresetValuesToDB(const SettingsStore& settings, const PresetLayout& layout,
                                const QString& name, QString* storedName, QString* message);
    // Stores ready fields 0 to 101 as a preset, with the same naming rule.
    Outcome storePresetFields(QStringList fields, QString* storedName, QString* message);

    // The presets list of one kind ("Presets", "Process", kind code), oldest first; a row whose
    // kind cannot be read is listed under every kind.
    Outcome hUpdateLoadPresetsTableView(const QString& table, const QString& column,
                                        const QString& value, QList<ListEntry>* entries,
                                        QString* message);
    Outcome listPresets(const PresetLayout& layout, QList<ListEntry>* entries, QString* message) {
        return hUpdateLoadPresetsTableView(QStringLiteral("Presets"), QStringLiteral("Process"),
                                           layout.code, entries, message);
    }
    // Removes every preset of that name, whatever its kind.
    Outcome hRemovePreset(const QString& name, QString* message);

    // Loads a stored preset of the layout's kind (the newest of that name) into the settings.
    Outcome loadPresetFromDB(SettingsStore& settings, const PresetLayout& layout,
                             const QString& name, QString* message);
    // A path that exists is a preset file (of this kind), anything else a stored name.
    Outcome loadPreset(SettingsStore& settings, const PresetLayout& layout,
                       const QString& nameOrFile, QString* message);

    // Moves a damaged database aside ("FILE.damaged-YYYY-MM-DD" beside it, never over another
    // file) and starts a new one; `movedTo` gets the name it was moved to. Ok with `movedTo`
    // empty and nothing moved when the file has no fault; Failed when it is locked or cannot be
    // moved.
    Outcome repairDatabase(QString* movedTo, QString* message);
    // The database file.
    QString dbFilePath() const { return dbViewController(dbPath_).dbFilePath(); }
    // The fault of the last Failed outcome.
    const DbFailure& failure() const { return failure_; }

    // A stored name as it may be shown: control characters become U+FFFD.
    static QString displayName(const QString& name);

    // Preset dictionaries.
    static PresetDictionary addPresetValuesToPLIST(const SettingsStore& settings,
                                                   const PresetLayout& layout);
    static void loadPresetValuesFromPLIST(SettingsStore& settings, const PresetLayout& layout,
                                          const PresetDictionary& dictionary);
    // Preset files: XML property lists of string values only. Reading refuses anything else
    // (not XML, another root, other value types, oversized files or values, unknown kind) with
    // the reason, naming the file. Writing is atomic.
    static bool writePresetFile(const QString& path, const PresetDictionary& dictionary,
                                QString* message);
    static bool readPresetFile(const QString& path, PresetDictionary* dictionary, QString* message);
    // The kind of a dictionary read from a file (by "mySqlVal1"), or null.
    static const PresetLayout* layoutOf(const PresetDictionary& dictionary);
    // Stores a preset file's settings as a preset of its kind named `name`.
    Outcome importPresetFile(const QString& path, const QString& name, QString* storedName,
                             QString* message, const PresetLayout** layout = nullptr);

    // The named forms of the kinds' operations.
    Outcome addHTMLPresetValuesToDB(const SettingsStore& s, const QString& name, QString* stored,
                                    QString* message) {
        return addPresetValuesToDB(s, *PresetLayouts::find(QStringLiteral("HTML1")), name, stored,
                                   message);
    }
    Outcome addSlideShowPresetValuesToDB(const SettingsStore& s, const QString& name,
                                         QString* stored, QString* message) {
        return addPresetValuesToDB(s, *PresetLayouts::find(QStringLiteral("SlideShow1")), name,
                                   stored, message);
    }
    Outcome addResponsiveGridPresetValuesToDB(const SettingsStore& s, const QString& name,
                                              QString* stored, QString* message) {
        return addPresetValuesToDB(s, *PresetLayouts::find(QStringLiteral("ResponsiveGrid1")), name,
                                   stored, message);
    }

    // Limits of a preset file.
    static constexpr qint64 kMaxFileBytes = 2 * 1024 * 1024;
    static constexpr qsizetype kMaxValueChars = 256 * 1024;

    int myLogCounter = 0;

  private:
    Outcome failed(const dbViewController& db, QString* message);
    Outcome failed(const DbFailure& failure, QString* message);
    // The reason a row cannot be read, naming the file, the preset and the row.
    QString damageOf(const dbViewController::StoredRow& row) const;

    QString dbPath_;
    DbFailure failure_;
};
