#include "app/PresetsPanel.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "presets/SettingsStore.h"
#include "presets/cPresetManager.h"
#include "services/Log.h"
#include "services/UserInterface.h"

namespace {
const QString kFileFilter = QStringLiteral("Orvella presets (*.orvpreset *.plist);;All files (*)");
}

PresetsPanel::PresetsPanel(const QString& outputKind, SettingsStore& settings, UserInterface& ui,
                           const QString& dbPath, QWidget* parent)
    : QWidget(parent),
      layout_(PresetLayouts::find(outputKind)),
      settings_(settings),
      ui_(ui),
      dbPath_(dbPath) {
    list_ = new QListWidget;
    list_->setObjectName(QStringLiteral("myPresetsTableView"));
    name_ = new QLineEdit;
    name_->setObjectName(QStringLiteral("tfInputPDM"));
    name_->setPlaceholderText(tr("Name of the preset"));
    status_ = new QLabel;
    status_->setWordWrap(true);
    problem_ = new QLabel;
    problem_->setObjectName(QStringLiteral("tfPresetsProblem"));
    problem_->setWordWrap(true);
    problem_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    problem_->hide();

    auto button = [this](const QString& text, const QString& name, void (PresetsPanel::*action)()) {
        auto* b = new QPushButton(text);
        b->setObjectName(name);
        connect(b, &QPushButton::clicked, this, action);
        return b;
    };
    auto* add = button(tr("Add"), QStringLiteral("btAddPreset"), &PresetsPanel::addPreset);
    add->setToolTip(tr("Save the current settings under the name"));
    auto* remove =
        button(tr("Remove"), QStringLiteral("btRemovePreset"), &PresetsPanel::removePreset);
    remove->setToolTip(tr("Remove every preset of the selected name, whatever its kind"));
    auto* load = button(tr("Load"), QStringLiteral("btLoadPreset"), &PresetsPanel::loadPreset);
    auto* exportButton =
        button(tr("Export…"), QStringLiteral("btExportPreset"), &PresetsPanel::exportPreset);
    auto* importButton =
        button(tr("Import…"), QStringLiteral("btImportPreset"), &PresetsPanel::importPreset);
    repair_ = button(tr("Move Aside and Start Anew"), QStringLiteral("btRepairPresets"),
                     &PresetsPanel::repairDatabase);
    repair_->setToolTip(
        tr("Rename the damaged database with today's date beside it and start an empty one"));
    repair_->hide();
    connect(name_, &QLineEdit::returnPressed, this, &PresetsPanel::addPreset);
    connect(list_, &QListWidget::itemDoubleClicked, this, &PresetsPanel::loadPreset);

    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(name_, 1);
    nameRow->addWidget(add);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {load, remove, exportButton, importButton}) buttons->addWidget(b);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(problem_);
    layout->addWidget(repair_, 0, Qt::AlignLeft);
    layout->addWidget(list_, 1);
    layout->addLayout(nameRow);
    layout->addLayout(buttons);
    layout->addWidget(status_);
    setEnabled(layout_ != nullptr);
}

void PresetsPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refreshList();
}

void PresetsPanel::failed(const cPresetManager& manager, const QString& title,
                          const QString& message) {
    const DbFailure& fault = manager.failure();
    if (fault.failed() && fault.fault != DbFault::DamagedRow && fault.fault != DbFault::Refused) {
        problem_->setText(fault.text());
        problem_->show();
        repair_->setVisible(fault.movable());
    }
    if (!title.isEmpty()) ui_.alert(title, message, false);
}

void PresetsPanel::refreshList() {
    list_->clear();
    problem_->hide();
    repair_->hide();
    if (!layout_) return;
    cPresetManager manager(dbPath_);
    QList<cPresetManager::ListEntry> entries;
    QString message;
    if (manager.listPresets(*layout_, &entries, &message) != cPresetManager::Outcome::Ok) {
        failed(manager, QString(), message);
        return;
    }
    for (const auto& entry : entries) {
        const QString name = cPresetManager::displayName(entry.nmPreset);
        auto* item = new QListWidgetItem(list_);
        item->setData(kNameRole, entry.nmPreset);
        if (entry.damage.isEmpty()) {
            item->setText(name);
            continue;
        }
        item->setText(entry.nmPreset.isEmpty() ? tr("Damaged preset (row %1)").arg(entry.rowId)
                                               : tr("%1 (damaged)").arg(name));
        item->setData(kDamageRole, entry.damage);
        item->setToolTip(entry.damage);
        item->setForeground(palette().brush(QPalette::Disabled, QPalette::Text));
    }
}

void PresetsPanel::repairDatabase() {
    cPresetManager manager(dbPath_);
    QString movedTo, message;
    if (manager.repairDatabase(&movedTo, &message) != cPresetManager::Outcome::Ok) {
        ui_.alert(tr("The presets database was not moved."), message, false);
        return;
    }
    refreshList();
    status_->setText(movedTo.isEmpty() ? message
                                       : tr("The damaged database was moved to %1; a new one "
                                            "was started.")
                                             .arg(movedTo));
}

void PresetsPanel::addPreset() {
    if (!layout_) return;
    QString stored, message;
    cPresetManager manager(dbPath_);
    const auto outcome =
        manager.addPresetValuesToDB(settings_, *layout_, name_->text(), &stored, &message);
    if (outcome != cPresetManager::Outcome::Ok) {
        failed(manager, tr("The preset was not saved."), message);
        return;
    }
    status_->setText(tr("Saved as “%1”.").arg(stored));
    refreshList();
    list_->setCurrentRow(list_->count() - 1);
}

void PresetsPanel::removePreset() {
    const int row = list_->currentRow();
    klLog() << QStringLiteral("mySelectedRow: %1").arg(row);
    if (row < 0 || !layout_) return;
    const QString name = list_->item(row)->data(kNameRole).toString();
    QString message;
    cPresetManager manager(dbPath_);
    const auto outcome = manager.hRemovePreset(name, &message);
    if (outcome == cPresetManager::Outcome::Failed) {
        failed(manager, tr("The preset was not removed."), message);
        return;
    }
    status_->setText(outcome == cPresetManager::Outcome::Ok
                         ? tr("“%1” removed.").arg(cPresetManager::displayName(name))
                         : message);
    refreshList();
}

void PresetsPanel::loadPreset() {
    QListWidgetItem* item = list_->currentItem();
    if (!item || !layout_) return;
    const QString name = item->data(kNameRole).toString();
    QString message;
    cPresetManager manager(dbPath_);
    const auto outcome = manager.loadPresetFromDB(settings_, *layout_, name, &message);
    if (outcome != cPresetManager::Outcome::Ok) {
        failed(manager, tr("The preset was not loaded."), message);
        return;
    }
    name_->setText(cPresetManager::displayName(name));
    status_->setText(tr("“%1” loaded.").arg(cPresetManager::displayName(name)));
    Q_EMIT loaded(layout_->kind);
}

bool PresetsPanel::exportTo(const QString& file) {
    QString message;
    if (!cPresetManager::writePresetFile(
            file, cPresetManager::addPresetValuesToPLIST(settings_, *layout_), &message)) {
        ui_.alert(tr("The preset file was not written."), message, false);
        return false;
    }
    status_->setText(tr("Exported to %1.").arg(file));
    return true;
}

bool PresetsPanel::importFrom(const QString& file) {
    cPresetManager::PresetDictionary dictionary;
    QString message;
    if (!cPresetManager::readPresetFile(file, &dictionary, &message)) {
        ui_.alert(tr("The preset file was not read."), message, false);
        return false;
    }
    // Loaded into the settings of the file's kind; Add stores it.
    const PresetLayout* layout = cPresetManager::layoutOf(dictionary);
    cPresetManager::loadPresetValuesFromPLIST(settings_, *layout, dictionary);
    status_->setText(tr("Loaded from %1.").arg(file));
    Q_EMIT loaded(layout->kind);
    return true;
}

void PresetsPanel::exportPreset() {
    if (!layout_) return;
    QString suggested = name_->text().trimmed();
    if (suggested.isEmpty()) suggested = layout_->fileWord;
    QString file = QFileDialog::getSaveFileName(
        this, tr("Export the preset"), suggested + QStringLiteral(".orvpreset"), kFileFilter);
    if (!file.isEmpty()) exportTo(file);
}

void PresetsPanel::importPreset() {
    const QString file =
        QFileDialog::getOpenFileName(this, tr("Import a preset"), QString(), kFileFilter);
    if (!file.isEmpty()) importFrom(file);
}
