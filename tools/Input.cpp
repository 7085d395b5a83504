#include "tools/Input.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <locale>
#include <stdexcept>

namespace Tool {

Input::Input(std::string const& name)
    : isStandard_(name == "-"), name_(isStandard_ ? "standard input" : name) {
  std::ios::sync_with_stdio(false);  // else every character is a call
  if (isStandard_) return;
  std::error_code ignored;
  if (std::filesystem::is_directory(name, ignored))
    errno = EISDIR;
  else
    file_.open(name, std::ios::binary);
  if (!file_.is_open())
    throw std::runtime_error("Could not open " + name_ + ": " +
                             std::strerror(errno));
  file_.imbue(std::locale::classic());
}

std::istream& Input::stream() {
  return isStandard_ ? std::cin : file_;
}

void Input::finish() {
  if (stream().bad()) throw std::runtime_error("Could not read " + name_);
}

}  // namespace Tool
