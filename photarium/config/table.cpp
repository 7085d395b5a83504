#include "photarium/config/table.h"

#include <algorithm>

#include "photarium/foundation/text.h"

namespace Settings {

std::string keyOf(std::string_view name) {
  return ::tolower(std::string(name));
}

bool isKeyOf(std::string_view name, std::string_view key) {
  auto const equal = [](char ofName, char ofKey) {
    bool const isUpper = ofName >= 'A' && ofName <= 'Z';
    return (isUpper ? ofName - 'A' + 'a' : ofName) == ofKey;
  };
  return name.size() == key.size() &&
         std::equal(name.begin(), name.end(), key.begin(), equal);
}

std::string generalText(double value) {
  std::string out;
  appendGeneral(out, value);
  return out;
}

void appendValue(std::string& out, double value, Format format) {
  constexpr int precision = 4;
  if (format == Format::Scientific)
    appendScientific(out, value, precision);
  else if (format == Format::General)
    appendGeneral(out, value, precision);
  else
    appendFixed(out, value, precision);
}

}  // namespace Settings
