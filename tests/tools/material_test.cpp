#include <nlohmann/json.hpp>

#include "tests/tools/Program.h"

namespace {

nlohmann::json described(std::string const& material) {
  Outcome const outcome =
      Program().run({"material", "--material", material, "--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  return nlohmann::json::parse(outcome.out);
}

nlohmann::json edge(nlohmann::json const& material, std::string const& shell) {
  for (auto const& candidate : material["edges"])
    if (candidate["shell"] == shell) return candidate;
  return {};
}

nlohmann::json line(nlohmann::json const& edge, std::string const& label) {
  for (auto const& candidate : edge["lines"])
    if (candidate["label"] == label) return candidate;
  return {};
}

}  // namespace

TEST(MaterialJson, OfWaterHasItsComposition) {
  auto const water = described("H2O")["composition"];
  ASSERT_EQ(water.size(), 2u);
  EXPECT_EQ(water[0]["element"], "H");
  // 2 * 1.0079 / (2 * 1.0079 + 15.9994), weights of the element table.
  EXPECT_NEAR(water[0]["mass_fraction"], 0.11189, 1e-5);
  EXPECT_NEAR(water[0]["atom_fraction"], 2. / 3, 1e-12);
  EXPECT_NEAR(water[1]["atom_fraction"], 1. / 3, 1e-12);
}

TEST(MaterialJson, OfAMixtureHasItsCompositionByMass) {
  auto const glass = described("SiO2 0.6 Al2O3 0.4")["composition"];
  ASSERT_EQ(glass.size(), 3u);
  double sum = 0, atoms = 0;
  for (auto const& part : glass) {
    sum += double(part["mass_fraction"]);
    atoms += double(part["atom_fraction"]);
  }
  EXPECT_NEAR(sum, 1, 1e-12);
  EXPECT_NEAR(atoms, 1, 1e-12);
  // Al: 0.4 * 2 * 26.98154 / (2 * 26.98154 + 3 * 15.9994).
  EXPECT_EQ(glass[0]["element"], "Al");
  EXPECT_NEAR(glass[0]["mass_fraction"], 0.2117, 1e-4);
}

TEST(MaterialJson, OfAnElementIsAllOfIt) {
  auto const iron = described("Fe");
  EXPECT_EQ(iron["Z"], 26);
  ASSERT_EQ(iron["composition"].size(), 1u);
  EXPECT_EQ(iron["composition"][0]["mass_fraction"], 1);
  EXPECT_EQ(iron["composition"][0]["atom_fraction"], 1);
}

TEST(MaterialJson, HasEdgesAndLines) {
  auto const k = edge(described("Cu"), "K");
  // J. A. Bearden, Rev. Mod. Phys. 39 (1967) 78; J. A. Bearden, A. F. Burr,
  // Rev. Mod. Phys. 39 (1967) 125. The database is within 2 eV of them.
  EXPECT_NEAR(k["energy_keV"], 8.979, 0.001);
  EXPECT_NEAR(line(k, "K-L3")["energy_keV"], 8.04778, 0.002);
  EXPECT_NEAR(line(k, "K-L2")["energy_keV"], 8.02783, 0.002);
  EXPECT_EQ(line(k, "K-L3")["from"], "L3");
  double sum = 0;
  for (auto const& each : k["lines"]) sum += double(each["intensity"]);
  EXPECT_NEAR(sum, k["yield"], 1e-3);
}

TEST(MaterialJson, HasStoppingConstantsOfTheCorrections) {
  auto const copper = described("Cu")["stopping"];
  ASSERT_EQ(copper.size(), 1u);
  // R. M. Sternheimer, M. J. Berger, S. M. Seltzer, At. Data Nucl. Data
  // Tables 30 (1984) 261: I = 322 eV, -C = 4.4190.
  EXPECT_NEAR(copper[0]["J_keV"], 0.322, 1e-6);
  EXPECT_NEAR(copper[0]["C"], -4.419, 1e-6);
}

TEST(MaterialJson, NamesItsSources) {
  auto const sources = described("CuZn")["sources"];
  EXPECT_EQ(sources["format"], "ElamDB");
  ASSERT_EQ(sources["database"].size(), 1u);
  EXPECT_TRUE(std::string(sources["database"][0]).ends_with("/ElamDB12.txt"));
}

TEST(MaterialJson, TakesPathsThatAreNoText) {
  Program const program;
  std::filesystem::copy(sourceDir() / "data/ElamDB12.txt",
                        program.folder() / "\xff.txt");
  Outcome const outcome = program.run(
      {"material", "--material", "Cu", "--datafile", "\xff.txt", "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(nlohmann::json::accept(outcome.out));
}

TEST(MaterialJson, TellsWhichCurvesHoldUsableNodes) {
  auto const curves = described("Cu")["curves"];
  EXPECT_GT(curves["photoabsorption"]["usable"], 10);
  EXPECT_EQ(curves["pair production"]["usable"], 0);
  EXPECT_EQ(curves["form factor"]["nodes"], 0);
}

TEST(MaterialText, SaysTheSame) {
  Outcome const outcome = Program().run({"material", "--material", "Cu"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  for (std::string const part :
       {"Material: Cu\n", "Density: 8.96 g/cm^3\n", "Cu K", "K-L3",
        "form factor                   no data\n", "none above 0\n"})
    EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
}

TEST(MaterialText, OfNoMaterialIsWrongUsage) {
  Program const program;
  program.write("none.cfg", "material =\n");
  Outcome const outcome = program.run({"material", "--config", "none.cfg"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "photarium: Empty material given!\n");
}
