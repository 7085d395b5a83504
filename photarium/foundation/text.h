#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "photarium/foundation/export.h"

/// Free functions over text. Text is bytes; nothing here keeps state or
/// depends on the process locale.

/// The bytes that count as blanks around words, names and lines.
inline constexpr char const* Blanks = " \t\r\n";

/// A copy of `text` with every byte in lower case.
PHOTARIUM_EXPORT std::string tolower(std::string const& text);

/// Cuts `text` at its first "#". Quotes protect nothing.
PHOTARIUM_EXPORT void decomment(std::string& text);

/// Cuts the bytes that are one of `chars` off both ends of `text`.
PHOTARIUM_EXPORT void trim(std::string& text, std::string const& chars);

/// The part of `text` that trim() would leave.
PHOTARIUM_EXPORT std::string_view trimmed(std::string_view text,
                                          std::string_view chars = Blanks);

/// True for a path that begins with "/", "\" or a drive letter and a colon.
PHOTARIUM_EXPORT bool isAbsolutePath(std::string const& path);

/// `file` below `directory`, both trimmed of blanks and then of double quotes.
/// An empty part gives the other one, an absolute `file` stands alone. A "/" is
/// put between unless the directory ends in one.
PHOTARIUM_EXPORT std::string ConcatPath(std::string const& directory,
                                        std::string const& file);

/// Cuts `text` at each byte that is one of `delimiters` into `out`, which is
/// cleared first. Fields are not trimmed; empty ones stay if `keepEmpty`.
///
/// For numbers `out` may have a size, and keeps it: a shorter list fills the
/// rest with its last value, fields beyond the size are not even parsed. An
/// empty `out` takes all fields. Throws std::runtime_error "Couldn't parse "
/// and the field where a field does not begin with a number.
template <class T>
void split(std::vector<T>& out, std::string const& text,
           std::string const& delimiters, bool keepEmpty);

/// The same into a new vector.
template <class T>
std::vector<T> split(std::string const& text, std::string const& delimiters,
                     bool keepEmpty) {
  std::vector<T> out;
  split(out, text, delimiters, keepEmpty);
  return out;
}

extern template PHOTARIUM_EXPORT void split(std::vector<double>&,
                                            std::string const&,
                                            std::string const&, bool);
extern template PHOTARIUM_EXPORT void split(std::vector<unsigned int>&,
                                            std::string const&,
                                            std::string const&, bool);
template <>
PHOTARIUM_EXPORT void split(std::vector<std::string>& out,
                            std::string const& text,
                            std::string const& delimiters, bool keepEmpty);

/// The bytes between the fields of a list.
inline constexpr char const* ListDelimiters = ",;";

/// `text` up to its first line feed.
inline std::string_view firstLine(std::string_view text) {
  return text.substr(0, text.find('\n'));
}

/// Splits the first line of `text` at "," and ";" into `values`, with empty
/// fields. A vector of numbers that has a size keeps it, as in split().
template <class T>
void splitLine(std::vector<T>& values, std::string_view text) {
  split(values, std::string(firstLine(text)), ListDelimiters,
        /*keepEmpty=*/true);
}

/// Reads one line into `values` as splitLine() does.
template <class T>
std::istream& operator>>(std::istream& in, std::vector<T>& values) {
  std::string line;
  std::getline(in, line);
  splitLine(values, line);
  return in;
}

/// Prints the elements with ", " between them in the stream's own format.
template <class T>
std::ostream& operator<<(std::ostream& out, std::vector<T> const& values) {
  char const* separator = "";
  for (auto const& value : values) {
    out << separator << value;
    separator = ", ";
  }
  return out;
}
