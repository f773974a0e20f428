#include "cli/Cli.h"

namespace cli {

Command settingsCommand() {
    return {QStringLiteral("settings"), QStringLiteral("(not available yet)"),
            QStringLiteral("orvella settings: not available yet\n"),
            [](const QStringList&, Io& io) {
                io.err << "orvella settings: not available yet\n";
                return int(kFailed);
            }};
}

}  // namespace cli
