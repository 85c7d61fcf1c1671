#include "names.h"

#include <cstring>

void copyName(char (&dest)[kNameSize], std::string_view name) {
  std::size_t n = name.find('\0');
  if (n == std::string_view::npos) {
    n = name.size();
  }
  if (n > kNameSize - 1) {
    n = kNameSize - 1;
    // Continuation bytes are 10xxxxxx; cutting before one would split a
    // character, so back up to the character's first byte.
    while (n > 0 && (static_cast<unsigned char>(name[n]) & 0xC0) == 0x80) {
      --n;
    }
  }
  std::memcpy(dest, name.data(), n);
  dest[n] = '\0';
}
