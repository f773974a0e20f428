#pragma once

#include <QHash>
#include <QScrollArea>
#include <functional>

class QWidget;
class SettingsStore;
struct ControlSpec;

// The controls of one output kind, made from the registry and bound to the settings store by
// name: a change in a widget goes into the store at once, and refresh() shows the store again.
class SettingsForm : public QScrollArea {
    Q_OBJECT
public:
    SettingsForm(const QString& outputKind, SettingsStore& store, QWidget* parent = nullptr);

    void refresh();

Q_SIGNALS:
    // A control changed in the window, by its canonical name.
    void edited(const QString& name);

private:
    QWidget* makeEditor(const ControlSpec& control);
    void store(const QString& name, const QString& value);

    SettingsStore& store_;
    QHash<QString, std::function<void()>> refreshers_;
};
