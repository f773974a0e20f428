#pragma once

#include <QLoggingCategory>

// Diagnostic lines go to the system log through this category; there are no log levels beyond
// what Qt offers. The command line hides them unless asked with --verbose.
Q_DECLARE_LOGGING_CATEGORY(lcOrvella)

#define klLog() qCInfo(lcOrvella).noquote()
