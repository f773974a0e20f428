#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "collection/cCollectionViewItem.h"
#include "presets/PresetLayouts.h"
#include "presets/PropertyListFile.h"
#include "presets/cPresetManager.h"

class SettingsStore;
class UserInterface;

// Projects: a photo collection with the settings of one output kind, kept in a folder the user
// chooses. The folder holds NAME.orvprj, an XML property list of strings ("destination", "count",
// one dictionary per photo under "1".."N", then the preset keys of the kind), and "photos/" with a
// copy of every photo file. Opening reads the photos from that "photos/" folder only: a photo entry
// whose name is not a plain file name is refused, so nothing outside the folder is ever read.
namespace ProjectFile {

inline const QString kExtension = QStringLiteral(".orvprj");
inline const QString kPhotosFolder = QStringLiteral("photos");
// The save dialog's name field starts with the first text; the name rule compares with the
// second, so an untouched field names the project "Enter project name here".
inline const QString kInitialNameText = QStringLiteral("Enter project name here");
inline const QString kNoNameText = QStringLiteral("Enter your project name here");
// The setting whose text names a project saved without a name.
inline const QString kPageNameControl = QStringLiteral("tfHTMLfileName");

inline const QString kLoadStatus = QStringLiteral("loadStatus");
inline const QString kLoaded = QStringLiteral("Succeeded to load photo(s)");
inline const QString kLoadFailed = QStringLiteral("Failed to load photo(s)");
inline const QString kMissingTitle = QStringLiteral("Missing photo(s)");
QString missingPhotosText();

// Limits of a project file a reader accepts.
PropertyListFile::Limits readLimits();

// The project name the save dialog's text gives: the text itself, unless it is empty or equals
// kNoNameText; then the page file name setting.
QString projectName(const QString& dialogText, const SettingsStore& settings);

// The preset layout of the window's tab at `index`: the kind of that tab, the Responsive Grid's
// for any other index.
const PresetLayout& layoutForTab(int index);
// The layout whose settings loader a project's "mySqlVal2" chooses: "PhotoGallery" and
// "SlideShow" their kinds, anything else the Responsive Grid's.
const PresetLayout& layoutForKindWord(const QString& word);

// Where the project's site was last published (a destination without any secret); readers that
// do not know the key pass it by.
inline const QString kPublishKey = QStringLiteral("publishDestination");

// The root dictionary a save writes: "destination" (the folder's bookmark text), "count", the
// photo entries, the preset keys of `layout`, then kPublishKey when there is a destination.
PlistDictionary projectDictionary(const QString& folder, const QList<cCollectionViewItem>& records,
                                  const SettingsStore& settings, const PresetLayout& layout,
                                  const QString& publishDestination = {});

struct SaveResult {
    bool ok = false;
    bool refused = false;  // the name or folder was refused (nothing written)
    QString projectFile;
    QString error;         // why nothing was saved, naming the file or name
    QStringList warnings;  // photos that could not be copied, each naming the file and reason
};

// Saves the records and the settings of `layout` as FOLDER/NAME.orvprj with the photo copies in
// FOLDER/photos/ (created when missing). A copy whose file is there already is kept; the project
// file is replaced whole.
SaveResult save(const QString& folder, const QString& name,
                const QList<cCollectionViewItem>& records, const SettingsStore& settings,
                const PresetLayout& layout, const QString& publishDestination = {});

struct OpenResult {
    enum class Status {
        Opened,      // records and settings are ready
        Unreadable,  // not a property-list dictionary: no records, no settings
        Refused,     // a photo entry would reach outside the folder: nothing to apply
    };
    Status status = Status::Unreadable;
    QString message;  // why not opened, naming the file
    // The file's string keys, with "loadStatus" set as the photos were loaded.
    cPresetManager::PresetDictionary dictionary;
    QList<cCollectionViewItem> records;
    const PresetLayout* layout = nullptr;  // the settings to load; null for none
    QStringList warnings;                  // entries that could not be used

    // The "Missing photo(s)" alert is due.
    bool missingPhotos() const { return dictionary.value(kLoadStatus) == kLoadFailed; }
};

// Reads the project file; its photos are taken from `projectFolder` + "/photos/". Records keep the
// caption, orientation and pixel size as saved; with `cellImageSize` > 0 each gets its cell image.
// Progress goes to `ui` when given.
OpenResult open(const QString& projectFolder, const QString& projectFile, int cellImageSize = 0,
                UserInterface* ui = nullptr);

// Puts the opened project's settings into `settings` (nothing when it has none).
void loadSettings(const OpenResult& opened, SettingsStore& settings);

}  // namespace ProjectFile
