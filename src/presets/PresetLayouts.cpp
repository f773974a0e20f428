#include "presets/PresetLayouts.h"

namespace PresetLayouts {

namespace {

using E = FieldEncoding;

// The Photo Gallery's row. The image format and JPEG quality are stored twice (21/32, 22/33).
QList<PresetField> galleryFields() {
    return {
        {3, "tfPageTitle", E::Text},
        {9, "tfNumberOfRows", E::Number},
        {10, "tfNumberOfColumns", E::Number},
        {14, "btShowFileName", E::Flag},
        {15, "tfHTMLbackgroundColor", E::Text},
        {16, "tfHTMLTitleColor", E::Text},
        {17, "tfHTMLbackgroundColorCell", E::Text},
        {21, "pbImageFormat", E::Title},
        {22, "pbJPGCompression", E::Title},
        {24, "tfSmallCropWidth", E::Number},
        {25, "tfSmallCropHeight", E::Number},
        {26, "tfSmallFramingRGBvalue", E::Text},
        {27, "tfSmallFramingThickness", E::Number},
        {28, "tfBigCropWidth", E::Number},
        {29, "tfBigCropHeight", E::Number},
        {30, "tfBigFramingRGBvalue", E::Text},
        {31, "tfBigFramingThickness", E::Number},
        {32, "pbImageFormat", E::Title},
        {33, "pbJPGCompression", E::Title},
        {34, "btShowEXIFucd", E::Flag},
        {35, "scPresetFilenameTxtAlign", E::Segment},
        {36, "scPresetEXIFuserCommentTxtAlgin", E::Segment},
        {37, "scPresetTitleTxtAlign", E::Segment},
        {38, "btShowTitle", E::Flag},
        {39, "pbPresetTitleFontSize", E::Title},
        {40, "pbPresetFileNameFontSize", E::Title},
        {41, "pbPresetExifUserCommentFontSize", E::Title},
        {42, "tfHTMLdestinationFolder", E::FolderMark},
        {43, "scImageCropThumbPos", E::Segment},
        {44, "tfCropThumbXOffset", E::Text},
        {45, "tfCropThumbYOffset", E::Text},
        {46, "scImageCropBigPos", E::Segment},
        {47, "tfCropBigXOffset", E::Text},
        {48, "tfCropBigYOffset", E::Text},
        {52, "pbTitleFontWeight", E::Title},
        {53, "pbFileNameFontWeight", E::Title},
        {54, "pbExifUserCommentFontWeight", E::Title},
        {55, "tfHTMLPhotoNameColor", E::Text},
        {56, "tfHTMLUserExifCommentColor", E::Text},
        {57, "cbTableTypeTable", E::State},
        {58, "cbTableTypeResponsive", E::State},
        {59, "tfGridWidth", E::Text},
        {60, "pbFontFamily", E::Title},
        {61, "tvTitle", E::TextView},
        {62, "", E::Zero},
        {66, "tfHTMLLightBoxColor", E::Text},
        {67, "tfHTMLLightBoxShadowColor", E::Text},
        {68, "tfBoxRadius", E::Text},
        {69, "tfBoxThickness", E::Text},
        {70, "tfBoxShadowThickness", E::Text},
        {71, "tfBoxShadowXOffset", E::Text},
        {72, "tfBoxShadowYOffset", E::Text},
        {73, "cbCaptionStatus", E::Flag},
        {74, "pubTableTemplateChoice", E::Index},
        {75, "tfThumbnailColorValue", E::Text},
        {76, "tfThumbnailRadius", E::Number},
        {77, "tfThumbnailThickness", E::Number},
        {78, "tfThumbnailShadowColorValue", E::Text},
        {79, "tfThumbnailShadowThickness", E::Number},
        {80, "tfThumbnailShadowXOffset", E::Number},
        {81, "tfThumbnailShadowYOffset", E::Number},
        {82, "pubPgMetaData", E::Index},
        {83, "tfPgMetaDataToShow", E::Text},
        {84, "tfPgMetaDataValueSep", E::Text},
        {87, "cbTbRdShowPatternImage", E::State},
        {88, "tfTbRdPatternPath", E::ImageMark},
        {89, "tfTbRdPatternScale", E::Text},
        {90, "pubTbRdPatternOpacity", E::Index},
        {91, "cbPgMagnifyHooverEffectState", E::State},
        {92, "pubPhotoRatio", E::Index},
        {93, "pubThumbAction", E::Index},
        {94, "tfNSColorWellObjRDLightboxBgColor", E::Text},
        {95, "sliderLightboxRDBgColorOpacity", E::Slider},
    };
}

// The Slideshow's row. Its loader puts field 7 into the Photo Gallery's heading (tvTitle).
QList<PresetField> slideshowFields() {
    return {
        {3, "tfSsPageName", E::Text},
        {4, "cbSsWebPageTitle", E::Flag},
        {5, "tfSsWebPageTitle", E::Text},
        {6, "cbSsTitle", E::Flag},
        {7, "tvSsTitle", E::TextView, "tvTitle"},
        {8, "tfSsHTMLTitleFontColor", E::Text},
        {9, "pubSsHTMLTitleFontStyle", E::Index},
        {10, "pubSsHTMLTitleFontSize", E::Index},
        {11, "scSsHTMLTitleTxtAlign", E::Segment},
        {12, "pubSsHTMLTitleFontFamily", E::Index},
        {14, "pubSsFileNameWeight", E::Index},
        {15, "pubSsFileNameSize", E::Index},
        {16, "scSsFileNameTxtAlign", E::Segment},
        {17, "tfSsFileNameFontColor", E::Text},
        {18, "cbSsExifUC", E::Flag},
        {19, "tfSsImageWidth", E::Text},
        {20, "tfSsImageHeight", E::Text},
        {21, "tfHTMLdestinationFolder", E::FolderMark},
        {22, "tfSsInterval", E::Text},
        {23, "cbSsAutorun", E::Flag},
        {24, "tfSsBackgroundColor", E::Text},
        {25, "pubSlideTemplateChoice", E::Index},
        {26, "tfSsMetaDataValueSep", E::Text},
        {27, "pubSsMetaData", E::Index},
        {28, "tfSsMetaDataToShow", E::Text},
        {29, "cbSsResponsive", E::Flag},
        {30, "cbSsShowPhotoCount", E::Flag},
        {31, "cbSsShowNavigationBtn", E::Flag},
        {32, "cbSsShowDots", E::Flag},
        {33, "cbSsFadeInOut", E::Flag},
        {34, "cbSsShowShadow", E::Flag},
        {37, "cbSsShowPatternImage", E::State},
        {38, "tfSsPatternPath", E::ImageMark},
        {39, "tfSsPatternScale", E::Text},
        {40, "pubSsPatternOpacity", E::Index},
        {41, "pubSsDotAppearance", E::IndexD},
        {42, "tfSsHTMLDotColor", E::Text},
    };
}

// The Responsive Grid's row.
QList<PresetField> gridFields() {
    return {
        {3, "tfPageName", E::Text},
        {4, "cbRgWebPageTitle", E::Flag},
        {5, "tfRgWebPageTitle", E::Text},
        {6, "cbRgDescription", E::Flag},
        {7, "tvRgDescription", E::TextView},
        {8, "tfRgHTMLDescriptionFontColor", E::Text},
        {9, "pubRgHTMLDescriptionFontStyle", E::Index},
        {10, "pubRgHTMLDescriptionFontSize", E::Index},
        {11, "scRgHTMLDescriptionTxtAlign", E::Segment},
        {12, "pubRgHTMLDescriptionFontFamily", E::Index},
        {13, "tfRgBackgroundColor", E::Text},
        {14, "pubRgFileNameWeight", E::Index},
        {15, "pubRgFileNameSize", E::Index},
        {16, "scRgFileNameTxtAlign", E::Segment},
        {17, "tfRgFileNameFontColor", E::Text},
        {18, "cbRgExifUC", E::Flag},
        {19, "tfRgMetaDataValueSep", E::Text},
        {20, "", E::Zero},
        {21, "tfHTMLdestinationFolder", E::FolderMark},
        {22, "tfRgMetaDataToShow", E::Text},
        {23, "tfRgMaxColumns", E::Text},
        {24, "pubRespDesignTemplateChoice", E::Index},
        {27, "cbRgShowPatternImage", E::State},
        {28, "tfRgPatternPath", E::ImageMark},
        {29, "tfRgPatternScale", E::Text},
        {30, "pubRgPatternOpacity", E::Index},
        {31, "cbMagnifyHooverEffect", E::State},
        {32, "tfNSColorWellObjRGLightboxBgColor", E::Text},
        {33, "sliderLightboxRGBgColorOpacity", E::Slider},
    };
}

}  // namespace

const QList<PresetLayout>& all() {
    static const QList<PresetLayout> layouts = {
        {QStringLiteral("gallery"), QStringLiteral("HTML1"), QStringLiteral("PhotoGallery"), false,
         galleryFields()},
        {QStringLiteral("slideshow"), QStringLiteral("SlideShow1"), QStringLiteral("SlideShow"),
         true, slideshowFields()},
        {QStringLiteral("grid"), QStringLiteral("ResponsiveGrid1"),
         QStringLiteral("ResponsiveGrid"), false, gridFields()},
    };
    return layouts;
}

const PresetLayout* find(const QString& kindCodeOrWord) {
    for (const PresetLayout& layout : all())
        if (layout.kind == kindCodeOrWord || layout.code == kindCodeOrWord ||
            layout.fileWord == kindCodeOrWord)
            return &layout;
    return nullptr;
}

}  // namespace PresetLayouts
