#include "tools/CommandLine.h"

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
#include "tools/report.h"

namespace Tool {
namespace {

// Options whose value is the next argument, whatever it looks like.
bool takesAnything(std::string const& key) {
  return key == "section" || key == "config" || key == "directory";
}

bool isOptionName(std::string const& argument) {
  return argument.starts_with("--");
}

std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      std::size_t const replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string nearest(std::string_view name,
                    std::vector<std::string> const& known) {
  auto const found = std::min_element(
      known.begin(), known.end(), [&](auto const& a, auto const& b) {
        return distance(name, a) < distance(name, b);
      });
  return found == known.end() ? "" : *found;
}

CommandLine::CommandLine(Arguments const& arguments,
                         std::vector<Option> options, Files files)
    : options_(std::move(options)), takesFiles_(files == Files::Some) {
  take(arguments);
}

bool CommandLine::has(std::string const& option) const {
  auto const found = values_.find(option);
  return found != values_.end() && found->second != "false";
}

std::string CommandLine::value(std::string const& option) const {
  auto const found = values_.find(option);
  return found == values_.end() ? "" : found->second;
}

CommandLine::Parsed CommandLine::parse(std::string const& argument) {
  std::size_t const mark = argument.find_first_of("=:");
  bool const isOption = mark != std::string::npos || isOptionName(argument);
  std::string key = argument.substr(0, mark);
  if (isOptionName(key)) key.erase(0, 2);
  return {tolower(key),
          mark == std::string::npos ? "" : argument.substr(mark + 1), isOption};
}

Option const* CommandLine::own(std::string const& key) const {
  auto const found =
      std::find_if(options_.begin(), options_.end(),
                   [&](Option const& option) { return option.name == key; });
  return found == options_.end() ? nullptr : &*found;
}

// Walks the arguments as the settings classes do, so that the value of one of
// their options is not mistaken for a file or an option of our own.
void CommandLine::take(Arguments const& arguments) {
  for (std::size_t i = 0; i < arguments.size();) {
    std::string const& argument = arguments[i++];
    Parsed const parsed = parse(argument);
    // "c:/name" is no option of the name c on Windows.
    bool const isPath = argument.starts_with('.') ||
                        std::filesystem::path(argument).has_root_directory();
    if (takesFiles_ && (!parsed.isOption || isPath)) {
      files_.push_back(argument);
      continue;
    }
    if (Option const* const option = own(parsed.key);
        option && parsed.isOption) {
      i = takeOwn(*option, parsed.value, arguments, i);
      continue;
    }
    rest_.push_back(argument);
    bool const wantsValue =
        parsed.isOption && parsed.value.empty() && parsed.key != "help";
    if (wantsValue && i < arguments.size() &&
        (takesAnything(parsed.key) || !isOptionName(arguments[i])))
      rest_.push_back(arguments[i++]);
  }
}

std::size_t CommandLine::takeOwn(Option const& option, std::string value,
                                 Arguments const& arguments, std::size_t next) {
  if (option.value.empty()) {
    values_[option.name] = value.empty() ? "true" : tolower(value);
    return next;
  }
  if (value.empty() && next < arguments.size() &&
      !isOptionName(arguments[next]))
    value = arguments[next++];
  if (value.empty()) throw UsageError("Argument expected for: " + option.name);
  values_[option.name] = value;
  return next;
}

void CommandLine::configure(Config<double>& settings,
                            std::string const& section,
                            std::string const& usage) const {
  nameUnknown(settings.knownKeys());
  try {
    settings.config(rest_, section);
  } catch (warning const& findings) {
    // What stands behind such a value in the config file was not applied.
    throw UsageError(findings.what());
  } catch (std::runtime_error const& error) {
    // The text of a lone "--help" has no message ahead of the empty line.
    std::string const text = error.what();
    if (text.starts_with('\n')) throw Help(usage + text.substr(1) + ownHelp());
    // The usage text behind other messages would bury them.
    throw UsageError(text.substr(0, text.find("\n\n")));
  }
}

void CommandLine::finish(std::string const& usage) const {
  for (auto const& key : OptionKeys(rest_))
    if (key == "help") throw Help(usage + ownHelp());
  nameUnknown({});
  if (!rest_.empty()) throw UsageError(rest_.front() + " not understood.");
}

void CommandLine::nameUnknown(std::vector<std::string> known) const {
  for (auto const& option : options_) known.push_back(option.name);
  known.insert(known.end(),
               {"config", "directory", "help", "ipc", "section", "sections"});
  for (auto const& key : OptionKeys(rest_))
    if (std::find(known.begin(), known.end(), key) == known.end())
      report("Unknown option '" + key + "', nearest known name: '" +
             nearest(key, known) + "'");
}

std::string CommandLine::ownHelp() const {
  std::string help;
  if (!options_.empty()) help = "\nOptions of the command itself:\n";
  for (auto const& option : options_)
    help += "--" + option.name + (option.value.empty() ? "" : ": ") +
            option.value + "\t# " + option.meaning + "\n";
  return help;
}

}  // namespace Tool
