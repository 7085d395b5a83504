#pragma once

#include <cstddef>

/// Throws std::invalid_argument unless there are as many abscissas as
/// ordinates.
void requireEqualLengths(std::size_t abscissas, std::size_t ordinates);
