#include "field_properties.h"

namespace field_properties_detail {

std::string choiceList(std::span<const std::string_view> names) {
  std::string list;
  for (std::string_view n : names) {
    list += (list.empty() ? "\"" : ", \"") + std::string(n) + "\"";
  }
  return list;
}

void checkRefusal(FieldProblem refusal, double value, std::string_view name) {
  if (refusal != nullptr) {
    if (const char* problem = refusal(value)) {
      throw py::value_error(std::string(name) + ": " + problem);
    }
  }
}

}  // namespace field_properties_detail
