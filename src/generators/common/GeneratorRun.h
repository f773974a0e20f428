#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <utility>

#include "generators/common/CaptionBuilder.h"

class SettingsStore;
class UserInterface;
struct PhotoEntry;

// How a run of any output kind is asked for.
struct RunOptions {
    QString destination;  // the output folder, ending with "/"
    int threads = 0;      // image workers; 0: one per core. The pages never depend on it.
    bool openFirstPage = false;
    bool clean = false;    // remove the files earlier runs wrote that this run does not write again
    bool rebuild = false;  // make every image again, even those that are unchanged
    bool waitForLock = true;  // false: refuse at once while another run writes into the folder
    // Decoded pixels in flight, in bytes: a worker waits rather than go beyond it (a photo larger
    // than the budget is made alone).
    qint64 memoryBudget = kDefaultMemoryBudget;
    static constexpr qint64 kDefaultMemoryBudget = 640LL << 20;
    // What a kind's panel carries from one of its runs to the next (RunResult::carried of the
    // previous run); empty for a first run.
    QHash<QString, QString> carried = {};
};

// The outcome of a run.
struct RunResult {
    bool ok = false;         // false: an alert stopped the run before anything was written
    bool cancelled = false;  // the user cancelled: no page was written; `unfinished` names the
                             // photos whose images were not made
    QString firstPage;       // the path of the page a browser opens first; "" when no page of
                             // this run is there
    QStringList failures;    // "path: reason" for each file that could not be read or written
    QStringList unfinished;  // photos left out by a cancel
    QHash<QString, QString> carried;  // for the next run of the same panel
};

// An alert of a run: one that stops it before anything is written, or a warning.
struct RunAlert {
    QString title;
    QString description;
};

// A page or stylesheet of a run: its path under the output folder and its text.
struct PageFile {
    QString path;
    QString text;
    bool pageIcon = true;  // false for stylesheets
};

// The files a kind needs besides its pages and images.
struct SupportFiles {
    QStringList folders;     // made under the output folder, such as "KLimages_b/"
    QString lightboxFolder;  // where the lightbox files go, such as "KLovlightbox/"; "" for none
    QString patternSource;   // the pattern image to copy, "" for none
    QString patternPath;     // its path under the output folder
    // Files of the program's resources written as they are: (resource such as
    // ":/slideshow/klovlSlideshow.js", its path under the output folder).
    QList<std::pair<QString, QString>> resources = {};
};

// The images of one photo.
struct PhotoImages {
    QString key;        // photos of equal keys (in any case) are made in order by one worker
    QStringList files;  // their paths under the output folder
};

// One run of an output kind as the kind plans it from the settings snapshot, the photos and the
// output folder: what differs between the kinds. `runSite` walks the stages and asks the plan at
// each. Nothing here writes a file.
struct SitePlan {
    QString kind = {};  // "gallery", "slideshow", "grid": the run record's kind, the alerts' word
    QString firstPage = {};  // the page a browser opens first, relative to the output folder
    std::optional<RunAlert> refusal = {};  // why no run can be made, before anything is written
    QList<RunAlert> warnings = {};         // what the user should know while the run goes on
    CaptionRequest captions = {};          // which captions the pages show
    // The pages and stylesheets of the photos with their captions, in the order they are
    // written. Pure.
    std::function<QList<PageFile>(const QList<PhotoEntry>&, const QStringList& captions)> pages =
        {};
    SupportFiles support = {};
    std::function<PhotoImages(const QString& photoPath)> images = {};
    // The values the images depend on besides their photo: a change makes them again.
    QStringList imageSettings = {};
    // Makes the images of one photo; returns what failed as "path: reason". Called on workers.
    std::function<QStringList(const QString& photoPath)> makeImages = {};
    // The progress step after each photo; by default 98 / photos in whole numbers.
    double (*photoStep)(qsizetype photos) = nullptr;
    QHash<QString, QString> carried = {};  // what the next run of this panel starts from
};

// The run of any kind, in stages: photos that cannot be read left out, refusals, warnings, the
// folder's lock, captions and page texts, the plan of files (removing what earlier runs wrote with
// `clean`), output folder, images on every core, pages of the photos whose images were made, the
// run record, open. A cancel writes no page. `planOf` is the kind's plan for the photos it gets.
RunResult runSite(const std::function<SitePlan(const QList<PhotoEntry>& photos)>& planOf,
                  const QList<PhotoEntry>& photos, UserInterface& ui, const RunOptions& options);

// A kind's plan of a run: what `runSite` asks, from the settings snapshot and the photos.
using PlanOfRun = SitePlan (*)(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                               const RunOptions& options);
// The run of the kind whose plan is `plan`: `runSite` with the plan of the photos it can read.
RunResult runPlanned(PlanOfRun plan, const QList<PhotoEntry>& photos, const SettingsStore& snapshot,
                     UserInterface& ui, const RunOptions& options);
