#include "tools/data_folder.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "photarium/foundation/text.h"
#include "tools/embedded_data.h"
#include "tools/report.h"
#include "tools/system.h"

namespace Tool {
namespace {

namespace fs = std::filesystem;

constexpr char Database[] = "data/ElamDB12.txt";
constexpr char Corrections[] = "data/ELossCorrections.txt";

// How far above the program the root of the source tree may lie:
// build/PRESET/tools.
constexpr int LevelsToSource = 4;

std::string absolute(std::string const& path) {
  std::error_code failure;
  fs::path full =
      fs::absolute(path.empty() ? "." : path, failure).lexically_normal();
  if (failure) return path;
  // "." and a "/" at the end leave an empty name behind them.
  if (!full.has_filename() && full.has_relative_path())
    full = full.parent_path();
  return full.generic_string();
}

bool holdsData(fs::path const& folder) {
  std::error_code ignored;
  return !folder.empty() && fs::is_directory(folder / "data", ignored);
}

// PHOTARIUM_DATA may name the folder that holds data/, or data/ itself.
std::string fromEnvironment() {
  char const* const value = std::getenv("PHOTARIUM_DATA");
  if (!value || !*value) return "";
  fs::path const folder = absolute(value);
  if (holdsData(folder)) return folder.generic_string();
  if (folder.filename() == "data" && holdsData(folder.parent_path()))
    return folder.parent_path().generic_string();
  report("PHOTARIUM_DATA names no folder that holds data/: " + folder.string());
  return "";
}

std::string installed(fs::path const& programs) {
  fs::path const folder =
      (programs / PHOTARIUM_DATA_FROM_PROGRAM).lexically_normal();
  return holdsData(folder) ? folder.generic_string() : "";
}

std::string sourceTree(fs::path folder) {
  for (int level = 0; level < LevelsToSource && folder.has_relative_path();
       ++level, folder = folder.parent_path()) {
    std::error_code ignored;
    if (fs::exists(folder / Database, ignored) &&
        fs::exists(folder / "CMakePresets.json", ignored))
      return folder.generic_string();
  }
  return "";
}

std::string dataFolder() {
  if (auto const folder = fromEnvironment(); !folder.empty()) return folder;
  fs::path const programs = System::program().parent_path();
  if (programs.empty()) return "";
  if (auto const folder = installed(programs); !folder.empty()) return folder;
  return sourceTree(programs);
}

// Each file of a ";" list below `directory`. A file whose name holds a ";"
// stays one file.
std::string absoluteList(std::string const& directory,
                         std::string const& files) {
  std::error_code ignored;
  if (fs::exists(ConcatPath(directory, files), ignored))
    return ConcatPath(directory, files);
  std::string list;
  for (auto const& file : split<std::string>(files, ";", /*keepEmpty=*/false)) {
    if (!list.empty()) list += ';';
    list += ConcatPath(directory, file);
  }
  return files.find(';') == std::string::npos ? ConcatPath(directory, files)
                                              : list;
}

}  // namespace

void locateData(MaterialConfig<double>& settings) {
  std::string const configured = absolute(settings.Directory);
  settings.Directory = configured;
  if (!settings.DataFile.empty())
    settings.DataFile = absoluteList(configured, settings.DataFile);
  if (holdsData(configured)) return;
  if (settings.CorrFile != Corrections)
    settings.CorrFile = ConcatPath(configured, settings.CorrFile);
  if (auto const folder = dataFolder(); !folder.empty()) {
    settings.Directory = folder;
    return;
  }
  if (settings.DataFile.empty()) settings.DataFile = embeddedDatabase();
  if (settings.CorrFile == Corrections)
    settings.CorrFile = embeddedCorrections();
}

}  // namespace Tool
