#pragma once

#include <cstddef>

#include "host/export.h"

namespace KORVEX::Zel {

// Bounded formatting as snprintf does it, independent of the process locale.
// Writes at most `size` bytes, the terminator included; size 0 writes nothing.
// Returns the length the whole text would have, without the terminator, or a negative number.
ZEL_EXPORT int intl_snprintf(char* out, unsigned long size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

// Copies text, cutting it to size - 1 characters, and always terminates when size > 0.
// Returns the length of `text`.
ZEL_EXPORT std::size_t intl_strlcpy(char* out, const char* text, unsigned long size);

}  // namespace KORVEX::Zel
