#include "app/SettingsForm.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolBox>
#include <QVBoxLayout>
#include <algorithm>

#include "presets/SettingsStore.h"
#include "services/cNSColorHandling.h"

namespace {

constexpr int kNumberWidth = 90;

QString toolTipOf(const ControlSpec& control) {
    if (control.aliases.isEmpty()) return control.name;
    return control.name + QStringLiteral(" (") + control.aliases.join(QStringLiteral(", ")) + u')';
}

// The unit or scale of a number, as " (px)" or " (1–9)", when the label does not give one
// already: number fields are sizes in pixels, except the counts ("ifNumberOfRows").
QString scaleOf(const ControlSpec& control) {
    if (control.label.contains(u'(')) return {};
    if (control.kind == ControlKind::Number)
        return control.name.contains(QStringLiteral("Number")) ? QString()
                                                               : QStringLiteral(" (px)");
    if (control.kind == ControlKind::Slider)
        return QStringLiteral(" (%1–%2)").arg(control.minimum).arg(control.maximum);
    if (control.kind != ControlKind::PopupTitle || control.items.size() < 2) return {};
    for (const QString& item : control.items) {
        bool number = false;
        item.toInt(&number);
        if (!number) return {};
    }
    return QStringLiteral(" (%1–%2)").arg(control.items.constFirst(), control.items.constLast());
}

}  // namespace

SettingsForm::SettingsForm(const QString& outputKind, SettingsStore& store, QWidget* parent)
    : QWidget(parent), store_(store) {
    sections_ = new QToolBox;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(sections_);

    for (const ControlSpec* control : store.registry().controls(outputKind)) {
        if (control->section.isEmpty()) continue;  // kept with presets, no effect on a run
        QFormLayout*& form = forms_[control->section];
        if (!form) {
            // A page may be taller than the room the other section titles leave: it scrolls.
            auto* page = new QWidget;
            auto* pageLayout = new QVBoxLayout(page);
            form = new QFormLayout;
            pageLayout->addLayout(form);
            pageLayout->addStretch(1);
            form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
            form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
            auto* scroll = new QScrollArea;
            scroll->setWidget(page);
            scroll->setWidgetResizable(true);
            scroll->setFrameShape(QFrame::NoFrame);
            sections_->addItem(scroll, control->section);
        }
        QWidget* editor = makeEditor(*control);
        editor->setObjectName(control->name);
        editor->setToolTip(toolTipOf(*control));
        if (auto* box = qobject_cast<QCheckBox*>(editor)) {
            // A check box says what it does itself, in the field column.
            box->setText(control->label);
            form->addRow(QString(), box);
        } else {
            auto* label = new QLabel(control->label + scaleOf(*control) + u':');
            label->setToolTip(editor->toolTip());
            label->setBuddy(editor);
            form->addRow(label, editor);
        }
    }
    refresh();
}

void SettingsForm::addToSection(const QString& section, QWidget* widget) {
    if (QFormLayout* form = forms_.value(section)) form->addRow(QString(), widget);
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
            connect(box, &QCheckBox::toggled, this, [this, name](bool on) {
                store(name, on ? QStringLiteral("1") : QStringLiteral("0"));
            });
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
                // Popups, and segmented controls shown by their segment titles. A title popup
                // stores the title: its titles may be numbers themselves ("1" to "9").
                auto* combo = new QComboBox;
                combo->addItems(control.items);
                combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
                const bool byTitle = control.kind == ControlKind::PopupTitle;
                connect(combo, &QComboBox::currentIndexChanged, this,
                        [this, combo, name, byTitle](int index) {
                            store(name, byTitle ? combo->itemText(index) : QString::number(index));
                        });
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
            spin->setMaximumWidth(kNumberWidth);
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
            edit->setFixedHeight(edit->fontMetrics().lineSpacing() * 3 + 12);
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
            well->setFixedSize(44, 24);
            well->setCursor(Qt::PointingHandCursor);
            well->setAccessibleName(control.label);
            auto* hex = new QLineEdit;
            hex->setMaxLength(7);
            hex->setFixedWidth(kNumberWidth);
            layout->addWidget(well);
            layout->addWidget(hex);
            layout->addStretch();
            connect(hex, &QLineEdit::editingFinished, this, [this, hex, name] {
                store(name, hex->text().trimmed());
                refreshers_[name]();  // a wrong colour goes back to the stored one
            });
            connect(well, &QPushButton::clicked, this, [this, name] {
                const QColor chosen =
                    QColorDialog::getColor(QColor(u'#' + store_.text(name)), this);
                if (!chosen.isValid()) return;
                store(name, cNSColorHandling::getHEXValue(chosen));  // truncated, upper case
                refreshers_[name]();
            });
            refreshers_[name] = [this, well, hex, name] {
                const QString value = store_.text(name);
                hex->setText(value);
                well->setStyleSheet(
                    QStringLiteral("QPushButton { background-color: #%1; border: 1px solid #888; "
                                   "border-radius: 3px; }")
                        .arg(value));
            };
            return row;
        }
        case ControlKind::Path: {
            auto* row = new QWidget;
            row->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
            auto* layout = new QHBoxLayout(row);
            layout->setContentsMargins(0, 0, 0, 0);
            auto* edit = new QLineEdit;
            auto* choose = new QPushButton(tr("Choose…"));
            layout->addWidget(edit, 1);
            layout->addWidget(choose);
            connect(edit, &QLineEdit::editingFinished, this,
                    [this, edit, name] { store(name, edit->text()); });
            // Folder settings end with "Folder"; their paths end with a separator.
            const bool folder = name.endsWith(QStringLiteral("Folder"), Qt::CaseInsensitive);
            connect(choose, &QPushButton::clicked, this, [this, name, folder] {
                const QString current = store_.text(name);
                QString chosen =
                    folder ? QFileDialog::getExistingDirectory(this, tr("Choose a folder"), current)
                           : QFileDialog::getOpenFileName(
                                 this, tr("Choose an image"), QFileInfo(current).path(),
                                 tr("Images (*.png *.jpg *.jpeg *.tif *.tiff)"));
                if (chosen.isEmpty()) return;
                if (folder && !chosen.endsWith(u'/')) chosen += u'/';
                store(name, chosen);
                refreshers_[name]();
            });
            refreshers_[name] = [this, edit, name] { edit->setText(store_.text(name)); };
            return row;
        }
        case ControlKind::Text:
        case ControlKind::Number: {
            auto* edit = new QLineEdit;
            bool numericText = false;  // a percentage kept as text is short too
            control.defaultValue.toInt(&numericText);
            if (control.kind == ControlKind::Number || numericText)
                edit->setMaximumWidth(kNumberWidth);
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
