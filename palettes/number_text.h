#pragma once

#include <cstdint>

#include <QString>

// How palette text fields show numbers and read them back. Both sides use the
// C conventions whatever the user's locale: "%g" and "%i" to show, and the
// leading number of the text to read, so "12abc" reads 12 and "abc" reads 0.

// printf's "%g": six significant digits.
QString formatReal(double value);
// printf's "%i".
QString formatInt(int32_t value);

// The leading decimal number of the text after any white space, as strtod
// reads it in the C locale: a value beyond the double range reads as an
// infinity, a tiny one as 0 or a subnormal. Words such as "nan" and "inf" and
// hexadecimal numbers are not numbers a user types into these fields; they
// read as 0 like any other text.
double readReal(const QString& text);
// The leading decimal integer of the text after any white space, as strtol
// reads it; values beyond the 32-bit range are clamped to it.
int32_t readInt(const QString& text);
