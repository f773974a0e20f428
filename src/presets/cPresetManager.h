#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include "presets/PresetLayouts.h"

class SettingsStore;

// Saving, listing, removing and loading presets of the three output kinds, and carrying them in
// preset files. A preset is the 102 fields of a kind's layout (PresetLayouts) read from, and put
// back into, a SettingsStore by control name; a control name the registry does not know (a kind
// not built in) gives an empty field on saving and is skipped on loading, with a log line.
//
// Every database action uses a fresh dbViewController on the file given here (default: the
// user's presets database).
class cPresetManager {
  public:
    // Refused: the request cannot be carried out as asked (unknown name, bad file), exit 2 on the
    // command line. Failed: the database failed with its fixed message, exit 1.
    enum class Outcome { Ok, Refused, Failed };

    // One entry of the presets list.
    struct ListEntry {
        QString nmPreset;    // the name
        QString nmProces;    // the kind code
        QString nmbrAction;  // the rest of the row after name and kind
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

    // The presets list of one kind ("Presets", "Process", kind code), oldest first.
    QList<ListEntry> hUpdateLoadPresetsTableView(const QString& table, const QString& column,
                                                 const QString& value);
    QStringList presetNames(const PresetLayout& layout);
    // Removes every preset of that name, whatever its kind.
    Outcome hRemovePreset(const QString& name, QString* message);

    // Loads a stored preset of the layout's kind (the newest of that name) into the settings.
    Outcome loadPresetFromDB(SettingsStore& settings, const PresetLayout& layout,
                             const QString& name, QString* message);
    // A path that exists is a preset file (of this kind), anything else a stored name.
    Outcome loadPreset(SettingsStore& settings, const PresetLayout& layout,
                       const QString& nameOrFile, QString* message);

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
    QString dbPath_;
};
