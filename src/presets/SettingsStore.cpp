#include "presets/SettingsStore.h"

#include "services/TextValues.h"

namespace {
const ControlSpec& unknownControl() {
    static const ControlSpec control;
    return control;
}
}  // namespace

SettingsStore::SettingsStore(const ControlRegistry& registry) : registry_(&registry) {}

const ControlSpec& SettingsStore::control(const QString& name) const {
    const ControlSpec* found = registry_->find(name);
    Q_ASSERT_X(found, "SettingsStore", qPrintable(QStringLiteral("unknown control ") + name));
    return found ? *found : unknownControl();
}

QString SettingsStore::text(const QString& name) const {
    const ControlSpec& s = control(name);
    const auto it = values_.constFind(s.name);
    return it == values_.constEnd() ? s.defaultValue : *it;
}

int SettingsStore::integer(const QString& name) const { return TextValues::intValue(text(name)); }

int SettingsStore::index(const QString& name) const {
    const ControlSpec& s = control(name);
    if (s.kind == ControlKind::PopupTitle) return int(s.items.indexOf(text(name)));
    return integer(name);
}

QString SettingsStore::title(const QString& name) const {
    const ControlSpec& s = control(name);
    if (s.kind == ControlKind::PopupIndex) {
        const int i = integer(name);
        return i >= 0 && i < s.items.size() ? s.items[i] : QString();
    }
    return text(name);
}

bool SettingsStore::isOn(const QString& name) const { return integer(name) == 1; }

bool SettingsStore::set(const QString& name, const QString& value, QString* error) {
    const ControlSpec* s = registry_->find(name);
    if (!s) {
        if (error) *error = QStringLiteral("unknown setting \"%1\"").arg(name);
        return false;
    }
    QString normalised;
    if (!registry_->normalise(*s, value, &normalised, error)) return false;
    values_.insert(s->name, normalised);
    return true;
}

void SettingsStore::setText(const QString& name, const QString& value) {
    const ControlSpec& s = control(name);
    if (!s.name.isEmpty()) values_.insert(s.name, value);
}

void SettingsStore::resetToDefaults() { values_.clear(); }
