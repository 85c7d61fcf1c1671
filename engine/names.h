#pragma once

#include <cstddef>
#include <string_view>

// World, body and view names live in fixed NUL-terminated buffers.
inline constexpr std::size_t kNameSize = 255;

// Copies a name into such a buffer. A name longer than 254 bytes is cut at
// 254 bytes, moved back to the start of a UTF-8 character so that no
// character is split; an embedded NUL ends the name.
void copyName(char (&dest)[kNameSize], std::string_view name);
