#pragma once

#include <fstream>
#include <istream>
#include <string>

namespace Tool {

/// A file that a command reads, or standard input for "-". Throws
/// std::runtime_error with the name and the cause if it cannot be opened.
class Input {
 public:
  explicit Input(std::string const& name);

  std::istream& stream();

  /// Throws std::runtime_error if a read failed.
  void finish();

  /// As messages name it.
  std::string const& name() const { return name_; }

 private:
  bool isStandard_;
  std::string name_;
  std::ifstream file_;
};

}  // namespace Tool
