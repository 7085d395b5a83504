#include "photarium/grid/TableHeader.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "tests/support/messages.h"

namespace {

TEST(TableHeader, PrintsThreeLinesInTheDefaultFormat) {
  TableHeader<double> header;
  header.Name = "Cu Zn";
  header.Kind = "Brems";
  header.Columns = 1002;
  header.Rows = 1234567;
  header.First = 0.123456789;
  header.Step = 1e-7;
  header.Last = 1234567;
  header.Density = 8.96;
  EXPECT_EQ(header.text(),
            "#Tramo\t0\tCu Zn\tBrems\t1002\t1234567\t0.123457\t1e-07\n"
            "# Density: 8.96\t# [g/cm^3]\n"
            "# energy steps of 1e-07 keV, from 0.123457 keV to "
            "1.23457e+06 keV\n");
}

TEST(TableRows, RoundsTheRatioUp) {
  EXPECT_EQ(TableRows(100., 0.5), 200U);
  EXPECT_EQ(TableRows(100.2, 0.5), 201U);
  EXPECT_EQ(TableRows(1., 0.3), 4U);
  EXPECT_EQ(TableRows(1e6, 1.), 1000000U);
}

TEST(TableRows, RefusesWhatIsNoReasonableNumber) {
  double const infinity = std::numeric_limits<double>::infinity();
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (auto const& [kVp, EBin] :
       {std::pair(1e9, 1.), std::pair(1e6 + 1, 1.), std::pair(100., 0.),
        std::pair(100., -1.), std::pair(0., -1.), std::pair(infinity, 1.),
        std::pair(nan, 1.), std::pair(1., nan), std::pair(1e300, 1e-300)})
    EXPECT_EQ(messageOf<std::runtime_error>(
                  [kv = kVp, bin = EBin] { TableRows(kv, bin); }),
              "Unreasonable number of energies.\n");
}

TEST(LimitTableSteps, RefusesMoreThanAHundredThousand) {
  LimitTableSteps(0);
  LimitTableSteps(100000);
  EXPECT_EQ(messageOf<std::runtime_error>([] { LimitTableSteps(100001); }),
            "More than 100000 steps requested.\n");
}

}  // namespace
