#include "generators/common/GeneratorRun.h"

#include "collection/PhotoCollection.h"
#include "generators/common/ImageWorkers.h"
#include "generators/common/OutputFolder.h"
#include "generators/common/RunManifest.h"
#include "services/UserInterface.h"

namespace {

// The stop of a run that wrote nothing.
RunResult refused(UserInterface& ui, const RunAlert& alert, RunResult result) {
    ui.alert(alert.title, alert.description, true);
    ui.progressStop();
    return result;
}

}  // namespace

RunResult runSite(const SitePlan& plan, const QList<PhotoEntry>& photos, UserInterface& ui,
                  const RunOptions& options) {
    RunResult result;
    ui.progressStart();
    ui.progressStep(0.2);
    result.firstPage = options.destination + plan.firstPage;
    result.carried = plan.carried;
    ui.progressStep(0.2);

    // Refusals, before anything is written; nothing may be written over a photo of the run.
    const SupportFiles& support = plan.support;
    if (plan.refusal) return refused(ui, *plan.refusal, result);
    if (const QString inside =
            OutputFolder::photoInside(options.destination, support.folders, photos);
        !inside.isEmpty())
        return refused(
            ui,
            {QStringLiteral("Sorry, a photo lies where the %1 is written.").arg(plan.kind), inside},
            result);
    for (const RunAlert& warning : plan.warnings)
        ui.alert(warning.title, warning.description, false);
    ui.progressStep(0.2);

    // Captions (read in photo order with one metadata reader) and the page texts.
    const CaptionRequest& request = plan.captions;
    const QList<PageFile> pages =
        plan.pages(photos, CaptionBuilder::captions(request.shown, request.items, request.separator,
                                                    request.fileName, photos));
    ui.progressStep(0.2);

    // What the run writes; with `clean` what earlier runs wrote besides goes first.
    QStringList keys, paths, planned;
    QList<QStringList> images;
    for (const PhotoEntry& photo : photos) {
        paths.append(photo.url.toLocalFile());
        const PhotoImages made = plan.images(paths.last());
        keys.append(made.key);
        images.append(made.files);
        planned += made.files;
    }
    for (const PageFile& page : pages) planned.append(page.path);
    if (!support.lightboxFolder.isEmpty())
        for (const QString& name : OutputFolder::lightboxFiles())
            planned.append(support.lightboxFolder + name);
    if (!support.patternSource.isEmpty()) planned.append(support.patternPath);
    OutputFolder out(options.destination);
    RunManifest manifest(plan.kind, options, ui);
    manifest.removeEarlierFiles(planned, out);

    // Output folder.
    out.createFolders(support.folders);
    if (!support.lightboxFolder.isEmpty()) out.copyLightboxFiles(support.lightboxFolder);
    if (!support.patternSource.isEmpty())
        out.copyPattern(support.patternSource, support.patternPath);

    // Images, on every core, those unchanged since an earlier run kept; progress in photo order.
    out.addFailures(ImageWorkers::makeAll(
        keys, paths, options.threads,
        manifest.keepingUnchanged(paths, images, RunManifest::settingsHash(plan.imageSettings),
                                  [&](int i) { return plan.makeImages(paths[i]); }),
        ui, plan.photoStep ? plan.photoStep(photos.size()) : double(98 / photos.size()),
        &result.unfinished));
    result.cancelled = !result.unfinished.isEmpty();

    // Pages, unless a cancel left images out that they would link.
    if (!result.cancelled) {
        ui.progressStep(0.2);
        for (const PageFile& page : pages) out.writeText(page.path, page.text, page.pageIcon);
    }
    manifest.save(out);
    if (options.openFirstPage && !result.cancelled) out.openPage(plan.firstPage, ui);
    ui.progressStep(0.2);
    ui.progressStop();
    result.failures = out.failures();
    result.ok = true;
    return result;
}
