#include "presets/WatermarkControls.h"

#include "presets/ControlRegistry.h"
#include "presets/SettingsStore.h"

// The controls of the watermark panel (output kind "watermark"). Defaults give a readable stamp:
// white text at half opacity with a soft shadow in the lower-right corner. The font list is the
// system's; nothing is chosen at first, so the stamp uses (and then selects) the second font.

namespace {

const QString kWatermark = QStringLiteral("watermark");

QStringList positions() {
    return {"top left", "top",         "top right", "left",        "centre",
            "right",    "bottom left", "bottom",    "bottom right"};
}

QColor colourOf(const SettingsStore& store, const QString& name) {
    return QColor(u'#' + store.text(name));
}

}  // namespace

void registerWatermarkControls(ControlRegistry& registry) {
    ControlAdder r{registry, kWatermark, {}};
    using K = ControlKind;

    r.section = "Text";
    // The panel's single-line field edits the same text.
    r.add("tvWaterMarkText", "Text", K::TextView, QStringLiteral("© Orvella"), {"tfWaterMarkText"});
    r.add("cbFontList", "Font", K::PopupTitle, "", {}, KLWatermark::fontFamilies());
    // Also the width of the image stamp.
    r.add("tfFontSize", "Size (points; image width)", K::Number, "24");
    r.add("cwFontColor", "Colour", K::Color, "FFFFFF");
    r.add("tfFontTransparancy", "Opacity (%)", K::Number, "50");
    r.add("scWaterMarkPos", "Position", K::Segmented, "8", {}, positions());
    r.add("tfXOffset", "Offset X", K::Number, "0");
    r.add("tfYOffset", "Offset Y", K::Number, "0");
    r.add("tfWMAngle", "Angle (degrees)", K::Number, "0");
    r.add("cbShadowCheck", "Shadow", K::Checkbox, "1");
    r.add("cwShadowColor", "Shadow colour", K::Color, "000000");
    r.add("tfTextShadowXOffset", "Shadow offset X", K::Number, "2");
    r.add("tfTextShadowYOffset", "Shadow offset Y", K::Number, "-2");
    r.add("tfTextShadowRadius", "Shadow blur", K::Number, "2");

    r.section = "Image";
    r.add("tfWaterMarkImageFilePath", "Watermark image", K::Path, "");
    r.add("scImageWaterMarkPos", "Position", K::Segmented, "8", {}, positions());
    // On the panel, but the stamp takes its size from the text's size field.
    r.add("tfImageSize", "Image size (not used)", K::Number, "24");
    r.add("tfImageXOffset", "Offset X", K::Number, "0");
    r.add("tfImageYOffset", "Offset Y", K::Number, "0");
    r.add("tfImageWMAngle", "Angle (degrees)", K::Number, "0");
    r.add("tfImageTransparancy", "Opacity (%)", K::Number, "50");
    r.add("cbImageShadowCheck", "Shadow", K::Checkbox, "0");
    r.add("cwImageShadowColor", "Shadow colour", K::Color, "000000");
    r.add("tfImageShadowXOffset", "Shadow offset X", K::Number, "2");
    r.add("tfImageShadowYOffset", "Shadow offset Y", K::Number, "-2");
    r.add("tfImageShadowRadius", "Shadow blur", K::Number, "2");
    r.add("pubRenderMethod", "Rendering", K::PopupIndex, "0", {}, {"Smooth", "Pixelated"});
}

WatermarkSettings watermarkSettingsFrom(const SettingsStore& store) {
    WatermarkSettings s;
    s.text = store.text("tvWaterMarkText");
    s.fontList = store.registry().find("cbFontList")->items;
    s.font = store.text("cbFontList");
    s.fontSize = store.integer("tfFontSize");
    s.fontColor = colourOf(store, "cwFontColor");
    s.fontTransparency = store.integer("tfFontTransparancy");
    s.position = store.integer("scWaterMarkPos");
    s.xOffset = store.integer("tfXOffset");
    s.yOffset = store.integer("tfYOffset");
    s.angle = store.integer("tfWMAngle");
    s.shadow = store.isOn("cbShadowCheck");
    s.shadowColor = colourOf(store, "cwShadowColor");
    s.shadowXOffset = store.integer("tfTextShadowXOffset");
    s.shadowYOffset = store.integer("tfTextShadowYOffset");
    s.shadowRadius = store.integer("tfTextShadowRadius");

    s.imagePath = store.text("tfWaterMarkImageFilePath");
    s.imagePosition = store.integer("scImageWaterMarkPos");
    s.imageXOffset = store.integer("tfImageXOffset");
    s.imageYOffset = store.integer("tfImageYOffset");
    s.imageAngle = store.integer("tfImageWMAngle");
    s.imageTransparency = store.integer("tfImageTransparancy");
    s.imageShadow = store.isOn("cbImageShadowCheck");
    s.imageShadowColor = colourOf(store, "cwImageShadowColor");
    s.imageShadowXOffset = store.integer("tfImageShadowXOffset");
    s.imageShadowYOffset = store.integer("tfImageShadowYOffset");
    s.imageShadowRadius = store.integer("tfImageShadowRadius");
    s.renderMethod = store.index("pubRenderMethod");
    return s;
}
