#pragma once

#include <string>

/// The default database and corrections as the program carries them, for
/// machines without a data folder.
namespace Tool {

/// Path under which this process can read the default database. The file goes
/// with the process.
std::string embeddedDatabase();

/// The same for the corrections.
std::string embeddedCorrections();

/// True for a path that one of the two returned: no other process can use it.
bool isEmbedded(std::string const& path);

}  // namespace Tool
