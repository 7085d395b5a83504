#include "photarium/config/config_file.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"

namespace Settings {

namespace {

// Stores "name = value". The second word stands for the "=", whatever it is.
void parseEntry(std::string_view line, OptionMap& entries) {
  std::string const key = ::tolower(std::string(extractWord(line)));
  extractWord(line);
  entries[key] = trimmed(trimmed(line), "\"");
}

std::string_view sectionName(std::string_view line) {
  std::size_t const close = line.find(']');
  if (close == std::string_view::npos)
    throw std::runtime_error("Error parsing section name");
  return line.substr(1, close - 1);
}

// Takes a line off the front of `text`, without its end and comment.
std::string_view takeLine(std::string_view& text) {
  std::size_t const end = std::min(text.find('\n'), text.size());
  std::string_view const line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return trimmed(line.substr(0, line.find('#')));
}

}  // namespace

std::optional<std::string> readConfigFile(std::string const& path,
                                          std::string const& name,
                                          std::size_t limit) {
  // A path ends at a NUL for the system, which would open another file.
  if (path.find('\0') != std::string::npos) return {};
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  std::string text;
  char block[1 << 16];
  do {
    in.read(block, sizeof(block));
    text.append(block, static_cast<std::size_t>(in.gcount()));
    if (text.size() > limit)
      throw std::runtime_error("Config file too large: " + name + "\n");
  } while (in);
  // A directory opens like a file, but has no bytes to read.
  if (in.bad()) return {};
  return text;
}

void parseConfigText(std::string_view text, std::string const& section,
                     std::size_t limit, SectionMap& data) {
  auto* entries = &data[section];
  std::size_t left = limit;
  while (!text.empty()) {
    std::string_view const line = takeLine(text);
    if (line.empty()) continue;
    if (line[0] == '[') entries = &data[std::string(sectionName(line))];
    std::size_t const before = entries->size();
    parseEntry(line, *entries);
    if (entries->size() == before) continue;
    if (left-- == 0)
      throw std::runtime_error("More than " + std::to_string(limit) +
                               " entries");
  }
}

}  // namespace Settings
