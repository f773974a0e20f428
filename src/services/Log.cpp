#include "services/Log.h"

Q_LOGGING_CATEGORY(lcOrvella, "orvella")
