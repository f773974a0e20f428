#pragma once

#include <QString>
#include <QStringList>

#include "presets/ControlRegistry.h"

// Adds the controls of one output kind to the registry, section by section.
struct KindControls {
    ControlRegistry& registry;
    QString outputKind;  // "gallery", "slideshow", "grid"
    QString section;     // the window's group for the controls added next

    void add(const QString& name, const QString& label, ControlKind kind,
             const QString& defaultValue, const QStringList& aliases = {},
             const QStringList& items = {}, int minimum = 0, int maximum = 0);

    // The popup items every kind shares: one definition each.
    static const QStringList& fontFamilyItems();
    static const QStringList& weightItems();
    static const QStringList& fontSizeItems();
    static const QStringList& alignmentItems();
    static const QStringList& captionItems();
    static const QStringList& patternOpacityItems();
};
