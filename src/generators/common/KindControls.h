#pragma once

#include <QString>
#include <QStringList>

#include "presets/ControlRegistry.h"

// Adds the controls of one output kind to the registry, section by section, with the popup items
// the kinds share.
struct KindControls : ControlAdder {
    // The "Background pattern" section: whether the pattern shows behind the page, its image,
    // size and opacity, named cb<letters>ShowPatternImage, tf<letters>PatternPath,
    // tf<letters>PatternScale and pub<letters>PatternOpacity ("Ss", "Rg", "Tb"); with
    // `aliasLetters`, each also goes by the name of the same form with those letters.
    void addPatternSection(const QString& letters, const QString& aliasLetters = {});

    // The popup items every kind shares: one definition each.
    static const QStringList& fontFamilyItems();
    static const QStringList& weightItems();
    static const QStringList& fontSizeItems();
    static const QStringList& alignmentItems();
    static const QStringList& captionItems();
    static const QStringList& patternOpacityItems();
};
