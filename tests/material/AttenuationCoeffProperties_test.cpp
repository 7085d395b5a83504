#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/material/AttenuationCoeff.h"
#include "tests/material/reference_curve.h"

namespace {

using Curve = AttenuationCoeff<double>;
using Data = std::vector<Curve::MapStretch>;

/// Stretches with edges, overlaps and now and then an odd value.
std::vector<Curve::Stretch> randomStretches(std::mt19937_64& random,
                                            bool linear, bool isHostile) {
  std::uniform_real_distribution<double> part(0., 1.);
  double const infinity = std::numeric_limits<double>::infinity();
  double const odd[] = {0., -1., infinity, 1e308, 5e-324, -infinity};
  std::vector<Curve::Stretch> stretches;
  std::uint64_t const count = 1 + random() % 3;
  for (std::uint64_t k = 0; k < count; ++k) {
    Curve::Stretch stretch{{},
                           static_cast<Curve::Interpolation>(1 + random() % 5),
                           random() % 2 == 0};
    double x = random() % 3 == 0 ? 1. : 0.5 + 3. * part(random);
    std::uint64_t const size = 1 + random() % 30;
    for (std::uint64_t i = 0; i < size; ++i) {
      double y = 1e-3 + part(random);
      if (isHostile && random() % 20 == 0) y = odd[random() % 6];
      if (isHostile && random() % 40 == 0) x = odd[random() % 6];
      if (!linear) x = std::abs(x);  // the logarithm of an energy is a number
      bool const isLogarithm = !linear && stretch.second >= Curve::LogLin;
      stretch.first.emplace_back(isLogarithm ? std::log(x) : x,
                                 linear ? y : std::log(std::abs(y)));
      std::size_t const kind = random() % 8;
      if (kind == 0) continue;  // an edge of equal energies
      x *= kind == 1 ? 1.00005 : 1. + 0.3 * part(random);
    }
    stretches.push_back(stretch);
  }
  return stretches;
}

Data asMaps(std::vector<Curve::Stretch> const& stretches) {
  Data data;
  for (auto const& [points, law, cubic] : stretches)
    data.push_back({{}, law, cubic});
  for (std::size_t i = 0; i < stretches.size(); ++i)
    for (auto const& point : stretches[i].first) data[i].first.insert(point);
  return data;
}

std::string value(std::function<double()> const& evaluate) {
  try {
    double const result = evaluate();
    if (std::isnan(result)) return "nan";
    std::ostringstream text;
    text << std::hexfloat << result;
    return text.str();
  } catch (std::out_of_range const& outside) {
    return outside.what();
  }
}

std::string text(Curve const& curve) {
  std::ostringstream out;
  out << curve;
  return out.str();
}

/// "-nan" and "nan" are one.
std::string withoutSigns(std::string all) {
  for (std::size_t at; (at = all.find("-nan")) != std::string::npos;)
    all.erase(at, 1);
  return all;
}

void expectSame(Curve const& curve, ReferenceCurve const& plain,
                std::mt19937_64& random) {
  ASSERT_EQ(withoutSigns(text(curve)), withoutSigns(plain.text()));
  std::vector<double> energies{
      0.,          -1., 0.9, 1., 1e300, std::numeric_limits<double>::infinity(),
      std::nan("")};
  for (auto const& [key, range] : plain.ranges) {
    energies.push_back(key);
    energies.push_back(std::nextafter(key, 0.));
    energies.push_back(key * 1.00003);
  }
  for (int i = 0; i < 40; ++i)
    energies.push_back(std::exp(static_cast<double>(random() % 5000) / 1000.));
  std::shuffle(energies.begin(), energies.end(), random);
  for (double const x : energies)
    for (bool const extrapolate : {false, true})
      ASSERT_EQ(value([&] { return curve(x, extrapolate); }),
                value([&] { return plain(x, extrapolate); }))
          << x << text(curve);
  for (double const x : energies)
    ASSERT_EQ(curve.covers(x), value([&] {
                                 return plain(x, false);
                               }).find("o") == std::string::npos);
  auto const ratios = curve.Discontinuities();
  auto const expected = plain.discontinuities();
  ASSERT_EQ(ratios.size(), expected.size());
  for (auto const& ratio : expected)
    ASSERT_EQ(value([&] { return ratios.at(ratio.first); }),
              value([&] { return ratio.second; }));
}

class AttenuationCoeffProperties : public testing::TestWithParam<bool> {};

TEST_P(AttenuationCoeffProperties, AreThoseOfThePlainForm) {
  std::mt19937_64 random(71);
  for (int round = 0; round < 50; ++round) {
    bool const linear = random() % 2 == 0;
    auto const stretches = randomStretches(random, linear, GetParam());
    Data const data = asMaps(stretches);
    Curve const curve(data, 1.5, linear);
    ReferenceCurve const plain(data, 1.5, linear);
    expectSame(curve, plain, random);
    expectSame(Curve::fromSorted(stretches, 1.5, linear), plain, random);
  }
}

TEST_P(AttenuationCoeffProperties, SurviveScalingCopyingAndPowers) {
  std::mt19937_64 random(72);
  for (int round = 0; round < 40; ++round) {
    Data const data = asMaps(randomStretches(random, true, GetParam()));
    Curve curve(data, 1., true);
    ReferenceCurve plain(data, 1., true);
    curve *= 0.7;
    plain.scale(0.7);
    expectSame(curve, plain, random);
    expectSame(Curve(curve), ReferenceCurve(plain), random);
    curve.sqr();
    std::function<double(double)> const twice = [](double y) { return 2 * y; };
    std::function<double(double)> const square = [](double y) { return y * y; };
    plain.change(twice, square);
    expectSame(curve, plain, random);
    Curve moved;
    moved = std::move(curve *= 3.);
    plain.scale(3.);
    expectSame(moved, ReferenceCurve(plain), random);
  }
}

TEST_P(AttenuationCoeffProperties, HoldForSums) {
  std::mt19937_64 random(73);
  for (int round = 0; round < 50; ++round) {
    Data const one = asMaps(randomStretches(random, true, GetParam()));
    Data const two = asMaps(randomStretches(random, true, GetParam()));
    Curve const sum = Curve(one, 1., true) + Curve(two, 2., true);
    ReferenceCurve const plain =
        ReferenceCurve(one, 1., true).plus(ReferenceCurve(two, 2., true));
    expectSame(sum, plain, random);
    Curve more = sum;
    more += Curve(one, 1., true);
    expectSame(more, plain.plus(ReferenceCurve(one, 1., true)), random);
  }
}

INSTANTIATE_TEST_SUITE_P(Values, AttenuationCoeffProperties, testing::Bool(),
                         [](auto const& hostile) {
                           return hostile.param ? "Hostile" : "Usual";
                         });

TEST(AttenuationCoeffUnsorted, OrdersPointsAsAMultimapDoes) {
  std::mt19937_64 random(74);
  for (int round = 0; round < 40; ++round) {
    auto stretches = randomStretches(random, true, false);
    for (auto& stretch : stretches)
      std::shuffle(stretch.first.begin(), stretch.first.end(), random);
    EXPECT_EQ(text(Curve::fromSorted(stretches, 1., true)),
              text(Curve(asMaps(stretches), 1., true)));
  }
}

TEST(AttenuationCoeffUnsorted, EndsWithEnergiesThatAreNoNumbers) {
  std::mt19937_64 random(75);
  for (int round = 0; round < 50; ++round) {
    auto stretches = randomStretches(random, true, true);
    for (auto& stretch : stretches)
      for (auto& point : stretch.first)
        if (random() % 4 == 0) point.first = std::nan("");
    Curve curve = Curve::fromSorted(stretches, 1., true);
    for (double x = 0.1; x < 50.; x *= 1.1) curve(x, true);
    curve += curve;
    for (double x = 0.1; x < 50.; x *= 1.1) curve(x, true);
    curve.Discontinuities();
  }
  SUCCEED();
}

}  // namespace
