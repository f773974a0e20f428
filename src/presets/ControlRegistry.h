#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

// What kind of value a control holds, which decides its text form (the form presets store and
// `--set NAME=VALUE` takes).
enum class ControlKind {
    Text,        // "tf": as typed
    Number,      // "tf"/"if" read as a whole number: decimal text
    TextView,    // "tv": as typed, line breaks included
    Checkbox,    // "cb"/"bt": "0" or "1"
    PopupTitle,  // "pb": the title of the selected item
    PopupIndex,  // "pub": the index of the selected item, from 0
    Segmented,   // "sc": the selected segment, from 0
    Color,       // colour well with its hex text field: six upper-case hex digits, no "#"
    Slider,      // a whole number between `minimum` and `maximum`
    Path,        // a file or folder path
};

QString controlKindName(ControlKind kind);

// One setting of an output kind. `name` is the control name the settings are known by; `aliases`
// are the other names the same setting goes by (a colour well and its hex field, the name a
// preset layout uses, ...).
struct ControlSpec {
    QString name;
    QString label;       // what the window shows, such as "Thumbnail width"
    QString section;     // the group of the window it is shown in, such as "Thumbnails";
                         // empty for a value presets keep that no run reads (not shown)
    QString outputKind;  // "gallery", "slideshow", "grid"
    ControlKind kind = ControlKind::Text;
    QString defaultValue;
    QStringList items;  // popup titles or segment labels
    QStringList aliases;
    int minimum = 0;  // sliders and segmented controls
    int maximum = 0;
};

// The one table of every control: name, label, section, kind, default and popup items. The
// window, the command line, presets and projects all go through it. Each output kind registers
// its own controls; the application's registry holds those of every kind (OutputKinds).
class ControlRegistry {
  public:
    void add(const ControlSpec& control);

    // Finds a control by its name or one of its aliases.
    const ControlSpec* find(const QString& nameOrAlias) const;
    // Every control of one output kind, in registration order.
    QList<const ControlSpec*> controls(const QString& outputKind) const;
    QList<const ControlSpec*> all() const;
    // The names and aliases of `outputKind` closest to a name that is not one of them (a few
    // letters off), nearest first.
    QStringList nearestNames(const QString& name, const QString& outputKind) const;

    // Checks and normalises a text value for a control (popup indexes to titles for "pb", colour
    // digits to upper case, ...). Returns false and an explanation when it does not fit.
    bool normalise(const ControlSpec& control, const QString& value, QString* normalised,
                   QString* error) const;

  private:
    QList<ControlSpec> controls_;
    QHash<QString, qsizetype> byName_;
};

// Adds the controls of one output kind (or panel) to a registry, section by section.
struct ControlAdder {
    ControlRegistry& registry;
    QString outputKind;  // "gallery", "slideshow", "grid", "watermark"
    QString section;     // the window's group for the controls added next

    // A segmented control's maximum is its last item's index.
    void add(const QString& name, const QString& label, ControlKind kind,
             const QString& defaultValue, const QStringList& aliases = {},
             const QStringList& items = {}, int minimum = 0, int maximum = 0);
};
