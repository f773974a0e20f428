#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

struct sqlite3;

// The presets database: one SQLite file, "klOrvella3.sql" in "KeldraCom/" under the user's data
// folder ($XDG_DATA_HOME, by default ~/.local/share), with the wide tables `Presets`,
// `AppResource` and `AppBookmarks` (ID, then 102 text columns). Callers make a fresh object per
// operation. Values never become SQL: every statement takes them as bound parameters, and table
// and column names must be plain identifiers. A value or name holding a single quote is refused
// with "Error updating table." as the database has always refused it.
//
// Failures that stop an operation come back as false with the fixed message in failure(); the
// caller shows it.
class dbViewController {
  public:
    static constexpr int kFieldCount = 102;
    static inline const QString kOpenFailed = QStringLiteral("Presets Db failed to open.");
    static inline const QString kCreateFailed = QStringLiteral("Presets Table failed to create.");
    static inline const QString kUpdateFailed = QStringLiteral("Error updating table.");

    // The database at the default place, or at `path` (tests, tools).
    explicit dbViewController(const QString& path = QString());
    ~dbViewController();
    dbViewController(const dbViewController&) = delete;
    dbViewController& operator=(const dbViewController&) = delete;

    // The file's path; creates its folder (errors ignored).
    QString dbFilePath() const;
    static QString defaultDbFilePath();

    bool openmyPresetsDb();
    // Creates the table with ID and the 102 columns, typed Text, Integer (positions 22 to 42)
    // or Text by position.
    bool createTableNamed(const QString& table, const QStringList& columns);
    // First start: when the file does not exist, creates it with the three tables and the two
    // first rows. Does nothing when the file exists.
    bool linkToPresetsDB();
    void creatTableIfNotExist() {}

    // Adds a row of 102 values to the table (every call adds a row).
    bool insertRecordIntoTableNamed(const QString& table, const QStringList& columns,
                                    const QStringList& values);
    // Adds a preset row: fields 0 to 101 (name, kind, "Batch", fields 3 to 101).
    bool insertSortingPresetToDB01(const QStringList& fields);
    bool insertHTMLPresetToDB01(const QStringList& fields) {
        return insertSortingPresetToDB01(fields);
    }
    bool insertSortingPresetToDB02(const QStringList& fields) {
        return insertSortingPresetToDB01(fields);
    }
    // Adds the sample row "myPresetName", "Sorting", "ByHand", "Loc1" ... "Loc99".
    bool insertSortingPresetToDB();

    void getAllRowsFromTableNamed(const QString& table);
    // The preset name of the last row where column1 = value1 and column2 = value2; when none
    // matches, the value from this object's previous use (null on a fresh object).
    QString checkPresetNameFromTableNamed(const QString& table, const QString& column1,
                                          const QString& value1, const QString& column2,
                                          const QString& value2);
    // One "|"-joined text of fields 0 to 101 per row where column = value, oldest first.
    QStringList checkForActionType(const QString& table, const QString& column,
                                   const QString& value);
    // The same rows as lists of their 102 fields (a field holding "|" stays whole).
    QList<QStringList> rowsWhere(const QString& table, const QString& column, const QString& value);
    // Deletes every row where column = value. Returns "preset not found" when the statement could
    // not be made, else the previous status (a deletion yields no rows).
    QString removePresetFromDatabase(const QString& table, const QString& column,
                                     const QString& value);

    // Bookmark and image storage in the tables `Image` and `IMAGES`, which this class never
    // creates: without them nothing is stored or found.
    void hSaveSecurityScopedBookmarks(const QByteArray& data);
    QByteArray hGetBookMarkedFolders(const QString& table, const QString& column1,
                                     const QString& value1, const QString& column2,
                                     const QString& value2, const QString& selectList);
    void SaveImagesToSql(const QByteArray& image, const QString& url);
    QByteArray LoadImagesFromSql(const QString& url);

    // The fixed message of the last failure ("" when none).
    QString failure() const { return failure_; }

    QString myPresetExist;
    QString myPresetValueStr;
    QStringList myPresetsArray;
    QStringList myPresetsArrayToPass;
    QStringList myEmptyArray;
    QByteArray mySearchValue4;

    // The column names of the three tables, in order.
    static QStringList presetColumns();
    static QStringList plainColumns();
    // Declared type by position 1 to 102.
    static QString declaredType(int position);

  private:
    // Reading operations never create the file: only the first start does.
    bool open(bool create = true);
    void close();
    bool fail(const QString& message);

    QString path_;
    sqlite3* myDb = nullptr;
    QString failure_;
};
