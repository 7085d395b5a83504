#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Tool {

/// JSON as the commands print it. Bytes of a file name that are no UTF-8 show
/// as replacement characters.
inline std::string jsonText(nlohmann::ordered_json const& json) {
  return json.dump(/*indent=*/1, ' ', /*ensure_ascii=*/false,
                   nlohmann::ordered_json::error_handler_t::replace) +
         "\n";
}

}  // namespace Tool
