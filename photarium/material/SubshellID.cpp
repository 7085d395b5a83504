#include "photarium/material/SubshellID.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "photarium/foundation/warning.h"

namespace {

// By value of the enumerator; row 0 is no level.
constexpr std::array<char const*, 40> Names = {
    "",   "K1", "L1", "L2", "L3", "M1",  "M2",  "M3", "M4", "M5",
    "N1", "N2", "N3", "N4", "N5", "N6",  "N7",  "O1", "O2", "O3",
    "O4", "O5", "O6", "O7", "O8", "O9",  "P1",  "P2", "P3", "P4",
    "P5", "P6", "P7", "P8", "P9", "P10", "P11", "Q1", "Q2", "Q3"};

}  // namespace

subshell StringToSubshell(std::string text) {
  if (text == "K") return K1;
  auto const name = std::find(Names.begin() + 1, Names.end(), text);
  if (name == Names.end()) throw warning("Unknown subshell " + text);
  return static_cast<subshell>(name - Names.begin());
}

std::ostream& SubshellToString(std::ostream& out, subshell shell) {
  if (shell >= K1 && shell <= Q3)
    return out << Names[static_cast<std::size_t>(shell)];
  return out << static_cast<int>(shell);
}
