#pragma once

#include <QHash>
#include <QString>

#include "presets/ControlRegistry.h"

// The values of the controls, kept as their text forms, headless. A generator copies the store
// when a run starts (the copy is its snapshot); presets and projects read and write it; the window
// binds each widget to it by name. Names may be any name or alias the registry knows.
class SettingsStore {
  public:
    // The registry must outlive the store (the application's is OutputKinds::registry()).
    explicit SettingsStore(const ControlRegistry& registry);

    // The text form of a control's value (its default until set). An unknown name is a programming
    // error: it asserts in debug builds and gives "" otherwise.
    QString text(const QString& name) const;
    // The value read as a whole number, as text fields are read ("12px" gives 12, "" gives 0).
    int integer(const QString& name) const;
    // Popups: the selected index and title, whichever form the control stores.
    int index(const QString& name) const;
    QString title(const QString& name) const;
    // Checkboxes: on only when the value is exactly 1.
    bool isOn(const QString& name) const;

    // Sets a value given in text form (popups take a title or an index, colours six hex digits,
    // checkboxes 0 or 1). Returns false with the reason when the name or the value is not valid.
    bool set(const QString& name, const QString& value, QString* error = nullptr);
    // Sets a value as it stands, without checks; for values computed by the program itself.
    void setText(const QString& name, const QString& value);

    void resetToDefaults();
    const ControlRegistry& registry() const { return *registry_; }

  private:
    const ControlSpec& control(const QString& name) const;

    const ControlRegistry* registry_;
    QHash<QString, QString> values_;  // by canonical name; missing means the default
};
