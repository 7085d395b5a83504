#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tool {

/// A section of an ENDF-6 tape: its lines without their control columns.
struct EndfSection {
  std::vector<std::string_view> lines;
};

/// One sublibrary of one element, as it stood on a tape.
struct EndfSublibrary {
  std::string source;         // "FILE:LINE" of its head
  std::string_view tapeHead;  // first line of the tape, empty if it has none
  unsigned int material = 0;  // MAT
  std::map<std::pair<unsigned int, unsigned int>, EndfSection> sections;
};

/// All sublibraries of an element by their number NSUB: 3 photo-atomic,
/// 6 relaxation, 113 electro-atomic.
struct EndfElement {
  unsigned int z = 0;
  std::map<unsigned int, EndfSublibrary> sublibraries;
};

/// Collects the elements of atomic tapes as the laboratories publish them:
/// lines of 75 columns and more, with or without line numbers, exponents with
/// or without a letter, any number of materials and tapes in one text.
///
///     EndfTapes tapes;
///     tapes.add("photoat.endf", text);
///     for (auto const& [z, element] : tapes.elements())
///       out << endfText(element, /*tolerance=*/0);
class EndfTapes {
 public:
  /// Takes the materials of one file. Exponents lose their letter; no value
  /// changes. Throws std::runtime_error "FILE:LINE: " and the cause where the
  /// text is no atomic tape, is cut short, or holds what is here already; the
  /// collection cannot be used then.
  void add(std::string const& file, std::string text);

  /// By atomic number.
  std::map<unsigned int, EndfElement> const& elements() const {
    return elements_;
  }

 private:
  std::deque<std::string> texts_;  // what the lines are views of
  std::map<unsigned int, EndfElement> elements_;
};

/// Name of the file that the library looks for: "026_Fe_000.endf".
std::string endfFileName(unsigned int z);

/// The text of that file: numbered lines of 80 columns, the sublibraries in
/// order, each behind the head of its tape if it has one, one tape end.
/// Large-angle elastic scattering of electrons has the number 526; where the
/// tape has it as 525, the total elastic section, which has 526 there, is left
/// out.
///
/// With a `tolerance` above 0 tables lose the points that linear interpolation
/// between those that stay reproduces within that part of the value; points
/// that share their energy, an edge, stay.
std::string endfText(EndfElement const& element, double tolerance);

/// What was found and what the library would use but is missing, one line each.
std::string endfReport(EndfElement const& element);

}  // namespace Tool
