#pragma once

#include "photarium/config/MaterialConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/material/Material.h"

namespace Tool {

/// Fills `material` as `settings` ask, with the data folder that locateData()
/// finds. Findings go to standard error, the data stand. A failure names the
/// files that were tried.
void load(Material<double>& material, MaterialConfig<double>& settings);

/// The same with the bremsstrahlung data.
void load(Material<double>& material, SpectConfig<double>& settings);

/// Checks the settings: prints what a check corrects, throws UsageError for
/// what cannot be used. Belongs behind load(), which looks the density up.
void check(Config<double>& settings);

}  // namespace Tool
