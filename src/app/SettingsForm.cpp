#include "app/SettingsForm.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <algorithm>

#include "presets/SettingsStore.h"

SettingsForm::SettingsForm(const QString& outputKind, SettingsStore& store, QWidget* parent)
    : QScrollArea(parent), store_(store) {
    auto* content = new QWidget;
    auto* form = new QFormLayout(content);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (const ControlSpec* control : store.registry().controls(outputKind)) {
        QWidget* editor = makeEditor(*control);
        editor->setObjectName(control->name);
        editor->setToolTip(control->aliases.isEmpty()
                               ? control->name
                               : control->name + QStringLiteral(" (") +
                                     control->aliases.join(QStringLiteral(", ")) + u')');
        form->addRow(control->name, editor);
    }
    setWidget(content);
    setWidgetResizable(true);
    refresh();
}

void SettingsForm::refresh() {
    for (const auto& refresher : std::as_const(refreshers_)) refresher();
}

void SettingsForm::store(const QString& name, const QString& value) {
    if (store_.text(name) == value) return;
    if (store_.set(name, value)) Q_EMIT edited(name);
}

QWidget* SettingsForm::makeEditor(const ControlSpec& control) {
    const QString name = control.name;
    switch (control.kind) {
        case ControlKind::Checkbox: {
            auto* box = new QCheckBox;
            connect(box, &QCheckBox::toggled, this,
                    [this, name](bool on) { store(name, on ? QStringLiteral("1") : QStringLiteral("0")); });
            refreshers_[name] = [this, box, name] {
                const QSignalBlocker blocker(box);
                box->setChecked(store_.isOn(name));
            };
            return box;
        }
        case ControlKind::PopupTitle:
        case ControlKind::PopupIndex:
        case ControlKind::Segmented:
            if (!control.items.isEmpty()) {
                // Popups, and segmented controls shown by their segment titles; both store what
                // the registry's kind says (title or index).
                auto* combo = new QComboBox;
                combo->addItems(control.items);
                connect(combo, &QComboBox::currentIndexChanged, this,
                        [this, name](int index) { store(name, QString::number(index)); });
                refreshers_[name] = [this, combo, name] {
                    const QSignalBlocker blocker(combo);
                    combo->setCurrentIndex(store_.index(name));
                };
                return combo;
            }
            [[fallthrough]];
        case ControlKind::Slider: {
            auto* spin = new QSpinBox;
            spin->setRange(control.minimum, std::max(control.minimum, control.maximum));
            connect(spin, &QSpinBox::valueChanged, this,
                    [this, name](int value) { store(name, QString::number(value)); });
            refreshers_[name] = [this, spin, name] {
                const QSignalBlocker blocker(spin);
                spin->setValue(store_.integer(name));
            };
            return spin;
        }
        case ControlKind::TextView: {
            auto* edit = new QPlainTextEdit;
            edit->setMaximumHeight(70);
            connect(edit, &QPlainTextEdit::textChanged, this,
                    [this, edit, name] { store(name, edit->toPlainText()); });
            refreshers_[name] = [this, edit, name] {
                if (edit->toPlainText() == store_.text(name)) return;
                const QSignalBlocker blocker(edit);
                edit->setPlainText(store_.text(name));
            };
            return edit;
        }
        case ControlKind::Color: {
            // The colour well and its hex field side by side, kept in step through the store.
            auto* row = new QWidget;
            auto* layout = new QHBoxLayout(row);
            layout->setContentsMargins(0, 0, 0, 0);
            auto* well = new QPushButton;
            well->setFixedWidth(40);
            auto* hex = new QLineEdit;
            hex->setMaxLength(7);
            layout->addWidget(well);
            layout->addWidget(hex);
            connect(hex, &QLineEdit::editingFinished, this, [this, hex, name] {
                store(name, hex->text());
                refreshers_[name]();
            });
            connect(well, &QPushButton::clicked, this, [this, name] {
                const QColor chosen = QColorDialog::getColor(
                    QColor(QStringLiteral("#") + store_.text(name)), this);
                if (!chosen.isValid()) return;
                store(name, chosen.name().mid(1));
                refreshers_[name]();
            });
            refreshers_[name] = [this, well, hex, name] {
                const QString value = store_.text(name);
                hex->setText(value);
                well->setStyleSheet(QStringLiteral("background-color: #%1").arg(value));
            };
            return row;
        }
        case ControlKind::Path: {
            auto* row = new QWidget;
            auto* layout = new QHBoxLayout(row);
            layout->setContentsMargins(0, 0, 0, 0);
            auto* edit = new QLineEdit;
            auto* choose = new QPushButton(tr("Choose…"));
            layout->addWidget(edit);
            layout->addWidget(choose);
            connect(edit, &QLineEdit::editingFinished, this,
                    [this, edit, name] { store(name, edit->text()); });
            connect(choose, &QPushButton::clicked, this, [this, name] {
                const QString file = QFileDialog::getOpenFileName(
                    this, tr("Choose an image"), QString(), tr("Images (*.png *.jpg *.jpeg *.tif *.tiff)"));
                if (file.isEmpty()) return;
                store(name, file);
                refreshers_[name]();
            });
            refreshers_[name] = [this, edit, name] { edit->setText(store_.text(name)); };
            return row;
        }
        case ControlKind::Text:
        case ControlKind::Number: {
            auto* edit = new QLineEdit;
            connect(edit, &QLineEdit::editingFinished, this, [this, edit, name] {
                store(name, edit->text());
                refreshers_[name]();  // an invalid number goes back to the stored value
            });
            refreshers_[name] = [this, edit, name] { edit->setText(store_.text(name)); };
            return edit;
        }
    }
    return new QWidget;
}
