#pragma once

// What the preset tests share: the layouts written out here from the documented tables (not taken
// from the program), settings with a distinct value in every control of a layout, rows read back
// with the sqlite3 program, and presets databases damaged for real.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QUrl>
#include <sstream>

#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "presets/cPresetManager.h"
#include "services/KLbookmarks.h"
#include "services/cNSStringHandling.h"
#include "support/TestSupport.h"

namespace presetfixtures {

// Encodings: T text, N number, F "0"/"1" by value, S "0"/"1" by state, P popup title, I popup
// index, G segment, V text view, L slider (fraction dropped), B bookmark, Z always "0" (no
// control, written "-").
struct Row {
    int field;
    QString control;
    char encoding;
};

inline std::vector<Row> table(const char* text) {
    std::vector<Row> rows;
    std::istringstream in(text);
    Row row;
    std::string control;
    while (in >> row.field >> control >> row.encoding) {
        row.control = control == "-" ? QString() : QString::fromStdString(control);
        rows.push_back(row);
    }
    return rows;
}

inline const std::vector<Row>& galleryTable() {
    static const auto rows = table(
        "3 tfPageTitle T 9 tfNumberOfRows N 10 tfNumberOfColumns N 14 btShowFileName F "
        "15 tfHTMLbackgroundColor T 16 tfHTMLTitleColor T 17 tfHTMLbackgroundColorCell T "
        "21 pbImageFormat P 22 pbJPGCompression P 24 tfSmallCropWidth N 25 tfSmallCropHeight N "
        "26 tfSmallFramingRGBvalue T 27 tfSmallFramingThickness N 28 tfBigCropWidth N "
        "29 tfBigCropHeight N 30 tfBigFramingRGBvalue T 31 tfBigFramingThickness N "
        "32 pbImageFormat P 33 pbJPGCompression P 34 btShowEXIFucd F "
        "35 scPresetFilenameTxtAlign G 36 scPresetEXIFuserCommentTxtAlgin G "
        "37 scPresetTitleTxtAlign G 38 btShowTitle F 39 pbPresetTitleFontSize P "
        "40 pbPresetFileNameFontSize P 41 pbPresetExifUserCommentFontSize P "
        "42 tfHTMLdestinationFolder B 43 scImageCropThumbPos G 44 tfCropThumbXOffset T "
        "45 tfCropThumbYOffset T 46 scImageCropBigPos G 47 tfCropBigXOffset T "
        "48 tfCropBigYOffset T 52 pbTitleFontWeight P 53 pbFileNameFontWeight P "
        "54 pbExifUserCommentFontWeight P 55 tfHTMLPhotoNameColor T "
        "56 tfHTMLUserExifCommentColor T 57 cbTableTypeTable S 58 cbTableTypeResponsive S "
        "59 tfGridWidth T 60 pbFontFamily P 61 tvTitle V 62 - Z 66 tfHTMLLightBoxColor T "
        "67 tfHTMLLightBoxShadowColor T 68 tfBoxRadius T 69 tfBoxThickness T "
        "70 tfBoxShadowThickness T 71 tfBoxShadowXOffset T 72 tfBoxShadowYOffset T "
        "73 cbCaptionStatus F 74 pubTableTemplateChoice I 75 tfThumbnailColorValue T "
        "76 tfThumbnailRadius N 77 tfThumbnailThickness N 78 tfThumbnailShadowColorValue T "
        "79 tfThumbnailShadowThickness N 80 tfThumbnailShadowXOffset N "
        "81 tfThumbnailShadowYOffset N 82 pubPgMetaData I 83 tfPgMetaDataToShow T "
        "84 tfPgMetaDataValueSep T 87 cbTbRdShowPatternImage S 88 tfTbRdPatternPath B "
        "89 tfTbRdPatternScale T 90 pubTbRdPatternOpacity I 91 cbPgMagnifyHooverEffectState S "
        "92 pubPhotoRatio I 93 pubThumbAction I 94 tfNSColorWellObjRDLightboxBgColor T "
        "95 sliderLightboxRDBgColorOpacity L");
    return rows;
}

inline const std::vector<Row>& slideshowTable() {
    static const auto rows = table(
        "3 tfSsPageName T 4 cbSsWebPageTitle F 5 tfSsWebPageTitle T 6 cbSsTitle F "
        "7 tvSsTitle V 8 tfSsHTMLTitleFontColor T 9 pubSsHTMLTitleFontStyle I "
        "10 pubSsHTMLTitleFontSize I 11 scSsHTMLTitleTxtAlign G 12 pubSsHTMLTitleFontFamily I "
        "14 pubSsFileNameWeight I 15 pubSsFileNameSize I 16 scSsFileNameTxtAlign G "
        "17 tfSsFileNameFontColor T 18 cbSsExifUC F 19 tfSsImageWidth T 20 tfSsImageHeight T "
        "21 tfHTMLdestinationFolder B 22 tfSsInterval T 23 cbSsAutorun F "
        "24 tfSsBackgroundColor T 25 pubSlideTemplateChoice I 26 tfSsMetaDataValueSep T "
        "27 pubSsMetaData I 28 tfSsMetaDataToShow T 29 cbSsResponsive F "
        "30 cbSsShowPhotoCount F 31 cbSsShowNavigationBtn F 32 cbSsShowDots F "
        "33 cbSsFadeInOut F 34 cbSsShowShadow F 37 cbSsShowPatternImage S 38 tfSsPatternPath B "
        "39 tfSsPatternScale T 40 pubSsPatternOpacity I 41 pubSsDotAppearance I "
        "42 tfSsHTMLDotColor T");
    return rows;
}

inline const std::vector<Row>& gridTable() {
    static const auto rows = table(
        "3 tfPageName T 4 cbRgWebPageTitle F 5 tfRgWebPageTitle T 6 cbRgDescription F "
        "7 tvRgDescription V 8 tfRgHTMLDescriptionFontColor T "
        "9 pubRgHTMLDescriptionFontStyle I 10 pubRgHTMLDescriptionFontSize I "
        "11 scRgHTMLDescriptionTxtAlign G 12 pubRgHTMLDescriptionFontFamily I "
        "13 tfRgBackgroundColor T 14 pubRgFileNameWeight I 15 pubRgFileNameSize I "
        "16 scRgFileNameTxtAlign G 17 tfRgFileNameFontColor T 18 cbRgExifUC F "
        "19 tfRgMetaDataValueSep T 20 - Z 21 tfHTMLdestinationFolder B 22 tfRgMetaDataToShow T "
        "23 tfRgMaxColumns T 24 pubRespDesignTemplateChoice I 27 cbRgShowPatternImage S "
        "28 tfRgPatternPath B 29 tfRgPatternScale T 30 pubRgPatternOpacity I "
        "31 cbMagnifyHooverEffect S 32 tfNSColorWellObjRGLightboxBgColor T "
        "33 sliderLightboxRGBgColorOpacity L");
    return rows;
}

// Settings with a value in every control of the table that differs from its default and from
// the other controls' values; `expected` gets each field's text as the table's encoding writes
// it (bookmark fields: the path the bookmark must hold).
inline SettingsStore distinctSettings(const std::vector<Row>& table, const QString& scratch,
                                      QHash<int, QString>* expected) {
    SettingsStore store(OutputKinds::registry());
    QHash<QString, QString> byControl;
    for (const Row& row : table) {
        const ControlSpec* control = store.registry().find(row.control);
        EXPECT_TRUE(control || row.encoding == 'Z') << "no control " << row.control;
        if (!control || byControl.contains(control->name)) {  // none, or a control stored twice
            (*expected)[row.field] = control ? byControl[control->name] : QStringLiteral("0");
            continue;
        }
        const QString n = QString::number(row.field);
        const int count = int(control->items.size()), index = store.index(control->name);
        const char e = row.encoding;
        const bool color = control->kind == ControlKind::Color,
                   folder = row.control.contains("Folder");
        QString text;
        if (e == 'N') text = QString::number(100 + row.field);
        if (e == 'T' && control->kind == ControlKind::Number)
            text = QString::number(200 + row.field);
        if (e == 'T' && control->kind != ControlKind::Number)
            text = color ? QStringLiteral("A%1").arg(row.field, 5, 10, QLatin1Char('0')) : "t" + n;
        if (e == 'V') text = QStringLiteral("Heading %1\r\nline & <two>").arg(n);
        if (e == 'F' || e == 'S') text = store.isOn(control->name) ? "0" : "1";
        if (e == 'P') text = control->items.value((index + 1) % std::max(count, 1));
        if (e == 'I' || e == 'G')
            text = QString::number(count > 0                      ? (index + 1) % count
                                   : index + 1 > control->maximum ? control->minimum
                                                                  : index + 1);
        if (e == 'L') text = QString::number(control->minimum + 1 + row.field % 50);
        if (e == 'B') text = scratch + (folder ? "dest" + n : "p" + n + ".png");
        if (e == 'B' && !folder) testsupport::writeFile(text, "");
        if (e == 'B' && folder) QDir().mkpath(text);
        const QString value = e == 'L' ? text + ".9" : e == 'B' && folder ? text + u'/' : text;
        if (row.encoding == 'L' || row.encoding == 'B')
            store.setText(control->name, value);
        else
            EXPECT_TRUE(store.set(control->name, value)) << row.control;
        (*expected)[row.field] = byControl[control->name] = text;
    }
    return store;
}

// The path a bookmark text holds when it still resolves ("" otherwise).
inline QString bookmarkPath(const QString& text) {
    const QUrl url = KLbookmarks::urlForBookmark(cNSStringHandling::hConvertNSstrToNSd(text));
    return url.isEmpty() ? QString() : url.toLocalFile();
}

inline QString column(int field) {
    const char* const fixed[] = {"NameOfPreset", "Process", "Action"};
    return field < 3 ? QString(fixed[field]) : QStringLiteral("StrField") + QString::number(field);
}

// Rows as the sqlite3 program reads them, by column name, each value as its text (numbers in
// SQLite's own text form, null as "<null>").
inline QList<QHash<QString, QString>> sqliteRows(const QString& db, const QString& sql) {
    QString out, err;
    EXPECT_EQ(testsupport::runProgram("sqlite3",
                                      {"-header", "-nullvalue", "<null>", "-separator", "\x1f",
                                       "-newline", "\x1e", db, sql},
                                      &out, &err),
              0)
        << err;
    QStringList lines = out.split(u'\x1e');  // each row ends with one
    lines.removeLast();
    const QStringList names = lines.value(0).split(u'\x1f');
    QList<QHash<QString, QString>> rows;
    for (const QString& line : lines.mid(1)) {
        QHash<QString, QString> row;
        for (int i = 0; i < names.size(); ++i) row[names[i]] = line.section(u'\x1f', i, i);
        rows.append(row);
    }
    return rows;
}

inline void sqlite(const QString& db, const QString& sql) {
    QString err;
    EXPECT_EQ(testsupport::runProgram("sqlite3", {db, sql}, nullptr, &err), 0) << err;
}

inline void savePresets(const QString& db, const QStringList& names) {
    const SettingsStore settings(OutputKinds::registry());
    for (const QString& name : names) {
        QString message;
        EXPECT_EQ(cPresetManager(db).addPresetValuesToDB(settings, *PresetLayouts::find("gallery"),
                                                         name, nullptr, &message),
                  cPresetManager::Outcome::Ok)
            << message;
    }
}

// The ways a presets database goes wrong, each made for real on a file holding presets, with the
// reason the program must give and whether moving the file aside cures it.
struct DamageCase {
    const char* name;
    const char* reason;
    bool movable;
};
inline const std::vector<DamageCase> damages = {
    {"truncated", "the file is damaged (database disk image is malformed)", true},
    {"header", "the file is damaged (file is not a database)", true},
    {"folder", "a folder, not a file", true},
    {"unreadable", "cannot be read (Permission denied)", true},
    {"locked", "locked by another program; gave up after", false},
};

// Damages the database at `db` as named; what stands in the way of removing it is undone at the
// end. `skipped` says why the damage cannot be made here.
class Damaged {
  public:
    Damaged(const QString& db, const QString& how) : db_(db) {
        QFile file(db);
        bool made = true;
        if (how == "truncated") made = file.resize(file.size() / 2);
        if (how == "header") made = file.open(QFile::ReadWrite) && file.write(QByteArray(100, '#'));
        if (how == "folder") made = file.remove() && QDir().mkpath(db + "/inside");
        if (how == "unreadable" && chmod(db.toUtf8().constData(), 0) == 0 &&
            file.open(QFile::ReadOnly))
            skipped = "this user reads files whatever their permissions (root?)";
        if (how == "locked") {  // by another program: a lock of this one goes on any close
            lock_.start("sqlite3", {db});
            lock_.write("BEGIN EXCLUSIVE; SELECT 'locked';\n");
            made = lock_.waitForReadyRead(10000) && lock_.readAll() == "locked\n";
        }
        EXPECT_TRUE(made) << how;
    }
    ~Damaged() {
        lock_.closeWriteChannel();
        lock_.waitForFinished();
        chmod(db_.toUtf8().constData(), 0644);
    }
    // What the file is, to tell that nothing wrote to it: its size, time and bytes, or its folder.
    static QString state(const QString& path) {
        const QFileInfo info(path);
        return QString::number(info.size()) + info.lastModified().toString(Qt::ISODateWithMs) +
               (info.isDir() ? QDir(path).entryList().join(u' ')
                             : QCryptographicHash::hash(testsupport::readFile(path),
                                                        QCryptographicHash::Sha1)
                                   .toHex());
    }
    QString skipped;

  private:
    QString db_;
    QProcess lock_;
};

}  // namespace presetfixtures
