#include "generators/common/KindControls.h"
#include "generators/slideshow/cSlideshow.h"

// Every setting of the Slideshow, with defaults that make a good show untouched: a 960 x 640 box
// (3:2, as most cameras take them) that fits a laptop screen with its heading and shrinks on a
// phone, previous and next buttons, dots, the photo count, a new slide every 4 seconds fading in,
// Roboto on a dark background.
//
// Names: the name a control is registered under is the one the run reads; the names the preset
// layout and the colour wells use for the same setting are its aliases.

namespace {

QString indexOf(const QStringList& items, const QString& title) {
    return QString::number(items.indexOf(title));
}

}  // namespace

void cSlideshow::registerControls(ControlRegistry& registry) {
    KindControls r{{registry, QStringLiteral("slideshow"), {}}};
    using K = ControlKind;

    r.section = "Page";
    r.add("pubSsTemplateChoice", "Page kind", K::PopupIndex, "0", {"pubSlideTemplateChoice"},
          {"Classic", "Classic (the same page)", "Slider (no script)"});
    r.add("tfSsPageName", "Page file name (without .html)", K::Text, "slideshow");
    r.add("cbSsWebPageTitle", "Show page title", K::Checkbox, "1");
    r.add("tfSsWebPageTitle", "Page title", K::Text, "Slideshow");
    r.add("cbSsTitle", "Show heading", K::Checkbox, "1");
    r.add("tfSsTitle", "Heading", K::TextView, "Slideshow", {"tvSsTitle"});

    r.section = "Slides";
    r.add("tfSsImageWidth", "Photo width (px)", K::Number, "960");
    r.add("tfSsImageHeight", "Photo height (px)", K::Number, "640");
    r.add("cbSsResponsive", "Photos shrink with the window", K::Checkbox, "1");
    r.add("cbSsShowShadow", "Shadow under the show", K::Checkbox, "1");
    r.add("cbSsFadeInOut", "Slides fade in", K::Checkbox, "1");
    r.add("cbSsShowPhotoCount", "Show the photo count (n / N)", K::Checkbox, "1");

    r.section = "Moving between slides";
    r.add("cbSsAutorun", "Slides change by themselves", K::Checkbox, "1");
    r.add("tfSsInterval", "Seconds between slides", K::Text, "4");
    r.add("cbSsShowNavigationBtn", "Previous and next buttons", K::Checkbox, "1");
    r.add("cbSsShowDots", "One dot per slide below the show", K::Checkbox, "1");
    r.add("pubSsDotAppearance", "Dot shape", K::PopupIndex, "0", {}, {"Round", "Square"});
    r.add("tfSsHTMLDotColor", "Dot colour", K::Color, "BBBBBB", {"cwSsDot"});

    r.section = "Captions";
    r.add("cbSsExifUC", "Show captions", K::Checkbox, "1");
    r.add("tfSsMetaDataToShow", "Caption items", K::Text, "EXIF User Comment");
    r.add("tfSsMetaDataValueSep", "Item separator", K::Text, " - ");
    r.add("pubSsMetaData", "Item to add", K::PopupIndex, "1", {}, KindControls::captionItems());

    r.section = "Fonts";
    const QStringList& sizes = KindControls::fontSizeItems();
    const QStringList& weights = KindControls::weightItems();
    const QStringList& alignments = KindControls::alignmentItems();
    r.add("pubSsHTMLTitleFontFamily", "Font family", K::PopupIndex,
          indexOf(KindControls::fontFamilyItems(), "Roboto"), {}, KindControls::fontFamilyItems());
    r.add("pubSsHTMLTitleFontSize", "Heading size", K::PopupIndex, indexOf(sizes, "32px"), {},
          sizes);
    r.add("pubSsHTMLTitleFontStyle", "Heading weight", K::PopupIndex, indexOf(weights, "Light"), {},
          weights);
    r.add("scSsHTMLTitleTxtAlign", "Heading alignment", K::Segmented, "1", {}, alignments);
    r.add("pubSsFileNameSize", "Caption size", K::PopupIndex, indexOf(sizes, "16px"), {}, sizes);
    r.add("pubSsFileNameWeight", "Caption weight", K::PopupIndex, indexOf(weights, "Regular"), {},
          weights);
    r.add("scSsFileNameTxtAlign", "Caption alignment", K::Segmented, "1", {}, alignments);

    // The hex fields, with their colour wells as aliases.
    r.section = "Colours";
    r.add("tfSsBackgroundColor", "Page background", K::Color, "1E1E1E", {"cwSsBackground"});
    r.add("tfSsHTMLTitleFontColor", "Heading", K::Color, "EDEDED", {"cwIntro"});
    r.add("tfSsFileNameFontColor", "Captions", K::Color, "FFFFFF", {"cwCaption"});

    r.addPatternSection("Ss");
}
