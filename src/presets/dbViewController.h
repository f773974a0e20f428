#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

struct sqlite3;

// What was wrong with the database file when an operation failed.
enum class DbFault {
    None,
    Damaged,     // not a presets database: SQLite reads it as corrupt, or its tables are missing
    NotAFile,    // a folder or something else that is not a file is in its place
    Unreadable,  // the system refuses to open it
    Unwritable,  // it reads, but the system refuses changes
    Locked,      // another program held a lock on it for as long as this one waited
    Refused,     // the request itself was refused (a single quote, a name that is no identifier)
    DamagedRow,  // one stored row cannot be read; the others can
    Other,
};

// A failure as it comes back from the database: the fixed message of the operation, the file and
// the reason (SQLite's own words beside ours).
struct DbFailure {
    QString message;  // "Presets Db failed to open.", "Presets Table failed to create." or
                      // "Error updating table."
    QString path;     // the database file ("" for a refusal, which is no fault of the file)
    QString reason;
    DbFault fault = DbFault::None;

    bool failed() const { return fault != DbFault::None; }
    // A fault that moving the file aside and starting a new database cures.
    bool movable() const {
        return fault == DbFault::Damaged || fault == DbFault::NotAFile ||
               fault == DbFault::Unreadable;
    }
    // The message, then "PATH: REASON" on a line of its own.
    QString text() const {
        return (message.isEmpty() ? QString() : message + u'\n') +
               (path.isEmpty() ? reason : path + QStringLiteral(": ") + reason);
    }
};

// The presets database: one SQLite file, "klOrvella3.sql" in "KeldraCom/" under the user's data
// folder ($XDG_DATA_HOME, by default ~/.local/share), with the wide tables `Presets`,
// `AppResource` and `AppBookmarks` (ID, then 102 text columns). Callers make a fresh object per
// operation. Values never become SQL: every statement takes them as bound parameters, and table
// and column names must be plain identifiers. A value or name holding a single quote is refused
// with "Error updating table." as the database has always refused it.
//
// Every operation reads the file through before it uses it (SQLite's quick check and the table
// `Presets` with its columns), so a damaged file is reported, never written to. Failures come back
// as false (or as the operation's usual value) with failure() telling the file and the reason; the
// caller shows it. A file another program has locked is retried for `lockWaitMs` first.
class dbViewController {
  public:
    // How long a locked file is retried before the operation gives up. Tests shorten it.
    static inline int lockWaitMs = 3000;

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

    // One stored row: its 102 fields, and why it cannot be read when it cannot (a field without a
    // value or not text: that field reads "").
    struct StoredRow {
        qint64 id = 0;
        QStringList fields;
        QString damage;         // of the first field lost: "field 9 holds no value"
        QList<int> lostFields;  // the fields that cannot be read
        bool matches = false;   // column = value (false for a row whose column cannot be read)
    };
    // The rows where column = value, oldest first, with every row whose `column` cannot be read
    // (it might be one of them). False when the table cannot be read.
    bool readRows(const QString& table, const QString& column, const QString& value,
                  QList<StoredRow>* rows);
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

    // Opens the file and reads it through: true when it is a sound presets database or there is
    // none yet.
    bool verifyPresetsDb();
    // Renames the file at `path` to "PATH.damaged-YYYY-MM-DD" beside it ("-2", "-3" ... after
    // the date when that name is taken: nothing is ever overwritten), its journal files with it.
    // `movedTo` gets the new name; false with the reason in `error`.
    static bool moveAside(const QString& path, const QDate& day, QString* movedTo, QString* error);

    // The last failure (fault None when the last operation went well).
    const DbFailure& fault() const { return failure_; }
    // Its fixed message ("" when none).
    QString failure() const { return failure_.message; }

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
    // Reading operations never create the file: only the first start does. A failure carries
    // `message`.
    bool open(bool create = true, const QString& message = kOpenFailed);
    // Reads the open file through; a file that existed before must hold the table Presets.
    bool check(bool existed, const QString& message);
    void close();
    bool fail(const QString& message, DbFault fault, const QString& reason);
    // The failure of the last SQLite call that returned `code`.
    bool failSqlite(const QString& message, int code);
    bool refuse(const QString& message, const QString& reason);

    QString path_;
    sqlite3* myDb = nullptr;
    DbFailure failure_;
};
