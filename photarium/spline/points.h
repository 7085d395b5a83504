#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

/// Throws std::invalid_argument unless there are as many abscissas as
/// ordinates.
void requireEqualLengths(std::size_t abscissas, std::size_t ordinates);

/// The keys and the values of a map, each in a vector.
template <class Key, class Value>
std::pair<std::vector<Key>, std::vector<Value>> columns(
    std::map<Key const, Value> const& points) {
  std::pair<std::vector<Key>, std::vector<Value>> both;
  both.first.reserve(points.size());
  both.second.reserve(points.size());
  for (auto const& [key, value] : points) {
    both.first.push_back(key);
    both.second.push_back(value);
  }
  return both;
}
