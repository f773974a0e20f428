#include "generators/OutputKinds.h"

#include "generators/gallery/cResponsiveDesign.h"
#include "generators/slideshow/cSlideshow.h"
#include "generators/grid/cResponsiveGrid.h"
#include "presets/ControlRegistry.h"
#include "presets/WatermarkControls.h"

namespace OutputKinds {

const QList<OutputKind>& all() {
    static const QList<OutputKind> kinds = {
        {.name = QStringLiteral("gallery"),
         .title = QStringLiteral("Photo Gallery"),
         .action = QStringLiteral("Create Photo Gallery"),
         .registerControls = &cResponsiveDesign::registerControls,
         .run = &cResponsiveDesign::hCreateResponsiveHTML,
         .settingEdited = &cResponsiveDesign::settingEdited,
         .captionItemControl = QStringLiteral("pubPgMetaData"),
         .captionListControl = QStringLiteral("tfPgMetaDataToShow"),
         .captionSection = QStringLiteral("Captions"),
         .destinationControl = QStringLiteral("tfHTMLdestinationFolder"),
         .usesHighlight = false},
        {.name = QStringLiteral("slideshow"),
         .title = QStringLiteral("Slideshow"),
         .action = QStringLiteral("Create Slideshow"),
         .registerControls = &cSlideshow::registerControls,
         .run = &cSlideshow::hCreateSlideShow,
         .settingEdited = &cSlideshow::settingEdited,
         .captionItemControl = QStringLiteral("pubSsMetaData"),
         .captionListControl = QStringLiteral("tfSsMetaDataToShow"),
         .captionSection = QStringLiteral("Captions"),
         // The output folder setting is one for every kind, as the preset layouts store it.
         .destinationControl = QStringLiteral("tfHTMLdestinationFolder"),
         .usesHighlight = false},
        {.name = QStringLiteral("grid"),
         .title = QStringLiteral("Responsive Grid"),
         .action = QStringLiteral("Create Responsive Grid"),
         .registerControls = &cResponsiveGrid::registerControls,
         .run = &cResponsiveGrid::hCreateResponsiveGrid,
         .captionItemControl = QStringLiteral("pubRgMetaData"),
         .captionListControl = QStringLiteral("tfRgMetaDataToShow"),
         .captionSection = QStringLiteral("Captions"),
         .destinationControl = QStringLiteral("tfHTMLdestinationFolder"),
         .usesHighlight = true},
    };
    return kinds;
}

const OutputKind* find(const QString& name) {
    for (const OutputKind& kind : all())
        if (kind.name == name) return &kind;
    return nullptr;
}

QString names() {
    QStringList list;
    for (const OutputKind& kind : all()) list.append(kind.name);
    return list.join(QStringLiteral(", "));
}

const ControlRegistry& registry() {
    static const ControlRegistry registry = [] {
        ControlRegistry r;
        for (const OutputKind& kind : all()) kind.registerControls(r);
        // The watermark panel's controls: a fourth kind of settings, though not an output kind.
        registerWatermarkControls(r);
        return r;
    }();
    return registry;
}

}  // namespace OutputKinds
