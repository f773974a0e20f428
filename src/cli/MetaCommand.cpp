#include "cli/Cli.h"

namespace cli {

Command metaCommand() {
    return {QStringLiteral("meta"), QStringLiteral("(not available yet)"),
            QStringLiteral("orvella meta: not available yet\n"),
            [](const QStringList&, Io& io) {
                io.err << "orvella meta: not available yet\n";
                return int(kFailed);
            }};
}

}  // namespace cli
