#include "presets/dbViewController.h"

#include <fcntl.h>
#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStringDecoder>
#include <cerrno>
#include <cstdio>
#include <cstring>
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
    // Reads a column as text into `text` (when given); the damage when it holds none: no value, or
    // bytes that are not UTF-8.
    const char* readText(int column, QString* text) const {
        if (sqlite3_column_type(stmt_, column) == SQLITE_NULL) return "holds no value";
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString decoded =
            decoder.decode(QByteArrayView(bytes, sqlite3_column_bytes(stmt_, column)));
        if (decoder.hasError()) return "is not text";
        if (text) *text = decoded;
        return nullptr;
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

bool dbViewController::fail(const QString& message, DbFault fault, const QString& reason) {
    failure_ = {message, path_, reason, fault};
    klLog() << failure_.text();
    close();
    return false;
}

bool dbViewController::refuse(const QString& message, const QString& reason) {
    failure_ = {message, QString(), reason, DbFault::Refused};
    klLog() << failure_.text();
    close();
    return false;
}

bool dbViewController::failSqlite(const QString& message, int code) {
    const QString said = QString::fromUtf8(myDb ? sqlite3_errmsg(myDb) : sqlite3_errstr(code));
    const int error = myDb ? sqlite3_system_errno(myDb) : 0;
    const QFileInfo file(path_);
    switch (code & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return fail(message, DbFault::Locked,
                        QStringLiteral("locked by another program; gave up after %1 seconds (%2)")
                            .arg(QString::number(lockWaitMs / 1000.0), said));
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return fail(message, DbFault::Damaged,
                        QStringLiteral("the file is damaged (%1)").arg(said));
        case SQLITE_READONLY:
            return fail(message, DbFault::Unwritable,
                        QStringLiteral("cannot be written (%1)").arg(said));
        default:
            break;
    }
    if (file.exists() && !file.isFile())
        return fail(message, DbFault::NotAFile, QStringLiteral("a folder, not a file"));
    const QString why = error ? QString::fromLocal8Bit(std::strerror(error)) : said;
    if (file.exists() && (error == EACCES || error == EPERM))
        return fail(message, DbFault::Unreadable, QStringLiteral("cannot be read (%1)").arg(why));
    if (!file.exists())
        return fail(message, DbFault::Other, QStringLiteral("cannot be created (%1)").arg(why));
    return fail(message, DbFault::Other, error ? said + QStringLiteral(" (") + why + u')' : said);
}

bool dbViewController::open(bool create, const QString& message) {
    close();
    failure_ = {};
    const QFileInfo file(dbFilePath());
    if (file.exists() && !file.isFile())
        return fail(
            message, DbFault::NotAFile,
            file.isDir() ? QStringLiteral("a folder, not a file") : QStringLiteral("not a file"));
    if (!create && !file.exists())
        return fail(message, DbFault::Other, QStringLiteral("there is no such file"));
    const bool existed = file.exists();
    const QByteArray name = path_.toUtf8();
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
    if (const int code = sqlite3_open_v2(name.constData(), &myDb, flags, nullptr);
        code != SQLITE_OK)
        return failSqlite(message, code);
    sqlite3_busy_timeout(myDb, lockWaitMs);
    return check(existed, message);
}

bool dbViewController::check(bool existed, const QString& message) {
    {
        Statement quick(myDb, QStringLiteral("PRAGMA quick_check"));
        if (!quick) return failSqlite(message, sqlite3_errcode(myDb));
        const int code = sqlite3_step(quick.get());
        if (code == SQLITE_ROW && quick.text(0) != u"ok")
            return fail(message, DbFault::Damaged,
                        QStringLiteral("the file is damaged (%1)")
                            .arg(quick.text(0).simplified().left(200)));
        if (code != SQLITE_ROW && code != SQLITE_DONE) return failSqlite(message, code);
    }
    if (!existed) return true;
    QStringList missing = presetColumns();
    {
        Statement columns(myDb, QStringLiteral("SELECT name FROM pragma_table_info('Presets')"));
        if (!columns) return failSqlite(message, sqlite3_errcode(myDb));
        int code;
        while ((code = sqlite3_step(columns.get())) == SQLITE_ROW)
            missing.removeAll(columns.text(0));
        if (code != SQLITE_DONE) return failSqlite(message, code);
    }
    if (missing.size() == kFieldCount)
        return fail(message, DbFault::Damaged,
                    QStringLiteral("the file is damaged (it holds no table Presets)"));
    if (!missing.isEmpty())
        return fail(message, DbFault::Damaged,
                    QStringLiteral("the file is damaged (the table Presets has no column %1)")
                        .arg(missing.first()));
    return true;
}

void dbViewController::close() {
    // A statement still being finished closes the connection as it ends.
    if (myDb) sqlite3_close_v2(myDb);
    myDb = nullptr;
}

bool dbViewController::openmyPresetsDb() {
    return open();
}

bool dbViewController::verifyPresetsDb() {
    failure_ = {};
    const QFileInfo file(dbFilePath());
    if (!file.exists() && !file.isSymLink()) return true;
    const bool sound = open(false);
    close();
    return sound;
}

bool dbViewController::createTableNamed(const QString& table, const QStringList& columns) {
    if (columns.size() != kFieldCount || !isIdentifier(table) || !allIdentifiers(columns))
        return refuse(kCreateFailed,
                      QStringLiteral("\"%1\" is no table of 102 named columns").arg(table));
    QStringList definitions;
    for (int i = 0; i < columns.size(); ++i)
        definitions.append(quoted(columns[i]) + u' ' + declaredType(i + 1));
    const QString sql = QStringLiteral(
                            "Create table if not exists %1 (ID INTEGER PRIMARY KEY "
                            "AUTOINCREMENT, %2);")
                            .arg(quoted(table), definitions.join(QStringLiteral(", ")));
    if (!myDb) return fail(kCreateFailed, DbFault::Other, QStringLiteral("the file is not open"));
    if (const int code = sqlite3_exec(myDb, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
        code != SQLITE_OK)
        return failSqlite(kCreateFailed, code);
    return true;
}

bool dbViewController::linkToPresetsDB() {
    failure_ = {};
    const QFileInfo file(dbFilePath());
    if (file.exists() || file.isSymLink()) return true;
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
        !allIdentifiers(columns))
        return refuse(kUpdateFailed,
                      QStringLiteral("\"%1\" is no table of 102 named columns").arg(table));
    if (hasQuote(values))
        return refuse(
            kUpdateFailed,
            QStringLiteral("A preset's name or settings cannot hold a single quote (')."));
    QStringList names, placeholders;
    for (const QString& column : columns) {
        names.append(quoted(column));
        placeholders.append(QStringLiteral("?"));
    }
    const QString sql = QStringLiteral("Insert or replace into %1 (%2)values (%3)")
                            .arg(quoted(table), names.join(u','), placeholders.join(u','));
    if (!open()) return false;
    Statement statement(myDb, sql);
    if (!statement) return failSqlite(kUpdateFailed, sqlite3_errcode(myDb));
    for (int i = 0; i < kFieldCount; ++i)
        if (!statement.bindText(i + 1, values[i]))
            return failSqlite(kUpdateFailed, sqlite3_errcode(myDb));
    if (const int code = sqlite3_step(statement.get()); code != SQLITE_DONE)
        return failSqlite(kUpdateFailed, code);
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

bool dbViewController::readRows(const QString& table, const QString& column, const QString& value,
                                QList<StoredRow>* rows) {
    rows->clear();
    if (!allIdentifiers({table, column}))
        return refuse(kOpenFailed, QStringLiteral("\"%1\" is no table or column").arg(table));
    if (!open(false)) return false;
    Statement statement(myDb, QStringLiteral("SELECT * FROM %1 ORDER BY ID").arg(quoted(table)));
    if (!statement) return failSqlite(kOpenFailed, sqlite3_errcode(myDb));
    const int columns = sqlite3_column_count(statement.get());
    int key = 0;
    while (key < columns && QString::fromUtf8(sqlite3_column_name(statement.get(), key)) != column)
        ++key;
    int code;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        StoredRow row;
        row.id = sqlite3_column_int64(statement.get(), 0);
        for (int c = 1; c <= kFieldCount; ++c) {
            QString text;
            const char* damage = c < columns ? statement.readText(c, &text) : nullptr;
            if (damage && row.damage.isEmpty())
                row.damage = QStringLiteral("field %1 %2").arg(c - 1).arg(QLatin1String(damage));
            if (damage) row.lostFields.append(c - 1);
            row.fields.append(text);
        }
        row.matches = key < columns && row.fields.value(key - 1) == value &&
                      !statement.readText(key, nullptr);
        if (row.matches || (key < columns && statement.readText(key, nullptr))) rows->append(row);
    }
    if (code != SQLITE_DONE) return failSqlite(kOpenFailed, code);
    close();
    return true;
}

QStringList dbViewController::checkForActionType(const QString& table, const QString& column,
                                                 const QString& value) {
    if (!allIdentifiers({table, column}) || hasQuote({value}) || !QFileInfo::exists(path_))
        return myPresetsArrayToPass;  // the statement could not be made: nothing is read
    QList<StoredRow> rows;
    if (!readRows(table, column, value, &rows)) return myPresetsArrayToPass;
    myPresetsArray.clear();
    myPresetsArrayToPass.clear();
    for (const StoredRow& row : rows)
        if (row.matches) myPresetsArray.append(row.fields.join(u'|'));
    myPresetsArrayToPass = myPresetsArray;
    return myPresetsArrayToPass;
}

QString dbViewController::removePresetFromDatabase(const QString& table, const QString& column,
                                                   const QString& value) {
    if (!allIdentifiers({table, column}) || hasQuote({value}) || !open(false)) {
        myPresetExist = QStringLiteral("preset not found");
        return myPresetExist;
    }
    Statement statement(
        myDb, QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(quoted(table), quoted(column)));
    if (!statement || !statement.bindText(1, value)) {
        myPresetExist = QStringLiteral("preset not found");
        failSqlite(kUpdateFailed, sqlite3_errcode(myDb));
        return myPresetExist;
    }
    int code;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW)
        myPresetExist = QStringLiteral("preset removed");
    if (code != SQLITE_DONE) failSqlite(kUpdateFailed, code);
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

namespace {

// rename() that never replaces: false with errno EEXIST when `to` exists.
bool renameNoReplace(const QString& from, const QString& to) {
    const QByteArray source = QFile::encodeName(from), target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) ==
        0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system without the flag: the check and the rename are not one step there.
    if (QFileInfo::exists(to) || QFileInfo(to).isSymLink()) {
        errno = EEXIST;
        return false;
    }
    return ::rename(source.constData(), target.constData()) == 0;
}

}  // namespace

bool dbViewController::moveAside(const QString& path, const QDate& day, QString* movedTo,
                                 QString* error) {
    // The journals belong to the file: left behind, one would be played into the new database.
    const QStringList companions = {QStringLiteral("-journal"), QStringLiteral("-wal"),
                                    QStringLiteral("-shm")};
    const QString stem = path + QStringLiteral(".damaged-") + day.toString(Qt::ISODate);
    for (int n = 1; n < 1000; ++n) {
        const QString target = n == 1 ? stem : stem + u'-' + QString::number(n);
        const bool taken =
            std::any_of(companions.cbegin(), companions.cend(), [&](const QString& c) {
                return QFileInfo::exists(target + c) || QFileInfo(target + c).isSymLink();
            });
        if (taken) continue;
        if (!renameNoReplace(path, target)) {
            if (errno == EEXIST || errno == ENOTEMPTY) continue;
            *error = QStringLiteral("%1 cannot be moved to %2 (%3)")
                         .arg(path, target, QString::fromLocal8Bit(std::strerror(errno)));
            return false;
        }
        *movedTo = target;
        for (const QString& companion : companions) {
            if (!QFileInfo::exists(path + companion)) continue;
            if (!renameNoReplace(path + companion, target + companion)) {
                *error = QStringLiteral("%1 cannot be moved to %2 (%3)")
                             .arg(path + companion, target + companion,
                                  QString::fromLocal8Bit(std::strerror(errno)));
                return false;
            }
        }
        return true;
    }
    *error = QStringLiteral("%1 cannot be moved aside: every name for today is taken").arg(path);
    return false;
}
