#pragma once

// What the preset tests share: the layouts written out here from the documented tables (not taken
// from the program), settings with a distinct value in every control of a layout, and rows read
// back with the sqlite3 program.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <cmath>

#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "services/KLbookmarks.h"
#include "services/cNSStringHandling.h"
#include "support/TestSupport.h"

namespace presetfixtures {

// Encodings: T text, N number, F "0"/"1" by value, S "0"/"1" by state, P popup title, I popup
// index, G segment, V text view, L slider (fraction dropped), B bookmark, Z always "0".
struct Row {
    int field;
    const char* control;
    char encoding;
};

inline const std::vector<Row>& galleryTable() {
    static const std::vector<Row> rows = {
        {3, "tfPageTitle", 'T'},
        {9, "tfNumberOfRows", 'N'},
        {10, "tfNumberOfColumns", 'N'},
        {14, "btShowFileName", 'F'},
        {15, "tfHTMLbackgroundColor", 'T'},
        {16, "tfHTMLTitleColor", 'T'},
        {17, "tfHTMLbackgroundColorCell", 'T'},
        {21, "pbImageFormat", 'P'},
        {22, "pbJPGCompression", 'P'},
        {24, "tfSmallCropWidth", 'N'},
        {25, "tfSmallCropHeight", 'N'},
        {26, "tfSmallFramingRGBvalue", 'T'},
        {27, "tfSmallFramingThickness", 'N'},
        {28, "tfBigCropWidth", 'N'},
        {29, "tfBigCropHeight", 'N'},
        {30, "tfBigFramingRGBvalue", 'T'},
        {31, "tfBigFramingThickness", 'N'},
        {32, "pbImageFormat", 'P'},
        {33, "pbJPGCompression", 'P'},
        {34, "btShowEXIFucd", 'F'},
        {35, "scPresetFilenameTxtAlign", 'G'},
        {36, "scPresetEXIFuserCommentTxtAlgin", 'G'},
        {37, "scPresetTitleTxtAlign", 'G'},
        {38, "btShowTitle", 'F'},
        {39, "pbPresetTitleFontSize", 'P'},
        {40, "pbPresetFileNameFontSize", 'P'},
        {41, "pbPresetExifUserCommentFontSize", 'P'},
        {42, "tfHTMLdestinationFolder", 'B'},
        {43, "scImageCropThumbPos", 'G'},
        {44, "tfCropThumbXOffset", 'T'},
        {45, "tfCropThumbYOffset", 'T'},
        {46, "scImageCropBigPos", 'G'},
        {47, "tfCropBigXOffset", 'T'},
        {48, "tfCropBigYOffset", 'T'},
        {52, "pbTitleFontWeight", 'P'},
        {53, "pbFileNameFontWeight", 'P'},
        {54, "pbExifUserCommentFontWeight", 'P'},
        {55, "tfHTMLPhotoNameColor", 'T'},
        {56, "tfHTMLUserExifCommentColor", 'T'},
        {57, "cbTableTypeTable", 'S'},
        {58, "cbTableTypeResponsive", 'S'},
        {59, "tfGridWidth", 'T'},
        {60, "pbFontFamily", 'P'},
        {61, "tvTitle", 'V'},
        {62, "", 'Z'},
        {66, "tfHTMLLightBoxColor", 'T'},
        {67, "tfHTMLLightBoxShadowColor", 'T'},
        {68, "tfBoxRadius", 'T'},
        {69, "tfBoxThickness", 'T'},
        {70, "tfBoxShadowThickness", 'T'},
        {71, "tfBoxShadowXOffset", 'T'},
        {72, "tfBoxShadowYOffset", 'T'},
        {73, "cbCaptionStatus", 'F'},
        {74, "pubTableTemplateChoice", 'I'},
        {75, "tfThumbnailColorValue", 'T'},
        {76, "tfThumbnailRadius", 'N'},
        {77, "tfThumbnailThickness", 'N'},
        {78, "tfThumbnailShadowColorValue", 'T'},
        {79, "tfThumbnailShadowThickness", 'N'},
        {80, "tfThumbnailShadowXOffset", 'N'},
        {81, "tfThumbnailShadowYOffset", 'N'},
        {82, "pubPgMetaData", 'I'},
        {83, "tfPgMetaDataToShow", 'T'},
        {84, "tfPgMetaDataValueSep", 'T'},
        {87, "cbTbRdShowPatternImage", 'S'},
        {88, "tfTbRdPatternPath", 'B'},
        {89, "tfTbRdPatternScale", 'T'},
        {90, "pubTbRdPatternOpacity", 'I'},
        {91, "cbPgMagnifyHooverEffectState", 'S'},
        {92, "pubPhotoRatio", 'I'},
        {93, "pubThumbAction", 'I'},
        {94, "tfNSColorWellObjRDLightboxBgColor", 'T'},
        {95, "sliderLightboxRDBgColorOpacity", 'L'},
    };
    return rows;
}

inline const std::vector<Row>& slideshowTable() {
    static const std::vector<Row> rows = {
        {3, "tfSsPageName", 'T'},
        {4, "cbSsWebPageTitle", 'F'},
        {5, "tfSsWebPageTitle", 'T'},
        {6, "cbSsTitle", 'F'},
        {7, "tvSsTitle", 'V'},
        {8, "tfSsHTMLTitleFontColor", 'T'},
        {9, "pubSsHTMLTitleFontStyle", 'I'},
        {10, "pubSsHTMLTitleFontSize", 'I'},
        {11, "scSsHTMLTitleTxtAlign", 'G'},
        {12, "pubSsHTMLTitleFontFamily", 'I'},
        {14, "pubSsFileNameWeight", 'I'},
        {15, "pubSsFileNameSize", 'I'},
        {16, "scSsFileNameTxtAlign", 'G'},
        {17, "tfSsFileNameFontColor", 'T'},
        {18, "cbSsExifUC", 'F'},
        {19, "tfSsImageWidth", 'T'},
        {20, "tfSsImageHeight", 'T'},
        {21, "tfHTMLdestinationFolder", 'B'},
        {22, "tfSsInterval", 'T'},
        {23, "cbSsAutorun", 'F'},
        {24, "tfSsBackgroundColor", 'T'},
        {25, "pubSlideTemplateChoice", 'I'},
        {26, "tfSsMetaDataValueSep", 'T'},
        {27, "pubSsMetaData", 'I'},
        {28, "tfSsMetaDataToShow", 'T'},
        {29, "cbSsResponsive", 'F'},
        {30, "cbSsShowPhotoCount", 'F'},
        {31, "cbSsShowNavigationBtn", 'F'},
        {32, "cbSsShowDots", 'F'},
        {33, "cbSsFadeInOut", 'F'},
        {34, "cbSsShowShadow", 'F'},
        {37, "cbSsShowPatternImage", 'S'},
        {38, "tfSsPatternPath", 'B'},
        {39, "tfSsPatternScale", 'T'},
        {40, "pubSsPatternOpacity", 'I'},
        {41, "pubSsDotAppearance", 'I'},
        {42, "tfSsHTMLDotColor", 'T'},
    };
    return rows;
}

inline const std::vector<Row>& gridTable() {
    static const std::vector<Row> rows = {
        {3, "tfPageName", 'T'},
        {4, "cbRgWebPageTitle", 'F'},
        {5, "tfRgWebPageTitle", 'T'},
        {6, "cbRgDescription", 'F'},
        {7, "tvRgDescription", 'V'},
        {8, "tfRgHTMLDescriptionFontColor", 'T'},
        {9, "pubRgHTMLDescriptionFontStyle", 'I'},
        {10, "pubRgHTMLDescriptionFontSize", 'I'},
        {11, "scRgHTMLDescriptionTxtAlign", 'G'},
        {12, "pubRgHTMLDescriptionFontFamily", 'I'},
        {13, "tfRgBackgroundColor", 'T'},
        {14, "pubRgFileNameWeight", 'I'},
        {15, "pubRgFileNameSize", 'I'},
        {16, "scRgFileNameTxtAlign", 'G'},
        {17, "tfRgFileNameFontColor", 'T'},
        {18, "cbRgExifUC", 'F'},
        {19, "tfRgMetaDataValueSep", 'T'},
        {20, "", 'Z'},
        {21, "tfHTMLdestinationFolder", 'B'},
        {22, "tfRgMetaDataToShow", 'T'},
        {23, "tfRgMaxColumns", 'T'},
        {24, "pubRespDesignTemplateChoice", 'I'},
        {27, "cbRgShowPatternImage", 'S'},
        {28, "tfRgPatternPath", 'B'},
        {29, "tfRgPatternScale", 'T'},
        {30, "pubRgPatternOpacity", 'I'},
        {31, "cbMagnifyHooverEffect", 'S'},
        {32, "tfNSColorWellObjRGLightboxBgColor", 'T'},
        {33, "sliderLightboxRGBgColorOpacity", 'L'},
    };
    return rows;
}

// Skips a test of a kind whose controls are not part of this build yet.
#define SKIP_WITHOUT_KIND(kind)                                                   \
    if (OutputKinds::registry().controls(kind).isEmpty())                         \
    GTEST_SKIP() << "the " kind                                                   \
                    " controls are not registered in this build; this test runs " \
                    "once they are"

// Settings with a value in every control of the table that differs from its default and from
// the other controls' values; `expected` gets each field's text as the table's encoding writes
// it (bookmark fields: the path the bookmark must hold).
inline SettingsStore distinctSettings(const std::vector<Row>& table, const QString& scratch,
                                      QHash<int, QString>* expected) {
    SettingsStore store(OutputKinds::registry());
    QHash<QString, QString> expectedByControl;
    for (const Row& row : table) {
        if (row.encoding == 'Z') {
            (*expected)[row.field] = QStringLiteral("0");
            continue;
        }
        const ControlSpec* control = store.registry().find(row.control);
        EXPECT_TRUE(control) << "no control " << row.control;
        if (!control) continue;
        if (expectedByControl.contains(control->name)) {  // a control stored twice
            (*expected)[row.field] = expectedByControl[control->name];
            continue;
        }
        const QString n = QString::number(row.field);
        QString value, text;
        const int count = int(control->items.size());
        const int defaultIndex = store.index(control->name);
        switch (row.encoding) {
            case 'N':
                value = text = QString::number(100 + row.field);
                break;
            case 'T':
                if (control->kind == ControlKind::Color)
                    value = QStringLiteral("A%1").arg(row.field, 5, 10, QLatin1Char('0'));
                else if (control->kind == ControlKind::Number)
                    value = QString::number(200 + row.field);
                else
                    value = QStringLiteral("t") + n;
                text = value;
                break;
            case 'V':
                value = text = QStringLiteral("Heading %1\nsecond line").arg(n);
                break;
            case 'F':
            case 'S':
                value = text =
                    store.isOn(control->name) ? QStringLiteral("0") : QStringLiteral("1");
                break;
            case 'P':
                text = control->items.value((defaultIndex + 1) % std::max(count, 1));
                value = text;
                break;
            case 'I':
            case 'G': {
                const int index = count > 0
                                      ? (defaultIndex + 1) % count
                                      : (defaultIndex + 1 > control->maximum ? control->minimum
                                                                             : defaultIndex + 1);
                value = text = QString::number(index);
                break;
            }
            case 'L': {
                const int whole = control->minimum + 1 + row.field % 50;
                value = QString::number(whole) + QStringLiteral(".9");
                text = QString::number(whole);
                break;
            }
            case 'B': {
                const bool folder = QString::fromLatin1(row.control).contains("Folder");
                const QString path = scratch + (folder ? "dest" + n : "pattern" + n + ".png");
                if (folder) {
                    QDir().mkpath(path);
                } else {
                    QFile file(path);
                    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
                }
                value = folder ? path + u'/' : path;
                text = path;
                break;
            }
        }
        if (row.encoding == 'L' || row.encoding == 'B')
            store.setText(control->name, value);
        else
            EXPECT_TRUE(store.set(control->name, value))
                << row.control << " = " << qPrintable(value);
        (*expected)[row.field] = text;
        expectedByControl[control->name] = text;
    }
    return store;
}

// The path a bookmark text holds when it still resolves ("" otherwise).
inline QString bookmarkPath(const QString& text) {
    const QUrl url = KLbookmarks::urlForBookmark(cNSStringHandling::hConvertNSstrToNSd(text));
    return url.isEmpty() ? QString() : url.toLocalFile();
}

// The column of a preset field.
inline QString column(int field) {
    if (field == 0) return QStringLiteral("NameOfPreset");
    if (field == 1) return QStringLiteral("Process");
    if (field == 2) return QStringLiteral("Action");
    return QStringLiteral("StrField") + QString::number(field);
}

// Rows as the sqlite3 program reads them, by column name, each value as text (numbers in
// SQLite's own text form, null as "<null>").
inline QList<QHash<QString, QString>> sqliteRows(const QString& db, const QString& sql) {
    QString out, err;
    EXPECT_EQ(testsupport::runProgram("sqlite3", {"-json", db, sql}, &out, &err), 0)
        << err.toStdString();
    QList<QHash<QString, QString>> rows;
    for (const QJsonValue& value : QJsonDocument::fromJson(out.toUtf8()).array()) {
        QHash<QString, QString> row;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it) {
            const QJsonValue v = it.value();
            if (v.isDouble()) {
                const double d = v.toDouble();
                row[it.key()] =
                    d == std::floor(d) ? QString::number(qint64(d)) : QString::number(d, 'g', 15);
            } else {
                row[it.key()] = v.isNull() ? QStringLiteral("<null>") : v.toString();
            }
        }
        rows.append(row);
    }
    return rows;
}

}  // namespace presetfixtures
