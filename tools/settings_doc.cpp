// Writes docs/settings.md from the settings classes, or checks that a file is
// up to date:
//
//     photarium_settings_doc > docs/settings.md
//     photarium_settings_doc --check docs/settings.md

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "photarium/photarium.h"

namespace {

using Defaults = std::map<std::string, std::string>;

// The root class alone.
class Root : public Config<double> {
 public:
  std::string write(std::string const& prefix, bool chain) const override {
    return Config<double>::write(prefix, chain);
  }

 protected:
  using Config<double>::parse;
  void parse(OptionMap const& options, bool chain) override {
    Config<double>::parse(options, chain);
  }
};

template <class C>
std::unique_ptr<Config<double> const> make() {
  return std::make_unique<C const>();
}

struct Chapter {
  char const* name;
  char const* bases;  // whose keys it knows as well
  char const* purpose;
  std::unique_ptr<Config<double> const> (*make)();
};

// The classes that others are made of come first.
constexpr Chapter Chapters[] = {
    {"Config", "", "What every command and every class knows.", make<Root>},
    {"GridConfig", "`Config`", "An energy grid.", make<GridConfig<double>>},
    {"ScalingConfig", "`Config`",
     "From a spectrum per steradian to counts at a detector.",
     make<ScalingConfig<double>>},
    {"GeometryConfig", "`Config`",
     "Angles and thickness of a target or a filter.",
     make<GeometryConfig<double>>},
    {"MaterialConfig", "`Config`",
     "A material and the values that override those of the database. "
     "`photarium material` takes them.",
     make<MaterialConfig<double>>},
    {"MathConfig", "`Config`, `GridConfig`",
     "Arithmetic on spectra: `photarium math`.", make<MathConfig<double>>},
    {"PlotConfig", "`Config`, `GridConfig`, `GeometryConfig`, `MaterialConfig`",
     "Which attenuation data are printed: `photarium mu`.",
     make<PlotConfig<double>>},
    {"SpectConfig",
     "`Config`, `GridConfig`, `ScalingConfig`, `GeometryConfig`, "
     "`MaterialConfig`",
     "A tube spectrum.", make<SpectConfig<double>>},
    {"FilterConfig",
     "`Config`, `ScalingConfig`, `GeometryConfig`, `MaterialConfig`",
     "A filter that a spectrum passes: `photarium filter`.",
     make<FilterConfig<double>>},
    {"DetectorConfig", "`Config`, `ScalingConfig`, `MaterialConfig`",
     "A detector of stacked elements: `photarium detector`.",
     make<DetectorConfig<double>>},
    {"DistributionConfig", "`Config`, `GridConfig`, `MaterialConfig`",
     "Tables of distributions.", make<DistributionConfig<double>>},
};

constexpr char Introduction[] =
    R"(<!-- Written by photarium_settings_doc; a test compares. Do not edit. -->

# Settings

A setting is an option of the command line, `--kVp 100`, `--kVp=100` or `kVp=100`, or an entry of a
config file, `kVp = 100` with blanks around the sign. Keys are case insensitive. A switch alone is
true, `--no-` ahead of it makes it false. Weakest first, settings come from the defaults below, the
section `[General]` of the config file, the sections named by `--section` or else the one that bears
the name of the command, and the command line.

Each class knows its own keys and those of its bases. Lists are cut at "," and ";". Keys in
parentheses are read, but not printed. Energies are in keV unless the table says otherwise.
)";

// A text as a cell of a table.
std::string cell(std::string const& text) {
  std::string out;
  for (char const c : text) {
    if (c == '|') out += '\\';
    out += c;
  }
  return out;
}

std::string code(std::string const& text) {
  if (text.empty()) return "";
  std::string out(1, '`');
  out += cell(text);
  return out += '`';
}

// The key as its line has it, in parentheses where it has none.
std::string keyCell(Setting const& setting) {
  if (!setting.label.empty()) return code(setting.label);
  std::string out(1, '(');
  out += code(setting.key);
  return out += ')';
}

std::string row(Setting const& setting) {
  return "| " + keyCell(setting) + " | " + code(setting.value) + " | " +
         cell(setting.unit) + " | " + cell(setting.meaning) + " |\n";
}

// The defaults of the bases that a class changes.
std::string changed(std::vector<Setting> const& settings,
                    Defaults const& defaults) {
  std::string out;
  for (auto const& setting : settings) {
    auto const known = defaults.find(setting.key);
    if (known == defaults.end() || known->second == setting.value) continue;
    out += (out.empty() ? "\nOther defaults: " : ", ") + keyCell(setting) +
           " " + code(setting.value);
  }
  return out.empty() ? out : out + ".\n";
}

// One chapter; adds the defaults of a class that others are made of.
std::string chapter(Chapter const& chapter, Defaults& defaults) {
  auto const config = chapter.make();
  auto const own = config->settings(/*chain=*/false);
  auto all = config->settings(/*chain=*/true);
  std::string out =
      std::string("\n## ") + chapter.name + "\n\n" + chapter.purpose;
  if (*chapter.bases) out += std::string("\n\nBases: ") + chapter.bases + ".";
  out += "\n\n| key | default | unit | meaning |\n|---|---|---|---|\n";
  for (auto const& setting : own) out += row(setting);
  if (*chapter.bases) {
    all.resize(all.size() - own.size());
    out += changed(all, defaults);
  }
  bool const isPart = std::string(chapter.bases).find(',') == std::string::npos;
  for (auto const& setting : own)
    if (isPart) defaults[setting.key] = setting.value;
  return out;
}

std::string document() {
  std::string out = Introduction;
  Defaults defaults;
  for (auto const& each : Chapters) out += chapter(each, defaults);
  return out;
}

int check(std::string const& name) {
  std::ifstream in(name, std::ios::binary);
  std::string const text{std::istreambuf_iterator<char>(in), {}};
  if (in && text == document()) return 0;
  std::cerr << name << " is not what photarium_settings_doc writes\n";
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> const arguments(argv + 1, argv + argc);
  if (arguments.size() == 2 && arguments[0] == "--check")
    return check(arguments[1]);
  std::cout << document();
  return 0;
}
