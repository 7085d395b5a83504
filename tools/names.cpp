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

std::string nameOf(SubshellID const& level) {
  std::string const element = level.Z < ElementsCount ? Elements[level.Z] : "";
  return element + " " + shellName(level.Shell);
}

}  // namespace Tool
