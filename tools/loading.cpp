#include "tools/loading.h"

#include <stdexcept>
#include <string>

#include "photarium/foundation/warning.h"
#include "tools/command.h"
#include "tools/data_folder.h"
#include "tools/embedded_data.h"
#include "tools/report.h"

namespace Tool {
namespace {

// The search over the default files tells of its last failure alone.
std::string filesTried(MaterialConfig<double> const& settings) {
  if (!settings.DataFile.empty()) return "";
  std::string list;
  auto const add = [&](DBType type, char const* file) {
    if (settings.DataType == Unknown || settings.DataType == type)
      list += std::string(list.empty() ? "" : ", ") + file;
  };
  add(ENDF, "data/ENDF-VII0/ZZZ_Symbol_000.endf");
  add(ElamDB, "data/LocalDB.txt");
  add(MCNP, "data/mcplib04.txt");
  add(Unknown, "data/ElamDB12.txt");
  return "\nFiles tried below " + settings.Directory + ": " + list;
}

// Paths in memory mean nothing to another process.
void forgetEmbedded(MaterialConfig<double>& settings) {
  if (isEmbedded(settings.DataFile)) settings.DataFile.clear();
  if (isEmbedded(settings.CorrFile))
    settings.CorrFile = MaterialConfig<double>().CorrFile;
}

template <class Settings>
void loadFor(Material<double>& material, Settings& settings) {
  locateData(settings);
  std::string const tried = filesTried(settings);
  try {
    material.update(settings);
  } catch (warning const& findings) {
    report(findings.what());
  } catch (std::invalid_argument const& error) {
    throw UsageError(error.what());
  } catch (std::runtime_error const& error) {
    throw std::runtime_error(error.what() + tried);
  }
  forgetEmbedded(settings);
}

}  // namespace

void load(Material<double>& material, MaterialConfig<double>& settings) {
  loadFor(material, settings);
}

void load(Material<double>& material, SpectConfig<double>& settings) {
  loadFor(material, settings);
}

void check(Config<double>& settings) {
  try {
    settings.check();
  } catch (warning const& findings) {
    report(findings.what());
  } catch (std::invalid_argument const& findings) {
    throw UsageError(findings.what());
  }
}

}  // namespace Tool
