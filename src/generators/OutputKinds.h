#pragma once

#include <QList>
#include <QString>

#include "generators/common/GeneratorRun.h"

class ControlRegistry;
class SettingsStore;
class UserInterface;
struct PhotoEntry;

// The output kinds the application offers, in the order of the window's tabs. The command line
// and the window go through this list; adding a kind is one entry here.
struct OutputKind {
    QString name;    // "gallery": the command line's word and the registry's kind
    QString title;   // "Photo Gallery": the window's tab
    QString action;  // "Create Photo Gallery": the window's button
    void (*registerControls)(ControlRegistry& registry);
    // The run: snapshot, page texts, output folder, images, pages, open.
    RunResult (*run)(const QList<PhotoEntry>& photos, const SettingsStore& snapshot,
                     UserInterface& ui, const RunOptions& options);

    // For the window (each may be left empty).
    // Keeps settings that follow another in step after `name` was edited.
    void (*settingEdited)(SettingsStore& settings, const QString& name) = nullptr;
    QString captionItemControl;  // the popup of caption items, such as "pubPgMetaData"
    QString captionListControl;  // the caption list it adds to, such as "tfPgMetaDataToShow"
    QString captionSection;      // the section that shows the Add Item and Clear Items buttons
    QString destinationControl;  // the output folder setting the folder dialog starts in
    bool usesHighlight = false;  // whether the photos' Highlight flag means anything to it
};

namespace OutputKinds {

const QList<OutputKind>& all();
// The kind of that name, or null.
const OutputKind* find(const QString& name);
// The names, joined for messages: "gallery, slideshow, grid".
QString names();
// The registry holding the controls of every kind, and those of the watermark panel.
const ControlRegistry& registry();

}  // namespace OutputKinds
