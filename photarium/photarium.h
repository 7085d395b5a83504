#pragma once

// Every public header of the library.

#include "photarium/foundation/bremsstrahlung_tables.h"
#include "photarium/foundation/console.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/enumerations.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/Grid.h"
#include "photarium/material/Edge.h"
#include "photarium/material/EnergyLossConstants.h"
#include "photarium/material/Line.h"
#include "photarium/material/SubshellID.h"
