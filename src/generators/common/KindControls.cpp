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

void KindControls::addPatternSection(const QString& letters, const QString& aliasLetters) {
    const auto named = [&](const char* form) {
        return std::pair{QString::fromLatin1(form).arg(letters),
                         aliasLetters.isEmpty()
                             ? QStringList()
                             : QStringList{QString::fromLatin1(form).arg(aliasLetters)}};
    };
    section = QStringLiteral("Background pattern");
    const auto [show, showAlias] = named("cb%1ShowPatternImage");
    add(show, "Show pattern", ControlKind::Checkbox, "0", showAlias);
    const auto [path, pathAlias] = named("tf%1PatternPath");
    add(path, "Pattern image", ControlKind::Path, "", pathAlias);
    const auto [scale, scaleAlias] = named("tf%1PatternScale");
    add(scale, "Pattern size (%)", ControlKind::Text, "20", scaleAlias);
    const auto [opacity, opacityAlias] = named("pub%1PatternOpacity");
    add(opacity, "Opacity", ControlKind::PopupIndex, "2", opacityAlias, patternOpacityItems());
}
