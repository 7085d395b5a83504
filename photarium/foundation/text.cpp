#include "photarium/foundation/text.h"

#include <stdexcept>

#include "photarium/foundation/number.h"

namespace {

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string cleanedPath(std::string const& path) {
  return std::string(trimmed(trimmed(path), "\""));
}

// Calls `take` with each field of `text` until it returns false.
template <class Take>
void forEachField(std::string_view text, std::string_view delimiters,
                  bool keepEmpty, Take const& take) {
  for (;;) {
    std::size_t const end = text.find_first_of(delimiters);
    std::string_view const field = text.substr(0, end);
    bool const isTaken = keepEmpty || !field.empty();
    if ((isTaken && !take(field)) || end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

std::string tolower(std::string const& text) {
  std::string lower = text;
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

void decomment(std::string& text) {
  std::size_t const mark = text.find('#');
  if (mark != std::string::npos) text.resize(mark);
}

void trim(std::string& text, std::string const& chars) {
  text = trimmed(text, chars);
}

std::string_view trimmed(std::string_view text, std::string_view chars) {
  std::size_t const first = text.find_first_not_of(chars);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(chars) - first + 1);
}

bool isAbsolutePath(std::string const& path) {
  if (path.empty()) return false;
  if (path[0] == '/' || path[0] == '\\') return true;
  return path.size() >= 2 && isLetter(path[0]) && path[1] == ':';
}

std::string ConcatPath(std::string const& directory, std::string const& file) {
  std::string const below = cleanedPath(file);
  std::string const above = cleanedPath(directory);
  if (below.empty()) return above;
  if (above.empty() || isAbsolutePath(below)) return below;
  return above.back() == '/' ? above + below : above + '/' + below;
}

template <>
void split(std::vector<std::string>& out, std::string const& text,
           std::string const& delimiters, bool keepEmpty) {
  out.clear();
  forEachField(text, delimiters, keepEmpty, [&](std::string_view field) {
    out.emplace_back(field);
    return true;
  });
}

template <class T>
void split(std::vector<T>& out, std::string const& text,
           std::string const& delimiters, bool keepEmpty) {
  bool const grows = out.empty();
  T value = grows ? T() : out[0];
  std::size_t count = 0;
  forEachField(text, delimiters, keepEmpty, [&](std::string_view field) {
    if (!grows && count == out.size()) return false;
    std::string_view rest = field;
    if (!extractNumber(rest, value))
      throw std::runtime_error("Couldn't parse " + std::string(field));
    if (grows)
      out.push_back(value);
    else
      out[count] = value;
    ++count;
    return true;
  });
  // A shorter list fills the rest with its last value.
  for (; count < out.size(); ++count) out[count] = value;
}

template void split(std::vector<double>&, std::string const&,
                    std::string const&, bool);
template void split(std::vector<unsigned int>&, std::string const&,
                    std::string const&, bool);
