#include "photarium/config/value.h"

#include <string_view>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"

namespace Settings {

namespace {

// The bytes that a stream skips ahead of a value.
constexpr std::string_view StreamBlanks = " \t\n\v\f\r";

}  // namespace

std::string const& Value::lower() {
  if (lower_.empty()) lower_ = ::tolower(text_);
  return lower_;
}

bool Value::isBlank() const {
  return text_.find_first_not_of(StreamBlanks) == std::string::npos;
}

template <class N>
void Value::extractFrom(N& field) {
  std::string_view rest = lower();
  failed_ = isBlank() || !extractNumber(rest, field);
}

void Value::extract(bool& field) {
  std::string_view const word = trimmed(lower(), StreamBlanks);
  failed_ = !word.starts_with("true") && !word.starts_with("false");
  if (!word.empty()) field = word.starts_with("true");
}

void Value::extract(double& field) {
  extractFrom(field);
}

void Value::extract(std::int64_t& field) {
  extractFrom(field);
}

void Value::extract(std::uint64_t& field) {
  extractFrom(field);
}

void Value::extract(std::uint32_t& field) {
  extractFrom(field);
}

}  // namespace Settings
