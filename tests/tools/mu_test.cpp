#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>

#include "photarium/streams/PHMCStream.h"
#include "tests/tools/Program.h"

namespace {

std::vector<std::string> const Brass{"mu",    "--material", "CuZn",   "--acrp",
                                     "--kvp", "100",        "--ebin", "1"};

std::vector<std::string> with(std::vector<std::string> arguments,
                              std::vector<std::string> const& more) {
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

std::string const Alone =
    std::filesystem::path(PHOTARIUM_PROGRAM).filename().string();

// The eight bytes with which every PNG file begins (ISO/IEC 15948).
std::string const PngSignature = "\x89PNG\r\n\x1a\n";

bool hasGnuplot(Program const& program) {
  return program.shell("command -v gnuplot").status == 0;
}

#define NEEDS_GNUPLOT(program) \
  if (!hasGnuplot(program)) GTEST_SKIP() << "gnuplot is not installed"

}  // namespace

TEST(MuTable, HasARowForEachOfAHundredEnergies) {
  Outcome const outcome = Program().run(Brass);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.substr(0, 26), "#Tramo\t0\tCuZn\tACRP\t4\t100\t1");
  auto const rows = rowsOf(outcome.out);
  ASSERT_EQ(rows.size(), 100u);
  for (auto const& row : rows) EXPECT_EQ(row.size(), 4u);
}

TEST(MuTable, OfBrassIsTheSumOfItsElementsByMass) {
  Program const program;
  auto const brass = rowsOf(program.run(Brass).out);
  // Mass attenuation coefficients: those of density 1.
  auto const element = [&](std::string const& symbol) {
    return rowsOf(program
                      .run({"mu", "--material", symbol, "--acrp", "--kvp",
                            "100", "--ebin", "1", "--density", "1"})
                      .out);
  };
  auto const copper = element("Cu"), zinc = element("Zn");
  // Atomic weights and densities of the library's element table.
  double const copperMass = 63.5463, zincMass = 65.3794;
  double const share = copperMass / (copperMass + zincMass);
  double const density = share * 8.96 + (1 - share) * 7.134;
  ASSERT_EQ(brass.size(), 100u);
  for (std::size_t i = 0; i < brass.size(); ++i)
    for (std::size_t j = 0; j < 3; ++j) {
      double const expected =
          density * (share * copper[i][j] + (1 - share) * zinc[i][j]);
      // Seven printed digits, and splines of sums in place of sums of splines.
      EXPECT_NEAR(brass[i][j] / expected, 1, 2e-3) << i << ' ' << j;
    }
}

TEST(MuTable, JumpsAtTheEdgeOfIronByItsJumpRatio) {
  Program const program;
  program.write("grid.txt", "7.1119 0\n7.1121 0\n");
  auto const rows = rowsOf(
      program.run({"mu", "--material", "Fe", "--gridfile", "grid.txt"}).out);
  ASSERT_EQ(rows.size(), 2u);
  auto const json = nlohmann::json::parse(
      program.run({"material", "--material", "Fe", "--json"}).out);
  double const jump = json["edges"][0]["jump"];
  EXPECT_NEAR(rows[1][1] / rows[0][1] / jump, 1, 1e-3);
  EXPECT_GT(jump, 7);
}

TEST(MuMaterials, OfManyFormsLoad) {
  Program const program;
  for (std::string const material :
       {"H2O", "SiO2 0.6 Al2O3 0.4", "Fe0.7Cr0.2Ni0.1", "CdTe", "29"}) {
    Outcome const outcome =
        program.run({"mu", "--material", material, "--acrp"});
    EXPECT_EQ(outcome.status, 0) << material;
    EXPECT_EQ(rowsOf(outcome.out).size(), 1000u) << material;
  }
}

TEST(MuMaterials, ThatDoNotExistAreNamedWithTheFilesTried) {
  Outcome const outcome = Program().run({"mu", "--material", "Xx"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  for (std::string const part :
       {"Error loading material data for Xx:", "data/ENDF-VII0/",
        "data/LocalDB.txt", "data/mcplib04.txt", "data/ElamDB12.txt"})
    EXPECT_NE(outcome.err.find(part), std::string::npos) << part;
}

TEST(MuFindings, OfACompositeAreToldOnce) {
  Outcome const outcome = Program().run(Brass);
  EXPECT_EQ(outcome.err,
            "photarium: Empty spline (elastic electron scattering of CuZn)\n");
}

TEST(MuSettings, ComeFromSectionsOfAConfigFileToo) {
  Program const program;
  program.write("brass.cfg",
                "[grid]\nkvp = 100\nebin = 1\n"
                "[mu]\nsections = grid\nmaterial = CuZn\nacrp = true\n");
  Outcome const outcome = program.run({"mu", "--config", "brass.cfg"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, program.run(Brass).out);
}

TEST(MuSettings, FromACommentBlockGiveTheSameResultAgain) {
  Program const program;
  std::string const first =
      program.run({"mu", "--material", "Cu", "--kvp", "20", "--density", "8"})
          .out;
  // "# Label: value" becomes "label = value". The sections of the first run
  // are no sections of this file.
  std::string config;
  std::istringstream lines(first);
  for (std::string line; std::getline(lines, line) && line[0] == '#';) {
    std::size_t const colon = line.find(": ");
    if (!line.starts_with("# ") || colon == std::string::npos ||
        line.starts_with("# Sections"))
      continue;
    config += line.substr(2, colon - 2) + " = " + line.substr(colon + 2) + "\n";
  }
  ASSERT_NE(
      config.find("DataFile = " + sourceDir().root_path().generic_string()),
      std::string::npos);
  program.write("again.cfg", config);
  Outcome const again = program.run({"mu", "--config", "again.cfg"});
  EXPECT_EQ(again.err, "");
  EXPECT_EQ(rowsOf(again.out), rowsOf(first));
}

TEST(MuGrid, ComesFromAFile) {
  Program const program;
  program.write("grid.txt", "5 1 a\n8 2\n20 3\n");
  auto const rows = rowsOf(
      program.run({"mu", "--material", "Cu", "--gridfile", "grid.txt"}).out);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[2][0], 20);
}

TEST(MuGrid, FileThatCannotBeReadIsAFailure) {
  Outcome const outcome =
      Program().run({"mu", "--material", "Cu", "--gridfile", "none.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "photarium: Could not open none.txt: No such file or directory\n");
}

namespace {

std::string packedGrid() {
  Program const program;
  program.write("grid.txt", "5\n8\n20\n");
  return program.run({"pack", "grid.txt"}).out;
}

}  // namespace

TEST(MuGrid, FileThatIsPackedIsRead) {
  Program const program;
  program.write("grid.phc", packedGrid());
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--gridfile", "grid.phc"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(rowsOf(outcome.out).size(), 3u);
}

TEST(MuGrid, FileThatIsPackedAndBrokenIsAFailure) {
  Program const program;
  program.write("grid.phc", packedGrid().substr(0, 4));
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--gridfile", "grid.phc"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "photarium: Not enough bits in input! while reading grid.phc\n");
}

TEST(MuGrid, FileWithoutEnergiesIsAFailure) {
  Program const program;
  program.write("empty.txt", "# nothing\n");
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--gridfile", "empty.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: No energies in grid file empty.txt\n");
}

TEST(MuGrid, ThatIsIrregularHasNoTableAndNoHint) {
  Program const program;
  program.write("grid.txt", "5\n8\n20\n");
  Outcome const outcome = program.run(
      {"mu", "--material", "Cu", "--acrp", "--gridfile", "grid.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: Not a regular energy grid\n");
}

TEST(MuGrid, BeyondTheDataHasNoTableButAHint) {
  Program const program;
  program.write("grid.txt", "0.01\n0.02\n");
  Outcome const outcome = program.run(
      {"mu", "--material", "Cu", "--acrp", "--gridfile", "grid.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("photarium: No energies given\n"
                             "photarium: Energies beyond the data or between "
                             "their ranges need --extrapolate\n"),
            std::string::npos)
      << outcome.err;
}

TEST(MuGrid, OfEnergiesBeyondTheDataSaysHowManyAreLeftOut) {
  Program const program;
  program.write("grid.txt", "0.01 0\n8 0\n1e6 0\n");
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--gridfile", "grid.txt"});
  EXPECT_EQ(rowsOf(outcome.out).size(), 1u);
  EXPECT_EQ(outcome.err,
            "photarium: 2 of 3 energies are beyond the data and left out, see "
            "--extrapolate\n");
}

TEST(MuData, PackedGiveTheSameTableToTheByte) {
  Program const program;
  std::filesystem::create_directories(program.folder() / "data");
  std::string const database = fileText(sourceDir() / "data/ElamDB12.txt");
  PHMCStream packed((program.folder() / "data/ElamDB12.txt.phc").string(),
                    /*plain=*/false, std::ios::out | std::ios::binary);
  packed << database;
  packed.close();
  std::filesystem::copy(sourceDir() / "data/ELossCorrections.txt",
                        program.folder() / "data");
  Outcome const outcome = program.run(Brass);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, Program().run(Brass).out);
}

TEST(MuData, ComeFromTheFolderOfTheEnvironment) {
  Program program;
  std::filesystem::create_directories(program.folder() / "there/data");
  std::filesystem::copy(sourceDir() / "data/ElamDB12.txt",
                        program.folder() / "there/data");
  program.set("PHOTARIUM_DATA=there");
  Outcome const outcome = program.run({"mu", "--material", "Cu"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("/there/data/ElamDB12.txt\n"), std::string::npos);
}

TEST(MuData, OfAFolderOfTheEnvironmentThatHoldsNoneAreFoundElsewhere) {
  Program program;
  program.set("PHOTARIUM_DATA=nowhere");
  Outcome const outcome = program.run({"mu", "--material", "Cu"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.err.find("PHOTARIUM_DATA names no folder"),
            std::string::npos);
}

TEST(MuData, ComeFromTheProgramItselfWhereThereIsNoFolder) {
  // A copy of the program that stands in no tree.
  Program const program;
  std::filesystem::copy(PHOTARIUM_PROGRAM, program.folder() / Alone);
  Outcome const outcome = program.runCopy(Alone, Brass);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, Program().run(Brass).out);
  std::string const named = program.runCopy(Alone, {"mu"}).out;
  EXPECT_EQ(named.find("/proc/"), std::string::npos);
  EXPECT_EQ(named.find("ElamDB12"), std::string::npos);
}

TEST(MuData, AreFoundWhereAnInstallationPutsThem) {
  Program const program;
  std::filesystem::create_directories(program.folder() / "bin");
  std::filesystem::create_directories(program.folder() /
                                      "share/photarium/data");
  std::filesystem::copy(PHOTARIUM_PROGRAM, program.folder() / "bin" / Alone);
  for (std::string const file : {"ElamDB12.txt", "ELossCorrections.txt"})
    std::filesystem::copy(sourceDir() / "data" / file,
                          program.folder() / "share/photarium/data");
  Outcome const outcome =
      program.runCopy("bin/" + Alone, {"mu", "--material", "Cu"});
  EXPECT_NE(
      outcome.out.find("# DataFile: " + program.folder().generic_string() +
                       "/share/photarium/data/ElamDB12.txt\n"),
      std::string::npos);
}

TEST(MuData, ThatAreAFolderAreAFailureWithAMessage) {
  Outcome const outcome =
      Program().run({"mu", "--material", "Cu", "--datafile", "/"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err.substr(0, 89),
            "photarium: Error loading material data for Cu:\n"
            "photarium: Could not open file while readi");
}

TEST(MuData, OfTheUserAreSearchedBelowTheDirectoryAlone) {
  Program const program;
  std::filesystem::create_directories(program.folder() / "mine");
  std::filesystem::copy(sourceDir() / "data/ElamDB12.txt",
                        program.folder() / "mine/db.txt");
  Outcome const outcome = program.run({"mu", "--material", "Cu", "--directory",
                                       "mine", "--datafile", "db.txt"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(
      outcome.out.find("# DataFile: " + program.folder().generic_string() +
                       "/mine/db.txt\n"),
      std::string::npos);
}

// The tables as published name groups of subshells from titanium on.
TEST(MuData, OfThePublishedElamTablesLoadUpToScandium) {
  PHOTARIUM_NEEDS_DATA();
  Program const program;
  std::string const file = (testData() / "elam/elam.dat").string();
  for (std::string const element : {"H", "Al", "Ca", "Sc"})
    EXPECT_EQ(
        program.run({"mu", "--material", element, "--datafile", file}).status,
        0)
        << element;
  Outcome const outcome =
      program.run({"mu", "--material", "Ti", "--datafile", file});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("Unknown subshell M4,5 while reading " + file),
            std::string::npos);
}

TEST(MuData, FromLaboratoriesGiveTheOtherCurvesToo) {
  PHOTARIUM_NEEDS_DATA();
  Program const program;
  NEEDS_GNUPLOT(program);
  std::filesystem::create_directories(program.folder() / "data");
  std::filesystem::create_directory_symlink(
      testData() / "endf", program.folder() / "data/ENDF-VII0");
  std::filesystem::copy(sourceDir() / "data/ELossCorrections.txt",
                        program.folder() / "data");
  for (std::string const curve :
       {"formfactor", "scatfunc", "realfactor", "imagfactor", "eelscatter"}) {
    Outcome const outcome =
        program.run({"mu", "--material", "Cu", "--no-absorption", "--" + curve,
                     "--plot", curve + ".png"});
    EXPECT_EQ(outcome.status, 0) << curve;
    EXPECT_EQ(outcome.err, "") << curve;
    EXPECT_GT(rowsOf(outcome.out).size(), 50u) << curve;
    EXPECT_EQ(program.text(curve + ".png").substr(0, 8), PngSignature);
  }
}

TEST(MuJson, HasTheGridAndTheCurvesOfTheTable) {
  Program const program;
  auto const json =
      nlohmann::json::parse(program.run(with(Brass, {"--json"})).out);
  auto const rows = rowsOf(program.run(Brass).out);
  EXPECT_EQ(json["unit"], "1/cm");
  ASSERT_EQ(json["energy_keV"].size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(json["energy_keV"][i], double(i + 1));
    EXPECT_NEAR(double(json["curves"]["photoabsorption"][i]) / rows[i][0], 1,
                1e-6);
    EXPECT_NEAR(double(json["curves"]["coherent"][i]) / rows[i][2], 1, 1e-6);
  }
}

TEST(MuJson, OfAnEfficiencyIsTheShareThatALayerAbsorbs) {
  Program const program;
  std::vector<std::string> const layer{
      "mu", "--material",   "Cu",          "--kvp", "100",        "--ebin",
      "1",  "--efficiency", "--thickness", "0.01",  "--angle-in", "30"};
  auto const json =
      nlohmann::json::parse(program.run(with(layer, {"--json"})).out);
  auto const rows = rowsOf(program.run(layer).out);
  ASSERT_EQ(json["curves"]["efficiency"].size(), 100u);
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_NEAR(double(json["curves"]["efficiency"][i]), rows[i][1], 1e-6);
}

TEST(MuJson, OfElectronScatteringHasNoEfficiency) {
  auto const json =
      nlohmann::json::parse(Program()
                                .run({"mu", "--material", "Cu", "--eelscatter",
                                      "--efficiency", "--json"})
                                .out);
  EXPECT_EQ(json["unit"], "1/cm");
  EXPECT_TRUE(json["curves"].contains("elastic electron scattering"));
  EXPECT_FALSE(json["curves"].contains("efficiency"));
}

TEST(MuJson, OfElectronScatteringIsWhatTheTextShows) {
  PHOTARIUM_NEEDS_DATA();
  Program const program;
  std::vector<std::string> const electrons{
      "mu",
      "--material",
      "Cu",
      "--kvp",
      "100",
      "--ebin",
      "1",
      "--eelscatter",
      "--efficiency",
      "--datafile",
      (testData() / "endf/029_Cu_000.endf").string()};
  auto const rows = rowsOf(program.run(electrons).out);
  auto const json =
      nlohmann::json::parse(program.run(with(electrons, {"--json"})).out);
  auto const& curve = json.at("curves").at("elastic electron scattering");
  ASSERT_EQ(rows.size(), 100u);
  ASSERT_EQ(curve.size(), 100u);
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_NEAR(double(curve[i]) / rows[i][1], 1, 1e-6);  // seven digits
}

TEST(MuJson, OfTheTableHasItsColumnsWithElectronScatteringToo) {
  Program const program;
  EXPECT_EQ(program.run(with(Brass, {"--eelscatter", "--json"})).out,
            program.run(with(Brass, {"--json"})).out);
}

TEST(MuPlot, OfTheTableIsOfPhotonsWithElectronScatteringToo) {
  Program const program;
  NEEDS_GNUPLOT(program);
  Outcome const outcome =
      program.run(with(Brass, {"--eelscatter", "--plot", "brass.svg"}));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  std::string const svg = program.text("brass.svg");
  for (std::string const text :
       {"photon energy [keV]", "photoabsorption", "sum", "Cu K"})
    EXPECT_NE(svg.find(text), std::string::npos) << text;
}

TEST(MuPlot, OfElectronScatteringHasNoEfficiency) {
  PHOTARIUM_NEEDS_DATA();
  Program const program;
  NEEDS_GNUPLOT(program);
  Outcome const outcome = program.run(
      {"mu", "--material", "Cu", "--eelscatter", "--efficiency", "--datafile",
       (testData() / "endf/029_Cu_000.endf").string(), "--plot", "cu.svg"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(program.text("cu.svg").find("attenuation coefficient [1/cm]"),
            std::string::npos);
}

TEST(MuPlot, BeginsAtTheFirstPositiveEnergy) {
  Program const program;
  NEEDS_GNUPLOT(program);
  program.write("grid.txt", "0\n10\n20\n");
  program.write("positive.txt", "10\n20\n");
  for (std::string const grid : {"grid", "positive"}) {
    Outcome const outcome =
        program.run({"mu", "--material", "Cu", "--gridfile", grid + ".txt",
                     "--plot", grid + ".svg"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
  }
  EXPECT_EQ(program.text("grid.svg"), program.text("positive.svg"));
}

TEST(MuPlot, DoesNotDependOnTheSettingsOfTheUsersGnuplot) {
  Program program;
  NEEDS_GNUPLOT(program);
  program.write(".gnuplot", "set output 'elsewhere.svg'\n");
  program.set("HOME=" + program.folder().string());
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--plot", "cu.svg"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(program.text("cu.svg").find("</svg>"), std::string::npos);
}

TEST(MuPlot, IsAPicture) {
  Program const program;
  NEEDS_GNUPLOT(program);
  Outcome const outcome = program.run(
      with(Brass, {"--plot", "brass.png", "--output", "brass.txt"}));
  EXPECT_EQ(outcome.status, 0);
  std::string const png = program.text("brass.png");
  EXPECT_EQ(png.substr(0, PngSignature.size()), PngSignature);
  EXPECT_EQ(png.substr(png.size() - 8, 4), "IEND");
}

TEST(MuPlot, AsSvgHasAxesWithUnitsAndALegendPerCurve) {
  Program const program;
  NEEDS_GNUPLOT(program);
  program.run(with(Brass, {"--plot", "brass.SVG"}));
  std::string const svg = program.text("brass.SVG");
  for (std::string const text :
       {"photon energy [keV]", "linear attenuation coefficient [1/cm]",
        "photoabsorption", "incoherent", "coherent", "sum", "Cu K", "</svg>"})
    EXPECT_NE(svg.find(text), std::string::npos) << text;
}

TEST(MuPlot, TakesNamesWithEveryCharacter) {
  Program const program;
  NEEDS_GNUPLOT(program);
  std::string const name = "it's \"$(touch x)`touch y`\n;!touch z.svg";
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--plot", name});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(program.has(name));
  EXPECT_EQ(program.files(), std::vector<std::string>{name});
}

TEST(MuPlot, OfAnotherKindOfFileIsWrongUsage) {
  Outcome const outcome =
      Program().run({"mu", "--material", "Cu", "--plot", "cu.gif"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "photarium: A picture is named .svg or .png, not cu.gif\n");
}

TEST(MuPlot, WithoutGnuplotSaysHowToInstallIt) {
  PHOTARIUM_NEEDS_POSIX();
  Program program;
  program.set("PATH=/nowhere");
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--plot", "cu.svg"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("apt-get install gnuplot-nox"), std::string::npos);
  EXPECT_FALSE(program.has("cu.svg"));
}

TEST(MuPlot, ThatFailsLeavesNoHalfWrittenPicture) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  std::filesystem::create_directories(program.folder() / "bin");
  program.write("bin/gnuplot", "#!/bin/sh\necho half\nexit 1\n");
  Outcome const outcome = program.shell(
      "chmod +x bin/gnuplot; PATH=\"$PWD/bin:$PATH\"; "
      "photarium mu --material Cu --plot cu.svg");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: gnuplot could not draw cu.svg\n");
  EXPECT_EQ(program.files(), std::vector<std::string>{"bin"});
}
