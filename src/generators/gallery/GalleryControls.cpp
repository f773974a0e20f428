#include "presets/ControlRegistry.h"

// Every setting of the Photo Gallery, with defaults that make a good-looking gallery untouched:
// 4 x 3 thumbnails of 200 x 150 cut at the centre, lightbox images 1200 pixels on their longest
// side (not cropped: the big crop height is 0), JPEG quality 8, Roboto, soft colours.
//
// Names: the name a control is registered under is the one the gallery run reads; the names the
// preset layout, the colour wells and their hex fields use for the same setting are its aliases.

namespace {

const QString kGallery = QStringLiteral("gallery");

QStringList fontSizes() {
    return {"10px", "11px", "12px", "13px", "14px", "15px", "16px", "18px",
            "20px", "22px", "24px", "28px", "32px", "36px", "40px", "48px"};
}
QStringList weights() {
    return {"Light", "Regular", "Medium", "Bold", "Black"};
}
QStringList alignments() {
    return {"left", "center", "right"};
}
QStringList imageFormats() {
    return {"jpeg", "png", "tiff", "gif", "bmp", "jp2", "pdf"};
}
QStringList compressions() {
    return {"1", "2", "3", "4", "5", "6", "7", "8", "9"};
}
QStringList cropPositions() {
    return {"top left", "top",         "top right", "left",        "centre",
            "right",    "bottom left", "bottom",    "bottom right"};
}

struct Registrar {
    ControlRegistry& registry;

    void add(const QString& name, ControlKind kind, const QString& defaultValue,
             const QStringList& aliases = {}, const QStringList& items = {}, int minimum = 0,
             int maximum = 0) {
        ControlSpec control;
        control.name = name;
        control.outputKind = kGallery;
        control.kind = kind;
        control.defaultValue = defaultValue;
        control.items = items;
        control.aliases = aliases;
        control.minimum = minimum;
        control.maximum =
            kind == ControlKind::Segmented && !items.isEmpty() ? int(items.size()) - 1 : maximum;
        registry.add(control);
    }
};

}  // namespace

void registerGalleryControls(ControlRegistry& registry) {
    Registrar r{registry};
    using K = ControlKind;

    // Pages.
    r.add("tfHTMLfileName", K::Text, "");  // "" or " " means "myIndex"
    r.add("tfPageTitle", K::Text, "Photo Gallery");
    r.add("tvTitle", K::TextView, "Photo Gallery");
    r.add("tfGridWidth", K::Text, "90");
    r.add("ifNumberOfColumns", K::Number, "4", {"tfNumberOfColumns"});
    r.add("ifNumberOfRows", K::Number, "3", {"tfNumberOfRows"});
    r.add("btShowTitle", K::Checkbox, "1");
    r.add("btShowFileName", K::Checkbox, "0");  // names would overflow the fixed grid cells
    r.add("pubPhotoGalleryModel", K::PopupIndex, "2", {"pubTableTemplateChoice"},
          {"Table", "Table (classic)", "Grid"});

    // Captions.
    r.add("cbPgShowMetaData", K::Checkbox, "1");
    r.add("tfPgMetaDataToShow", K::Text, "EXIF User Comment");
    r.add("tfPgMetaDataValueSep", K::Text, " - ");
    r.add("pubPgMetaData", K::PopupIndex, "1", {},
          {"Show Filename", "EXIF User Comment", "EXIF Creation Date", "IPTC Creator Title",
           "IPTC Description", "IPTC Keyword", "IPTC City", "IPTC Caption Writer",
           "IPTC Copyrights", "IPTC Country", "IPTC Credits", "IPTC Headline", "IPTC Subject Code",
           "IPTC State Province"});
    r.add("cbCaptionStatus", K::Checkbox, "1");

    // Text layout.
    r.add("scTitleTxtAlign", K::Segmented, "1", {"scPresetTitleTxtAlign"}, alignments());
    r.add("scFilenameTxtAlign", K::Segmented, "1", {"scPresetFilenameTxtAlign"}, alignments());
    r.add("scEXIFuserCommentTxtAlgin", K::Segmented, "1", {"scPresetEXIFuserCommentTxtAlgin"},
          alignments());
    r.add("pbTitleFontSize", K::PopupTitle, "32px", {"pbPresetTitleFontSize"}, fontSizes());
    r.add("pbFileNameFontSize", K::PopupTitle, "14px", {"pbPresetFileNameFontSize"}, fontSizes());
    r.add("pbExifUserCommentFontSize", K::PopupTitle, "13px", {"pbPresetExifUserCommentFontSize"},
          fontSizes());
    r.add("pbTitleFontWeight", K::PopupTitle, "Light", {}, weights());
    r.add("pbFileNameFontWeight", K::PopupTitle, "Medium", {}, weights());
    r.add("pbExifUserCommentFontWeight", K::PopupTitle, "Regular", {}, weights());
    r.add("pbFontFamily", K::PopupTitle, "Roboto", {},
          {"Catamaran", "Exo", "Exo 2", "Kanit", "Libre Franklin", "Raleway", "Roboto", "Rubik",
           "Taviraj", "Trirong"});

    // Colours: the hex field, with its colour well as alias.
    r.add("tfHTMLbackgroundColor", K::Color, "F4F3EF",
          {"tfNSColorWellObjBGCt", "ascNSColorWellObjBGCt"});
    r.add("tfHTMLTitleColor", K::Color, "3A3A3A", {"tfNSColorWellObjTCt", "ascNSColorWellObjTCt"});
    r.add("tfHTMLPhotoNameColor", K::Color, "4A4A4A",
          {"tfNSColorWellObjPhotoNameCt", "ascNSColorWellObjPhotoNameCt"});
    r.add("tfHTMLUserExifCommentColor", K::Color, "6E6E6E",
          {"tfNSColorWellObjUserExifCommentCt", "ascNSColorWellObjUserExifCommentCt"});
    r.add("tfHTMLbackgroundColorCell", K::Color, "F4F3EF",
          {"tfNSColorWellObjBGCc", "ascNSColorWellObjBGCc"});

    // Thumbnails.
    r.add("tfSmallCropWidth", K::Number, "200");
    r.add("tfSmallCropHeight", K::Number, "150");
    r.add("pubPhotoRatio", K::PopupIndex, "0", {},
          {"Free", "1:1", "3:2", "2:3", "3:1", "4:3", "3:4", "12:9", "16:9"});
    r.add("pubThumbAction", K::PopupIndex, "0", {},
          {"Scale and crop", "Scale by width and by height"});
    r.add("scImageCropThumbPos", K::Segmented, "4", {}, cropPositions());
    r.add("tfCropThumbXOffset", K::Number, "0");
    r.add("tfCropThumbYOffset", K::Number, "0");
    r.add("tfSmallFramingThickness", K::Number, "0");
    r.add("tfSmallFramingRGBvalue", K::Color, "FFFFFF",
          {"cwNSColorWellObjBsImage", "ascNSColorWellObjBsImage", "tfNSColorWellObjBsImage"});
    r.add("pbImageFormat", K::PopupTitle, "jpeg", {}, imageFormats());
    r.add("pbJPGCompression", K::PopupTitle, "8", {}, compressions());

    // Big (lightbox) images.
    r.add("tfBigCropWidth", K::Number, "1200");
    r.add("tfBigCropHeight", K::Number, "0");
    r.add("scImageCropBigPos", K::Segmented, "4", {}, cropPositions());
    r.add("tfCropBigXOffset", K::Number, "0");
    r.add("tfCropBigYOffset", K::Number, "0");
    r.add("tfBigFramingThickness", K::Number, "0");
    r.add("tfBigFramingRGBvalue", K::Color, "FFFFFF",
          {"cwNSColorWellObjBbImage", "ascNSColorWellObjBbImage", "tfNSColorWellObjBbImage"});
    r.add("pbBIGImageFormat", K::PopupTitle, "jpeg", {}, imageFormats());
    r.add("pbBIGJPGCompression", K::PopupTitle, "8", {}, compressions());

    // Thumbnail decoration (stylesheet only).
    r.add("tfThumbnailBorderThickness", K::Number, "0", {"tfThumbnailThickness"});
    r.add("tfHTMLThumbnailColor", K::Color, "F4F3EF",
          {"tfThumbnailColorValue", "tfNSColorWellObjThumbnail", "ascNSColorWellObjThumbnail"});
    r.add("tfThumbnailBorderRadius", K::Number, "4", {"tfThumbnailRadius"});
    r.add("tfThumbnailShadowThickness", K::Number, "6");
    r.add("tfThumbnailShadowXOffset", K::Number, "0");
    r.add("tfThumbnailShadowYOffset", K::Number, "2");
    r.add("tfThumbnailShadowColorValue", K::Color, "B4B2AC",
          {"tfNSColorWellObjThumbnailShadow", "ascNSColorWellObjThumbnailShadow"});
    r.add("cbMagnifyHooverEffectState", K::Checkbox, "0", {"cbPgMagnifyHooverEffectState"});

    // Background pattern.
    r.add("cbTbShowPatternImage", K::Checkbox, "0", {"cbTbRdShowPatternImage"});
    r.add("tfTbPatternPath", K::Path, "", {"tfTbRdPatternPath"});
    r.add("tfTbPatternScale", K::Text, "20", {"tfTbRdPatternScale"});
    r.add("pubTbPatternOpacity", K::PopupIndex, "2", {"pubTbRdPatternOpacity"},
          {"0.1", "0.2", "0.3", "0.4", "0.5", "0.6", "0.7", "0.8", "0.9", "1.0"});

    // Lightbox.
    r.add("tfBoxColorValue", K::Color, "FFFFFF",
          {"tfHTMLLightBoxColor", "tfNSColorWellObjLightBox", "ascNSColorWellObjLightBox"});
    r.add("tfBoxRadius", K::Number, "4");
    r.add("tfBoxThickness", K::Number, "6");
    r.add("tfBoxShadowThickness", K::Number, "24");
    r.add("tfBoxShadowXOffset", K::Number, "0");
    r.add("tfBoxShadowYOffset", K::Number, "4");
    r.add("tfLightBoxShadowColor", K::Color, "000000",
          {"tfHTMLLightBoxShadowColor", "tfNSColorWellObjLightBoxShadow",
           "ascNSColorWellObjLightBoxShadow"});
    r.add("ascNSColorWellObjRDLightboxBgColor", K::Color, "1E1E1E",
          {"tfNSColorWellObjRDLightboxBgColor"});
    r.add("sliderLightboxRDBgColorOpacity", K::Slider, "85", {}, {}, 0, 100);

    // Kept in presets, not read by the run.
    r.add("btShowEXIFucd", K::Checkbox, "0");
    r.add("tfHTMLdestinationFolder", K::Path, "");
    r.add("cbTableTypeTable", K::Checkbox, "0");
    r.add("cbTableTypeResponsive", K::Checkbox, "1");
}
