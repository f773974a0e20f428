#include "cli/Cli.h"

namespace cli {

Command generateCommand() {
    return {QStringLiteral("generate"), QStringLiteral("(not available yet)"),
            QStringLiteral("orvella generate: not available yet\n"),
            [](const QStringList&, Io& io) {
                io.err << "orvella generate: not available yet\n";
                return int(kFailed);
            }};
}

}  // namespace cli
