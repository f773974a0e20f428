#include "cli/Cli.h"
#include "generators/OutputKinds.h"
#include "presets/ControlRegistry.h"

namespace cli {

namespace {

// The kinds of settings: every output kind, then the watermark panel's.
QStringList settingKinds() {
    QStringList kinds;
    for (const OutputKind& kind : OutputKinds::all()) kinds.append(kind.name);
    kinds.append(QStringLiteral("watermark"));
    return kinds;
}

QString help() {
    QString text;
    for (const QString& kind : settingKinds())
        text += (text.isEmpty() ? "Usage: orvella settings " : "       orvella settings ") + kind +
                "\n";
    return text +
           "\n"
           "Lists every setting of the output kind, one per line, tab-separated:\n"
           "  name, aliases (comma-separated), kind, default, items (\" | \"-separated), and\n"
           "  the window's label with its section (\"Big images (lightbox): Width\").\n"
           "Any name or alias can be given to `orvella generate KIND --set NAME=VALUE` (or\n"
           "`orvella watermark ... --set NAME=VALUE`).\n";
}

// Tabs and line breaks inside a value would break the columns.
QString cell(QString text) {
    return text.replace(u'\\', QStringLiteral("\\\\"))
        .replace(u'\t', QStringLiteral("\\t"))
        .replace(u'\n', QStringLiteral("\\n"));
}

// The label as the window shows it, under its section.
QString windowLabel(const ControlSpec& control) {
    return control.section.isEmpty() ? control.label : control.section + ": " + control.label;
}

}  // namespace

Command settingsCommand() {
    return {QStringLiteral("settings"), QStringLiteral("list the settings of an output kind"),
            help(), [](const QStringList& args, Io& io) {
                if (args.size() != 1 || !settingKinds().contains(args.first())) {
                    io.err << help();
                    return int(kUsage);
                }
                io.out << "name\taliases\tkind\tdefault\titems\tlabel\n";
                for (const ControlSpec* control : OutputKinds::registry().controls(args.first())) {
                    QString items = control->items.join(QStringLiteral(" | "));
                    if (control->kind == ControlKind::Slider)
                        items =
                            QStringLiteral("%1..%2").arg(control->minimum).arg(control->maximum);
                    io.out << control->name << "\t" << control->aliases.join(u',') << "\t"
                           << controlKindName(control->kind) << "\t" << cell(control->defaultValue)
                           << "\t" << cell(items) << "\t" << cell(windowLabel(*control)) << "\n";
                }
                return int(kOk);
            }};
}

}  // namespace cli
