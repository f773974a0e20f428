#include "generators/common/KindControls.h"
#include "generators/grid/cResponsiveGrid.h"

// Every setting of the Responsive Grid, with defaults that make a good-looking grid untouched: a
// page named index.html, at most 10 columns (tracks of at least 120 x 90 pixels: 9 fit the
// 1200-pixel container, and 3 a 390-pixel phone, so a highlighted photo's 3 x 3 cell fits there
// too), Roboto, soft colours, a dark lightbox backdrop with white captions.
//
// Names: the name a control is registered under is the one the page writer reads; the names the
// preset layout, the colour wells and their hex fields use for the same setting are its aliases.

void cResponsiveGrid::registerControls(ControlRegistry& registry) {
    KindControls r{{registry, QStringLiteral("grid"), {}}};
    using K = ControlKind;

    r.section = "Page";
    r.add("tfRgPageName", "Page file name", K::Text, "index", {"tfPageName"});
    r.add("cbRgWebPageTitle", "Show page title", K::Checkbox, "1");
    r.add("tfRgWebPageTitle", "Page title", K::Text, "Photos");
    r.add("cbRgDescription", "Show description", K::Checkbox, "1");
    r.add("tfRgDescription", "Description", K::TextView, "Photos", {"tvRgDescription"});
    r.add("tfRGBackgroundColor", "Page background", K::Color, "F4F3EF",
          {"tfRgBackgroundColor", "cwRGBackgroundColor"});

    r.section = "Grid";
    // The preset layout spells it "tfRgMaxColumns".
    r.add("tfRGMaxColumns", "Maximum columns", K::Text, "10", {"tfRgMaxColumns"});
    r.add("cbMagnifyHooverEffect", "Magnify on hover", K::Checkbox, "0");

    r.section = "Description";
    r.add("pubRgHTMLDescriptionFontFamily", "Font family (whole page)", K::PopupIndex, "6", {},
          KindControls::fontFamilyItems());
    r.add("pubRgHTMLDescriptionFontSize", "Size", K::PopupIndex, "12", {},
          KindControls::fontSizeItems());
    r.add("pubRgHTMLDescriptionFontStyle", "Weight", K::PopupIndex, "0", {},
          KindControls::weightItems());
    r.add("scRgHTMLDescriptionTxtAlign", "Alignment", K::Segmented, "1", {},
          KindControls::alignmentItems());
    r.add("tfRgHTMLDescriptionFontColor", "Colour", K::Color, "3A3A3A", {"cwRGDescriptionColor"});

    r.section = "Captions";
    r.add("cbRgShowMetaData", "Show captions in the lightbox", K::Checkbox, "1", {"cbRgExifUC"});
    r.add("tfRgMetaDataToShow", "Caption items", K::Text, "EXIF User Comment");
    r.add("tfRgMetaDataValueSep", "Item separator", K::Text, " - ");
    r.add("pubRgMetaData", "Item to add", K::PopupIndex, "1", {}, KindControls::captionItems());
    r.add("pubRgMetaDataSize", "Size", K::PopupIndex, "4", {"pubRgFileNameSize"},
          KindControls::fontSizeItems());
    r.add("pubRgMetaDataWeight", "Weight", K::PopupIndex, "1", {"pubRgFileNameWeight"},
          KindControls::weightItems());
    r.add("scRgMetaDataTxtAlign", "Alignment", K::Segmented, "1", {"scRgFileNameTxtAlign"},
          KindControls::alignmentItems());
    r.add("tfRgMetaDataFontColor", "Colour", K::Color, "FFFFFF",
          {"tfRgFileNameFontColor", "cwRgCaption"});

    r.section = "Lightbox";
    r.add("ascNSColorWellObjRGLightboxBgColor", "Backdrop colour", K::Color, "1E1E1E",
          {"tfNSColorWellObjRGLightboxBgColor"});
    r.add("sliderLightboxRGBgColorOpacity", "Backdrop opacity (%)", K::Slider, "85", {}, {}, 0,
          100);

    r.addPatternSection("Rg");

    // Kept in presets and passed along, but the page does not change with them: not shown in the
    // window.
    r.section = "";
    r.add("pubRespLightboxBg", "Lightbox backdrop (kept in presets; no effect)", K::PopupIndex, "0",
          {}, {"Colour and opacity"});
    r.add("pubRespGridMode", "Grid mode (kept in presets; no effect)", K::PopupIndex, "0", {},
          {"Dense"});
    r.add("pubRespDesignTemplateChoice", "Template (kept in presets; no effect)", K::PopupIndex,
          "0", {}, {"Responsive grid"});
    r.add("tfmaxNumberOfPhotosPerPage", "Photos per page (kept in presets; no effect)", K::Number,
          "0");
}
