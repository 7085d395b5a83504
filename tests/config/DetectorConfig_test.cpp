#include "photarium/config/DetectorConfig.h"

#include "tests/config/open.h"

namespace {

using Detector = Open<DetectorConfig<double>>;
using Numbers = std::vector<double>;
using Counts = std::vector<unsigned int>;

Detector with(OptionMap const& options) {
  Detector settings;
  settings.Density = 1;
  settings.apply(options);
  return settings;
}

}  // namespace

TEST(DetectorConfig, PrintsItsBasesInOrder) {
  EXPECT_EQ(Detector().write("", true),
            Root().write("", false) + ScalingConfig<double>().write("", false) +
                "CorrFile: data/ELossCorrections.txt\nMaterial: CdTe\n"
                "Density: -1.0000e+00\t# [g/cm^3]\n"
                "MeanExcitationPotential: -1.0000e+00\t# [keV]\n"
                "TransFile: \n"
                "Angle-In: 90.0000\t# [deg]\n"
                "Angle-Side: 0.0000\t# [deg]\n"
                "DeadTime: 0.0000e+00\t# [s]\n"
                "Fano: 0.1500\t# [1]\n"
                "PCE: 4.4300\t# [eV]\n"
                "ENC: 1.0000\t# [e-]\n"
                "Count: 1\t# [1]\n"
                "Thickness: 0.2250\t# [cm]\n"
                "lambdaE: 100000.0000\t# [cm]\n"
                "lambdaH: 100000.0000\t# [cm]\n"
                "Steps: 1\t# [1]\n"
                "Min-Energy: 0.0000\t# [keV]\n"
                "Max-Energy: inf\t# [keV]\n"
                "Do-CTE: true\nDo-Compton: true\nDo-Escape: true\n"
                "Do-Fano: true\nDo-ENC: true\nDo-PileUp: true\n"
                "Do-Threshold: true\nInverse: false\n");
}

TEST(DetectorConfig, ReadsEveryKey) {
  Detector settings;
  settings.apply({{"transfile", "T.f"},
                  {"kernelfile", "K.f"},
                  {"transcerr", "true"},
                  {"dumpkernel", "true"},
                  {"inverse", "true"},
                  {"count", "2"},
                  {"thickness", "1,2"},
                  {"lambdae", "3;4"},
                  {"lambdah", "5"},
                  {"steps", "6,7"},
                  {"deadtime", "1e-6"},
                  {"fano", "0.1"},
                  {"pce", "5"},
                  {"enc", "200"},
                  {"angle-in", "80"},
                  {"angle-side", "10"},
                  {"min-energy", "-inf"},
                  {"max-energy", "150"},
                  {"do-cte", "false"},
                  {"do-compton", "false"},
                  {"do-escape", "false"},
                  {"do-fano", "false"},
                  {"do-enc", "false"},
                  {"do-pileup", "false"},
                  {"do-threshold", "false"},
                  {"material", "Si"},
                  {"norm", "2"},
                  {"time", "3"}});
  EXPECT_EQ(settings.write("--", false),
            "--TransFile: T.f\n--Angle-In: 80.0000\t# [deg]\n"
            "--Angle-Side: 10.0000\t# [deg]\n"
            "--DeadTime: 1.0000e-06\t# [s]\n--Fano: 0.1000\t# [1]\n"
            "--PCE: 5.0000\t# [eV]\n--ENC: 200.0000\t# [e-]\n"
            "--Count: 2\t# [1]\n--Thickness: 1.0000, 2.0000\t# [cm]\n"
            "--lambdaE: 3.0000, 4.0000\t# [cm]\n"
            "--lambdaH: 5.0000, 5.0000\t# [cm]\n--Steps: 6, 7\t# [1]\n"
            "--Min-Energy: -inf\t# [keV]\n--Max-Energy: 150.0000\t# [keV]\n"
            "--Do-CTE: false\n--Do-Compton: false\n--Do-Escape: false\n"
            "--Do-Fano: false\n--Do-ENC: false\n--Do-PileUp: false\n"
            "--Do-Threshold: false\n--Inverse: true\n");
  EXPECT_EQ(settings.KernelFile, "K.f");
  EXPECT_TRUE(settings.TransCErr);
  EXPECT_TRUE(settings.DumpKernel);
  EXPECT_DOUBLE_EQ(settings.PCE, 0.005);
  EXPECT_EQ(settings.Material, "Si");
  EXPECT_EQ(settings.Norm, 2);
  EXPECT_EQ(settings.Time, 3);
}

TEST(DetectorConfig, ReportsFindingsOfItsBasesInOrder) {
  Detector settings;
  EXPECT_EQ(
      findings(settings,
               {{"density", "x"}, {"fano", "x"}, {"norm", "x"}, {"time", "x"}}),
      "Problem parsing: time=x\n"
      "Problem parsing: norm=x\n"
      "Problem parsing: density=x\n"
      "Problem parsing: fano=x\n");
}

TEST(DetectorConfig, InvertsWithANegativeCount) {
  Detector settings;
  settings.apply({{"count", "-2"}});
  EXPECT_EQ(settings.Count, 2U);
  EXPECT_EQ(settings.Thickness, (Numbers{0.225, 0.225}));
  EXPECT_TRUE(settings.Inverse);
  settings.apply({{"count", "2"}});
  EXPECT_FALSE(settings.Inverse);
  settings.apply({{"count", "2"}, {"inverse", "true"}});
  EXPECT_TRUE(settings.Inverse);
}

TEST(DetectorConfig, SpreadsListsOverItsElements) {
  Detector settings;
  settings.apply({{"count", "3"}, {"thickness", "0.1;0.2"}});
  EXPECT_EQ(settings.Thickness, (Numbers{0.1, 0.2, 0.2}));
  EXPECT_EQ(settings.lambdaE, (Numbers{100000, 100000, 100000}));
  EXPECT_EQ(settings.Steps, (Counts{1, 1, 1}));
  settings.apply({{"count", "4"}});
  EXPECT_EQ(settings.Thickness, (Numbers{0.1, 0.2, 0.2, 0.1}));
  settings.apply({{"count", "2"}});
  EXPECT_EQ(settings.Thickness, (Numbers{0.1, 0.2}));
}

TEST(DetectorConfig, CutsListsToItsElements) {
  Detector settings;
  settings.apply({{"thickness", "0.1;0.2"}, {"steps", "4,x"}});
  EXPECT_EQ(settings.Thickness, Numbers{0.1});
  EXPECT_EQ(settings.Steps, Counts{4});
}

TEST(DetectorConfig, HasOneElementAtLeast) {
  Detector settings;
  settings.apply({{"count", "0"}});
  EXPECT_EQ(settings.Count, 1U);
}

TEST(DetectorConfig, KeepsItsElementsWhereTheCountIsNoNumber) {
  for (std::string const text : {"", " ", "x", "99999999999999999999"}) {
    Detector settings = with({{"count", "-3"}, {"thickness", "1;2;3"}});
    EXPECT_EQ(findings(settings, {{"count", text}}),
              "Problem parsing: count=" + text + "\n");
    EXPECT_EQ(settings.Count, 3U);
    EXPECT_EQ(settings.Thickness, (Numbers{1, 2, 3}));
    EXPECT_EQ(settings.Steps.size(), 3U);
    EXPECT_TRUE(settings.Inverse);
  }
}

TEST(DetectorConfig, HasALargestCount) {
  for (std::string const text :
       {"10001", "99999999999", "-9223372036854775808"}) {
    Detector settings;
    EXPECT_EQ(findings(settings, {{"count", text}, {"fano", "1"}}),
              "More than 10000 detector elements: count=" + text + "\n");
    EXPECT_EQ(settings.Count, 1U);
    EXPECT_EQ(settings.Steps.size(), 1U);
    EXPECT_FALSE(settings.Inverse);
    EXPECT_EQ(settings.Fano, 1);
  }
  Detector settings;
  EXPECT_EQ(findings(settings, {{"count", "9999999999999999999"}}),
            "Problem parsing: count=9999999999999999999\n");
  EXPECT_EQ(settings.Count, 1U);
}

TEST(DetectorConfig, FillsListsThatAreEmpty) {
  Detector settings;
  settings.Thickness.clear();
  settings.apply({{"count", "2"}});
  EXPECT_EQ(settings.Thickness, (Numbers{0, 0}));
}

TEST(DetectorConfig, RefusesListsThatAreNoNumbers) {
  for (std::string const key : {"thickness", "lambdae", "lambdah", "steps"})
    for (std::string const text : {"", "Abc", "nan"}) {
      Detector settings;
      EXPECT_EQ(thrown<std::runtime_error>([&] {
                  settings.apply({{key, text}});
                }),
                "Couldn't parse " + tolower(text));
    }
}

TEST(DetectorConfig, ReadsInfiniteThresholds) {
  Detector settings;
  settings.apply({{"max-energy", "1"}});
  settings.apply({{"max-energy", "inf"}});
  EXPECT_EQ(settings.MaxEnergy, std::numeric_limits<double>::infinity());
  settings.apply({{"max-energy", "-Infinity"}});
  EXPECT_EQ(settings.MaxEnergy, -std::numeric_limits<double>::infinity());
  for (std::string const text : {"in", "", "nan", "1e999"})
    EXPECT_EQ(findings(settings, {{"max-energy", text}}),
              "Problem parsing: max-energy=" + text + "\n");
}

TEST(DetectorConfig, ChecksItsElements) {
  Detector settings = with({});
  settings.check();
  settings.Count = 0;
  EXPECT_EQ(refusal(settings), "Zero detector elements configured!\n");
  settings.Count = 3;
  settings.Thickness = {1, 0, -1};
  EXPECT_EQ(refusal(settings),
            "Non-positive detector element thickness configured!\n");
}

TEST(DetectorConfig, ChecksItsAngles) {
  Detector settings = with({{"angle-in", "1"}, {"angle-side", "89.9"}});
  settings.check();
  settings.apply({{"angle-in", "0.9"}, {"angle-side", "90"}});
  EXPECT_EQ(refusal(settings),
            "Incoming angle must be between 1 and 90 deg.\n"
            "Off-axis angle must be between 0 and 90 deg.\n");
  settings.apply({{"angle-in", "90"}, {"angle-side", "0"}});
  settings.check();
}

TEST(DetectorConfig, ChecksItsThresholds) {
  OptionMap const wrong[] = {{{"min-energy", "-1"}},
                             {{"max-energy", "-1"}},
                             {{"min-energy", "-2"}, {"max-energy", "-1"}},
                             {{"min-energy", "10"}, {"max-energy", "5"}}};
  for (OptionMap options : wrong) {
    Detector hard = with(options);
    EXPECT_EQ(refusal(hard), "Invalid energy threshold.\n");
    options["do-threshold"] = "false";
    Detector soft = with(options);
    EXPECT_EQ(corrections(soft), "Invalid energy threshold.\n");
  }
  Detector equal = with({{"min-energy", "5"}, {"max-energy", "5"}});
  equal.check();
}

TEST(DetectorConfig, CorrectsSwitchesThatExcludeEachOther) {
  Detector settings = with({{"dumpkernel", "true"}, {"transcerr", "true"}});
  settings.check();
  EXPECT_TRUE(settings.Inverse);
  EXPECT_FALSE(settings.TransCErr);
  Detector forward = with({{"transcerr", "true"}});
  forward.check();
  EXPECT_TRUE(forward.TransCErr);
}

TEST(DetectorConfig, HasOneStepAtLeastInEachElement) {
  Detector settings = with({{"count", "2"}, {"steps", "0;3"}});
  settings.check();
  EXPECT_EQ(settings.Steps, (Counts{1, 3}));
}

TEST(DetectorConfig, ChecksItsBasesButTheScaling) {
  Detector settings;
  settings.apply({{"time", "0"}, {"area", "0"}, {"thickness", "0"}});
  EXPECT_EQ(refusal(settings),
            "Measurement time not larger than zero!\n"
            "Density not larger than zero!\n"
            "Non-positive detector element thickness configured!\n");
}
