#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "photarium/config/Config.h"
#include "tools/command.h"

namespace Tool {

/// An option of the program itself, which no settings class knows.
struct Option {
  std::string name;
  std::string value;    // what stands for its value in the help; empty: switch
  std::string meaning;  // a few words
};

/// Options that many commands share.
inline Option const OutputOption{
    "output", "FILE",
    "write there instead of standard output, whole or not at all"};
inline Option const PlotOption{
    "plot", "FILE", "also draw the result, as .svg or .png (needs gnuplot)"};
inline Option const JsonOption{"json", "", "write JSON for other programs"};

/// The arguments of a command. Takes the program's own options, and the names
/// of files where the command has some, out of them; the rest is for a settings
/// class.
///
///     CommandLine line(arguments, {OutputOption, JsonOption});
///     PlotConfig<double> plot;
///     line.configure(plot, "mu");
///     Output output(line.value("output"));
///
/// Own options are written as all others: "--output FILE", "--output=FILE" or
/// "output=FILE"; the last one counts.
class CommandLine {
 public:
  enum class Files { None, Some };

  /// Throws UsageError where an own option lacks its value. A file is an
  /// argument that is no option and no value of one; a name with "=" or ":" in
  /// it is taken for a file if it begins with "." or "/".
  CommandLine(Arguments const& arguments, std::vector<Option> options,
              Files files = Files::None);

  /// True if the own option was given; for a switch, if it is not "false".
  bool has(std::string const& option) const;

  /// Value of an own option, empty if it was not given.
  std::string value(std::string const& option) const;

  /// The names of files, in order.
  std::vector<std::string> const& files() const { return files_; }

  /// Hands the rest to a settings class, whose section in a config file is
  /// `section`. Names each option that neither knows on standard error, with
  /// the nearest known name. Throws Help with the usage text of the class and
  /// the own options behind `usage`, or UsageError.
  void configure(Config<double>& settings, std::string const& section,
                 std::string const& usage = "") const;

  /// For a command without a settings class: throws Help with `usage` and the
  /// own options if help is asked for, UsageError if anything is left.
  void finish(std::string const& usage) const;

 private:
  struct Parsed {
    std::string key;    // in lower case, without dashes
    std::string value;  // behind "=" or ":"
    bool isOption;
  };

  static Parsed parse(std::string const& argument);
  Option const* own(std::string const& key) const;
  void take(Arguments const& arguments);
  std::size_t takeOwn(Option const& option, std::string value,
                      Arguments const& arguments, std::size_t next);
  void nameUnknown(std::vector<std::string> known) const;
  std::string ownHelp() const;

  std::vector<Option> options_;
  bool takesFiles_;
  std::map<std::string, std::string> values_;
  std::vector<std::string> files_;
  Arguments rest_;
};

/// That of `known` which takes the fewest insertions, deletions and
/// replacements of characters to make from `name`; empty if there is none.
std::string nearest(std::string_view name,
                    std::vector<std::string> const& known);

}  // namespace Tool
