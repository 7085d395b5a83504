#pragma once

// Every public header of the library.

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
