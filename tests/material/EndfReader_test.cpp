#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "tests/material/EndfText.h"
#include "tests/material/PlainEndfReader.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

// Shows what is protected.
struct Reader : Material<double> {
  using Material::insertTriple;
  using Material::parseENDFline;
  using Material::splitRanges;
  using Material::Stretch;
};

// The six fields of a line that holds `fields`, 11 columns each.
std::array<double, 6> parse(std::string fields) {
  fields.resize(80, ' ');
  auto const line = Reader::parseENDFline(fields);
  return {line.first.first,   line.first.second, line.second.first,
          line.second.second, line.third.first,  line.third.second};
}

std::string padded(std::string field) {
  field.resize(11, ' ');
  return field;
}

// What becomes of one field: its value or the failure.
std::string fieldOutcome(std::string const& field) {
  try {
    double const value = parse(padded(field))[0];
    return std::signbit(value) ? "-" + std::to_string(-value)
                               : std::to_string(value);
  } catch (std::runtime_error const& failure) {
    return failure.what();
  }
}

Material<double> readElement(std::string const& text,
                             std::string const& name = "Fe") {
  Material<double> material(name, 0, 0, 0);
  std::istringstream in(text);
  material.readENDF(in);
  return material;
}

// Where the reader and the plain one differ; empty if they do not.
std::string difference(std::string const& text, std::string const& name) {
  std::istringstream got(readOutcome(text, name));
  std::istringstream expected(plainOutcome(text, name));
  std::string a;
  std::string b;
  while (got || expected) {
    std::getline(got, a);
    std::getline(expected, b);
    if (a != b) return "\"" + a + "\" instead of \"" + b + '"';
    a.clear();
    b.clear();
  }
  return "";
}

// What the reading ends in.
std::string failureOf(std::string const& text, std::string const& name = "Fe") {
  std::string const all = readOutcome(text, name);
  return all.substr(0, all.find('\n'));
}

std::string replaced(std::string text, std::string const& from,
                     std::string const& to) {
  std::size_t const at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

// The text without the lines whose columns from 70 on begin with `control`.
std::string without(std::string const& text, std::string const& control) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); i += 81)
    if (text.compare(i + 70, control.size(), control) != 0)
      out += text.substr(i, 81);
  return out;
}

std::string small() {
  return smallElement(26, "Fe").str();
}

// An element with a section of cross sections for electrons and many points.
EndfText manyPoints(int mt) {
  EndfText::Points points;
  for (int i = 1; i <= 20000; ++i) points.emplace_back(i * 1e3, 1);
  EndfText text(26, "Fe");
  text.head(113, 55).table(23, 527, {{10, 1}}).table(23, mt, points);
  return text;
}

// A field of the shapes that files have, and its text with an "e".
std::pair<std::string, std::string> randomField(std::mt19937& random) {
  auto const upTo = [&random](unsigned int n) { return random() % (n + 1); };
  std::string const sign = upTo(3) == 0 ? "-" : upTo(9) == 0 ? "+" : "";
  std::string exponent;
  if (upTo(2) == 0)
    exponent = (upTo(1) ? "-" : "+") + std::to_string(upTo(upTo(1) ? 9 : 30));
  std::size_t const room = 11 - sign.size() - exponent.size();
  std::size_t const count = 1 + upTo(static_cast<unsigned int>(room) - 1);
  std::string mantissa;
  for (std::size_t i = 0; i < count; ++i)
    mantissa += static_cast<char>('0' + upTo(9));
  if (count < room)
    mantissa.insert(upTo(static_cast<unsigned int>(count)), ".");
  std::string field = sign + mantissa + exponent;
  field.insert(0, upTo(static_cast<unsigned int>(11 - field.size())), ' ');
  std::string const text = (sign == "-" ? sign : "") + mantissa +
                           (exponent.empty() ? "" : "e" + exponent);
  return {padded(field), text};
}

std::uint64_t bits(double value) {
  std::uint64_t result = 0;
  std::memcpy(&result, &value, sizeof(value));
  return result;
}

}  // namespace

TEST(EndfField, EqualsAnExactConversionInMillionsOfFields) {
  std::mt19937 random(20260101);
  std::size_t different = 0;
  for (int i = 0; i < 400000; ++i) {
    std::string fields;
    std::array<double, 6> expected{};
    for (double& value : expected) {
      auto const [field, text] = randomField(random);
      fields += field;
      std::from_chars(text.data(), text.data() + text.size(), value);
    }
    auto const values = parse(fields);
    for (std::size_t k = 0; k < 6; ++k)
      different += bits(values[k]) != bits(expected[k]);
  }
  EXPECT_EQ(different, 0U);
}

TEST(EndfField, EqualsAStringStreamInAnyText) {
  std::mt19937 random(7);
  std::string const letters = "0123456789012345678901234567890.+-eED \tx";
  std::size_t different = 0;
  for (int i = 0; i < 200000; ++i) {
    std::string field(1 + random() % 11, ' ');
    for (char& c : field) c = letters[random() % letters.size()];
    std::string expected;
    try {
      double const value = PlainEndfReader::number<double>(field);
      expected = std::signbit(value) ? "-" + std::to_string(-value)
                                     : std::to_string(value);
    } catch (std::runtime_error const& failure) {
      expected = failure.what();
    }
    if (fieldOutcome(field) == expected) continue;
    ++different;
    ADD_FAILURE() << '"' << field << "\": " << fieldOutcome(field)
                  << " instead of " << expected;
    if (different > 5) break;
  }
}

TEST(EndfField, IsZeroWhenBlank) {
  EXPECT_EQ(fieldOutcome(""), "0.000000");
  EXPECT_EQ(fieldOutcome(" \t\r "), "0.000000");
}

TEST(EndfField, TakesASignBehindTheFirstCharacterAsAnExponent) {
  EXPECT_EQ(parse(" 1.234567+5")[0], 1.234567e5);
  EXPECT_EQ(parse("-1.234567-5")[0], -1.234567e-5);
  EXPECT_EQ(parse("+1.5")[0], 1.5);
  EXPECT_EQ(parse("1-3")[0], 1e-3);
}

TEST(EndfField, FailsWithAnExponentLetterAndASign) {
  EXPECT_EQ(fieldOutcome(" 1.0E+5 "), "Error parsing 1.0E+5");
  EXPECT_EQ(fieldOutcome("1.0E5"), "100000.000000");
  EXPECT_EQ(fieldOutcome("1.0D5"), "1.000000");
}

TEST(EndfField, FailsWhereAStreamFindsNoNumber) {
  EXPECT_EQ(fieldOutcome("  abc "), "Error parsing abc");
  EXPECT_EQ(fieldOutcome("-"), "Error parsing -");
  EXPECT_EQ(fieldOutcome("1.0+999"), "Error parsing 1.0+999");
  EXPECT_EQ(fieldOutcome("nan"), "Error parsing nan");
  EXPECT_EQ(fieldOutcome("1.5+"), "Error parsing 1.5+");
}

TEST(EndfField, MayBeTooSmallForItsType) {
  EXPECT_EQ(fieldOutcome("1.0-400"), "0.000000");
}

TEST(EndfField, TellsTheFirstThatFails) {
  EXPECT_THROW(parse("        1.0        2.0        x.0        y.0"),
               std::runtime_error);
  try {
    parse("        1.0        2.0        x.0        y.0");
  } catch (std::runtime_error const& failure) {
    EXPECT_STREQ(failure.what(), "Error parsing x.0");
  }
}

TEST(EndfField, NeedsAllOfTheLine) {
  EXPECT_NO_THROW(Reader::parseENDFline(std::string(66, ' ')));
  EXPECT_THROW(Reader::parseENDFline(std::string(65, ' ')), std::out_of_range);
}

TEST(EndfPoints, AreInsertedUpToTheLimit) {
  std::multimap<double, double> points;
  auto const line = Reader::parseENDFline(
      EndfText(1, "H").numbers({3, 30, 1, 10, 2, 20}).str());
  unsigned int count = 3;
  Reader::insertTriple(points, line, count, 5);
  EXPECT_EQ(count, 5U);
  EXPECT_EQ(points, (std::multimap<double, double>{{1, 10}, {3, 30}}));
}

TEST(EndfRanges, ShareThePointBetweenThem) {
  std::multimap<double, double> const points{
      {1, 10}, {2, 20}, {3, 30}, {4, 40}};
  std::vector<Reader::Stretch> data;
  using Curve = AttenuationCoeff<double>;
  Reader::splitRanges({{2, Curve::LogLog}, {4, Curve::LinLin}}, points, data,
                      true);
  ASSERT_EQ(data.size(), 2U);
  EXPECT_EQ(data[0].first, (std::multimap<double, double>{{1, 10}, {2, 20}}));
  EXPECT_EQ(data[0].second, Curve::LogLog);
  EXPECT_TRUE(data[0].third);
  EXPECT_EQ(data[1].first,
            (std::multimap<double, double>{{2, 20}, {3, 30}, {4, 40}}));
  EXPECT_EQ(data[1].second, Curve::LinLin);
}

TEST(EndfRanges, LeaveOutWhatLiesBehindTheLast) {
  std::vector<Reader::Stretch> data;
  Reader::splitRanges({{1, AttenuationCoeff<double>::LinLin}},
                      {{1, 10}, {2, 20}}, data, false);
  ASSERT_EQ(data.size(), 1U);
  EXPECT_EQ(data[0].first, (std::multimap<double, double>{{1, 10}}));
  Reader::splitRanges({}, {{1, 10}}, data, false);
  EXPECT_EQ(data.size(), 1U);
}

TEST(EndfReader, EqualsThePlainReader) {
  EXPECT_EQ(difference(small(), "Fe"), "");
  EXPECT_TRUE(readOutcome(small(), "Fe").starts_with("good\n"));
}

TEST(EndfReader, EqualsThePlainReaderOnAnyByteChanged) {
  std::string const text = small();
  std::mt19937 random(4);
  std::string const likely = "0123456789 +-.\nE";
  for (int i = 0; i < 1000; ++i) {
    std::string changed = text;
    int const count = 1 + static_cast<int>(random() % 3);
    for (int k = 0; k < count; ++k)
      changed[random() % changed.size()] = likely[random() % likely.size()];
    ASSERT_EQ(difference(changed, "Fe"), "") << i;
  }
}

TEST(EndfReader, EqualsThePlainReaderOnControlColumnsChanged) {
  std::string const text = small();
  std::mt19937 random(5);
  for (int i = 0; i < 1000; ++i) {
    std::string changed = text;
    std::size_t const line = random() % (text.size() / 81);
    std::size_t const column = 66 + random() % 14;
    changed[line * 81 + column] = "0123456789 -"[random() % 12];
    ASSERT_EQ(difference(changed, "Fe"), "") << i;
  }
}

TEST(EndfReader, EqualsThePlainReaderOnLinesLostAndMoved) {
  std::string const text = small();
  std::size_t const lines = text.size() / 81;
  std::mt19937 random(6);
  for (int i = 0; i < 500; ++i) {
    std::string changed = text;
    std::size_t const from = random() % lines;
    std::size_t const count = 1 + random() % 6;
    std::string const block = changed.substr(from * 81, count * 81);
    changed.erase(from * 81, count * 81);
    if (i % 2) changed.insert(random() % (changed.size() / 81) * 81, block);
    ASSERT_EQ(difference(changed, "Fe"), "") << i;
  }
}

TEST(EndfReader, EqualsThePlainReaderOnTextCutShort) {
  std::string const text = small();
  for (std::size_t end = 0; end < text.size(); end += 37)
    ASSERT_EQ(difference(text.substr(0, end), "Fe"), "") << end;
}

TEST(EndfReader, FillsWhatItsSectionsHold) {
  Material<double> const iron = readElement(small());
  EXPECT_EQ(iron.Z, 26);
  EXPECT_DOUBLE_EQ(iron.A, 55.36 * 1.0086649158215515);
  // Barn per atom to cm^2/g.
  double const factor = 0.6022140857 / iron.A;
  EXPECT_DOUBLE_EQ(iron.ScatterFunction(.55, false), 11);
  EXPECT_DOUBLE_EQ(iron.Absorption(7.112, false), factor * 3.5e4);
  EXPECT_DOUBLE_EQ(iron.FormFactor(.55, false), 14.5);
  EXPECT_DOUBLE_EQ(iron.AnomalousImag(7.112, false), 3.9);
  EXPECT_EQ(iron.PhotoIonization.size(), 2U);
  EXPECT_EQ(iron.ElectronIonization.size(), 1U);
  EXPECT_EQ(iron.TabSigma.nodes().size(), 2U);
  EXPECT_EQ(iron.ElasticAngle.nodes().size(), 2U);
}

TEST(EndfReader, SumsTheRadiativeLinesToTheYield) {
  Material<double> const iron = readElement(small());
  ASSERT_EQ(iron.Edges.size(), 3U);
  EXPECT_EQ(iron.Edges[0].Energy, 7.112);
  EXPECT_DOUBLE_EQ(iron.Edges[0].Yield, .3);
  EXPECT_EQ(iron.Edges[0].Jump, 0);
  ASSERT_EQ(iron.Edges[0].Lines.size(), 3U);
  EXPECT_EQ(iron.Edges[0].Lines[1].Label, "K1-L3");
  EXPECT_TRUE(iron.Edges[0].Lines[1].Radiative);
  EXPECT_EQ(iron.Edges[0].Lines[2].Label, "K1-L1-L3");
  EXPECT_FALSE(iron.Edges[0].Lines[2].Radiative);
  EXPECT_TRUE(iron.Edges[0].Lines[2].To == SubshellID(26, L3));
}

TEST(EndfReader, TakesALevelWithoutTransitions) {
  Material<double> const iron = readElement(small());
  EXPECT_EQ(iron.Edges[1].Energy, .846);
  EXPECT_EQ(iron.Edges[1].Yield, 0);
  EXPECT_TRUE(iron.Edges[1].Lines.empty());
}

TEST(EndfReader, WritesALevelThatHasNoNameAsItsNumber) {
  Material<double> const iron = readElement(small());
  EXPECT_EQ(iron.Edges[2].Lines[0].Label, "40-41");
}

TEST(EndfReader, SetsTheLastYieldAtTheEndOfTheSection) {
  EXPECT_EQ(readElement(small()).Edges[2].Yield, .01);
  std::string const open = without(small(), "28  0");
  EXPECT_EQ(readElement(open).Edges[2].Yield, 0);
  EXPECT_DOUBLE_EQ(readElement(open).Edges[0].Yield, .3);
}

TEST(EndfReader, LeavesEdgesAloneWithoutTransitions) {
  Material<double> iron("Fe", 0, 0, 0);
  iron.Edges.emplace_back(SubshellID(26, K1), 7., .3, 8.);
  std::istringstream in(without(small(), "28"));
  iron.readENDF(in);
  ASSERT_EQ(iron.Edges.size(), 1U);
  EXPECT_EQ(iron.Edges[0].Energy, 7);
}

TEST(EndfReader, ReadsTheTargetAloneOfTwoElements) {
  std::string const copper =
      replaced(smallElement(29, "Cu").str(), "5.536700+1", "6.300000+1");
  Material<double> const iron = readElement(copper + small(), "Fe");
  EXPECT_EQ(Fingerprint(iron).str(), Fingerprint(readElement(small())).str());
  EXPECT_EQ(readElement(copper + small(), "Cu").Z, 29);
}

TEST(EndfReader, TakesTheWeightOfTheLastHeadAheadOfItsData) {
  std::string const head = EndfText(29, "Cu").head(113, 63).str();
  std::string text = small();
  std::size_t const electrons = text.find("26526    1") - 70;
  text.insert(electrons, head);
  EXPECT_DOUBLE_EQ(readElement(text).A, 63 * 1.0086649158215515);
}

TEST(EndfReader, FindsAnElementByItsSymbolAlone) {
  Material<double> iron;
  iron.Name = "Fe";
  ASSERT_EQ(iron.Z, 0);
  std::istringstream in(small());
  iron.readENDF(in);
  EXPECT_EQ(iron.Z, 26);
  EXPECT_FALSE(iron.Absorption.empty());
}

TEST(EndfReader, FindsAnElementByItsNumberAlone) {
  Material<double> iron;
  iron.Z = 26;
  std::istringstream in(small());
  iron.readENDF(in);
  EXPECT_FALSE(iron.Absorption.empty());
}

TEST(EndfReader, TakesANameThatIsAMaterialNumber) {
  Material<double> iron;
  iron.Name = "2600";
  std::istringstream in(small());
  iron.readENDF(in);
  EXPECT_EQ(iron.Z, 0);
  EXPECT_FALSE(iron.Absorption.empty());
}

TEST(EndfReader, FindsAnElementAboveNinetyNineByItsSymbol) {
  // Its material number does not follow from the atomic number.
  std::string const text = smallElement(26, "Fm").str();
  EXPECT_EQ(difference(text, "Fm"), "");
  EXPECT_EQ(failureOf(text, "Fm"), "good");
  EXPECT_EQ(failureOf(small(), "Fm"), "runtime_error Element Fm not found");
}

TEST(EndfReader, ReadsAnyStream) {
  ScratchFolder const scratch;
  std::ifstream in(scratch.write("a.endf", small()));
  Material<double> iron("Fe", 0, 0, 0);
  iron.readENDF(in);
  EXPECT_EQ(Fingerprint(iron).str(), Fingerprint(readElement(small())).str());
}

TEST(EndfReader, NamesTheElementThatIsNotThere) {
  EXPECT_EQ(failureOf(small(), "Cu"), "runtime_error Element Cu not found");
  EXPECT_EQ(failureOf("", "Fe"), "runtime_error Element Fe not found");
}

TEST(EndfReader, PassesOverTheFirstLineOfATable) {
  // It is dropped whatever it holds.
  std::string const text =
      replaced(small(), " 2.600000+4 5.540000+1          0          0",
               " not.a.numb 5.540000+1          0          0");
  EXPECT_EQ(readOutcome(text, "Fe"), readOutcome(small(), "Fe"));
}

TEST(EndfReader, LeavesACurveEmptyWithoutRanges) {
  EndfText text(26, "Fe");
  text.head(3, 55);
  text.section(23, 522).control(0, 0, 0, 0, 0, 0).control(0, 0, 0, 0, 0, 2);
  text.points({{1e3, 1}, {1e4, 2}}).end();
  EXPECT_TRUE(readElement(text.str()).Absorption.empty());
  EXPECT_FALSE(readElement(text.str()).Pair.empty());
}

TEST(EndfReader, TakesTheFirstOfTwoSectionsOfALevel) {
  EndfText text(26, "Fe");
  text.head(3, 55).table(23, 534, {{7e3, 1}, {9e3, 2}});
  text.table(23, 534, {{7e3, 5}, {9e3, 6}});
  Material<double> const iron = readElement(text.str());
  AttenuationCoeff<double> const& K = iron.PhotoIonization.begin()->second;
  EXPECT_DOUBLE_EQ(K(9, false), 2 * 0.6022140857 / iron.A);
}

TEST(EndfReader, HasNoPairProductionBelowItsThreshold) {
  Material<double> const iron = readElement(small());
  EXPECT_EQ(iron.Pair(500, false), 0);
}

TEST(EndfReader, StopsAtTheEndOfTheTape) {
  std::string const text = small();
  std::string const ended =
      text + EndfText(26, "Fe").tapeEnd().str() + "too short";
  EXPECT_EQ(readOutcome(ended, "Fe"), readOutcome(text, "Fe"));
}

TEST(EndfReader, TakesATapeEndWithAnyOtherNumberForNone) {
  for (std::string const control :
       {"  -1 1  0     ", "  -1 0  1     ", "  -1 0  0    7"}) {
    std::string const text = std::string(66, ' ') + control + '\n' + small();
    EXPECT_EQ(readOutcome(text, "Fe"), readOutcome(small(), "Fe")) << control;
  }
}

TEST(EndfReader, HasAFindingForALevelWithoutPoints) {
  EndfText text(26, "Fe");
  text.head(3, 55).section(23, 534).control(26000, 55, 0, 0, 0, 0);
  text.control(7112, 0, 0, 0, 1, 0).wholes({0, 2}).numbers({0, 0}).end();
  EXPECT_EQ(difference(text.str(), "Fe"), "");
  EXPECT_EQ(failureOf(text.str()), "warning No datapoints for interpolation!");
}

TEST(EndfReader, FailsOnALineWithoutControlColumns) {
  EXPECT_EQ(failureOf(small() + std::string(65, ' ')),
            "out_of_range invalid string position");
  EXPECT_EQ(failureOf(small() + "\n"), "out_of_range invalid string position");
}

TEST(EndfReader, TakesMissingControlColumnsAsZero) {
  EXPECT_EQ(failureOf(small() + std::string(66, ' ')), "good");
  std::string const section = std::string(66, 'x') + "2600235";
  EXPECT_EQ(failureOf(small() + section), "good");
}

TEST(EndfReader, ReadsNothingWithoutLineNumbers) {
  std::string text;
  for (std::size_t i = 0; i < small().size(); i += 81)
    text += small().substr(i, 75) + "\n";
  EXPECT_EQ(failureOf(text), "runtime_error Element Fe not found");
}

TEST(EndfReader, TakesLinesWithCarriageReturns) {
  std::string text;
  for (char const c : small()) text += c == '\n' ? "\r\n" : std::string(1, c);
  EXPECT_EQ(readOutcome(text, "Fe"), readOutcome(small(), "Fe"));
}

TEST(EndfReader, DropsALineThatDoesNotParse) {
  EndfText text(26, "Fe");
  text.head(3, 55);
  text.table(23, 522, {{1, 1}, {2, 1}, {3, 1}, {4, 2}, {5, 2}, {6, 2}});
  std::string const whole = text.str();
  std::string const damaged = replaced(whole, " 4.000000+0", " 4.000E+00 ");
  // Three of six points are missing, so the section never ends.
  EXPECT_FALSE(readElement(whole).Absorption.empty());
  EXPECT_TRUE(readElement(damaged).Absorption.empty());
}

TEST(EndfReader, TakesADamagedControlFieldAsZero) {
  std::string const text = replaced(small(), "23504    4", "23504    x");
  EXPECT_EQ(difference(text, "Fe"), "");
  EXPECT_TRUE(readElement(text).Incoherent.empty());
}

TEST(EndfReader, FailsOnSpectraWithoutACrossSection) {
  EXPECT_EQ(failureOf(without(small(), "23527")),
            "runtime_error Found bremsstrahlung spectra, but no cross "
            "section!");
}

TEST(EndfReader, FailsOnAnotherLawOfSpectra) {
  std::string const text = replaced(
      small(), " 0.000000+0 5.400000-4          0          1          1",
      " 0.000000+0 5.400000-4          0          2          1");
  EXPECT_EQ(failureOf(text), "runtime_error Non-conforming ENDF database!");
}

TEST(EndfReader, FailsOnASpectrumOfAnotherLayout) {
  std::string const head = " 0.000000+0 1.000000+4          0          0";
  std::string const text =
      replaced(small(), head + "          6", head + "          7");
  std::string const all = readOutcome(text, "Fe");
  EXPECT_TRUE(all.starts_with("runtime_error Unable to parse:\n" + head +
                              "          7          3260026527    7\n"));
}

TEST(EndfReader, FailsOnAnImpossibleCosine) {
  std::string const good = "-1.000000+0 5.000000-1 9.999990-1 5.000000-1";
  for (std::string const bad :
       {"-1.000001+0 5.000000-1 9.999990-1 5.000000-1",
        "-1.000000+0 5.000000-1 1.000001+0 5.000000-1",
        "-1.000000+0 0.000000+0 9.999990-1 5.000000-1",
        "-1.000000+0 5.000000-1 9.999990-1-5.000000-1"}) {
    std::string const text = replaced(small(), good, bad);
    EXPECT_TRUE(failureOf(text).starts_with(
        "runtime_error Impossible angle distribution value: " + bad))
        << failureOf(text);
  }
}

TEST(EndfReader, EndsADistributionOfAnglesAtOne) {
  Material<double> const iron = readElement(small());
  auto const row = iron.ElasticAngle(0, true, true);  // 1 keV
  double const last = .999999;
  EXPECT_NEAR(row(last, false, false), .5 * (1 + last), 1e-12);
  auto const high = iron.ElasticAngle(3, true, true);  // 1 MeV
  EXPECT_EQ(iron.ElasticAngle.records().back().first, last);
  EXPECT_LE(high(last, false, false), 1);
}

TEST(EndfReader, RefusesAGridOfAnglesThatFillsTheMemory) {
  EndfText text(26, "Fe");
  text.head(113, 55).section(26, 526).control(0, 0, 0, 0, 0, 0);
  text.control(0, 0, 0, 0, 0, 0).line("").line("");
  text.control(0, 0, 0, 0, 1, 1).line("");
  for (int i = 1; i <= 1100; ++i)
    text.control(0, i * 1e3, 12, 0, 2, 1).points({{i * 1e-4, 1}});
  EXPECT_EQ(failureOf(text.str()),
            "runtime_error Angular distribution is too large");
}

TEST(EndfReader, RefusesBremsstrahlungThatFillsTheMemory) {
  EndfText text(26, "Fe");
  text.head(113, 55).table(23, 527, {{10, 9e3}, {1e11, 1e3}}, 5);
  text.section(26, 527).control(0, 0, 0, 0, 0, 0).control(0, 0, 0, 1, 0, 0);
  text.control(0, 0, 0, 2, 0, 20000);
  for (int i = 1; i <= 10001; ++i)
    text.control(0, i * 1e3, 0, 0, 2, 1).points({{10, 1}});
  EXPECT_EQ(failureOf(text.str()),
            "runtime_error Bremsstrahlung table is too large");
}

TEST(EndfReader, RefusesPointsThatAreStoredAgainAndAgain) {
  EndfText text = manyPoints(526);
  for (int i = 0; i < 2000; ++i) {
    text.section(26, 527, 1).control(0, 0, 0, 1, 1, 0);
    text.section(23, 526, 2).wholes({99999999, 2}).numbers({1, 1});
  }
  EXPECT_EQ(failureOf(text.str()), "runtime_error Tables are too large");
}

TEST(EndfReader, RefusesLevelsThatAreBuiltAgainAndAgain) {
  EndfText text = manyPoints(534);
  for (int i = 0; i < 2000; ++i) {
    text.section(26, 527, 1).control(0, 0, 0, 1, 1, 0);
    text.section(23, 534, 2).wholes({99999999, 2}).numbers({1, 1});
  }
  EXPECT_EQ(failureOf(text.str()), "runtime_error Tables are too large");
}

TEST(EndfReader, RefusesACrossSectionThatGrowsAheadOfEachSpectrum) {
  EndfText text = manyPoints(527);
  for (int i = 0; i < 2000; ++i) {
    text.table(23, 527, {{10, 1}});
    text.section(26, 527).control(0, 0, 0, 0, 0, 0);
  }
  EXPECT_EQ(failureOf(text.str()), "runtime_error Tables are too large");
}

TEST(EndfReader, HasAFindingForEachEmptyStretchOnEachLine) {
  std::string const finding = "No datapoints for interpolation!\n";
  for (std::size_t const lines : {1u, 3u}) {
    EndfText text(26, "Fe");
    text.head(3, 55).section(23, 522).control(0, 0, 0, 0, 0, 0);
    text.control(0, 0, 0, 0, 2, 0).wholes({5, 2, 9, 2});
    for (std::size_t i = 0; i < lines; ++i) text.numbers({1, 1});
    EXPECT_EQ(difference(text.str(), "Fe"), "");
    std::string expected;
    for (std::size_t i = 0; i < 2 * lines; ++i) expected += finding;
    EXPECT_EQ(thrown<warning>([&] { readElement(text.str()); }), expected);
  }
}

TEST(EndfReader, LeavesTheCurvesAloneWhenItFails) {
  Material<double> iron = readElement(small());
  std::string const before = Fingerprint(iron).str();
  std::istringstream in(small() + "short");
  iron.Edges.clear();
  EXPECT_THROW(iron.readENDF(in), std::out_of_range);
  EXPECT_EQ(Fingerprint(iron).str(), before);  // with the edges read again
}

TEST(EndfReader, DoesNotTrustCounts) {
  for (std::string const count : {" 4294967295", "  999999999"}) {
    std::string text = small();
    for (std::size_t i = 0; i < text.size(); i += 81)
      if (text.compare(i + 75, 5, "    2") == 0)
        text.replace(i + 55, 11, count);
    EXPECT_EQ(difference(text, "Fe"), "");
    for (std::size_t i = 0; i < text.size(); i += 81)
      if (text.compare(i + 75, 5, "    2") == 0)
        text.replace(i + 44, 11, count);
    EXPECT_EQ(difference(text, "Fe"), "");
  }
}
