#include "generators/common/KindControls.h"

#include "generators/common/CaptionBuilder.h"
#include "generators/common/PageText.h"

const QStringList& KindControls::fontFamilyItems() {
    static const QStringList items = PageText::fontFamilies() + QStringList{"Trirong"};
    return items;
}

const QStringList& KindControls::weightItems() {
    return PageText::weightTitles();
}

const QStringList& KindControls::fontSizeItems() {
    return PageText::fontSizes();
}

const QStringList& KindControls::alignmentItems() {
    return PageText::alignmentTitles();
}

const QStringList& KindControls::captionItems() {
    return CaptionBuilder::itemNames();
}

const QStringList& KindControls::patternOpacityItems() {
    static const QStringList items = {"0.1", "0.2", "0.3", "0.4", "0.5",
                                      "0.6", "0.7", "0.8", "0.9", "1.0"};
    return items;
}
