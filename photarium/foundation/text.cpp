#include "photarium/foundation/text.h"

#include <cctype>
#include <stdexcept>

#include "photarium/foundation/number.h"

namespace {

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string cleanedPath(std::string const& path) {
  return std::string(trimmed(trimmed(path), "\""));
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
  std::size_t start = 0;
  for (std::size_t p = text.find_first_of(delimiters); p != std::string::npos;
       p = text.find_first_of(delimiters, start)) {
    if (keepEmpty || p > start) out.push_back(text.substr(start, p - start));
    start = p + 1;
  }
  if (keepEmpty || start < text.size()) out.push_back(text.substr(start));
}

template <class T>
void split(std::vector<T>& out, std::string const& text,
           std::string const& delimiters, bool keepEmpty) {
  bool const grows = out.empty();
  T value = grows ? T() : out[0];
  auto const fields = split<std::string>(text, delimiters, keepEmpty);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!grows && i == out.size()) break;
    std::string_view rest = fields[i];
    if (!extractNumber(rest, value))
      throw std::runtime_error("Couldn't parse " + fields[i]);
    if (grows)
      out.push_back(value);
    else
      out[i] = value;
  }
  for (std::size_t i = fields.size(); i < out.size(); ++i) out[i] = value;
}

template void split(std::vector<double>&, std::string const&,
                    std::string const&, bool);
template void split(std::vector<unsigned int>&, std::string const&,
                    std::string const&, bool);
