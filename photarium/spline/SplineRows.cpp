#include "photarium/spline/SplineRows.h"

#include <cstddef>
#include <stdexcept>
#include <type_traits>

#include "photarium/spline/BiCLSpline.h"
#include "photarium/spline/BiCSpline.h"
#include "photarium/spline/BiLSpline.h"
#include "photarium/spline/TriCSpline.h"
#include "photarium/spline/TriLSpline.h"
#include "photarium/spline/points.h"

namespace {

/// Calls `use` with each coefficient of a record.
template <class A, class B, class C, class Use>
void forFields(triple<A, B, C>& record, Use const& use) {
  use(record.second);
  use(record.third);
}
template <class A, class B, class C, class D, class E, class Use>
void forFields(quint<A, B, C, D, E>& record, Use const& use) {
  use(record.second);
  use(record.third);
  use(record.fourth);
  use(record.fifth);
}

/// Coefficient number `index` of a record.
template <class A, class B>
B const& field(triple<A, B, B> const& record, std::size_t index) {
  return index == 0 ? record.second : record.third;
}
template <class A, class B>
B const& field(quint<A, B, B, B, B> const& record, std::size_t index) {
  if (index == 0) return record.second;
  if (index == 1) return record.third;
  return index == 2 ? record.fourth : record.fifth;
}

/// The coefficient that holds the ordinates.
template <class A, class B>
B& ordinate(triple<A, B, B>& record) {
  return record.third;
}
template <class A, class B>
B& ordinate(quint<A, B, B, B, B>& record) {
  return record.fifth;
}

/// The record of the result at `u`.
template <class Record, class X, class F>
Record recordAt(triple<X, F, F> const& row, X u, bool sequential,
                bool extrapolate) {
  return {row.first, row.second(u, sequential, extrapolate),
          row.third(u, sequential, extrapolate)};
}
template <class Record, class X, class F>
Record recordAt(quint<X, F, F, F, F> const& row, X u, bool sequential,
                bool extrapolate) {
  return {row.first, row.second(u, sequential, extrapolate),
          row.third(u, sequential, extrapolate),
          row.fourth(u, sequential, extrapolate),
          row.fifth(u, sequential, extrapolate)};
}

/// A number is handed on as it is, a spline by its place.
template <class Value>
auto handle(Value const& value) {
  if constexpr (std::is_arithmetic_v<Value>)
    return value;
  else
    return &value;
}

}  // namespace

template <class Derived, class X, class Y, class Inner, class Field>
SplineRows<Derived, X, Y, Inner, Field>::SplineRows(
    std::map<X const, Inner> const& splines) {
  std::vector<X> outer;
  std::vector<Inner const*> inner;
  outer.reserve(splines.size());
  inner.reserve(splines.size());
  for (auto const& [u, spline] : splines) {
    outer.push_back(u);
    inner.push_back(&spline);
  }
  build(outer, inner);
}

template <class Derived, class X, class Y, class Inner, class Field>
SplineRows<Derived, X, Y, Inner, Field>::SplineRows(
    std::span<X const> outer, std::span<Inner const> splines) {
  std::vector<Inner const*> inner;
  inner.reserve(splines.size());
  for (Inner const& spline : splines) inner.push_back(&spline);
  build(outer, inner);
}

template <class Derived, class X, class Y, class Inner, class Field>
SplineRows<Derived, X, Y, Inner, Field>::SplineRows(
    std::span<X const> outer, std::span<Inner const* const> splines) {
  build(outer, splines);
}

template <class Derived, class X, class Y, class Inner, class Field>
SplineRows<Derived, X, Y, Inner, Field>::SplineRows(std::vector<Node> rows)
    : data(std::move(rows)) {
  if (data.empty())
    throw std::runtime_error("Trying to construct empty spline!");
}

template <class Derived, class X, class Y, class Inner, class Field>
void SplineRows<Derived, X, Y, Inner, Field>::build(
    std::span<X const> outer, std::span<Inner const* const> splines) {
  requireEqualLengths(outer.size(), splines.size());
  if (splines.empty()) return;
  std::size_t const size = splines.front()->records().size();
  for (Inner const* spline : splines)
    if (spline->records().size() < size)
      throw std::runtime_error("Splines of different lengths!");

  using Value = decltype(InnerRecord::second);
  std::vector<decltype(handle(std::declval<Value const&>()))> across;
  across.reserve(splines.size());
  data.reserve(size);
  for (std::size_t j = 0; j < size; ++j) {
    data.push_back(Node{});
    data.back().first = splines.back()->records()[j].first;
    std::size_t index = 0;
    forFields(data.back(), [&](Field& target) {
      across.clear();
      for (Inner const* spline : splines)
        across.push_back(handle(field(spline->records()[j], index)));
      target = Field(outer, across);
      ++index;
    });
  }
}

template <class Derived, class X, class Y, class Inner, class Field>
Inner SplineRows<Derived, X, Y, Inner, Field>::operator()(
    X u, bool sequential, bool extrapolate) const {
  std::vector<InnerRecord> records;
  records.reserve(data.size());
  for (Node const& row : data)
    records.push_back(recordAt<InnerRecord>(row, u, sequential, extrapolate));
  return Inner(std::move(records));
}

template <class Derived, class X, class Y, class Inner, class Field>
Derived& SplineRows<Derived, X, Y, Inner, Field>::operator+=(Y const& c) {
  for (Node& row : data) ordinate(row) += c;
  return static_cast<Derived&>(*this);
}

template <class Derived, class X, class Y, class Inner, class Field>
Derived& SplineRows<Derived, X, Y, Inner, Field>::operator*=(Y const& c) {
  for (Node& row : data) forFields(row, [&c](Field& field) { field *= c; });
  return static_cast<Derived&>(*this);
}

template class SplineRows<BiLSpline<double, double>, double, double,
                          LSpline<double, double>, LSpline<double, double>>;
template class SplineRows<BiCLSpline<double, double>, double, double,
                          LSpline<double, double>, CSpline<double, double>>;
template class SplineRows<BiCSpline<double, double>, double, double,
                          CSpline<double, double>, CSpline<double, double>>;
template class SplineRows<TriLSpline<double, double>, double, double,
                          BiLSpline<double, double>, BiLSpline<double, double>>;
template class SplineRows<TriCSpline<double, double>, double, double,
                          BiCSpline<double, double>, BiCSpline<double, double>>;
template class BiCSpline<double, double>;
template class TriLSpline<double, double>;
template class TriCSpline<double, double>;
