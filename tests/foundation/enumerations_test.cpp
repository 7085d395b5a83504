#include "photarium/foundation/enumerations.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

namespace {

template <class E>
E readAs(std::string const& text) {
  std::istringstream in(text);
  E value{};
  in >> value;
  return value;
}

template <class E>
std::string printed(E value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// The message for a text, which must leave the target alone.
template <class E>
std::string failureOf(std::string const& text) {
  std::istringstream in(text);
  E value = static_cast<E>(99);
  try {
    in >> value;
  } catch (std::runtime_error const& error) {
    EXPECT_EQ(static_cast<std::uint32_t>(value), 99U);
    return error.what();
  }
  return "no failure";
}

// Each value in order, by its word and in print.
template <class E>
void expectWords(std::vector<std::string> const& words,
                 std::vector<std::string> const& prints) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(readAs<E>(words[i])), i) << words[i];
    EXPECT_EQ(printed(static_cast<E>(i)), prints[i]);
    EXPECT_EQ(static_cast<std::size_t>(readAs<E>(" \t" + prints[i] + " x")), i);
  }
  EXPECT_EQ(printed(static_cast<E>(prints.size())),
            std::to_string(prints.size()));
  EXPECT_EQ(printed(static_cast<E>(4294967295U)), "4294967295");
  static_assert(std::is_same_v<std::underlying_type_t<E>, std::uint32_t>);
}

}  // namespace

TEST(enumerations, HaveTheBackscatteringModels) {
  expectWords<Backscattering::Model>(
      {"photarium", "phmmodel", "phmfast", "ebel", "hunger", "storm", "edtf"},
      {"Photarium", "PHMModel", "PHMFast", "Ebel", "Hunger", "Storm", "Edtf"});
  EXPECT_EQ(printed(Backscattering::Edtf), "Edtf");
  EXPECT_EQ(printed(static_cast<Backscattering::Model>(7)), "7");
}

TEST(enumerations, HaveTheCharacteristicModels) {
  expectWords<Characteristic::Model>(
      {"none", "ebel", "phmsimple", "phmfull", "phmcascade"},
      {"None", "Ebel", "PHMSimple", "PHMFull", "PHMCascade"});
  EXPECT_EQ(printed(Characteristic::PHMCascade), "PHMCascade");
}

TEST(enumerations, HaveTheSolidAngles) {
  expectWords<SolidAngleConfig>({"sphericalcap", "circularaperture"},
                                {"SphericalCap", "CircularAperture"});
  EXPECT_EQ(printed(CircularAperture), "CircularAperture");
}

TEST(enumerations, HaveTheDatabases) {
  expectWords<DBType>({"unknown", "elamdb", "endf", "mcnp"},
                      {"Unknown", "ElamDB", "ENDF", "MCNP"});
  EXPECT_EQ(printed(MCNP), "MCNP");
}

TEST(enumerations, HaveTheOperations) {
  EXPECT_EQ(readAs<Math::Operations>("+"), Math::Add);
  EXPECT_EQ(readAs<Math::Operations>("Add"), Math::Add);
  EXPECT_EQ(readAs<Math::Operations>("ADDITION"), Math::Add);
  EXPECT_EQ(readAs<Math::Operations>("-"), Math::Subtract);
  EXPECT_EQ(readAs<Math::Operations>("subtract"), Math::Subtract);
  EXPECT_EQ(readAs<Math::Operations>("subtraction"), Math::Subtract);
  EXPECT_EQ(readAs<Math::Operations>("*"), Math::Multiply);
  EXPECT_EQ(readAs<Math::Operations>("multiply"), Math::Multiply);
  EXPECT_EQ(readAs<Math::Operations>("multiplication"), Math::Multiply);
  EXPECT_EQ(readAs<Math::Operations>("/"), Math::Divide);
  EXPECT_EQ(readAs<Math::Operations>("divide"), Math::Divide);
  EXPECT_EQ(readAs<Math::Operations>("division"), Math::Divide);
  EXPECT_EQ(readAs<Math::Operations>("rebin"), Math::Rebin);
}

TEST(enumerations, PrintOperationsAsSigns) {
  std::ostringstream out;
  out << Math::None << Math::Add << Math::Subtract << Math::Multiply
      << Math::Divide << Math::Rebin << static_cast<Math::Operations>(6);
  EXPECT_EQ(out.str(), "none+-*/rebin6");
}

TEST(enumerations, HaveNoWordForNoOperation) {
  EXPECT_EQ(failureOf<Math::Operations>("none"), "Unknown math operation!");
}

TEST(enumerations, FoldTheCaseOfWords) {
  EXPECT_EQ(readAs<Backscattering::Model>("EBEL"), Backscattering::Ebel);
  EXPECT_EQ(readAs<Characteristic::Model>("EBEL"), Characteristic::Ebel);
}

TEST(enumerations, KnowPhotariumInTwoMeanings) {
  EXPECT_EQ(readAs<Backscattering::Model>("photarium"),
            Backscattering::Photarium);
  EXPECT_EQ(readAs<Characteristic::Model>("photarium"),
            Characteristic::PHMFull);
}

TEST(enumerations, TakeNoAbbreviations) {
  EXPECT_EQ(failureOf<Backscattering::Model>("ph"),
            "Unknown backscattering model!");
  EXPECT_EQ(failureOf<DBType>("endf6"), "Unknown database type!");
}

TEST(enumerations, NameWhatIsUnknown) {
  EXPECT_EQ(failureOf<Backscattering::Model>("none"),
            "Unknown backscattering model!");
  EXPECT_EQ(failureOf<Characteristic::Model>("x"),
            "Unknown characteristic radiation model!");
  EXPECT_EQ(failureOf<SolidAngleConfig>("x"),
            "Unknown solid angle geometric configuration!");
  EXPECT_EQ(failureOf<Math::Operations>("x"), "Unknown math operation!");
  EXPECT_EQ(failureOf<DBType>("x"), "Unknown database type!");
}

TEST(enumerations, FindNoWordInAnExhaustedStream) {
  EXPECT_EQ(failureOf<Backscattering::Model>(""),
            "Unknown backscattering model!");
  EXPECT_EQ(failureOf<Characteristic::Model>(" \n"),
            "Unknown characteristic radiation model!");
  EXPECT_EQ(failureOf<SolidAngleConfig>(""),
            "Unknown solid angle geometric configuration!");
  EXPECT_EQ(failureOf<Math::Operations>(""), "Unknown math operation!");
  EXPECT_EQ(failureOf<DBType>("  "), "Unknown database type!");
}

TEST(enumerations, LeaveTheStreamGoodBehindAnUnknownWord) {
  std::istringstream in("x endf");
  DBType type = MCNP;
  EXPECT_THROW(in >> type, std::runtime_error);
  EXPECT_TRUE(in.good());
  in >> type;
  EXPECT_EQ(type, ENDF);
}

TEST(enumerations, PrintNumbersInPlainDigits) {
  std::ostringstream out;
  out << std::hex << std::showbase << static_cast<DBType>(255);
  EXPECT_EQ(out.str(), "255");
}
