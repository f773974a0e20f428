#pragma once

#include <QList>
#include <QString>

// How one preset field holds its control's value.
enum class FieldEncoding {
    Text,        // text field, colour hex text: as it stands
    Number,      // text field read as a whole number: "%d"
    Flag,        // checkbox or button read as a number: "0"/"1", "%d"
    State,       // checkbox read by state: "0"/"1", "%ld"
    Title,       // popup by title: the title
    Index,       // popup by index: "%ld"
    IndexD,      // popup by index written with "%d" (same text)
    Segment,     // segmented control: "%ld"
    TextView,    // text view: as typed, line breaks included
    Slider,      // slider: the fraction dropped
    FolderMark,  // folder path: a bookmark string, "" for an empty path
    ImageMark,   // pattern image path: a bookmark string, "" for an empty path
    Zero,        // no control: always "0"
};

// One field of a preset row that a control fills.
struct PresetField {
    int field;            // 3 to 101
    const char* control;  // the control's name as the layout names it
    FieldEncoding encoding;
    // The control loading puts the field into when not `control` ("" for the same).
    const char* loadInto = "";
};

// One output kind's preset: its kind code, words and the fields its controls fill (every other
// field of 3 to 101 is the empty string).
struct PresetLayout {
    QString kind;      // "gallery", "slideshow", "grid": the command line's and registry's word
    QString code;      // "HTML1", "SlideShow1", "ResponsiveGrid1": the row's Process field
    QString fileWord;  // "PhotoGallery", "SlideShow", "ResponsiveGrid": a preset file's key 2
    // A checkbox loads as on only for exactly "1" (else for any non-zero whole number).
    bool strictCheckboxes = false;
    QList<PresetField> fields;
};

namespace PresetLayouts {

// The three layouts, in the order of the window's tabs.
const QList<PresetLayout>& all();
// By kind word, kind code or file word; null when none.
const PresetLayout* find(const QString& kindCodeOrWord);

}  // namespace PresetLayouts
