#pragma once

#include <QHash>
#include <QWidget>
#include <functional>

class QFormLayout;
class QToolBox;
class SettingsStore;
struct ControlSpec;

// The controls of one output kind, made from the registry and bound to the settings store by
// name: a change in a widget goes into the store at once, and refresh() shows the store again.
// One page per section of the registry, labels from it, the control names as tool tips. Each
// editor is named after its control (a colour or path row holds its line edit).
class SettingsForm : public QWidget {
    Q_OBJECT
  public:
    SettingsForm(const QString& outputKind, SettingsStore& store, QWidget* parent = nullptr);

    void refresh();
    // Adds a row of the window's own to the end of a section, such as buttons that edit settings.
    void addToSection(const QString& section, QWidget* widget);
    QToolBox* sections() const { return sections_; }

  Q_SIGNALS:
    // A control changed in the window, by its canonical name.
    void edited(const QString& name);

  private:
    QWidget* makeEditor(const ControlSpec& control);
    void store(const QString& name, const QString& value);

    SettingsStore& store_;
    QToolBox* sections_ = nullptr;
    QHash<QString, QFormLayout*> forms_;  // by section
    QHash<QString, std::function<void()>> refreshers_;
};
