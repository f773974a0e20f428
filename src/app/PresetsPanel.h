#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class cPresetManager;
class SettingsStore;
class UserInterface;
struct PresetLayout;

// The presets of one output kind in its tab: the stored presets, oldest first, a name field, and
// add (save the current settings), remove, load (also by double-click), export to and import from
// a preset file. The list is read again whenever the panel is shown. Failures of an action show in
// the alert sheet (the fixed message, the file and the reason); the window goes on. A database
// that cannot be read is named with its fault above the empty list, with an offer to move it
// aside and start a new one when that cures it. A stored preset that cannot be read is listed as
// damaged, its reason in its tooltip.
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
    // Moves the damaged database aside and starts a new one.
    void repairDatabase();
    // The file forms, without dialogs.
    bool exportTo(const QString& file);
    bool importFrom(const QString& file);

  Q_SIGNALS:
    // Settings were loaded into the store; `kind` is the kind whose tab they belong to.
    void loaded(const QString& kind);

  public:
    // The role of a list item's stored name (its text may be shown otherwise) and damage.
    static constexpr int kNameRole = Qt::UserRole;
    static constexpr int kDamageRole = Qt::UserRole + 1;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    // Shows what failed; the database's fault stays shown above the list until a refresh.
    void failed(const cPresetManager& manager, const QString& title, const QString& message);

    const PresetLayout* layout_ = nullptr;
    SettingsStore& settings_;
    UserInterface& ui_;
    QString dbPath_;
    QListWidget* list_ = nullptr;
    QLineEdit* name_ = nullptr;
    QLabel* status_ = nullptr;
    QLabel* problem_ = nullptr;
    QPushButton* repair_ = nullptr;
};
