#include <cmath>
#include <numbers>

#include "tests/tools/Program.h"

namespace {

using Rows = std::vector<std::vector<double>>;

// Spectra and the runs of the command on them.
struct FilterCommand : testing::Test {
  FilterCommand() { program.write("a.txt", "10 1\n20 2 Cu line\n60 5e3\n"); }

  Outcome run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "filter");
    return program.run(arguments);
  }

  Rows filter(std::vector<std::string> const& arguments) const {
    Outcome const outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return rowsOf(outcome.out);
  }

  // Attenuation coefficients [1/cm] of a material at the energies of a.txt.
  Rows mu(std::string const& material,
          std::vector<std::string> const& flags = {}) const {
    std::vector<std::string> arguments{"mu", "--material", material,
                                       "--gridfile", "a.txt"};
    arguments.insert(arguments.end(), flags.begin(), flags.end());
    return rowsOf(program.run(arguments).out);
  }

  void expectRefusal(std::vector<std::string> arguments,
                     std::string const& message) const {
    Outcome const outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.err, "photarium: " + message + "\n");
    EXPECT_EQ(outcome.out, "");
  }

  Program program;
};

// Seven digits stand in a file.
void expectNear(Rows const& rows, Rows const& expected) {
  ASSERT_EQ(rows.size(), expected.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i][0], expected[i][0]);
    EXPECT_NEAR(rows[i][1] / expected[i][1], 1, 5e-6) << rows[i][0] << " keV";
  }
}

// What stays of the spectrum in a.txt behind a path [cm].
Rows behind(Rows const& mu, double path) {
  return {{10, std::exp(-mu[0][1] * path)},
          {20, 2 * std::exp(-mu[1][1] * path)},
          {60, 5e3 * std::exp(-mu[2][1] * path)}};
}

}  // namespace

TEST_F(FilterCommand, AttenuatesExponentially) {
  expectNear(filter({"a.txt", "--material", "Al", "--thickness", "0.05"}),
             behind(mu("Al"), 0.05));
}

TEST_F(FilterCommand, LengthensThePathOfAnObliqueBeam) {
  double const path = 0.05 / std::sin(30 * std::numbers::pi / 180);
  expectNear(filter({"a.txt", "--material", "Al", "--thickness", "0.05",
                     "--angle-in", "30"}),
             behind(mu("Al"), path));
}

TEST_F(FilterCommand, CountsTheInteractionsThatAreAskedForAsLosses) {
  for (std::vector<std::string> const& flags :
       {std::vector<std::string>{"--coherent"},
        {"--incoherent"},
        {"--coherent", "--incoherent"}}) {
    std::vector<std::string> arguments{"a.txt", "--material=Al"};
    arguments.insert(arguments.end(), flags.begin(), flags.end());
    Rows const total = [&] {
      Rows sum = mu("Al", flags);
      for (auto& row : sum) row[1] = row.back();
      return sum;
    }();
    expectNear(filter(arguments), behind(total, 0.1));
  }
}

TEST_F(FilterCommand, LosesNoPairsBelowTheirThreshold) {
  EXPECT_EQ(filter({"a.txt", "--material=Al", "--pair"}),
            filter({"a.txt", "--material=Al"}));
}

// The default database has no pair production, and ends at 1124 keV for it.
TEST_F(FilterCommand, SaysWhereItHasNoDataOnPairs) {
  program.write("high.txt", "1000 1\n5000 1\n");
  EXPECT_EQ(run({"high.txt", "--material=Al", "--pair"}).err,
            "photarium: 1 of 2 energies are beyond the data of Al, which are "
            "extrapolated\n");
}

TEST_F(FilterCommand, MixesFilteredAndBareBeam) {
  Rows const all = filter({"a.txt", "--material=Al"});
  expectNear(filter({"a.txt", "--material=Al", "--coverage=0.25"}),
             {{10, 0.25 * all[0][1] + 0.75 * 1},
              {20, 0.25 * all[1][1] + 0.75 * 2},
              {60, 0.25 * all[2][1] + 0.75 * 5e3}});
}

TEST_F(FilterCommand, IsUndoneByItsInverse) {
  program.write("b.txt", run({"a.txt", "--material=Al", "--coverage=0.9"}).out);
  Rows const original{{10, 1}, {20, 2}, {60, 5e3}};
  expectNear(filter({"b.txt", "--material=Al", "--coverage=0.9", "--inverse"}),
             original);
  expectNear(
      filter({"b.txt", "--material=Al", "--coverage=0.9", "--thickness=-0.1"}),
      original);
}

TEST_F(FilterCommand, ChainsLayersAsRunsDo) {
  program.write("b.txt", run({"a.txt", "--material=Al", "--thickness=0.1",
                              "--coherent", "--angle-in=45"})
                             .out);
  expectNear(filter({"a.txt", "--layers", "Al 0.1; Cu 0.01", "--coherent",
                     "--angle-in=45"}),
             filter({"b.txt", "--material=Cu", "--thickness=0.01", "--coherent",
                     "--angle-in=45"}));
}

TEST_F(FilterCommand, UndoesOneLayerOfSeveral) {
  expectNear(filter({"a.txt", "--layers=Al 0.1;Cu 0.01;Al -0.1"}),
             filter({"a.txt", "--layers= Cu 0.01 ;"}));
}

TEST_F(FilterCommand, ReadsStandardInputWithoutAFile) {
  std::string const options = "photarium filter --material Al";
  EXPECT_EQ(program.shell(options + " <a.txt").out,
            program.shell(options + " - <a.txt").out);
  EXPECT_EQ(rowsOf(program.shell(options + " <a.txt").out),
            filter({"a.txt", "--material=Al"}));
}

TEST_F(FilterCommand, KeepsLabelsBinsAndTime) {
  program.write("b.txt", "#Bin: true\n#Time: 7\n10 1 first\n20 2\n");
  Outcome const outcome = run({"b.txt", "--material=Be"});
  for (std::string const part :
       {" first\n", "\n# Bin: true\n", "\n# Time: 7.0000\t# [s]\n",
        "\n# Spectrum: b.txt (2 nodes, contents of bins)\n"})
    EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
}

TEST_F(FilterCommand, SummarisesTheSpectrumBeforeAndAfter) {
  // Flux is the sum over bins, the mean is weighted with it.
  program.write("b.txt", "#Bin: true\n10 1\n20 3\n");
  std::string const out =
      run({"b.txt", "--material=Al", "--thickness=0", "--no-coherent"}).out;
  EXPECT_NE(out.find("\n# Before: Avg:   17.500 Flux:   4.00000e+00\n"
                     "# After: Avg:   17.500 Flux:   4.00000e+00\n"),
            std::string::npos)
      << out;
}

TEST_F(FilterCommand, RefusesWhatItDoesNotModel) {
  std::pair<std::string, std::string> const refused[] = {
      {"--fluorescence", "Fluorescence"},
      {"--scatterangle=45", "Radiation scattered to an angle"},
      {"--no-transmission", "Reflection"},
      {"--angle-out=45", "An outgoing angle"},
      {"--angle-side=5", "An off-axis angle"}};
  for (auto const& [option, what] : refused)
    expectRefusal({"a.txt", option},
                  what + " is not modelled by photarium filter, see --help");
}

TEST_F(FilterCommand, RefusesLayersThatItDoesNotUnderstand) {
  for (std::string const text : {"Al", "0.1", "Al 0.1cm", "Al x"})
    expectRefusal({"a.txt", "--layers", "Cu 0.1;" + text},
                  "Layer not understood: '" + text +
                      "', expected a material and a thickness in cm");
  expectRefusal({"a.txt", "--layers", ";"}, "No layer in --layers");
}

TEST_F(FilterCommand, RefusesTwoDescriptionsOfItsLayers) {
  for (std::string const key : {"material", "thickness", "density", "count"})
    expectRefusal({"a.txt", "--layers", "Al 0.1", "--" + key + "=1"},
                  "--" + key + " and --layers exclude each other");
}

TEST_F(FilterCommand, RefusesSettingsThatFailTheirCheck) {
  expectRefusal({"a.txt", "--coverage=0"}, "Area coverage (0) not >0 and <=1!");
  expectRefusal({"a.txt", "b.txt"}, "One spectrum file expected, not 2");
}

TEST_F(FilterCommand, SaysHowManyEnergiesAreBeyondTheData) {
  program.write("b.txt", "0 1\n0.05 1\n10 1\n");
  Outcome const outcome = run({"b.txt", "--material=Al"});
  EXPECT_EQ(outcome.err,
            "photarium: 2 of 3 energies are beyond the data of Al, which are "
            "extrapolated\n");
  EXPECT_EQ(rowsOf(outcome.out)[0], (std::vector<double>{0, 0}));
}

TEST_F(FilterCommand, LeavesInfiniteValuesOut) {
  program.write("b.txt", "2 0\n3 1\n60 1\n");
  Outcome const outcome =
      run({"b.txt", "--material=Pb", "--thickness=1", "--inverse"});
  EXPECT_EQ(outcome.err, "photarium: 1 infinite values left out\n");
  ASSERT_EQ(rowsOf(outcome.out).size(), 2U);
  EXPECT_EQ(rowsOf(outcome.out)[0], (std::vector<double>{2, 0}));
}

TEST_F(FilterCommand, FailsWithoutASpectrum) {
  program.write("empty.txt", "# nothing\n");
  EXPECT_EQ(run({"empty.txt"}).status, 1);
  EXPECT_EQ(run({"empty.txt"}).err, "photarium: No spectrum in empty.txt\n");
  program.write("bad.txt", "10 x\n");
  EXPECT_EQ(run({"bad.txt"}).err,
            "photarium: Error parsing intensity: 10 x while reading "
            "bad.txt\n");
}

TEST_F(FilterCommand, WritesAllSettingsOfEachLayer) {
  std::string const out = run({"a.txt", "--layers=Al 0.1;Cu 0.01"}).out;
  std::size_t const second = out.find("\n# And behind it:\n");
  ASSERT_NE(second, std::string::npos);
  EXPECT_LT(out.find("\n# Material: Al\n"), second);
  EXPECT_GT(out.find("\n# Material: Cu\n"), second);
  EXPECT_NE(out.find("\n# Thickness: 0.01\t# [cm]\n"), std::string::npos);
}

TEST_F(FilterCommand, DrawsBeforeAndAfter) {
  PHOTARIUM_NEEDS_POSIX();
  Outcome const outcome = run({"a.txt", "--plot=p.svg", "--output=o.txt"});
  if (outcome.err.find("gnuplot is not installed") != std::string::npos)
    GTEST_SKIP() << outcome.err;
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  std::string const picture = program.text("p.svg");
  EXPECT_NE(picture.find(">before<"), std::string::npos);
  EXPECT_NE(picture.find(">after<"), std::string::npos);
  EXPECT_TRUE(program.has("o.txt"));
}

TEST_F(FilterCommand, TakesAMillionNodesInTwoSeconds) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer multiplies the time";
#endif
  std::string text;
  for (int i = 0; i < 1000000; ++i)
    text += std::to_string(1 + i * 1e-4) + "\t" + std::to_string(i % 97) + "\n";
  program.write("b.txt", text);
  double const before = secondsOfPrograms();
  EXPECT_EQ(run({"b.txt", "--material=Al", "--output=o.txt"}).status, 0);
  EXPECT_LT(secondsOfPrograms() - before, 2);
}
