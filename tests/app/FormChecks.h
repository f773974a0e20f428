#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <QWidget>

#include "generators/OutputKinds.h"
#include "presets/ControlRegistry.h"

// Checks that every control of `kind` that the window shows has a widget of its name inside
// `container`, under a label of its own in its section, and that those with no section (values
// presets keep and no run reads) have none. Returns the number of controls shown.
inline qsizetype expectEveryControlShown(const QString& kind, const QWidget& container) {
    QStringList labels;
    for (const ControlSpec* c : OutputKinds::registry().controls(kind)) {
        if (c->section.isEmpty()) {
            EXPECT_FALSE(container.findChild<QWidget*>(c->name)) << c->name;
            continue;
        }
        labels << c->section + u'/' + c->label;
        EXPECT_TRUE(!c->label.isEmpty() && labels.count(labels.last()) == 1 &&
                    container.findChild<QWidget*>(c->name))
            << c->name;
    }
    return labels.size();
}
