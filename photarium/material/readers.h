#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <string_view>

#include "photarium/foundation/constants.h"
#include "photarium/material/AttenuationCoeff.h"

// What the database readers share. Not installed.

/// [u], mass of the neutron: the unit of the weights in ENDF and ACE tables.
inline constexpr double NeutronWeight = Constants::mn / Constants::u;

/// [keV], above which the readers have pair production.
inline constexpr double PairThreshold = 2.2 * Constants::XME;

/// Nodes of the largest table in two dimensions. All rows of some share one
/// grid: the laboratories' files make some ten thousand nodes of it, but many
/// rows without a common node would fill the memory.
inline constexpr std::size_t LargestTable = 1000000;

/// A stretch, in either form of AttenuationCoeff, that is 0 up to `threshold`.
template <class Stretch, class T>
Stretch zeroUpTo(T threshold) {
  return {{{T(0), T(0)}, {threshold, T(0)}},
          AttenuationCoeff<T>::Const,
          /*cubic=*/false};
}

/// True for the first line of an ACE table of photons: "26000.04p" and more.
bool isTableName(std::string_view line);

/// The whole rest of a stream, read past its formatting in large blocks. Leaves
/// the state of the stream alone; what its buffer throws goes on. Throws
/// std::runtime_error "Could not read file" for more than half of what a string
/// can hold, which is 1 GiB where sizes have 32 bits.
std::string remainingText(std::istream& in);

/// The same without a copy where the stream reads from a string; otherwise the
/// text goes into `storage`. The view lives as long as both.
std::string_view remainingView(std::istream& in, std::string& storage);

/// Reads a whole file. False if it cannot be opened, as a directory cannot;
/// throws std::runtime_error "Could not read file" if reading breaks off, if
/// the file has more than remainingText() takes, or if it gives more than
/// 512 MiB and half as much again as the size that it tells, which is none for
/// a pipe or a device.
bool readFile(std::string const& path, std::string& text);

/// Replaces a packed text by what it holds and leaves any other as it is.
/// Throws the codec's std::runtime_error, also where a short input stands for
/// far more text than a database has.
void unpack(std::string& text);
