#pragma once

#include <QString>
#include <QStringList>

#include "presets/ControlRegistry.h"

// Adds the controls of one output kind to the registry, section by section, with the popup items
// the kinds share.
struct KindControls : ControlAdder {
    // The popup items every kind shares: one definition each.
    static const QStringList& fontFamilyItems();
    static const QStringList& weightItems();
    static const QStringList& fontSizeItems();
    static const QStringList& alignmentItems();
    static const QStringList& captionItems();
    static const QStringList& patternOpacityItems();
};
