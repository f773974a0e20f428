#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class SettingsStore;
class UserInterface;
struct PresetLayout;

// The presets of one output kind in its tab: the stored presets, oldest first, a name field, and
// add (save the current settings), remove, load (also by double-click), export to and import from
// a preset file. Database failures show their fixed message in the alert sheet; the window goes on.
class PresetsPanel : public QWidget {
    Q_OBJECT
  public:
    // `dbPath` "" is the user's presets database.
    PresetsPanel(const QString& outputKind, SettingsStore& settings, UserInterface& ui,
                 const QString& dbPath = QString(), QWidget* parent = nullptr);

    void refreshList();
    void addPreset();
    void removePreset();
    void loadPreset();
    void exportPreset();
    void importPreset();
    // The file forms, without dialogs.
    bool exportTo(const QString& file);
    bool importFrom(const QString& file);

  Q_SIGNALS:
    // Settings were loaded into the store; `kind` is the kind whose tab they belong to.
    void loaded(const QString& kind);

  private:
    const PresetLayout* layout_ = nullptr;
    SettingsStore& settings_;
    UserInterface& ui_;
    QString dbPath_;
    QListWidget* list_ = nullptr;
    QLineEdit* name_ = nullptr;
    QLabel* status_ = nullptr;
};
