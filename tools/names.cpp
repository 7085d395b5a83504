#include "tools/names.h"

#include <sstream>

#include "photarium/foundation/elements.h"

namespace Tool {

std::string shellName(subshell shell) {
  if (shell == K1) return "K";  // the only level of its shell
  std::ostringstream text;
  SubshellToString(text, shell);
  return std::move(text).str();
}

std::string elementName(SubshellID const& level) {
  return level.Z < ElementsCount ? Elements[level.Z] : "";
}

std::string nameOf(SubshellID const& level) {
  return elementName(level) + " " + shellName(level.Shell);
}

}  // namespace Tool
