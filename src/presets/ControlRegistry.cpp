#include "presets/ControlRegistry.h"

#include <QRegularExpression>
#include <algorithm>
#include <vector>

#include "services/TextValues.h"

QString controlKindName(ControlKind kind) {
    switch (kind) {
        case ControlKind::Text:
            return QStringLiteral("text");
        case ControlKind::Number:
            return QStringLiteral("number");
        case ControlKind::TextView:
            return QStringLiteral("text view");
        case ControlKind::Checkbox:
            return QStringLiteral("checkbox");
        case ControlKind::PopupTitle:
            return QStringLiteral("popup (title)");
        case ControlKind::PopupIndex:
            return QStringLiteral("popup (index)");
        case ControlKind::Segmented:
            return QStringLiteral("segmented");
        case ControlKind::Color:
            return QStringLiteral("colour");
        case ControlKind::Slider:
            return QStringLiteral("slider");
        case ControlKind::Path:
            return QStringLiteral("path");
    }
    return {};
}

namespace {

// Edits (insert, delete, replace, case counts half) from a to b.
double editDistance(const QString& a, const QString& b) {
    std::vector<double> previous(size_t(b.size()) + 1), current(size_t(b.size()) + 1);
    for (qsizetype j = 0; j <= b.size(); ++j) previous[size_t(j)] = double(j);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        current[0] = double(i);
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const QChar x = a[i - 1], y = b[j - 1];
            const double replace = x == y ? 0.0 : x.toLower() == y.toLower() ? 0.5 : 1.0;
            current[size_t(j)] = std::min({previous[size_t(j)] + 1, current[size_t(j - 1)] + 1,
                                           previous[size_t(j - 1)] + replace});
        }
        std::swap(previous, current);
    }
    return previous[size_t(b.size())];
}

}  // namespace

QStringList ControlRegistry::nearestNames(const QString& name, const QString& outputKind) const {
    QList<std::pair<double, QString>> scored;
    const double limit = std::max(2.0, double(name.size()) / 4.0);
    for (const ControlSpec& control : controls_) {
        if (control.outputKind != outputKind) continue;
        for (const QString& candidate : QStringList{control.name} + control.aliases) {
            const double d = editDistance(name, candidate);
            if (d <= limit) scored.append({d, candidate});
        }
    }
    std::stable_sort(scored.begin(), scored.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    QStringList names;
    for (const auto& [d, candidate] : scored)
        if (names.size() < 3) names.append(candidate);
    return names;
}

void ControlAdder::add(const QString& name, const QString& label, ControlKind kind,
                       const QString& defaultValue, const QStringList& aliases,
                       const QStringList& items, int minimum, int maximum) {
    ControlSpec control;
    control.name = name;
    control.label = label;
    control.section = section;
    control.outputKind = outputKind;
    control.kind = kind;
    control.defaultValue = defaultValue;
    control.items = items;
    control.aliases = aliases;
    control.minimum = minimum;
    control.maximum =
        kind == ControlKind::Segmented && !items.isEmpty() ? int(items.size()) - 1 : maximum;
    registry.add(control);
}

void ControlRegistry::add(const ControlSpec& control) {
    Q_ASSERT_X(!byName_.contains(control.name), "ControlRegistry::add", qPrintable(control.name));
    const qsizetype index = controls_.size();
    controls_.append(control);
    byName_.insert(control.name, index);
    for (const QString& alias : control.aliases) {
        Q_ASSERT_X(!byName_.contains(alias), "ControlRegistry::add", qPrintable(alias));
        byName_.insert(alias, index);
    }
}

const ControlSpec* ControlRegistry::find(const QString& nameOrAlias) const {
    const auto it = byName_.constFind(nameOrAlias);
    return it == byName_.constEnd() ? nullptr : &controls_[*it];
}

QList<const ControlSpec*> ControlRegistry::controls(const QString& outputKind) const {
    QList<const ControlSpec*> result;
    for (const ControlSpec& control : controls_)
        if (control.outputKind == outputKind) result.append(&control);
    return result;
}

QList<const ControlSpec*> ControlRegistry::all() const {
    QList<const ControlSpec*> result;
    for (const ControlSpec& control : controls_) result.append(&control);
    return result;
}

namespace {

bool isWholeNumber(const QString& value) {
    static const QRegularExpression pattern(QStringLiteral("^\\s*[+-]?\\d+\\s*$"));
    return pattern.match(value).hasMatch();
}

}  // namespace

bool ControlRegistry::normalise(const ControlSpec& control, const QString& value,
                                QString* normalised, QString* error) const {
    auto fail = [&](const QString& why) {
        if (error) *error = QStringLiteral("%1: %2").arg(control.name, why);
        return false;
    };
    QString out = value;
    switch (control.kind) {
        case ControlKind::Text:
        case ControlKind::TextView:
        case ControlKind::Path:
            break;
        case ControlKind::Number:
            if (!isWholeNumber(value))
                return fail(QStringLiteral("\"%1\" is not a whole number").arg(value));
            out = QString::number(TextValues::intValue(value));
            break;
        case ControlKind::Checkbox:
            if (value != u"0" && value != u"1")
                return fail(QStringLiteral("\"%1\" is not 0 or 1").arg(value));
            break;
        case ControlKind::PopupTitle:
        case ControlKind::PopupIndex: {
            qsizetype index = control.items.indexOf(value);
            if (index < 0 && isWholeNumber(value)) {
                const int i = TextValues::intValue(value);
                if (i >= 0 && i < control.items.size()) index = i;
            }
            if (index < 0)
                return fail(QStringLiteral("\"%1\" is not one of: %2")
                                .arg(value, control.items.join(QStringLiteral(", "))));
            out = control.kind == ControlKind::PopupTitle ? control.items[index]
                                                          : QString::number(index);
            break;
        }
        case ControlKind::Segmented:
        case ControlKind::Slider: {
            if (!isWholeNumber(value))
                return fail(QStringLiteral("\"%1\" is not a whole number").arg(value));
            const int i = TextValues::intValue(value);
            const int maximum = control.kind == ControlKind::Segmented && !control.items.isEmpty()
                                    ? int(control.items.size()) - 1
                                    : control.maximum;
            if (i < control.minimum || i > maximum)
                return fail(QStringLiteral("%1 is outside %2 to %3")
                                .arg(i)
                                .arg(control.minimum)
                                .arg(maximum));
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
