#include "presets/dbViewController.h"

#include <sqlite3.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <functional>

#include "services/Log.h"

namespace {

// A statement that finalizes itself.
class Statement {
  public:
    Statement(sqlite3* db, const QString& sql) {
        if (db) sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &stmt_, nullptr);
    }
    ~Statement() { sqlite3_finalize(stmt_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    explicit operator bool() const { return stmt_ != nullptr; }
    sqlite3_stmt* get() const { return stmt_; }

    bool bindText(int index, const QString& value) {
        const QByteArray bytes = value.toUtf8();
        return sqlite3_bind_text(stmt_, index, bytes.constData(), int(bytes.size()),
                                 SQLITE_TRANSIENT) == SQLITE_OK;
    }
    bool bindBlob(int index, const QByteArray& value) {
        return sqlite3_bind_blob(stmt_, index, value.constData(), int(value.size()),
                                 SQLITE_TRANSIENT) == SQLITE_OK;
    }
    QString text(int column) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
        return text ? QString::fromUtf8(text, sqlite3_column_bytes(stmt_, column)) : QString();
    }
    QByteArray blob(int column) const {
        const void* blob = sqlite3_column_blob(stmt_, column);
        return blob
                   ? QByteArray(static_cast<const char*>(blob), sqlite3_column_bytes(stmt_, column))
                   : QByteArray();
    }

  private:
    sqlite3_stmt* stmt_ = nullptr;
};

// Table and column names go into statements as they are: only plain identifiers are taken.
bool isIdentifier(const QString& name) {
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]{0,63}$"));
    return pattern.match(name).hasMatch();
}

bool allIdentifiers(const QStringList& names) {
    return std::all_of(names.cbegin(), names.cend(), isIdentifier);
}

QString quoted(const QString& identifier) {
    return u'"' + identifier + u'"';
}

// A single quote has always made the database refuse a value or name.
bool hasQuote(const QStringList& texts) {
    return std::any_of(texts.cbegin(), texts.cend(),
                       [](const QString& t) { return t.contains(u'\''); });
}

QStringList numbered(const QString& prefix, int from, int to) {
    QStringList names;
    for (int i = from; i <= to; ++i) names.append(prefix + QString::number(i));
    return names;
}

}  // namespace

dbViewController::dbViewController(const QString& path)
    : path_(path.isEmpty() ? defaultDbFilePath() : path) {}

dbViewController::~dbViewController() {
    close();
}

QString dbViewController::defaultDbFilePath() {
    QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (data.isEmpty()) data = QDir::homePath() + QStringLiteral("/.local/share");
    return data + QStringLiteral("/KeldraCom/klOrvella3.sql");
}

QString dbViewController::dbFilePath() const {
    QDir().mkpath(QFileInfo(path_).absolutePath());
    return path_;
}

QStringList dbViewController::presetColumns() {
    return QStringList{QStringLiteral("NameOfPreset"), QStringLiteral("Process"),
                       QStringLiteral("Action")} +
           numbered(QStringLiteral("StrField"), 3, 101);
}

QStringList dbViewController::plainColumns() {
    return numbered(QStringLiteral("StrField"), 0, 101);
}

QString dbViewController::declaredType(int position) {
    return position >= 22 && position <= 42 ? QStringLiteral("Integer") : QStringLiteral("Text");
}

bool dbViewController::fail(const QString& message) {
    failure_ = message;
    klLog() << message;
    return false;
}

bool dbViewController::open(bool create) {
    close();
    const QByteArray file = dbFilePath().toUtf8();
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(file.constData(), &myDb, flags, nullptr) != SQLITE_OK) {
        klLog() << "sqlite:" << (myDb ? sqlite3_errmsg(myDb) : "out of memory");
        close();
        return false;
    }
    sqlite3_busy_timeout(myDb, 5000);
    return true;
}

void dbViewController::close() {
    if (myDb) sqlite3_close(myDb);
    myDb = nullptr;
}

bool dbViewController::openmyPresetsDb() {
    return open() || fail(kOpenFailed);
}

bool dbViewController::createTableNamed(const QString& table, const QStringList& columns) {
    if (columns.size() != kFieldCount || !isIdentifier(table) || !allIdentifiers(columns)) {
        close();
        return fail(kCreateFailed);
    }
    QStringList definitions;
    for (int i = 0; i < columns.size(); ++i)
        definitions.append(quoted(columns[i]) + u' ' + declaredType(i + 1));
    const QString sql = QStringLiteral(
                            "Create table if not exists %1 (ID INTEGER PRIMARY KEY "
                            "AUTOINCREMENT, %2);")
                            .arg(quoted(table), definitions.join(QStringLiteral(", ")));
    char* error = nullptr;
    if (!myDb ||
        sqlite3_exec(myDb, sql.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK) {
        if (error) klLog() << "sqlite:" << error;
        sqlite3_free(error);
        close();
        return fail(kCreateFailed);
    }
    return true;
}

bool dbViewController::linkToPresetsDB() {
    if (QFileInfo::exists(dbFilePath())) return true;
    if (!openmyPresetsDb()) return false;
    if (!createTableNamed(QStringLiteral("Presets"), presetColumns()) ||
        !createTableNamed(QStringLiteral("AppResource"), plainColumns()) ||
        !createTableNamed(QStringLiteral("AppBookmarks"), plainColumns()))
        return false;
    QStringList values(kFieldCount, QString());
    values[0] = QStringLiteral("appSys");
    if (!insertRecordIntoTableNamed(QStringLiteral("AppResource"), plainColumns(), values))
        return false;
    values[0] = QStringLiteral("myAppDestBookmark");
    // The table's name spelled as it always was: names match whatever their case.
    if (!insertRecordIntoTableNamed(QStringLiteral("AppBookMarks"), plainColumns(), values))
        return false;
    close();
    return true;
}

bool dbViewController::insertRecordIntoTableNamed(const QString& table, const QStringList& columns,
                                                  const QStringList& values) {
    // Refused before anything reaches the database.
    if (columns.size() != kFieldCount || values.size() != kFieldCount || !isIdentifier(table) ||
        !allIdentifiers(columns) || hasQuote(values) || hasQuote({table})) {
        close();
        return fail(kUpdateFailed);
    }
    QStringList names, placeholders;
    for (const QString& column : columns) {
        names.append(quoted(column));
        placeholders.append(QStringLiteral("?"));
    }
    const QString sql = QStringLiteral("Insert or replace into %1 (%2)values (%3)")
                            .arg(quoted(table), names.join(u','), placeholders.join(u','));
    if (!open()) return fail(kOpenFailed);
    Statement statement(myDb, sql);
    bool ok = bool(statement);
    for (int i = 0; ok && i < kFieldCount; ++i) ok = statement.bindText(i + 1, values[i]);
    if (!ok || sqlite3_step(statement.get()) != SQLITE_DONE) {
        klLog() << "sqlite:" << sqlite3_errmsg(myDb);
        close();
        return fail(kUpdateFailed);
    }
    return true;
}

bool dbViewController::insertSortingPresetToDB01(const QStringList& fields) {
    return insertRecordIntoTableNamed(QStringLiteral("Presets"), presetColumns(), fields);
}

bool dbViewController::insertSortingPresetToDB() {
    QStringList values = {QStringLiteral("myPresetName"), QStringLiteral("Sorting"),
                          QStringLiteral("ByHand")};
    for (int field = 3; field < kFieldCount; ++field)
        values.append(QStringLiteral("Loc") + QString::number(field - 2));
    return insertSortingPresetToDB01(values);
}

void dbViewController::getAllRowsFromTableNamed(const QString& table) {
    if (!isIdentifier(table) || !open(false)) return;
    {
        Statement statement(myDb, QStringLiteral("SELECT * FROM %1").arg(quoted(table)));
        while (statement && sqlite3_step(statement.get()) == SQLITE_ROW) {
        }
    }
    close();
}

QString dbViewController::checkPresetNameFromTableNamed(const QString& table,
                                                        const QString& column1,
                                                        const QString& value1,
                                                        const QString& column2,
                                                        const QString& value2) {
    if (!allIdentifiers({table, column1, column2}) || hasQuote({value1, value2}) || !open(false))
        return myPresetExist;
    {
        Statement statement(myDb, QStringLiteral("SELECT * FROM %1 WHERE %2 = ? AND %3 = ?")
                                      .arg(quoted(table), quoted(column1), quoted(column2)));
        if (statement && statement.bindText(1, value1) && statement.bindText(2, value2))
            while (sqlite3_step(statement.get()) == SQLITE_ROW) myPresetExist = statement.text(1);
    }
    close();
    return myPresetExist;
}

QList<QStringList> dbViewController::rowsWhere(const QString& table, const QString& column,
                                               const QString& value) {
    QList<QStringList> rows;
    if (!allIdentifiers({table, column}) || hasQuote({value}) || !open(false)) return rows;
    {
        Statement statement(myDb, QStringLiteral("SELECT * FROM %1 WHERE %2 = ? ORDER BY ID")
                                      .arg(quoted(table), quoted(column)));
        if (statement && statement.bindText(1, value)) {
            const int columns = sqlite3_column_count(statement.get());
            while (sqlite3_step(statement.get()) == SQLITE_ROW) {
                QStringList row;
                for (int c = 1; c <= kFieldCount; ++c)
                    row.append(c < columns ? statement.text(c) : QString());
                rows.append(row);
            }
        }
    }
    close();
    return rows;
}

QStringList dbViewController::checkForActionType(const QString& table, const QString& column,
                                                 const QString& value) {
    if (!allIdentifiers({table, column}) || hasQuote({value}) || !QFileInfo::exists(path_))
        return myPresetsArrayToPass;  // the statement could not be made: nothing is read
    myPresetsArray.clear();
    myPresetsArrayToPass.clear();
    for (const QStringList& row : rowsWhere(table, column, value))
        myPresetsArray.append(row.join(u'|'));
    myPresetsArrayToPass = myPresetsArray;
    return myPresetsArrayToPass;
}

QString dbViewController::removePresetFromDatabase(const QString& table, const QString& column,
                                                   const QString& value) {
    if (!allIdentifiers({table, column}) || hasQuote({value}) || !open(false)) {
        myPresetExist = QStringLiteral("preset not found");
        return myPresetExist;
    }
    {
        Statement statement(
            myDb, QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(quoted(table), quoted(column)));
        if (!statement || !statement.bindText(1, value)) {
            myPresetExist = QStringLiteral("preset not found");
        } else {
            while (sqlite3_step(statement.get()) == SQLITE_ROW)
                myPresetExist = QStringLiteral("preset removed");
        }
    }
    close();
    return myPresetExist;
}

void dbViewController::hSaveSecurityScopedBookmarks(const QByteArray& data) {
    if (!open(false)) return;
    const QString sql = QStringLiteral("insert into Image(Image)values(?)");
    {
        Statement statement(myDb, sql);
        if (!statement) return;  // no table "Image": nothing is stored
        if (statement.bindBlob(1, data)) sqlite3_step(statement.get());
    }
    // The same text once more, with nothing bound: a row whose Image is null, as always.
    sqlite3_exec(myDb, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
}

QByteArray dbViewController::hGetBookMarkedFolders(const QString& table, const QString& column1,
                                                   const QString& value1, const QString& column2,
                                                   const QString& value2,
                                                   const QString& selectList) {
    QStringList selected = selectList.split(u',');
    for (QString& name : selected) name = name.trimmed();
    if (!allIdentifiers(QStringList{table, column1, column2} + selected) ||
        hasQuote({value1, value2}) || !open(false))
        return mySearchValue4;
    {
        QStringList columns;
        for (const QString& name : selected) columns.append(quoted(name));
        Statement statement(myDb, QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? AND %4 = ?")
                                      .arg(columns.join(QStringLiteral(", ")), quoted(table),
                                           quoted(column1), quoted(column2)));
        if (statement && statement.bindText(1, value1) && statement.bindText(2, value2))
            while (sqlite3_step(statement.get()) == SQLITE_ROW) mySearchValue4 = statement.blob(1);
    }
    close();
    return mySearchValue4;
}

void dbViewController::SaveImagesToSql(const QByteArray& image, const QString& url) {
    Statement statement(myDb, QStringLiteral("INSERT INTO IMAGES (URL, IMAGE) VALUES (?, ?)"));
    if (!statement) {
        klLog() << QStringLiteral("SaveBody: Failed from sqlite3_prepare_v2. Error is:  %1")
                       .arg(QString::fromUtf8(myDb ? sqlite3_errmsg(myDb) : "no open database"));
        return;
    }
    if (statement.bindText(1, url) && statement.bindBlob(2, image)) sqlite3_step(statement.get());
}

QByteArray dbViewController::LoadImagesFromSql(const QString& url) {
    Statement statement(myDb, QStringLiteral("SELECT IMAGE FROM IMAGES WHERE URL = ?"));
    if (!statement || !statement.bindText(1, url) || sqlite3_step(statement.get()) != SQLITE_ROW)
        return {};
    return statement.blob(0);
}
