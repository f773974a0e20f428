#include "cli/Cli.h"
#include "generators/OutputKinds.h"
#include "presets/ControlRegistry.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella settings KIND\n"
    "       orvella settings watermark\n"
    "\n"
    "Lists every setting of the output kind, one per line, tab-separated:\n"
    "  name, aliases (comma-separated), kind, default, items (\" | \"-separated).\n"
    "Any name or alias can be given to `orvella generate KIND --set NAME=VALUE` (or\n"
    "`orvella watermark ... --set NAME=VALUE`).\n";

// Tabs and line breaks inside a value would break the columns.
QString cell(QString text) {
    return text.replace(u'\\', QStringLiteral("\\\\"))
        .replace(u'\t', QStringLiteral("\\t"))
        .replace(u'\n', QStringLiteral("\\n"));
}

}  // namespace

Command settingsCommand() {
    return {QStringLiteral("settings"), QStringLiteral("list the settings of an output kind"),
            QString::fromUtf8(kHelp), [](const QStringList& args, Io& io) {
                const QString kind = args.value(0);
                if (args.size() != 1 || (!OutputKinds::find(kind) && kind != u"watermark")) {
                    io.err << kHelp << "KIND is one of: " << OutputKinds::names() << "\n";
                    return int(kUsage);
                }
                io.out << "name\taliases\tkind\tdefault\titems\n";
                for (const ControlSpec* control : OutputKinds::registry().controls(args.first())) {
                    QString items = control->items.join(QStringLiteral(" | "));
                    if (control->kind == ControlKind::Slider)
                        items =
                            QStringLiteral("%1..%2").arg(control->minimum).arg(control->maximum);
                    io.out << control->name << "\t" << control->aliases.join(u',') << "\t"
                           << controlKindName(control->kind) << "\t" << cell(control->defaultValue)
                           << "\t" << cell(items) << "\n";
                }
                return int(kOk);
            }};
}

}  // namespace cli
