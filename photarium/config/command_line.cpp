#include "photarium/config/command_line.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "photarium/foundation/text.h"

namespace Settings {

namespace {

bool isOption(std::string_view argument) {
  return argument.starts_with("--");
}

// Walks the arguments of a command line and sorts them into the result.
class ArgumentParser {
 public:
  explicit ArgumentParser(std::vector<std::string> const& arguments)
      : arguments_(arguments) {}

  CommandLine parse() {
    for (; next_ < arguments_.size();) argument(arguments_[next_++]);
    return std::move(found_);
  }

 private:
  void argument(std::string const& text) {
    std::size_t const separator = text.find_first_of("=:");
    bool const isPair = separator != std::string::npos;
    std::string key = text.substr(0, separator);
    std::string value = isPair ? text.substr(separator + 1) : "";
    if (isOption(key)) {
      key.erase(0, 2);
    } else if (!isPair) {
      found_.messages += text + " not understood.\n";
      found_.showUsage = true;
      return;
    }
    option(::tolower(key), value);
  }

  void option(std::string key, std::string& value) {
    if (key == "section" || key == "config" || key == "directory")
      fileOption(key, value);
    else if (key == "help")
      found_.showUsage = true;
    else
      setting(key, value);
    found_.keys.push_back(key);
  }

  // Options that choose the config file and its sections. Their value may be
  // the next argument, whatever it looks like.
  void fileOption(std::string const& key, std::string& value) {
    if (value.empty() && next_ < arguments_.size()) value = arguments_[next_++];
    if (value.empty()) {
      found_.messages += "Argument expected for: " + key + "\n";
      found_.showUsage = true;
      return;
    }
    if (key == "section")
      found_.sections.push_back(value);
    else
      (key == "config" ? found_.file : found_.directory) = value;
    if (key != "directory") found_.fileRequired = true;
  }

  // A key that begins with "no-" loses that where it is a switch.
  void setting(std::string& key, std::string& value) {
    if (value.empty()) {
      if (next_ < arguments_.size() && !isOption(arguments_[next_])) {
        value = arguments_[next_++];
      } else {
        bool const isNegation = key.starts_with("no-");
        if (isNegation) key.erase(0, 3);
        value = isNegation ? "False" : "True";
      }
    }
    if (key == "sections") found_.fileRequired = true;
    found_.options[key] = value;
  }

  std::vector<std::string> const& arguments_;
  std::size_t next_ = 0;
  CommandLine found_;
};

// Appends the arguments of one line.
void splitLine(std::vector<std::string>& out, std::string const& line) {
  std::size_t start = 0;
  while (start < line.size()) {
    std::size_t const stop =
        std::min(line.find_first_of(" \t\"'", start), line.size());
    std::string const ahead = line.substr(start, stop - start);
    start = stop + 1;
    bool const isQuote =
        stop < line.size() && (line[stop] == '"' || line[stop] == '\'');
    if (!isQuote) {
      if (!ahead.empty()) out.push_back(ahead);
      continue;
    }
    std::size_t const close = line.find(line[stop], start);
    if (close == std::string::npos)
      throw std::runtime_error("Quotation not closed while parsing: " + line +
                               "\n");
    out.push_back(ahead + line.substr(start, close - start));
    start = close + 1;
  }
}

}  // namespace

CommandLine parseArguments(std::vector<std::string> const& arguments) {
  return ArgumentParser(arguments).parse();
}

std::vector<std::string> splitArguments(std::string const& text) {
  std::vector<std::string> out;
  for (auto const& line : split<std::string>(text, "\r\n", /*keepEmpty=*/false))
    splitLine(out, line);
  return out;
}

}  // namespace Settings

std::vector<std::string> OptionKeys(std::vector<std::string> const& arguments) {
  return Settings::parseArguments(arguments).keys;
}
