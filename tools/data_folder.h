#pragma once

#include "photarium/config/MaterialConfig.h"

namespace Tool {

/// Makes the paths of the settings absolute and finds the folder that holds
/// data/: `Directory`, else the folder named by the environment variable
/// PHOTARIUM_DATA, else the installed one, else that of the source tree. Where
/// there is none the copies of the default database and of the corrections
/// that the program carries stand in.
///
/// A database or correction file that the user named is looked for below the
/// configured `Directory` alone.
void locateData(MaterialConfig<double>& settings);

}  // namespace Tool
