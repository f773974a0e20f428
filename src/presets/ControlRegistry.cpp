#include "presets/ControlRegistry.h"

#include <QRegularExpression>

#include "services/TextValues.h"

QString controlKindName(ControlKind kind) {
    switch (kind) {
        case ControlKind::Text: return QStringLiteral("text");
        case ControlKind::Number: return QStringLiteral("number");
        case ControlKind::TextView: return QStringLiteral("text view");
        case ControlKind::Checkbox: return QStringLiteral("checkbox");
        case ControlKind::PopupTitle: return QStringLiteral("popup (title)");
        case ControlKind::PopupIndex: return QStringLiteral("popup (index)");
        case ControlKind::Segmented: return QStringLiteral("segmented");
        case ControlKind::Color: return QStringLiteral("colour");
        case ControlKind::Slider: return QStringLiteral("slider");
        case ControlKind::Path: return QStringLiteral("path");
    }
    return {};
}

const ControlRegistry& ControlRegistry::standard() {
    static const ControlRegistry registry = [] {
        ControlRegistry r;
        registerGalleryControls(r);
        return r;
    }();
    return registry;
}

void ControlRegistry::add(const ControlSpec& spec) {
    Q_ASSERT_X(!byName_.contains(spec.name), "ControlRegistry::add", qPrintable(spec.name));
    const qsizetype index = specs_.size();
    specs_.append(spec);
    byName_.insert(spec.name, index);
    for (const QString& alias : spec.aliases) {
        Q_ASSERT_X(!byName_.contains(alias), "ControlRegistry::add", qPrintable(alias));
        byName_.insert(alias, index);
    }
}

const ControlSpec* ControlRegistry::find(const QString& nameOrAlias) const {
    const auto it = byName_.constFind(nameOrAlias);
    return it == byName_.constEnd() ? nullptr : &specs_[*it];
}

QList<const ControlSpec*> ControlRegistry::controls(const QString& outputKind) const {
    QList<const ControlSpec*> result;
    for (const ControlSpec& spec : specs_)
        if (spec.outputKind == outputKind) result.append(&spec);
    return result;
}

QList<const ControlSpec*> ControlRegistry::all() const {
    QList<const ControlSpec*> result;
    for (const ControlSpec& spec : specs_) result.append(&spec);
    return result;
}

namespace {

bool isWholeNumber(const QString& value) {
    static const QRegularExpression pattern(QStringLiteral("^\\s*[+-]?\\d+\\s*$"));
    return pattern.match(value).hasMatch();
}

}  // namespace

bool ControlRegistry::normalise(const ControlSpec& spec, const QString& value, QString* normalised,
                                QString* error) const {
    auto fail = [&](const QString& why) {
        if (error) *error = QStringLiteral("%1: %2").arg(spec.name, why);
        return false;
    };
    QString out = value;
    switch (spec.kind) {
        case ControlKind::Text:
        case ControlKind::TextView:
        case ControlKind::Path:
            break;
        case ControlKind::Number:
            if (!isWholeNumber(value)) return fail(QStringLiteral("\"%1\" is not a whole number").arg(value));
            out = QString::number(TextValues::intValue(value));
            break;
        case ControlKind::Checkbox:
            if (value != u"0" && value != u"1") return fail(QStringLiteral("\"%1\" is not 0 or 1").arg(value));
            break;
        case ControlKind::PopupTitle:
        case ControlKind::PopupIndex: {
            qsizetype index = spec.items.indexOf(value);
            if (index < 0 && isWholeNumber(value)) {
                const int i = TextValues::intValue(value);
                if (i >= 0 && i < spec.items.size()) index = i;
            }
            if (index < 0)
                return fail(QStringLiteral("\"%1\" is not one of: %2")
                                .arg(value, spec.items.join(QStringLiteral(", "))));
            out = spec.kind == ControlKind::PopupTitle ? spec.items[index] : QString::number(index);
            break;
        }
        case ControlKind::Segmented:
        case ControlKind::Slider: {
            if (!isWholeNumber(value)) return fail(QStringLiteral("\"%1\" is not a whole number").arg(value));
            const int i = TextValues::intValue(value);
            const int maximum = spec.kind == ControlKind::Segmented && !spec.items.isEmpty()
                                    ? int(spec.items.size()) - 1
                                    : spec.maximum;
            if (i < spec.minimum || i > maximum)
                return fail(QStringLiteral("%1 is outside %2 to %3").arg(i).arg(spec.minimum).arg(maximum));
            out = QString::number(i);
            break;
        }
        case ControlKind::Color: {
            static const QRegularExpression hex(QStringLiteral("^#?[0-9A-Fa-f]{6}$"));
            if (!hex.match(value).hasMatch())
                return fail(QStringLiteral("\"%1\" is not six hexadecimal digits").arg(value));
            out = value.right(6).toUpper();
            break;
        }
    }
    if (normalised) *normalised = out;
    return true;
}
