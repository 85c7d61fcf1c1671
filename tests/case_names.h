#pragma once

#include <cctype>
#include <string>
#include <utility>
#include <vector>

// Readable names for the cases of a parametrised test, in the order of its
// values: the last argument of INSTANTIATE_TEST_SUITE_P. CTest lists each
// case by its name instead of the bytes of its parameter.
inline auto caseNames(std::vector<std::string> names) {
  return [names = std::move(names)](const auto& info) {
    return info.index < names.size() ? names[info.index] : "Case" + std::to_string(info.index);
  };
}

// A case named after a text it reads: letters and digits kept, anything else
// spelled as an underscore, the case's number after it so that two texts
// that differ only in other characters stay apart.
template <typename Info>
std::string textCaseName(const std::string& text, const Info& info) {
  std::string name;
  for (char c : text.substr(0, 24)) {
    name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  }
  return (name.empty() ? "Empty" : name) + "_" + std::to_string(info.index);
}
