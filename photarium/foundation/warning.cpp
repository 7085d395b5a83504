#include "photarium/foundation/warning.h"

warning::warning(std::string const& findings) : std::runtime_error(findings) {}

// Defined here, so that one library holds the type's identity.
warning::~warning() = default;
