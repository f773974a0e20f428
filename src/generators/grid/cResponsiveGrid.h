#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "collection/PhotoCollection.h"
#include "generators/common/GeneratorRun.h"
#include "generators/grid/GridCss.h"

class ControlRegistry;
class SettingsStore;
class UserInterface;

// Everything a Responsive Grid run reads from its settings snapshot.
struct GridSettings {
    QString pageName;  // the page file name without ".html"
    bool showTitle = false;
    QString title;
    bool showDescription = false;
    QString description;  // inserted as it stands: it may hold markup
    QString columnsText;  // tfRGMaxColumns as typed
    int columns = 0;      // its value; 0 when it is not a positive whole number
    bool showCaptions = false;
    QString captionItems;
    QString captionSeparator;
    QString patternSource;    // the pattern image to copy, "" for none
    QString patternFileName;  // its name in KLovPatterns/
    GridCssArgs css;
};

// The Responsive Grid generator: one page of every published photo in a dense CSS grid whose
// highlighted photos take larger cells, opening in a lightbox; its stylesheet and the grid images.
// Headless and callable from any thread; it reaches the user only through UserInterface.
class cResponsiveGrid {
  public:
    static void registerControls(ControlRegistry& registry);

    // A run of these settings and photos, as the run driver walks it.
    static SitePlan plan(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                         const RunOptions& options);

    // The run, in stages: snapshot, refusals, captions and page texts, output folder, images (on
    // every core), stylesheet and page, open.
    static RunResult hCreateResponsiveGrid(const QList<PhotoEntry>& photos,
                                           const SettingsStore& snapshot, UserInterface& ui,
                                           const RunOptions& options);

    // Appends the selected caption item of pubRgMetaData to tfRgMetaDataToShow; clears it.
    static void hRgAddMetaDataValue(SettingsStore& settings);
    static void hRgClearMetaDataValue(SettingsStore& settings);

    // --- Stages, public for the window and the tests.

    static GridSettings readSettings(const SettingsStore& settings, const QString& destination);
    // The stylesheet and the page of `photos` with their captions. Pure.
    static QList<PageFile> pageTexts(const GridSettings& settings, const QList<PhotoEntry>& photos,
                                     const QStringList& captions);
    // The class of a photo's cell: "klovlImage", or for a highlighted photo "klovlImage4"
    // (landscape) or "klovlImage klovlImageVertical" (portrait or square).
    static QString cellClass(const PhotoEntry& photo);
    // The grid image's file name: the photo's base name + ".jpeg".
    static QString outputName(const QString& photoPath);
    // Makes the images of one photo from one decode, each named `outputName` under
    // `destination`: the cell image (960 x 720, the middle of the photo) in KLovImages/, the
    // lightbox's big image (1200 pixels on the longer side) in KLovImages_b/ and its larger one
    // (2400) in KLovImages_b2x/, neither enlarged. Returns what failed as "path: reason".
    static QStringList hMakeGridImage(const QString& photoPath, const QString& destination,
                                      const QString& outputName);
    // The value of a maximum column count as typed: a whole number of at least 1, else 0.
    static int columnCount(const QString& text);
    // The folders of a grid under its destination.
    static const QStringList& folders();
};
