#pragma once

#include <QString>
#include <QStringList>

// The support folder tree the user chooses once: ROOT/Keldra_SupportFiles with "Patterns" (filled
// from the program's own patterns when first made) and "Watermarks" (made empty). Remembered in
// the application's settings under three keys: the root as bookmark data (KLbookmarks), the two
// subfolders as plain paths. The window and the
// command line ask the user; this is what they call.
namespace SupportFolders {

inline constexpr char kRootKey[] = "SupportFilesDestination";
inline constexpr char kPatternsKey[] = "PatternsDestination";
inline constexpr char kWatermarksKey[] = "WatermarksDestination";

// Shown where the root has gone: the two lines, joined by a carriage return in the window.
inline constexpr char kGoneLine1[] = "Oh! Your previous defined folder has gone!?";
inline constexpr char kGoneLine2[] = "Select a new location please.";
// The messages of the choosers.
inline constexpr char kFirstMessage[] = "*** FIRST: Choose a root support folder please: ***";
inline constexpr char kPatternMessage[] = "*** Choose your pattern image please ***";
inline constexpr char kWatermarkMessage[] = "*** Choose your watermark image please ***";

// Makes `root` the support root: stores its bookmark, creates the tree, copies the built-in
// patterns into a patterns folder that does not exist yet (an existing one is left as it is) and
// stores the two folder paths. Fails (with the reason) only when `root` is not a folder.
bool setLibraryDestination(const QString& root, QString* error = nullptr);

// True when a root bookmark is stored.
bool hasRoot();
// The root's path when its bookmark resolves (the folder still exists), else "".
QString rootPath();
// The preferences field's text: the root's path, or the two lines joined by "\r" when the stored
// root cannot be reached; "" when none was ever chosen.
QString preferencesText();

// The stored folder paths ("" when unset).
QString patternsPath();
QString watermarksPath();

// Whether an import must ask for a root first: the destination folder is gone or no root is set.
bool importNeedsRoot(bool watermarks);

// Copies image files (png, jpg, jpeg) into the patterns or watermarks folder, keeping their names.
// Returns the paths written; each file that could not be copied is named in `failures`.
QStringList importImages(bool watermarks, const QStringList& files, QStringList* failures);
// The same into a folder read earlier (the window reads it before it may ask for a new root).
QStringList importImagesInto(const QString& destination, const QStringList& files,
                             QStringList* failures);

// Where a pattern chooser starts, by the index of its start-folder popup: 0 nowhere in
// particular (""), 1 the watermarks folder, any other the patterns folder.
QString chooserStartFolder(int lookUpIndex);
// The file types a pattern chooser offers.
QStringList patternImageSuffixes();
// The file types an import offers.
QStringList importImageSuffixes();

}  // namespace SupportFolders
