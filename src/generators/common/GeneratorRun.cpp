#include "generators/common/GeneratorRun.h"

#include <QDir>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentMap>
#include <vector>

#include "collection/PhotoCollection.h"
#include "generators/common/ImageWorkers.h"
#include "generators/common/OutputFolder.h"
#include "generators/common/RunManifest.h"
#include "imaging/KLImageHandling.h"
#include "services/FolderLock.h"
#include "services/UserInterface.h"

namespace {

// The stop of a run that wrote nothing.
RunResult refused(UserInterface& ui, const RunAlert& alert, RunResult result) {
    ui.alert(alert.title, alert.description, true);
    ui.progressStop();
    return result;
}

// What a photo's header says before anything is planned, read once: the makers are answered from
// it (PhotoDecoder::RememberedHeaders).
PhotoHeader headerOf(const QString& path) {
    PhotoHeader header;
    if (!KLImageHandling::isSupportedSource(path, &header.fault)) return header;
    return PhotoDecoder::header(path);
}

// Decoded bytes of the photo in 8-bit RGB(A), as the images are made.
qint64 bytesOf(const PhotoHeader& header) {
    return qint64(header.width) * header.height * 4;
}

// The photos whose entry in `keep` is set.
QList<PhotoEntry> kept(const QList<PhotoEntry>& photos, const std::vector<char>& keep) {
    QList<PhotoEntry> list;
    for (qsizetype i = 0; i < photos.size(); ++i)
        if (keep[size_t(i)]) list.append(photos[i]);
    return list;
}

QList<PageFile> pagesOf(const SitePlan& plan, const QList<PhotoEntry>& photos) {
    const CaptionRequest& request = plan.captions;
    return plan.pages(photos,
                      CaptionBuilder::captions(request.shown, request.items, request.separator,
                                               request.fileName, photos));
}

}  // namespace

RunResult runSite(const std::function<SitePlan(const QList<PhotoEntry>&)>& planOf,
                  const QList<PhotoEntry>& requested, UserInterface& ui,
                  const RunOptions& options) {
    RunResult result;
    ui.progressStart();
    ui.progressStep(0.2);
    // A run its settings refuse reads no photo.
    SitePlan plan = planOf(requested);
    result.carried = plan.carried;
    if (plan.refusal) return refused(ui, *plan.refusal, result);

    // Photos whose header shows that no image can be made of them are left out before anything
    // is planned; the headers are read on every core.
    QStringList requestedPaths;
    for (const PhotoEntry& photo : requested) requestedPaths.append(photo.url.toLocalFile());
    const QList<PhotoHeader> headers = QtConcurrent::blockingMapped(requestedPaths, headerOf);
    const PhotoDecoder::RememberedHeaders remembered(requestedPaths, headers);
    std::vector<char> readable(size_t(requested.size()));
    std::vector<qint64> costs;
    QStringList unreadable;
    for (qsizetype i = 0; i < requested.size(); ++i) {
        readable[size_t(i)] = headers[i].fault.isEmpty();
        if (readable[size_t(i)])
            costs.push_back(bytesOf(headers[i]));
        else
            unreadable.append(requested[i].url.toLocalFile() + QStringLiteral(": ") +
                              headers[i].fault);
    }
    const QList<PhotoEntry> photos = kept(requested, readable);
    if (!requested.isEmpty() && photos.isEmpty()) {  // nothing to publish, nothing written
        ui.progressStop();
        result.failures = unreadable;
        result.ok = true;
        return result;
    }
    // The plan counts only the photos that will appear (pages, warnings, the slideshow's counter).
    if (photos.size() != requested.size()) plan = planOf(photos);
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

    // One writer per output folder: a run into a folder another run writes into waits for it.
    QDir().mkpath(options.destination);
    const FolderLock lock(
        options.destination,
        [&](qint64 pid) {
            ui.alert(QStringLiteral("Waiting for another run"),
                     QStringLiteral("Process %1 is writing into %2; this run starts when it ends.")
                         .arg(pid)
                         .arg(options.destination),
                     false);
        },
        options.waitForLock ? std::function<bool()>([&] { return !ui.isCancelled(); }) : nullptr);
    if (!lock.held())
        return refused(
            ui, {QStringLiteral("Sorry, another run is writing into this folder."), lock.reason()},
            result);
    ui.progressStep(0.2);

    // Captions (read in photo order with one metadata reader) and the page texts.
    QList<PageFile> pages = pagesOf(plan, photos);
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
    for (const auto& resource : support.resources) planned.append(resource.second);
    OutputFolder out(options.destination);
    out.addFailures(unreadable);
    RunManifest manifest(plan.kind, options, ui);
    manifest.removeEarlierFiles(planned, out);

    // Output folder.
    out.createFolders(support.folders);
    if (!support.lightboxFolder.isEmpty()) out.copyLightboxFiles(support.lightboxFolder);
    if (!support.patternSource.isEmpty())
        out.copyPattern(support.patternSource, support.patternPath);
    for (const auto& [resource, path] : support.resources) out.writeResource(resource, path);

    // Images, on every core within the memory budget, those unchanged since an earlier run kept;
    // progress in photo order.
    std::vector<char> made(size_t(photos.size()), 1);
    const auto make = manifest.keepingUnchanged(
        paths, images, RunManifest::settingsHash(plan.imageSettings), [&](int i) {
            const QStringList failures = plan.makeImages(paths[i]);
            made[size_t(i)] = failures.isEmpty();
            return failures;
        });
    out.addFailures(ImageWorkers::makeAll(
        keys, paths, options.threads, make, ui,
        plan.photoStep ? plan.photoStep(photos.size()) : double(98 / photos.size()),
        &result.unfinished, costs, options.memoryBudget));
    result.cancelled = !result.unfinished.isEmpty();

    // Pages, unless a cancel left images out that they would link; a photo whose images could not
    // be made is left out of them, as if it had not been published.
    if (!result.cancelled) {
        if (std::find(made.begin(), made.end(), 0) != made.end()) {
            const QList<PhotoEntry> shown = kept(photos, made);
            pages = shown.isEmpty() ? QList<PageFile>() : pagesOf(plan, shown);
        }
        ui.progressStep(0.2);
        for (const PageFile& page : pages) out.writeText(page.path, page.text, page.pageIcon);
        if (out.writtenFiles().contains(plan.firstPage))
            result.firstPage = options.destination + plan.firstPage;
    }
    manifest.save(out);
    if (options.openFirstPage && !result.firstPage.isEmpty()) out.openPage(plan.firstPage, ui);
    ui.progressStep(0.2);
    ui.progressStop();
    result.failures = out.failures();
    result.ok = true;
    return result;
}

RunResult runPlanned(PlanOfRun plan, const QList<PhotoEntry>& photos, const SettingsStore& snapshot,
                     UserInterface& ui, const RunOptions& options) {
    return runSite(
        [&](const QList<PhotoEntry>& readable) { return plan(snapshot, readable, options); },
        photos, ui, options);
}
