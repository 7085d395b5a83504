#pragma once

#include <string>

#include "photarium/config/Config.h"

/// The comment block with which output files begin: a lone "#", the version
/// line, `title` and each setting of `config` in a line of its own, "# Label:
/// value". Ends in a line end.
template <class T>
std::string Header(std::string const& title, Config<T> const& config);

extern template PHOTARIUM_EXPORT std::string Header(std::string const&,
                                                    Config<double> const&);
