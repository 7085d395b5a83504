#include "photarium/config/Header.h"

#include <locale>
#include <sstream>

#include "photarium/foundation/console.h"

template <class T>
std::string Header(std::string const& title, Config<T> const& config) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out << "#\n#" << VersionInfo << "\n#" << title << '\n'
      << config.write("# ", /*chain=*/true);
  return out.str();
}

template std::string Header(std::string const&, Config<double> const&);
