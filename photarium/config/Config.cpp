#include "photarium/config/Config.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "photarium/config/command_line.h"
#include "photarium/config/config_file.h"
#include "photarium/config/sections.h"
#include "photarium/config/table.h"
#include "photarium/foundation/text.h"

namespace {

using Settings::Findings;
using Settings::Format;
using Settings::Row;
using Settings::Value;

template <class T>
constexpr Row<Config, T> Rows[] = {
    {"Directory", &Config<T>::Directory,
     "directory of the config file and of the data files"},
    {"Config", &Config<T>::ConfigFile, "config file, command line only"},
    {"Sections", &Config<T>::Sections, "list of the sections to apply"},
    {"DataFile", &Config<T>::DataFile,
     "database file; empty: looked for by the material"},
    {"DataType", &Config<T>::DataType,
     "format of the database file: unknown, elamdb, endf or mcnp"},
    {"Bin", &Config<T>::Bin,
     "spectra hold the contents of their bins, not densities"},
    {"Time", &Config<T>::Time, "measurement time", "s"},
    {"Interpolation", &Config<T>::Interpolation,
     "convert spectra by interpolation, not by rebinning"},
    {"section", Settings::NoField, "one section to apply, repeatable", "",
     Format::NoLine},
    {"help", Settings::NoField, "print the options and stop", "",
     Format::NoLine},
    {"IPC", Settings::NoField, "host:port that receives progress", "",
     Format::NoLine},
};

// True if `word` is a start of `full` with at least `least` bytes.
bool abbreviates(std::string_view word, std::string_view full,
                 std::size_t least) {
  return word.size() >= least && full.starts_with(word);
}

// A progress connection that cannot be opened is no reason to stop or to tell.
void connect(IPCStream& progress, std::string const& address) {
  try {
    progress.Connect(address);
  } catch (std::exception const&) {
  }
}

}  // namespace

template <class T>
std::string const Config<T>::DefaultSection = "General";

template <class T>
Config<T>::Config() = default;

template <class T>
Config<T>::Config(Config const& other)
    : Directory(other.Directory),
      ConfigFile(other.ConfigFile),
      DataFile(other.DataFile),
      DataType(other.DataType),
      Time(other.Time),
      Bin(other.Bin),
      Interpolation(other.Interpolation) {}

template <class T>
Config<T>::~Config() = default;

template <class T>
bool Config<T>::config(int argc, char** argv, std::string section) {
  std::vector<std::string> arguments;
  for (int i = 1; i < argc; ++i) arguments.emplace_back(argv[i]);
  return config(arguments, std::move(section));
}

template <class T>
bool Config<T>::config(std::string const& line, std::string section) {
  return config(Settings::splitArguments(line), std::move(section));
}

template <class T>
bool Config<T>::config(std::vector<std::string> const& arguments,
                       std::string section) {
  Settings::CommandLine const line = Settings::parseArguments(arguments);
  Sections.insert(Sections.end(), line.sections.begin(), line.sections.end());
  if (line.directory) Directory = *line.directory;
  if (line.file) ConfigFile = *line.file;
  // The help shows what is set so far.
  if (line.showUsage) throw std::runtime_error(line.messages + "\n" + usage());

  SectionMap data;
  read(data, !line.fileRequired);
  if (data.contains(DefaultSection))
    Sections.insert(Sections.begin(), DefaultSection);
  bool const isDefault = line.sections.empty() && !section.empty();
  if (isDefault && data.contains(section)) Sections.push_back(section);
  if (!line.options.empty()) {
    data["CmdLine"].insert(line.options.begin(), line.options.end());
    Sections.push_back("CmdLine");
  }
  parse(data);
  return true;
}

template <class T>
void Config<T>::read(SectionMap& data, bool optional) {
  if (ConfigFile.empty()) {
    if (optional) return;
    throw std::runtime_error("No file given");
  }
  std::size_t const slash = ConfigFile.find_last_of("/\\");
  if (Directory.empty() && slash != std::string::npos) {
    Directory = ConfigFile.substr(0, slash);
    ConfigFile.erase(0, slash + 1);
  }
  data[DefaultSection];
  std::optional<std::string> const text = Settings::readConfigFile(
      ConcatPath(Directory, ConfigFile), ConfigFile, MaxFileSize);
  if (!text) {
    if (optional) return;
    throw std::runtime_error("Could not open config file: " + ConfigFile +
                             "\n");
  }
  try {
    Settings::parseConfigText(*text, DefaultSection, MaxEntries, data);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& failure) {
    throw std::runtime_error(failure.what() + (" while reading " + ConfigFile) +
                             "\n");
  }
}

template <class T>
void Config<T>::read(bool optional) {
  SectionMap data;
  read(data, optional);
  parse(data);
}

template <class T>
void Config<T>::parse(SectionMap const& data) {
  std::vector<std::string> ancestors;
  parse(data, Sections, ancestors);
}

template <class T>
void Config<T>::parse(SectionMap const& data,
                      std::vector<std::string>& sections,
                      std::vector<std::string>& ancestors) {
  sections = Settings::flattenSections(data, sections, ancestors,
                                       {MaxRepeats, MaxRepeatedText});
  if (!ancestors.empty()) return;
  for (auto const& name : sections) parse(data.at(name), /*chain=*/true);
}

template <class T>
void Config<T>::parse(OptionMap const& options, bool) {
  Findings findings;
  auto const special = [this](std::string const& key, Value const& value) {
    if (key == "ipc") connect(IPC, value.text());
    // These choose the file and the sections, which is done by now.
    return key == "ipc" || key == "config" || key == "sections";
  };
  parseRows(Rows<T>, *this, options, findings, special);
  findings.report();
}

template <class T>
void Config<T>::parse(std::istream& in, T& value) {
  std::string word;
  if (!(in >> word)) return;
  word = tolower(word);
  std::string_view rest = word;
  T const infinity = std::numeric_limits<T>::infinity();
  if (extractNumber(rest, value)) return;
  if (abbreviates(word, "infinity", 3))
    value = infinity;
  else if (abbreviates(word, "-infinity", 4))
    value = -infinity;
  else
    in.setstate(std::ios::failbit);
}

template <class T>
std::string Config<T>::write(std::string const& prefix, bool) const {
  return writeRows(Rows<T>, *this, prefix);
}

template <class T>
void Config<T>::check() {
  Findings findings;
  findings.require(Time > 0, "Measurement time not larger than zero!\n");
  findings.report();
}

template <class T>
std::vector<Setting> Config<T>::settings(bool) const {
  return describeRows(Rows<T>, *this);
}

template <class T>
std::vector<std::string> Config<T>::knownKeys() const {
  std::vector<std::string> keys;
  for (auto const& setting : settings(/*chain=*/true))
    keys.push_back(setting.key);
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  return keys;
}

template <class T>
std::string Config<T>::usage() const {
  return "The following options will be accepted. The values shown separated "
         "by a colon are default values, except for the config file and "
         "section if specified by you. A negative density implies lookup of a "
         "value in the database or an internal table if possible.\n"
         "Parsing of names is case insensitive, of values case sensitive. All "
         "options can also be written to a config file removing the leading "
         "dashes and separating name and value by an equal sign (=).\n"
         "The section [" +
         DefaultSection + "] will always be parsed additionally.\n\n" +
         write("--", true) +
         "\nIn addition progress information can be requested via:\n"
         "--IPC: (hostname|IP):port\n";
}

template class Config<double>;
