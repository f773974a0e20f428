#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "collection/PhotoCollection.h"
#include "generators/common/GeneratorRun.h"
#include "generators/gallery/GalleryCss.h"

class ControlRegistry;
class SettingsStore;
class UserInterface;

// How one derivative (thumbnail or big image) of every photo is made, read once per run.
struct DerivativeSettings {
    int size = 0;  // the larger of the crop width and height
    int cropWidth = 0;
    int cropHeight = 0;
    int cropPosition = 4;
    int shiftX = 0;  // the crop offset fields
    int shiftY = 0;
    QString frameColor = {};  // hex
    int frameWidth = 0;
    QString format = {};
    QString compression = {};
};

struct GalleryImageSettings {
    QString destination;
    int thumbAction = 0;  // pubThumbAction index
    DerivativeSettings thumb;
    DerivativeSettings big;
};

// Everything a gallery run reads from its settings snapshot.
struct GallerySettings {
    bool gridModel = false;
    QString baseName;  // page file name without ".html"
    QString pageTitle;
    QString heading;
    QString gridWidth;
    int columns = 0;
    int rows = 0;
    bool captionScript = false;
    bool showFileName = false;
    bool showMetaData = false;
    QString captionItems;
    QString captionSeparator;
    QString patternSource;    // the pattern image to copy, "" for none
    QString patternFileName;  // its name in KLovPatterns/
    GalleryImageSettings image;
    GalleryCssArgs css;
};

// The Photo Gallery generator: pages of thumbnails with a lightbox, a stylesheet and a
// redirecting index.html. Headless and callable from any thread; it reaches the user only through
// UserInterface.
class cResponsiveDesign {
  public:
    static void registerControls(ControlRegistry& registry);

    // A run of these settings (after hPhotoRatioCalc) and photos, as the run driver walks it.
    static SitePlan plan(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                         const RunOptions& options);

    // The run, in stages: snapshot, page texts, output folder, images (on every core), pages,
    // open.
    static RunResult hCreateResponsiveHTML(const QList<PhotoEntry>& photos,
                                           const SettingsStore& snapshot, UserInterface& ui,
                                           const RunOptions& options);

    // Keeps tfSmallCropHeight in step with tfSmallCropWidth by the ratio of pubPhotoRatio.
    static void hPhotoRatioCalc(SettingsStore& settings);
    // Appends the selected caption item of pubPgMetaData to tfPgMetaDataToShow; clears it.
    static void hPgAddMetaDataValue(SettingsStore& settings);
    static void hPgClearMetaDataValue(SettingsStore& settings);
    // After an edit in the window: the crop height follows the width by the chosen ratio.
    static void settingEdited(SettingsStore& settings, const QString& name);

    // --- Stages, public for the window and the tests.

    // The settings of a run (after hPhotoRatioCalc).
    static GallerySettings readSettings(const SettingsStore& settings, const QString& destination);
    // The stylesheet, the pages and the index page of `photos` with their captions, in the
    // order they are written. Pure.
    static QList<PageFile> pageTexts(const GallerySettings& settings,
                                     const QList<PhotoEntry>& photos, const QStringList& captions);
    // Makes the thumbnail and the big image of one photo from one decode; returns what failed as
    // "path: reason".
    static QStringList hScaleImageMaxValueHTML(const QString& photoPath,
                                               const GalleryImageSettings& image);
    // The settings of the larger big image in kLargeFolder, which the lightbox shows on screens
    // with the pixels for it: the big image's at twice the size, up to the photo's own size.
    static DerivativeSettings largeBig(const DerivativeSettings& big, int width, int height);
    static constexpr const char* kLargeFolder = "KLimages_b2x/";

    static QString indexRedirectText(const QString& baseName);
    static QString pageBaseName(const QString& fileNameSetting);
    static QString pageFileName(const QString& baseName, int page);
    // Pages for `photos` photos at `perPage` a page: an exact multiple gives 0, kept on purpose.
    static int pageCount(int photos, int perPage);
    static QStringList widthList(int columns);
    // The file-name weight, tested against the already mapped heading weight: kept on purpose.
    static QString fileNameWeight(const QString& fileNameTitle, const QString& mappedTitleWeight);
    // The folders of a gallery under its destination.
    static const QStringList& folders();
};
