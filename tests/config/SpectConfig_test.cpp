#include "photarium/config/SpectConfig.h"

#include "tests/config/open.h"

namespace {

using Spect = Open<SpectConfig<double>>;

Spect with(OptionMap const& options) {
  Spect settings;
  settings.Density = 1;
  settings.apply(options);
  return settings;
}

}  // namespace

TEST(SpectConfig, PrintsItsBasesInOrder) {
  EXPECT_EQ(Spect().write("", true),
            Root().write("", false) + GridConfig<double>().write("", false) +
                ScalingConfig<double>().write("", false) +
                "Angle-In: 70.0000\t# [deg]\nAngle-Out: 20.0000\t# [deg]\n"
                "Angle-Side: 0.0000\t# [deg]\nThickness: 0.1\t# [cm]\n"
                "Transmission: false\n" +
                MaterialConfig<double>().write("", false) +
                "Attenuation: true\nContinuum: true\nLines: true\n"
                "Pratt: false\nShapeFct: true\nCurrent: 1.0000e+00\t# [mA]\n"
                "BSModel: Photarium\nCharModel: PHMFull\n");
}

TEST(SpectConfig, ReadsEveryKey) {
  Spect settings;
  settings.apply({{"attenuation", "false"},
                  {"continuum", "false"},
                  {"lines", "false"},
                  {"pratt", "true"},
                  {"shapefct", "false"},
                  {"current", "2.5"},
                  {"bsmodel", "Storm"},
                  {"charmodel", "Ebel"},
                  {"ndepth", "7"},
                  {"ntheta", "8"},
                  {"nphi", "9"},
                  {"edtffile", "E.f"},
                  {"kvp", "60"},
                  {"norm", "2"},
                  {"thickness", "3"},
                  {"material", "Mo"},
                  {"time", "5"}});
  EXPECT_EQ(settings.write("", false),
            "Attenuation: false\nContinuum: false\nLines: false\n"
            "Pratt: true\nShapeFct: false\nCurrent: 2.5000e+00\t# [mA]\n"
            "BSModel: Storm\nCharModel: Ebel\nnDepth: 7\nnTheta: 8\n"
            "nPhi: 9\n");
  EXPECT_EQ(settings.EdtfFile, "E.f");
  EXPECT_EQ(settings.kVp, 60);
  EXPECT_EQ(settings.Norm, 2);
  EXPECT_EQ(settings.Thickness, 3);
  EXPECT_EQ(settings.Material, "Mo");
  EXPECT_EQ(settings.Time, 5);
}

TEST(SpectConfig, ReportsFindingsOfItsBasesInOrder) {
  Spect settings;
  EXPECT_EQ(findings(settings, {{"angle-in", "x"},
                                {"current", "x"},
                                {"density", "x"},
                                {"kvp", "x"},
                                {"norm", "x"},
                                {"time", "x"}}),
            "Problem parsing: time=x\n"
            "Problem parsing: kvp=x\n"
            "Problem parsing: norm=x\n"
            "Problem parsing: angle-in=x\n"
            "Problem parsing: density=x\n"
            "Problem parsing: current=x\n");
}

TEST(SpectConfig, TurnsAnglesStraightForTransmission) {
  Spect both = with({{"transmission", "true"}});
  EXPECT_EQ(both.AngleIn, 90);
  EXPECT_EQ(both.AngleOut, 90);
  Spect one = with({{"angle-in", "30"}, {"transmission", "true"}});
  EXPECT_EQ(one.AngleIn, 30);
  EXPECT_EQ(one.AngleOut, 90);
}

TEST(SpectConfig, PrintsOnlyTheFileOfTheModelEdtf) {
  Spect settings;
  settings.apply({{"bsmodel", "EDTF"}, {"ndepth", "7"}, {"edtffile", "E.f"}});
  EXPECT_TRUE(
      settings.write("", false).ends_with("BSModel: Edtf\nCharModel: PHMFull\n"
                                          "EdtfFile: E.f\n"));
}

TEST(SpectConfig, PrintsEachNumberOfStepsOnlyIfSet) {
  Spect settings;
  settings.apply({{"ntheta", "8"}});
  EXPECT_TRUE(
      settings.write("", false).ends_with("CharModel: PHMFull\nnTheta: 8\n"));
}

TEST(SpectConfig, AsksForNoRadiationWithMono) {
  Spect settings = with({{"mono", "true"}});
  EXPECT_FALSE(settings.Continuum);
  EXPECT_FALSE(settings.Lines);
  EXPECT_EQ(corrections(settings),
            "Neither bremsstrahlung nor characteristic radiation requested!\n");
  settings.apply({{"mono", "false"}});
  EXPECT_TRUE(settings.Continuum);
  EXPECT_TRUE(settings.Lines);
}

TEST(SpectConfig, LeavesRadiationAtAnEmptyMono) {
  Spect settings;
  EXPECT_EQ(findings(settings, {{"mono", ""}}), "Problem parsing: mono=\n");
  EXPECT_TRUE(settings.Continuum);
  EXPECT_TRUE(settings.Lines);
}

TEST(SpectConfig, ReplacesTheDefaultBackscatteringModel) {
  Spect settings;
  settings.apply({{"bsmodel", "photarium"}});
  EXPECT_EQ(settings.BSModel, Backscattering::PHMModel);
  EXPECT_NE(settings.write("", false).find("BSModel: PHMModel\n"),
            std::string::npos);
  Spect untouched;
  untouched.apply({});
  EXPECT_EQ(untouched.BSModel, Backscattering::PHMModel);
}

TEST(SpectConfig, HasNoLinesWithoutAModel) {
  Spect settings;
  settings.apply({{"charmodel", "None"}, {"lines", "true"}});
  EXPECT_FALSE(settings.Lines);
}

TEST(SpectConfig, ReturnsSwitchesToTheirDefaults) {
  Spect settings;
  settings.apply({{"pratt", "true"}, {"shapefct", "false"}});
  EXPECT_TRUE(settings.Pratt);
  EXPECT_FALSE(settings.ShapeFct);
  settings.apply({});
  EXPECT_FALSE(settings.Pratt);
  EXPECT_TRUE(settings.ShapeFct);
  settings.apply({{"pratt", "Default"}, {"shapefct", "DEFAULT"}});
  EXPECT_FALSE(settings.Pratt);
  EXPECT_TRUE(settings.ShapeFct);
}

TEST(SpectConfig, ReportsSwitchesThatDoNotParse) {
  Spect settings;
  EXPECT_EQ(findings(settings, {{"pratt", "maybe"}, {"shapefct", "default "}}),
            "Problem parsing: pratt=maybe\nProblem parsing: shapefct=default "
            "\n");
}

TEST(SpectConfig, WarnsOfUnknownModels) {
  Spect settings;
  EXPECT_EQ(findings(settings, {{"bsmodel", "foo"},
                                {"charmodel", ""},
                                {"current", "3"},
                                {"time", "x"}}),
            "Problem parsing: time=x\nUnknown backscattering model!\n"
            "Unknown characteristic radiation model!\n");
  EXPECT_EQ(settings.Current, 3);
  EXPECT_EQ(settings.CharModel, Characteristic::PHMFull);
}

TEST(SpectConfig, ReadsUnsignedNumbersAsAStreamDoes) {
  Spect settings;
  settings.apply({{"ndepth", "-1"}});
  EXPECT_EQ(settings.nDepth, 4294967295U);
  EXPECT_EQ(findings(settings, {{"ndepth", "99999999999"}, {"nphi", "x"}}),
            "Problem parsing: ndepth=99999999999\nProblem parsing: nphi=x\n");
}

TEST(SpectConfig, ScalesByTimeAndCurrent) {
  Spect settings;
  EXPECT_EQ(settings.ScalingFactor(), 1);
  settings.apply(
      {{"time", "2"}, {"current", "3"}, {"area", "5"}, {"norm", "7"}});
  ScalingConfig<double> const& scaling = settings;
  EXPECT_EQ(scaling.ScalingFactor(), 210);
}

TEST(SpectConfig, ReplacesTheModelInTheCheckToo) {
  Spect settings;
  settings.Density = 1;
  settings.check();
  EXPECT_EQ(settings.BSModel, Backscattering::PHMModel);
}

TEST(SpectConfig, ChecksItsBasesInOrder) {
  Spect settings;
  settings.apply({{"time", "0"},
                  {"angle-in", "0"},
                  {"ebin", "0"},
                  {"area", "0"},
                  {"current", "0"},
                  {"thickness", "0"}});
  EXPECT_EQ(refusal(settings),
            "Measurement time not larger than zero!\n"
            "Incoming angle must be between 1 and 90 deg.\n"
            "Zero thickness given!\n"
            "Unreasonable value for energy resolution.\n"
            "Density not larger than zero!\n"
            "Unreasonable scaling configured.\n"
            "Tube current not larger than zero!\n"
            "Unreasonable thickness configured!\n");
}

TEST(SpectConfig, TestsNoThicknessWithoutRadiation) {
  Spect settings = with({{"mono", "true"}, {"thickness", "-1"}});
  EXPECT_EQ(corrections(settings),
            "Neither bremsstrahlung nor characteristic radiation requested!\n");
}

TEST(SpectConfig, PassesWithLinesAlone) {
  Spect settings = with({{"continuum", "false"}});
  EXPECT_NO_THROW(settings.check());
  EXPECT_TRUE(settings.Lines);
}

TEST(SpectConfig, WarnsOfVoltagesBeyondItsTables) {
  Spect settings = with({{"kvp", "2000.5"}, {"pratt", "true"}});
  EXPECT_EQ(corrections(settings),
            "kVp too large for builtin cross sections: 2000.5 kV\n"
            "kVp too large for partial wave shape functions: 2000.5 kV\n");
  Spect other =
      with({{"kvp", "12345678"}, {"shapefct", "false"}, {"pratt", "true"}});
  EXPECT_EQ(corrections(other),
            "kVp too large for builtin cross sections: 1.23457e+07 kV\n");
}

TEST(SpectConfig, CountsTheEndsOfItsTablesAsInside) {
  Spect settings = with({{"kvp", "500"}});
  settings.check();
  Spect other =
      with({{"kvp", "2000"}, {"pratt", "true"}, {"shapefct", "false"}});
  other.check();
}
