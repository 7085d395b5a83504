// photarium import-endf and the work behind it.

#include <zlib.h>

#include <cmath>
#include <random>

#include "photarium/material/Material.h"
#include "tests/material/EndfText.h"
#include "tests/tools/Program.h"
#include "tools/endf_tape.h"
#include "tools/endf_thin.h"

namespace {

using Tool::EndfTapes;

// A tape as a laboratory writes it: 75 columns, no line numbers, exponents with
// a letter, a tape's head and end.
std::string published(std::string const& text, char letter) {
  std::string out = std::string(66, ' ') + "     0  0\n";
  out.replace(0, 13, "Some library ");
  for (std::size_t i = 0; i < text.size(); i += 81) {
    std::string line = text.substr(i, 75);
    for (std::size_t at = 0; at < 66; at += 11) {
      std::size_t const sign = line.find_first_of("+-", at + 1);
      bool const isNumber =
          line.substr(70, 5) != " 1451" && sign < at + 11 && line[at] == ' ';
      if (!isNumber) continue;
      line.insert(sign, 1, letter);
      line.erase(at, 1);
    }
    out += line + '\n';
  }
  return out + std::string(66, ' ') + "  -1 0  0\n";
}

// The three sublibraries of a small element, each a text of its own.
std::vector<std::string> sublibraries(int z, std::string const& symbol) {
  std::string const text = smallElement(z, symbol).str();
  std::vector<std::string> parts;
  for (std::size_t i = 0; i < text.size(); i += 81) {
    bool const isHead = text.compare(i + 70, 10, " 1451    1") == 0;
    if (isHead) parts.emplace_back();
    parts.back() += text.substr(i, 81);
  }
  return parts;
}

std::string importedText(std::vector<std::string> const& texts, unsigned int z,
                         double tolerance = 0) {
  EndfTapes tapes;
  for (std::size_t i = 0; i < texts.size(); ++i)
    tapes.add("tape" + std::to_string(i), texts[i]);
  return Tool::endfText(tapes.elements().at(z), tolerance);
}

std::string failureOf(std::string const& text) {
  EndfTapes tapes;
  try {
    tapes.add("some.endf", text);
    return "";
  } catch (std::runtime_error const& failure) {
    return failure.what();
  }
}

// The fields and the control columns of the numbered lines, without the heads
// of files and the ends.
std::vector<std::string> dataLines(std::string const& text) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i + 80 < text.size(); i += 81)
    if (text.compare(i + 70, 5, " 1451") != 0 &&
        text.compare(i + 72, 3, "  0") != 0)
      lines.push_back(text.substr(i, 80));
  return lines;
}

// The points of the table `section` of a text.
EndfText::Points pointsOf(std::string const& text, std::string const& section) {
  EndfText::Points points;
  std::size_t count = 0;
  for (std::string const& line : dataLines(text)) {
    if (line.compare(70, 5, section) != 0) continue;
    if (line.compare(75, 5, "    2") == 0)
      count = std::stoul(line.substr(55, 11));
    if (std::stoi(line.substr(75, 5)) < 4) continue;
    for (std::size_t at = 0; at < 66 && points.size() < count; at += 22) {
      auto& [x, y] = points.emplace_back();
      Tool::endfValue(std::string_view(line).substr(at, 11), x);
      Tool::endfValue(std::string_view(line).substr(at + 11, 11), y);
    }
  }
  return points;
}

std::string gzip(std::string const& text) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY);
  std::string out(compressBound(static_cast<uLong>(text.size())) + 64, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

std::string numbered(std::string const& text) {
  return importedText({text}, 26);
}

}  // namespace

TEST(EndfTapes, GiveTheNumbersInTheFormOfTheReader) {
  auto const parts = sublibraries(26, "Fe");
  std::string const expected = smallElement(26, "Fe").str();
  for (char const letter : {'E', 'D', 'e'}) {
    std::vector<std::string> texts;
    for (auto const& part : parts) texts.push_back(published(part, letter));
    EXPECT_EQ(dataLines(importedText(texts, 26)), dataLines(expected));
  }
}

TEST(EndfTapes, TakeSublibrariesInAnyOrder) {
  auto const parts = sublibraries(26, "Fe");
  EXPECT_EQ(importedText({parts[2], parts[0], parts[1]}, 26),
            importedText({parts[0], parts[1], parts[2]}, 26));
  EXPECT_EQ(importedText({parts[1] + parts[2] + parts[0]}, 26),
            importedText(parts, 26));
}

TEST(EndfTapes, TakeSeveralElementsOfOneText) {
  EndfTapes tapes;
  tapes.add("all", published(smallElement(26, "Fe").str(), 'E') +
                       published(smallElement(29, "Cu").str(), 'D'));
  ASSERT_EQ(tapes.elements().size(), 2U);
  EXPECT_EQ(tapes.elements().at(29).sublibraries.size(), 3U);
}

TEST(EndfTapes, GiveATextThatTheReaderTakes) {
  std::string const text = importedText(sublibraries(26, "Fe"), 26);
  ScratchFolder const folder;
  Material<double> iron("Fe", 0, 0, 0);
  iron.readDB(folder.write("Fe.endf", text), "", Unknown);
  EXPECT_EQ(iron.Edges.size(), 3U);
  EXPECT_FALSE(iron.TabSigma.empty());
}

TEST(EndfTapes, NumberTheLinesOfEachSection) {
  std::string const text = importedText(sublibraries(26, "Fe"), 26);
  std::size_t ends = 0;
  unsigned long expected = 1;
  for (std::size_t i = 0; i < text.size(); i += 81) {
    ASSERT_EQ(text[i + 80], '\n');
    std::string const control = text.substr(i + 70, 5);
    unsigned long const number = std::stoul(text.substr(i + 75, 5));
    bool const isEnd = control.substr(2) == "  0";
    if (!isEnd) {
      EXPECT_EQ(number, expected++);
    } else {
      EXPECT_EQ(number, control.substr(0, 2) == " 0" ? 0U : 99999U);
      expected = 1;
    }
    ends += text.compare(i + 66, 14, "  -1 0  0    0") == 0;
  }
  EXPECT_EQ(ends, 1U);
  EXPECT_TRUE(text.ends_with("  -1 0  0    0\n"));
}

TEST(EndfTapes, MoveLargeAngleScatteringToTheNumberOfTheReader) {
  EndfText text(26, "Fe");
  text.head(113, 55);
  text.table(23, 525, {{10, 1}, {1e5, 2}}).table(23, 526, {{10, 5}, {1e5, 6}});
  text.table(26, 525, {{10, 7}, {1e5, 8}});
  std::string const out = numbered(text.str());
  EXPECT_EQ(pointsOf(out, "23526"), (EndfText::Points{{10, 1}, {1e5, 2}}));
  EXPECT_EQ(pointsOf(out, "26526"), (EndfText::Points{{10, 7}, {1e5, 8}}));
  EXPECT_TRUE(pointsOf(out, "23525").empty());
}

TEST(EndfTapes, LeaveLargeAngleScatteringWhereItIs) {
  EndfText text(26, "Fe");
  text.head(113, 55).table(23, 526, {{10, 5}, {1e5, 6}});
  EXPECT_EQ(pointsOf(numbered(text.str()), "23526"),
            (EndfText::Points{{10, 5}, {1e5, 6}}));
}

TEST(EndfTapes, BringEveryWayToWriteAnExponentToOne) {
  for (auto const& [from, to] :
       std::vector<std::pair<std::string, std::string>>{
           {" 2.33345E-5", "  2.33345-5"},
           {"6.00794D-06", " 6.00794-06"},
           {"1.234567E05", "1.234567+05"},
           {" 1.23456E 5", "  1.23456+5"},
           {" 1.23456+ 5", "  1.23456+5"},
           {" 1.234567-5", " 1.234567-5"},
           {"7.0e+1     ", "      7.0+1"},
           {"1.5        ", "1.5        "}}) {
    EndfText text(26, "Fe");
    text.head(3, 55).table(23, 522, {{1, 1}, {2, 1.5}, {3, 1}});
    std::string changed = text.str();
    std::string const field = EndfText::real(1.5);
    changed.replace(changed.find(field), 11, from);
    EXPECT_NE(numbered(changed).find(to), std::string::npos) << from;
  }
}

TEST(EndfTapes, KeepTheNumberOfAHeavyMaterial) {
  std::string text = smallElement(1, "Fm").str();
  for (std::size_t i = 0; i < text.size(); i += 81) {
    text.replace(i + 66, 4, "9920");
    std::string const za = EndfText::real(1000);
    if (text.compare(i + 70, 10, " 1451    1") == 0)
      text.replace(i, 11, EndfText::real(100000));
  }
  EXPECT_EQ(importedText({text}, 100).substr(66, 4), "9920");
  EXPECT_EQ(Tool::endfFileName(100), "100_Fm_000.endf");
}

TEST(EndfTapes, TellFileAndLineOfWhatIsNoTape) {
  EXPECT_EQ(failureOf(""), "some.endf:0: no material");
  EXPECT_EQ(failureOf("too short\n"), "some.endf:1: no ENDF record");
  EXPECT_EQ(failureOf(std::string(66, ' ') + "26xx23522    1\n"),
            "some.endf:1: no ENDF record");
  EXPECT_EQ(failureOf(std::string(66, ' ') + "260023-17    1\n"),
            "some.endf:1: no ENDF record");
  EXPECT_EQ(failureOf(std::string(66, ' ') + "260023522    1\n"),
            "some.endf:1: section 23/522 without a file head");
  std::string const head = EndfText(26, "Fe").head(3, 55).str();
  std::string const next =
      "some.endf:" + std::to_string(head.size() / 81 + 1) + ": section ";
  for (auto const& [control, section] :
       {std::pair("2600 0  5", "0/5"), std::pair("2600 1450", "1/450")})
    EXPECT_EQ(failureOf(head + std::string(66, ' ') + control + "    1\n"),
              next + section + " without a file head");
  EXPECT_EQ(failureOf(EndfText(26, "Fe").head(10, 55).str()),
            "some.endf:3: no atomic sublibrary: NSUB 10");
  std::string const iron = smallElement(26, "Fe").str();
  EXPECT_EQ(failureOf(iron + iron),
            "some.endf:147: these data are in some.endf:1 already");
}

TEST(EndfTapes, TellFileAndLineOfDamage) {
  EndfText text(26, "Fe");
  text.head(3, 55).table(23, 522, {{1, 1}, {2, 1.5}, {3, 1}});
  std::string const good = text.str();
  EXPECT_EQ(failureOf(good), "");
  std::string bad = good;
  bad.replace(bad.find(EndfText::real(1.5)), 11, " 1.5x      ");
  EXPECT_EQ(failureOf(bad), "some.endf:10: no number: 1.5x");
  EXPECT_EQ(failureOf(good.substr(0, good.size() - 81)),
            "some.endf:10: the text ends within section 23/522");
  std::string lost = good;
  lost.erase(lost.size() - 162, 81);
  EXPECT_EQ(failureOf(lost),
            "some.endf:7: section 23/522 has not as many points as it says");
}

TEST(EndfTapes, EndWellOnAnyDamage) {
  std::string const text = published(smallElement(26, "Fe").str(), 'E');
  std::mt19937 random(3);
  for (int i = 0; i < 3000; ++i) {
    std::string changed = text;
    changed[random() % changed.size()] = "0123456789 +-.\nE"[random() % 16];
    if (i % 3 == 0) changed.resize(random() % changed.size());
    EndfTapes tapes;
    try {
      tapes.add("x", changed);
      for (auto const& [z, element] : tapes.elements())
        EXPECT_FALSE(Tool::endfText(element, 1e-3).empty());
    } catch (std::runtime_error const& failure) {
      EXPECT_TRUE(std::string(failure.what()).starts_with("x:"));
    }
  }
}

TEST(EndfReport, NamesWhatIsMissing) {
  EndfTapes tapes;
  auto const parts = sublibraries(26, "Fe");
  tapes.add("a", parts[0]);
  EXPECT_EQ(Tool::endfReport(tapes.elements().at(26)),
            "Fe: photo-atomic\nFe: missing: relaxation, electro-atomic\n");
  EndfText few(29, "Cu");
  few.head(3, 63).table(23, 522, {{1, 1}, {2, 1}});
  tapes.add("b", few.str());
  EXPECT_EQ(Tool::endfReport(tapes.elements().at(29)),
            "Cu: photo-atomic\n"
            "Cu: missing: photo-atomic 23/502, photo-atomic 23/504, "
            "photo-atomic 23/516, photo-atomic 23/534, photo-atomic 27/502, "
            "photo-atomic 27/504, photo-atomic 27/505, photo-atomic 27/506, "
            "relaxation, electro-atomic\n");
}

TEST(EndfThin, ReproducesEveryPointItDrops) {
  EndfText::Points points;
  for (int i = 0; i <= 600; ++i) {
    double const x = std::pow(10., 3 + i * .01);
    points.emplace_back(x, 1e9 * std::pow(x, -2.7) + (i > 300 ? 5 : 0));
    if (i == 300) points.emplace_back(x, points.back().second + 5);
  }
  std::string const text =
      EndfText(26, "Fe").head(3, 55).table(23, 522, points).str();
  constexpr double tolerance = .01;
  points = pointsOf(text, "23522");
  auto const thin = pointsOf(importedText({text}, 26, tolerance), "23522");
  EXPECT_LT(thin.size(), points.size() / 3);
  EXPECT_EQ(thin.front(), points.front());
  EXPECT_EQ(thin.back(), points.back());
  std::size_t edges = 0;
  for (std::size_t i = 1; i < thin.size(); ++i)
    edges += thin[i].first == thin[i - 1].first;
  EXPECT_EQ(edges, 1U);
  for (auto const& [x, y] : points) {
    std::size_t i = 1;
    while (thin[i].first < x) ++i;
    auto const& [x0, y0] = thin[i - 1];
    auto const& [x1, y1] = thin[i];
    double const chord = x1 > x0 ? y0 + (y1 - y0) * (x - x0) / (x1 - x0) : y1;
    bool const isUpperSide = i + 1 < thin.size() && thin[i + 1].first == x;
    if (isUpperSide) continue;  // both sides of the edge stay as they are
    EXPECT_NEAR(chord, y, std::abs(y) * tolerance * (1 + 1e-9)) << x;
  }
}

TEST(EndfThin, DropsPointsThatWouldOpenARange) {
  EndfText text(26, "Fe");
  text.head(3, 55).table(23, 522,
                         {{1e3, 10}, {2e3, 20}, {2.0001e3, 20.001}, {3e3, 30}});
  EXPECT_EQ(pointsOf(importedText({text.str()}, 26, 1e-6), "23522"),
            (EndfText::Points{{1e3, 10}, {3e3, 30}}));
}

TEST(EndfThin, LeavesOtherLawsAlone) {
  EndfText text(26, "Fe");
  text.head(3, 55).table(23, 522, {{1, 1}, {2, 2}, {3, 3}}, 5);
  EXPECT_EQ(pointsOf(importedText({text.str()}, 26, .1), "23522").size(), 3U);
}

TEST(ImportEndf, WritesTheFileThatTheSearchOpens) {
  Program photarium;
  auto const parts = sublibraries(26, "Fe");
  photarium.write("p.endf", published(parts[0], 'E'));
  photarium.write("r.endf.gz", gzip(published(parts[1], 'D')));
  photarium.write("e.endf", parts[2]);
  Outcome const outcome = photarium.run(
      {"import-endf", "--to", "here", "p.endf", "r.endf.gz", "e.endf"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "Fe: photo-atomic, relaxation, electro-atomic\n"
            "1 elements in here/data/ENDF-VII0\n");
  EXPECT_EQ(dataLines(photarium.text("here/data/ENDF-VII0/026_Fe_000.endf")),
            dataLines(smallElement(26, "Fe").str()));
}

TEST(ImportEndf, PacksAndLeavesOneForm) {
  Program photarium;
  photarium.write("fe.endf", smallElement(26, "Fe").str());
  std::string const plain = "data/ENDF-VII0/026_Fe_000.endf";
  EXPECT_EQ(photarium.run({"import-endf", "--to", ".", "fe.endf"}).status, 0);
  std::string const text = photarium.text(plain);
  EXPECT_EQ(
      photarium.run({"import-endf", "--pack", "--to", ".", "fe.endf"}).status,
      0);
  EXPECT_FALSE(photarium.has(plain));
  EXPECT_LT(photarium.text(plain + ".phc").size(), text.size());
  EXPECT_EQ(photarium.run({"unpack", plain + ".phc"}).out, text);
  EXPECT_EQ(photarium.run({"import-endf", "--to", ".", "fe.endf"}).status, 0);
  EXPECT_FALSE(photarium.has(plain + ".phc"));
}

TEST(ImportEndf, WritesNothingIfOneTapeIsBad) {
  Program photarium;
  photarium.write("fe.endf", smallElement(26, "Fe").str());
  photarium.write("bad.endf", "no tape\n");
  Outcome const outcome =
      photarium.run({"import-endf", "--to", ".", "fe.endf", "bad.endf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: bad.endf:1: no ENDF record\n");
  EXPECT_FALSE(photarium.has("data"));
}

TEST(ImportEndf, NamesWhatItCannotRead) {
  Program photarium;
  EXPECT_EQ(photarium.run({"import-endf", "none.endf"}).err,
            "photarium: none.endf: Could not open file\n");
  EXPECT_EQ(photarium.run({"import-endf", "."}).err,
            "photarium: .: is a folder\n");
  std::string const packed = gzip(smallElement(26, "Fe").str());
  photarium.write("cut.gz", packed.substr(0, packed.size() / 2));
  EXPECT_EQ(photarium.run({"import-endf", "cut.gz"}).err,
            "photarium: cut.gz: Could not read file\n");
}

TEST(ImportEndf, RefusesWrongArguments) {
  Program photarium;
  EXPECT_EQ(photarium.run({"import-endf"}).status, 2);
  EXPECT_EQ(photarium.run({"import-endf", "--thin", "x", "a"}).status, 2);
  EXPECT_EQ(photarium.run({"import-endf", "--thin", "-1", "a"}).status, 2);
  EXPECT_EQ(photarium.run({"import-endf", "--help"}).status, 0);
}

TEST(ImportEndf, WritesBelowTheFolderThatCommandsRead) {
  Program photarium;
  photarium.write("fe.endf", smallElement(26, "Fe").str());
  photarium.write("place/data/note", "");
  photarium.set("PHOTARIUM_DATA=place");
  EXPECT_EQ(photarium.run({"import-endf", "fe.endf"}).status, 0);
  EXPECT_TRUE(photarium.has("place/data/ENDF-VII0/026_Fe_000.endf"));
}

TEST(ImportEndf, GivesTheNumbersOfTheRealTapes) {
  PHOTARIUM_NEEDS_DATA();
  for (auto const& [z, name] :
       std::vector<std::pair<unsigned int, std::string>>{
           {26, "026_Fe_000.endf"},
           {29, "029_Cu_000.endf"},
           {74, "074_W_000.endf"}}) {
    EndfTapes tapes;
    for (std::string const sublibrary : {"e-", "atom-", "photoat-"})
      tapes.add(sublibrary,
                fileText(testData() / "endf_originals" / (sublibrary + name)));
    EXPECT_EQ(dataLines(Tool::endfText(tapes.elements().at(z), 0)),
              dataLines(fileText(testData() / "endf_mt526" / name)));
  }
}

TEST(ImportEndf, MakesRealDataTheDefault) {
  PHOTARIUM_NEEDS_DATA();
  Program photarium;
  std::vector<std::string> arguments{"import-endf", "--to", "."};
  for (std::string const sublibrary : {"e-", "atom-", "photoat-"})
    arguments.push_back((std::filesystem::absolute(testData()) /
                         "endf_originals" / (sublibrary + "026_Fe_000.endf"))
                            .string());
  ASSERT_EQ(photarium.run(arguments).status, 0);
  photarium.write("data/ELossCorrections.txt",
                  fileText(testData() / "ELossCorrections.txt"));
  Outcome const iron = photarium.run({"material", "--material", "Fe"});
  EXPECT_EQ(iron.status, 0) << iron.err;
  EXPECT_NE(iron.out.find("026_Fe_000.endf"), std::string::npos) << iron.out;
  for (std::string const curve :
       {"formfactor", "scatfunc", "imagfactor", "realfactor"}) {
    Outcome const table =
        photarium.run({"mu", "--material", "Fe", "--" + curve});
    EXPECT_EQ(table.status, 0) << table.err;
    EXPECT_NE(table.out.find(" nodes LinLin\n"), std::string::npos) << curve;
  }
}
