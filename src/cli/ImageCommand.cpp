#include "cli/Cli.h"

namespace cli {

Command imageCommand() {
    return {QStringLiteral("image"), QStringLiteral("(not available yet)"),
            QStringLiteral("orvella image: not available yet\n"),
            [](const QStringList&, Io& io) {
                io.err << "orvella image: not available yet\n";
                return int(kFailed);
            }};
}

}  // namespace cli
