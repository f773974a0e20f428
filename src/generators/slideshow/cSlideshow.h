#pragma once

#include <QString>
#include <QStringList>

#include "collection/PhotoCollection.h"
#include "generators/common/GeneratorRun.h"
#include "generators/slideshow/SlideshowCss.h"

class ControlRegistry;
class SettingsStore;
class UserInterface;

// Everything a slideshow run reads from its settings snapshot.
struct SlideshowSettings {
    int templateIndex = 0;  // 0 and 1 the classic page, 2 the slider
    QString pageName;       // the page file name without ".html"
    bool webPageTitle = false;
    QString webPageTitleText;
    bool heading = false;
    QString headingText;  // may hold markup: written as it stands
    bool captions = false;
    QString captionItems;
    QString captionSeparator;
    bool responsive = false;
    bool photoCount = false;
    bool buttons = false;
    bool dots = false;
    bool autorun = false;
    bool fade = false;
    bool pattern = false;
    QString imageWidth;  // pixels, as text
    QString imageHeight;
    QString interval;         // seconds, as text
    QString patternSource;    // the pattern image to copy, "" for none
    QString patternFileName;  // its name in KLovPatterns/
    SlideshowCssArgs css;
};

// The Slideshow generator: one page showing one photo at a time, either the classic page (a
// script, buttons, dots, a counter, captions) or the slider (a CSS animation alone), with its
// stylesheet and one slide image per photo. Headless and callable from any thread; it reaches
// the user only through UserInterface.
//
// The slideshow panel carries the caption weight of its last run into the next, which a caption
// weight of "Light" leaves in place (see readSettings): RunResult::carried to RunOptions::carried.
class cSlideshow {
  public:
    static void registerControls(ControlRegistry& registry);

    // A run of these settings and photos into `options.destination` after the panel's previous
    // run (`options.carried`), as the run driver walks it.
    static SitePlan plan(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                         const RunOptions& options);

    // The run of the page kind chosen by pubSsTemplateChoice: 0 and 1 the classic page, 2 the
    // slider; any other index writes nothing (and is not ok).
    static RunResult hCreateSlideShow(const QList<PhotoEntry>& photos,
                                      const SettingsStore& snapshot, UserInterface& ui,
                                      const RunOptions& options);

    // After the buttons box changed: a show without buttons runs by itself.
    static void hCheckVisebility(SettingsStore& settings);
    // After the autorun box changed: a show that does not run by itself has buttons.
    static void hCheckAutorun(SettingsStore& settings);
    // After an edit in the window: keeps a way of moving between slides (neither turns a box off).
    static void settingEdited(SettingsStore& settings, const QString& name);

    // --- Stages, public for the tests.

    // The settings of a run. When the caption weight is "Light", 300 goes into the heading weight
    // and the caption weight stays `previousCaptionWeight`, that of the panel's previous run
    // (empty on a first run); kept on purpose.
    static SlideshowSettings readSettings(const SettingsStore& settings, const QString& destination,
                                          const QString& previousCaptionWeight = {});
    // The classic page and its stylesheet for `photos` with their captions. Pure.
    static QList<PageFile> classicTexts(const SlideshowSettings& settings,
                                        const QList<PhotoEntry>& photos,
                                        const QStringList& captions);
    // The slider page and its stylesheet. Pure.
    static QList<PageFile> sliderTexts(const SlideshowSettings& settings,
                                       const QList<PhotoEntry>& photos);
    // The slide image of a photo: base name + ".jpeg".
    static QString slideName(const QString& photoPath);
    // Makes the slide of one photo, covering the box and keeping its centre, as a JPEG at
    // `outputPath`; returns what failed as "path: reason".
    static QStringList hMakeSlide(const QString& photoPath, const QString& boxWidth,
                                  const QString& boxHeight, const QString& outputPath);
    // The folders of a slideshow under its destination.
    static const QStringList& folders();
};
