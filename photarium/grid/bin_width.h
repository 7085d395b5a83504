#pragma once

/// Width of the bin of the node at `energy` between its neighbours `below` and
/// `above`. An end node stands for the neighbour that it lacks, and its inner
/// half bin for both. 1 on a grid of one node, which has no width.
template <class T>
T binWidth(T below, T energy, T above) {
  if (below == above) return 1;
  T const width = (above - below) * T(0.5);
  return below == energy || above == energy ? width * 2 : width;
}
