#pragma once

#include <QColor>
#include <QString>
#include <array>
#include <optional>

// Keeps each colour well and its colour-text field in step. The user interface gives every well
// and every field a tag; the two tag tables below say which control the other one updates. They
// are deliberately not symmetric (well 1 writes "BGCc", field 1 sets "TCt"; field 3 sets nothing).
class cColorWellHandling {
  public:
    // Colour-well tag -> the text field that receives its colour.
    static const std::array<const char*, 14> kTextFieldOfColorWell;
    // Text-field tag -> the colour well its text sets; null for tag 3 (nothing) and for tag 10,
    // which recomputes the box radius instead (see boxRadius).
    static const std::array<const char*, 22> kColorWellOfTextField;
    static constexpr int kBoxRadiusFieldTag = 10;

    struct FieldUpdate {
        QString fieldName;
        QString hex;
    };
    struct WellUpdate {
        QString wellName;
        QColor color;
    };

    // The well's colour as text for the field chosen by its tag; nothing for a tag of 14 or more.
    static std::optional<FieldUpdate> hCallHEXfromColorwell(int tag, const QColor& color);
    // The field's text as a colour for the well chosen by its tag; nothing for tags 3, 10 and 22
    // or more.
    static std::optional<WellUpdate> controlTextDidEndEditing(int tag, const QString& text);

    // The text of `tfBoxRadius` after field tag 10 ended editing: "50" when the rounded-corner
    // type index of `pbBIGImageRCType` is not 0, else frame thickness + 2 x box thickness + corner
    // radius, read as integers.
    static QString boxRadius(int rcTypeIndex, const QString& frameThickness,
                             const QString& boxThickness, const QString& rcRadius);
};
