#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "generators/common/CaptionBuilder.h"

class UserInterface;
struct PhotoEntry;

// How a run of any output kind is asked for.
struct RunOptions {
    QString destination;  // the output folder, ending with "/"
    int threads = 0;      // image workers; 0: one per core. The pages never depend on it.
    bool openFirstPage = false;
    bool clean = false;    // remove the files earlier runs wrote that this run does not write again
    bool rebuild = false;  // make every image again, even those that are unchanged
    // What a kind's panel carries from one of its runs to the next (RunResult::carried of the
    // previous run); empty for a first run.
    QHash<QString, QString> carried = {};
};

// The outcome of a run.
struct RunResult {
    bool ok = false;         // false: an alert stopped the run before anything was written
    bool cancelled = false;  // the user cancelled: no page was written; `unfinished` names the
                             // photos whose images were not made
    QString firstPage;       // the path of the page a browser opens first
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
};

// The images of one photo.
struct PhotoImages {
    QString key;        // photos of equal keys (in any case) are made in order by one worker
    QStringList files;  // their paths under the output folder
};

// What an output kind answers for one run. A kind builds one of these from the settings snapshot
// and the output folder at the start of each run; `runSite` asks it, stage by stage, for what
// differs between the kinds. Nothing here writes a file.
class SiteGenerator {
  public:
    virtual ~SiteGenerator() = default;

    // "gallery", "slideshow", "grid": the run record's kind and the word the alerts use.
    virtual QString kind() const = 0;
    // The page a browser opens first, relative to the output folder.
    virtual QString firstPage() const = 0;
    // Why these settings and photos give no run, before anything is written.
    virtual std::optional<RunAlert> refusal(const QList<PhotoEntry>& photos) const = 0;
    // What the user should know while the run goes on.
    virtual QList<RunAlert> warnings(const QList<PhotoEntry>& photos) const {
        (void)photos;
        return {};
    }
    // Which captions the pages show.
    virtual CaptionRequest captionRequest() const = 0;
    // The pages and stylesheets, in the order they are written. Pure.
    virtual QList<PageFile> pages(const QList<PhotoEntry>& photos,
                                  const QStringList& captions) const = 0;
    virtual SupportFiles supportFiles() const = 0;
    virtual PhotoImages images(const QString& photoPath) const = 0;
    // The values the images depend on besides their photo: a change makes them again.
    virtual QStringList imageSettings() const = 0;
    // Makes the images of one photo; returns what failed as "path: reason". Called on workers.
    virtual QStringList makeImages(const QString& photoPath) const = 0;
    // The progress step after each photo.
    virtual double photoStep(qsizetype photos) const { return double(98 / photos); }
    // What the next run of this panel starts from.
    virtual QHash<QString, QString> carried() const { return {}; }
};

// The run of any kind, in stages: refusals, warnings, captions and page texts, the plan of files
// (removing what earlier runs wrote with `clean`), output folder, images on every core, pages, the
// run record, open. A cancel writes no page.
RunResult runSite(const SiteGenerator& generator, const QList<PhotoEntry>& photos,
                  UserInterface& ui, const RunOptions& options);
