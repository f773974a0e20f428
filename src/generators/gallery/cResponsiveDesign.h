#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "collection/PhotoCollection.h"

class SettingsStore;
class UserInterface;
class mMeta;

// The outcome of a Photo Gallery run.
struct GalleryResult {
    bool ok = false;    // false: an alert stopped the run before anything was written
    QString firstPage;  // destination + page base name + ".html" (may not exist: see pageCount)
};

// How one derivative (thumbnail or big image) of every photo is made, read once per run.
struct DerivativeSettings {
    int size = 0;  // the larger of the crop width and height
    int cropWidth = 0;
    int cropHeight = 0;
    int cropPosition = 4;
    QString frameColor;  // hex
    int frameWidth = 0;
    QString format;
    QString compression;
};

struct GalleryImageSettings {
    QString destination;
    int thumbAction = 0;  // pubThumbAction index
    DerivativeSettings thumb;
    DerivativeSettings big;
};

// The Photo Gallery generator: a folder of thumbnail pages with a lightbox, a stylesheet and a
// redirecting index.html. Headless and callable from any thread; it reaches the user only through
// UserInterface.
class cResponsiveDesign {
  public:
    // The whole run into `destination` (a folder path ending in "/"). `threads` image workers run
    // in parallel (0: one per core); pages, captions and stylesheet do not depend on it. The first
    // page is opened through `ui` only when `openFirstPage` is set.
    static GalleryResult hCreateResponsiveHTML(const QString& destination,
                                               const QList<PhotoEntry>& photos,
                                               const SettingsStore& snapshot, UserInterface& ui,
                                               int threads = 0, bool openFirstPage = false);

    // Keeps tfSmallCropHeight in step with tfSmallCropWidth by the ratio of pubPhotoRatio.
    static void hPhotoRatioCalc(SettingsStore& settings);
    // Appends the selected caption item of pubPgMetaData to tfPgMetaDataToShow; clears it.
    static void hPgAddMetaDataValue(SettingsStore& settings);
    static void hPgClearMetaDataValue(SettingsStore& settings);

    // Lays out the folder tree and copies the lightbox files (never overwriting), then the pattern.
    static void hCreateFolderStructure(const QString& destination, const QString& patternFileName,
                                       const SettingsStore& settings);
    static void hCreateIndexRedirectHTML(const QString& baseName, const QString& destination);
    static QString indexRedirectText(const QString& baseName);

    // Makes the thumbnail and the big image of one photo; returns its name without extension.
    static QString hScaleImageMaxValueHTML(const QString& photoPath,
                                           const GalleryImageSettings& image,
                                           const SettingsStore& settings);

    // Pieces of the run, public for the window and the tests.
    static QString pageBaseName(const QString& fileNameSetting);
    static QString pageFileName(const QString& baseName, int page);
    // Pages for `photos` photos at `perPage` a page: an exact multiple gives 0, kept on purpose.
    static int pageCount(int photos, int perPage);
    static QStringList widthList(int columns);
    // "300" .. "900" for a weight title.
    static QString weight(const QString& title);
    // The file-name weight, tested against the already mapped heading weight: kept on purpose.
    static QString fileNameWeight(const QString& fileNameTitle, const QString& mappedTitleWeight);
    static QString alignment(int segment);
    static QString webFontLink(const QString& family);
    // The caption of one photo from the items of tfPgMetaDataToShow.
    static QString caption(const PhotoEntry& photo, const SettingsStore& settings, mMeta& meta);
    // & < > " ' as entities.
    static QString htmlEscaped(const QString& text);
};
