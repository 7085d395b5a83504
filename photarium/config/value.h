#pragma once

#include <cstdint>
#include <istream>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "photarium/foundation/text.h"

namespace Settings {

/// The text behind one key, and the extraction of fields from it.
///
/// Extraction has the meaning of a stream over the lower case text: blanks
/// ahead are skipped, text behind is ignored. Where it fails a number becomes
/// what a stream leaves, and stays as it is if there are only blanks.
class Value {
 public:
  explicit Value(std::string const& text) : text_(text) {}

  /// The text as it stands.
  std::string const& text() const { return text_; }

  /// The text in lower case.
  std::string const& lower();

  /// True if there is nothing to extract.
  bool isBlank() const;

  /// True after an extraction that failed.
  bool failed() const { return failed_; }

  /// Text fields take the whole text with its case.
  void extract(std::string& field) { field = text_; }

  void extract(bool& field);  // the words "true" and "false"
  void extract(double& field);
  void extract(std::int64_t& field);
  void extract(std::uint64_t& field);
  void extract(std::uint32_t& field);

  /// Lists take the first line, cut at "," and ";"; one of numbers that has a
  /// size keeps it. Throws std::runtime_error for a field that is no number.
  template <class V>
  void extract(std::vector<V>& field) {
    splitLine(field, lower());
  }

  /// Enumerations throw the std::runtime_error of their reader.
  template <class E>
  requires std::is_enum_v<E>
  void extract(E& field) {
    through([&field](std::istream& in) { in >> field; });
  }

  /// Calls `read` with a stream over the lower case text; its fail state
  /// counts.
  template <class Read>
  void through(Read const& read) {
    std::istringstream in(lower());
    in.imbue(std::locale::classic());
    read(in);
    failed_ = failed_ || in.fail();
  }

 private:
  template <class N>
  void extractFrom(N& field);

  std::string const& text_;
  std::string lower_;
  bool failed_ = false;
};

}  // namespace Settings
