#include "generators/common/KindControls.h"
#include "generators/gallery/cResponsiveDesign.h"

// Every setting of the Photo Gallery, with defaults that make a good-looking gallery untouched:
// 4 x 4 thumbnails of 600 x 450 cut from the middle of each photo (sharp on a phone's 3x screen,
// where a thumbnail spans the page), lightbox images 1200 pixels on their longest side (not
// cropped: the big crop height is 0), JPEG quality 8, Roboto, soft colours with captions that
// read at more than 4.5:1 on their cells.
//
// Names: the name a control is registered under is the one the gallery run reads; the names the
// preset layout, the colour wells and their hex fields use for the same setting are its aliases.

namespace {

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

}  // namespace

void cResponsiveDesign::registerControls(ControlRegistry& registry) {
    KindControls r{{registry, QStringLiteral("gallery"), {}}};
    using K = ControlKind;

    r.section = "Page";
    r.add("tfHTMLfileName", "Page file name", K::Text, "");  // "" or " " means "myIndex"
    r.add("tfPageTitle", "Page title", K::Text, "Photo Gallery");
    r.add("tvTitle", "Heading", K::TextView, "Photo Gallery");
    r.add("btShowTitle", "Show heading", K::Checkbox, "1");
    r.add("tfHTMLdestinationFolder", "Output folder", K::Path, "");

    r.section = "Layout";
    r.add("pubPhotoGalleryModel", "Page model", K::PopupIndex, "0", {"pubTableTemplateChoice"},
          {"Table", "Table (classic)", "Grid"});
    r.add("tfGridWidth", "Content width (%)", K::Text, "90");
    r.add("ifNumberOfColumns", "Columns", K::Number, "4", {"tfNumberOfColumns"});
    r.add("ifNumberOfRows", "Rows", K::Number, "4", {"tfNumberOfRows"});

    r.section = "Captions";
    // Off by default: names would overflow the fixed grid cells.
    r.add("btShowFileName", "Show file names", K::Checkbox, "0");
    r.add("cbPgShowMetaData", "Show captions", K::Checkbox, "1");
    r.add("tfPgMetaDataToShow", "Caption items", K::Text, "EXIF User Comment");
    r.add("tfPgMetaDataValueSep", "Item separator", K::Text, " - ");
    r.add("pubPgMetaData", "Item to add", K::PopupIndex, "1", {}, KindControls::captionItems());
    r.add("cbCaptionStatus", "Captions in the lightbox", K::Checkbox, "1");

    r.section = "Fonts";
    r.add("pbFontFamily", "Font family", K::PopupTitle, "Roboto", {},
          KindControls::fontFamilyItems());
    r.add("pbTitleFontSize", "Heading size", K::PopupTitle, "32px", {"pbPresetTitleFontSize"},
          KindControls::fontSizeItems());
    r.add("pbTitleFontWeight", "Heading weight", K::PopupTitle, "Light", {},
          KindControls::weightItems());
    r.add("scTitleTxtAlign", "Heading alignment", K::Segmented, "1", {"scPresetTitleTxtAlign"},
          KindControls::alignmentItems());
    r.add("pbFileNameFontSize", "File name size", K::PopupTitle, "15px",
          {"pbPresetFileNameFontSize"}, KindControls::fontSizeItems());
    r.add("pbFileNameFontWeight", "File name weight", K::PopupTitle, "Medium", {},
          KindControls::weightItems());
    r.add("scFilenameTxtAlign", "File name alignment", K::Segmented, "1",
          {"scPresetFilenameTxtAlign"}, KindControls::alignmentItems());
    r.add("pbExifUserCommentFontSize", "Caption size", K::PopupTitle, "15px",
          {"pbPresetExifUserCommentFontSize"}, KindControls::fontSizeItems());
    r.add("pbExifUserCommentFontWeight", "Caption weight", K::PopupTitle, "Regular", {},
          KindControls::weightItems());
    r.add("scEXIFuserCommentTxtAlgin", "Caption alignment", K::Segmented, "1",
          {"scPresetEXIFuserCommentTxtAlgin"}, KindControls::alignmentItems());

    // The hex fields, with their colour wells as aliases.
    r.section = "Colours";
    r.add("tfHTMLbackgroundColor", "Page background", K::Color, "F4F3EF",
          {"tfNSColorWellObjBGCt", "ascNSColorWellObjBGCt"});
    r.add("tfHTMLbackgroundColorCell", "Cell background", K::Color, "F4F3EF",
          {"tfNSColorWellObjBGCc", "ascNSColorWellObjBGCc"});
    r.add("tfHTMLTitleColor", "Heading", K::Color, "3A3A3A",
          {"tfNSColorWellObjTCt", "ascNSColorWellObjTCt"});
    r.add("tfHTMLPhotoNameColor", "File names", K::Color, "4A4A4A",
          {"tfNSColorWellObjPhotoNameCt", "ascNSColorWellObjPhotoNameCt"});
    r.add("tfHTMLUserExifCommentColor", "Captions", K::Color, "595959",
          {"tfNSColorWellObjUserExifCommentCt", "ascNSColorWellObjUserExifCommentCt"});

    r.section = "Thumbnails";
    r.add("tfSmallCropWidth", "Width", K::Number, "600");
    r.add("tfSmallCropHeight", "Height", K::Number, "450");
    r.add("pubPhotoRatio", "Aspect ratio", K::PopupIndex, "0", {},
          {"Free", "1:1", "3:2", "2:3", "3:1", "4:3", "3:4", "12:9", "16:9"});
    r.add("pubThumbAction", "Scaling", K::PopupIndex, "0", {},
          {"Scale and crop", "Scale by width and by height"});
    r.add("scImageCropThumbPos", "Crop position", K::Segmented, "4", {}, cropPositions());
    r.add("tfCropThumbXOffset", "Crop shift X", K::Number, "0");
    r.add("tfCropThumbYOffset", "Crop shift Y", K::Number, "0");
    r.add("tfSmallFramingThickness", "Frame width", K::Number, "0");
    r.add("tfSmallFramingRGBvalue", "Frame colour", K::Color, "FFFFFF",
          {"cwNSColorWellObjBsImage", "ascNSColorWellObjBsImage", "tfNSColorWellObjBsImage"});
    r.add("pbImageFormat", "File format", K::PopupTitle, "jpeg", {}, imageFormats());
    r.add("pbJPGCompression", "JPEG quality", K::PopupTitle, "8", {}, compressions());

    r.section = "Big images (lightbox)";
    r.add("tfBigCropWidth", "Width", K::Number, "1200");
    r.add("tfBigCropHeight", "Height (0: not cropped)", K::Number, "0");
    r.add("scImageCropBigPos", "Crop position", K::Segmented, "4", {}, cropPositions());
    r.add("tfCropBigXOffset", "Crop shift X", K::Number, "0");
    r.add("tfCropBigYOffset", "Crop shift Y", K::Number, "0");
    r.add("tfBigFramingThickness", "Frame width", K::Number, "0");
    r.add("tfBigFramingRGBvalue", "Frame colour", K::Color, "FFFFFF",
          {"cwNSColorWellObjBbImage", "ascNSColorWellObjBbImage", "tfNSColorWellObjBbImage"});
    r.add("pbBIGImageFormat", "File format", K::PopupTitle, "jpeg", {}, imageFormats());
    r.add("pbBIGJPGCompression", "JPEG quality", K::PopupTitle, "8", {}, compressions());

    // Stylesheet only.
    r.section = "Thumbnail style";
    r.add("tfThumbnailBorderThickness", "Border width", K::Number, "0", {"tfThumbnailThickness"});
    r.add("tfHTMLThumbnailColor", "Border colour", K::Color, "F4F3EF",
          {"tfThumbnailColorValue", "tfNSColorWellObjThumbnail", "ascNSColorWellObjThumbnail"});
    r.add("tfThumbnailBorderRadius", "Corner radius", K::Number, "4", {"tfThumbnailRadius"});
    r.add("tfThumbnailShadowThickness", "Shadow blur", K::Number, "6");
    r.add("tfThumbnailShadowXOffset", "Shadow offset X", K::Number, "0");
    r.add("tfThumbnailShadowYOffset", "Shadow offset Y", K::Number, "2");
    r.add("tfThumbnailShadowColorValue", "Shadow colour", K::Color, "B4B2AC",
          {"tfNSColorWellObjThumbnailShadow", "ascNSColorWellObjThumbnailShadow"});
    r.add("cbMagnifyHooverEffectState", "Magnify on hover", K::Checkbox, "0",
          {"cbPgMagnifyHooverEffectState"});

    r.section = "Lightbox style";
    r.add("tfBoxThickness", "Frame width", K::Number, "6");
    r.add("tfBoxColorValue", "Frame colour", K::Color, "FFFFFF",
          {"tfHTMLLightBoxColor", "tfNSColorWellObjLightBox", "ascNSColorWellObjLightBox"});
    r.add("tfBoxRadius", "Corner radius", K::Number, "4");
    r.add("tfBoxShadowThickness", "Shadow blur", K::Number, "24");
    r.add("tfBoxShadowXOffset", "Shadow offset X", K::Number, "0");
    r.add("tfBoxShadowYOffset", "Shadow offset Y", K::Number, "4");
    r.add("tfLightBoxShadowColor", "Shadow colour", K::Color, "000000",
          {"tfHTMLLightBoxShadowColor", "tfNSColorWellObjLightBoxShadow",
           "ascNSColorWellObjLightBoxShadow"});
    r.add("ascNSColorWellObjRDLightboxBgColor", "Backdrop colour", K::Color, "1E1E1E",
          {"tfNSColorWellObjRDLightboxBgColor"});
    r.add("sliderLightboxRDBgColorOpacity", "Backdrop opacity (%)", K::Slider, "85", {}, {}, 0,
          100);

    r.addPatternSection("Tb", "TbRd");

    // Kept in presets, not read by the run: not shown in the window.
    r.section = "";
    r.add("btShowEXIFucd", "Show EXIF user comment (kept in presets; no effect)", K::Checkbox, "0");
    r.add("cbTableTypeTable", "Table page type (kept in presets; no effect)", K::Checkbox, "0");
    r.add("cbTableTypeResponsive", "Responsive page type (kept in presets; no effect)", K::Checkbox,
          "1");
}
