#pragma once

#include <QString>

// Numbers read from texts the way the settings have always read them: leading blanks skipped, an
// optional sign, then as many digits as there are; anything else ends the number and an absent
// number is 0. Integers saturate at the 32-bit limits instead of overflowing.
namespace TextValues {
int intValue(const QString& text);
double doubleValue(const QString& text);
float floatValue(const QString& text);
}  // namespace TextValues
