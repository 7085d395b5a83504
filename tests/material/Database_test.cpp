#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "photarium/material/Material.h"
#include "photarium/streams/PHMCStream.h"
#include "tests/material/elam_text.h"
#include "tests/support/memory.h"
#include "tests/support/packed_bits.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

// Opens the recogniser.
struct Probe : Material<double> {
  static DBType recognise(std::string const& text, std::string& normalised) {
    std::istringstream in(text);
    std::ostringstream out;
    DBType const type = readDB(in, out);
    normalised = out.str();
    return type;
  }
};

std::string normalised(std::string const& text) {
  std::string out;
  Probe::recognise(text, out);
  return out;
}

DBType format(std::string const& text) {
  std::string out;
  return Probe::recognise(text, out);
}

std::string packed(std::string const& text) {
  std::istringstream unused;
  std::ostringstream out;
  PHMCStream stream(unused, out, /*plain=*/false);
  stream << text;
  stream.close();
  return out.str();
}

// A line of 80 columns that ends in the control columns given.
std::string endfLine(std::string const& data, std::string const& control) {
  std::string line = data;
  line.resize(80 - control.size(), ' ');
  return line + control;
}

std::string const tapeHead = endfLine("tape", "   1 0  0     ");
std::string const tapeEnd = endfLine("", "  -1 0  0    0");
std::string const fileHead =
    endfLine(" 1.00000+3 9.99167-1         -1          0          0          0",
             " 100 1451    1");

std::string failure(Material<double>& material, std::string const& db,
                    std::string const& dir = "", DBType type = Unknown) {
  return thrown<std::runtime_error>([&] { material.readDB(db, dir, type); });
}

std::string failure(std::string const& name, std::string const& db,
                    std::string const& dir = "", DBType type = Unknown) {
  Material<double> material(name, 0, 0, 0);
  return failure(material, db, dir, type);
}

class Database : public testing::Test {
 protected:
  ScratchFolder scratch;
  std::string const dir = scratch.path().string();
  Material<double> element{"H", 0, 0, 0};
};

}  // namespace

TEST(Recogniser, ReadsEmptyTextAsOneEmptyLine) {
  EXPECT_EQ(normalised(""), "\n");
  EXPECT_EQ(format(""), Unknown);
}

TEST(Recogniser, EndsTheTextWithOneEmptyLine) {
  EXPECT_EQ(normalised("a\nb\n"), "a\nb\n\n");
  EXPECT_EQ(normalised("a\nb"), "a\nb\n\n");
}

TEST(Recogniser, RemovesCarriageReturnsFromBothEndsOfALineAlone) {
  EXPECT_EQ(normalised("\r\ra \r\n\r\n b\rc\r\r\nd"), "a \n\n b\rc\nd\n\n");
}

TEST(Recogniser, KeepsBlanksAndEveryOtherByte) {
  std::string const text("  a\t\0\xff \n\t\n", 10);
  EXPECT_EQ(normalised(text), text + "\n");
}

TEST(Recogniser, DropsTheTapeHeadFromAnyText) {
  EXPECT_EQ(normalised("a\n" + tapeHead + "\nb\n"), "a\nb\n\n");
  EXPECT_EQ(normalised(tapeHead + "\r\n" + tapeHead + "\r\nb\r\n"), "b\n\n");
}

TEST(Recogniser, StopsAtTheTapeEnd) {
  EXPECT_EQ(normalised("a\n" + tapeEnd + "\nb\n"), "a\n");
  EXPECT_EQ(normalised(tapeEnd), "");
}

TEST(Recogniser, KeepsTapeColumnsInALineOfAnotherLength) {
  EXPECT_EQ(normalised(tapeHead + " \n"), tapeHead + " \n\n");
  EXPECT_EQ(normalised(tapeEnd.substr(1) + "\n"), tapeEnd.substr(1) + "\n\n");
}

TEST(Recogniser, KnowsAnElamTextByAnElementAtTheStartOfALine) {
  EXPECT_EQ(format("// comment\nElement Fe 26\n"), ElamDB);
  EXPECT_EQ(format("Element "), ElamDB);
  EXPECT_EQ(format("Element\tFe\n"), Unknown);
  EXPECT_EQ(format(" Element Fe\n"), Unknown);
  EXPECT_EQ(format("Element\n"), Unknown);
}

TEST(Recogniser, KnowsAnEndfTextByItsFileHead) {
  EXPECT_EQ(format(tapeHead + "\n" + fileHead + "\n"), ENDF);
  EXPECT_EQ(format(fileHead + " \n"), Unknown);
}

TEST(Recogniser, PassesOverAFileHeadThatDoesNotParse) {
  std::string const broken =
      endfLine(" no number", fileHead.substr(fileHead.size() - 14));
  EXPECT_EQ(format(broken + "\nElement Fe\n"), ElamDB);
}

TEST(Recogniser, KnowsAnAceTextByATableIdentifier) {
  EXPECT_EQ(format(" 1000.04p   0.99\n"), Unknown);  // its point is in column 6
  EXPECT_EQ(format("  1000.04p\n"), MCNP);
  EXPECT_EQ(format("26000 .4P\n"), Unknown);
  EXPECT_EQ(format("026000.04P   55.4\n"), MCNP);
  EXPECT_EQ(format("  1000.04q\n"), Unknown);
  EXPECT_EQ(format("  10x0.04p\n"), Unknown);
  EXPECT_EQ(format("  1000.0xp\n"), Unknown);
  EXPECT_EQ(format("  1000.04\n"), Unknown);
}

TEST(Recogniser, GoesByTheFirstLineThatTells) {
  EXPECT_EQ(format("  1000.04p\nElement Fe\n"), MCNP);
}

TEST(Recogniser, UnpacksAPackedText) {
  std::string out;
  EXPECT_EQ(Probe::recognise(packed("a\nElement H 1\n"), out), ElamDB);
  EXPECT_EQ(out, "a\nElement H 1\n\n");
}

TEST(Recogniser, RefusesADamagedPackedText) {
  std::string const whole = packed(database({hydrogen()}));
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { normalised(whole.substr(0, whole.size() / 2)); }),
            "Not enough bits in input!");
}

TEST(Recogniser, RefusesAPackedTextThatIsCutAtAnyByte) {
  std::string const whole = packed(database({hydrogen()}));
  for (std::size_t length = 4; length + 1 < whole.size(); ++length) {
    EXPECT_EQ(thrown<std::runtime_error>(
                  [&] { normalised(whole.substr(0, length)); }),
              "Not enough bits in input!")
        << length;
  }
}

TEST(Recogniser, RefusesAShortTextThatUnpacksWithoutEnd) {
  long const before = peakMemory();
  for (auto const& text : Endless::All)
    EXPECT_EQ(thrown<std::runtime_error>([&] { normalised(text); }),
              "Packed text is too long");
  EXPECT_LT(peakMemory() - before, 1L << 20);
}

TEST_F(Database, FillsAnElement) {
  std::string const file = scratch.write("a.txt", database({hydrogen()}));
  element.readDB(file, "", Unknown);
  EXPECT_EQ(element.A, 1.008);
  EXPECT_NEAR(element.Absorption(2., false), hydrogen().photo(2.), 1e-12);
}

TEST_F(Database, LooksForAFileBelowTheDirectory) {
  scratch.write("a.txt", database({hydrogen()}));
  element.readDB("a.txt", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
  EXPECT_EQ(Material<double>::CacheName, dir + "/a.txt");
  EXPECT_EQ(Material<double>::CacheType, ElamDB);
}

TEST_F(Database, GoesByTheContentsWhateverTypeIsGiven) {
  scratch.write("a.txt", database({hydrogen()}));
  element.readDB("a.txt", dir, MCNP);
  EXPECT_EQ(element.A, 1.008);
  Material<double> again("H", 0, 0, 0);
  again.readDB("a.txt", dir, MCNP);  // from the cache
  EXPECT_EQ(again.A, 1.008);
}

TEST_F(Database, KeepsTheNormalisedTextInTheCache) {
  std::string const text = database({hydrogen()});
  std::string crlf;
  for (char const c : text) crlf += c == '\n' ? "\r\n" : std::string(1, c);
  scratch.write("a.txt", crlf);
  element.readDB("a.txt", dir, Unknown);
  EXPECT_EQ(Material<double>::cachedDB, text + "\n");
}

TEST_F(Database, NeedsNoDiskForTheNextElementOfAFile) {
  scratch.write("a.txt", database({hydrogen(), oxygen()}));
  element.readDB("a.txt", dir, Unknown);
  std::filesystem::remove(scratch.path() / "a.txt");
  Material<double> other("O", 0, 0, 0);
  other.readDB("a.txt", dir, Unknown);
  EXPECT_EQ(other.A, 15.999);
}

TEST_F(Database, DoesNotNoticeAChangedFileWhileTheKeyStays) {
  scratch.write("a.txt", database({hydrogen()}));
  element.readDB("a.txt", dir, Unknown);
  scratch.write("a.txt", database({oxygen()}));
  EXPECT_EQ(failure("O", "a.txt", dir),
            "Element O not found while reading a.txt from " + dir);
}

TEST_F(Database, ReplacesTheCacheByTheNextFile) {
  scratch.write("a.txt", database({hydrogen()}));
  scratch.write("b.txt", database({oxygen()}));
  element.readDB("a.txt", dir, Unknown);
  Material<double> other("O", 0, 0, 0);
  other.readDB("b.txt", dir, Unknown);
  EXPECT_EQ(Material<double>::CacheName, dir + "/b.txt");
  std::filesystem::remove(scratch.path() / "a.txt");
  EXPECT_EQ(failure("H", "a.txt", dir),
            "Could not open file while reading a.txt from " + dir);
}

TEST_F(Database, SetsTheCacheAlsoIfTheReaderFails) {
  scratch.write("a.txt", database({hydrogen()}));
  failure("O", "a.txt", dir);
  EXPECT_EQ(Material<double>::CacheName, dir + "/a.txt");
}

TEST_F(Database, ReadsAPackedFileByItsName) {
  scratch.write("a.phc", packed(database({hydrogen()})));
  element.readDB("a.phc", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
}

TEST_F(Database, FindsAPackedFileBehindThePlainName) {
  scratch.write("a.txt.phc", packed(database({hydrogen()})));
  element.readDB("a.txt", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
  EXPECT_EQ(Material<double>::CacheName, dir + "/a.txt.phc");
}

TEST_F(Database, NeverServesAPackedFileFromTheCacheByItsPlainName) {
  scratch.write("a.txt.phc", packed(database({hydrogen()})));
  element.readDB("a.txt", dir, Unknown);
  std::filesystem::remove(scratch.path() / "a.txt.phc");
  EXPECT_EQ(failure("H", "a.txt", dir),
            "Could not open file while reading a.txt from " + dir);
}

TEST_F(Database, NamesTheFileOfADamagedPackedText) {
  std::string const whole = packed(database({hydrogen()}));
  scratch.write("a.phc", whole.substr(0, whole.size() - 9));
  EXPECT_EQ(failure(element, "a.phc", dir),
            "Not enough bits in input! while reading a.phc from " + dir);
}

TEST_F(Database, SaysThatAFileIsMissing) {
  EXPECT_EQ(failure(element, "none.txt", dir),
            "Could not open file while reading none.txt from " + dir);
  EXPECT_EQ(failure(element, dir + "/none.txt"),
            "Could not open file while reading " + dir + "/none.txt");
}

TEST_F(Database, TakesADirectoryForAFileThatIsMissing) {
  std::filesystem::create_directory(scratch.path() / "folder");
  EXPECT_EQ(failure(element, "folder", dir),
            "Could not open file while reading folder from " + dir);
}

TEST_F(Database, RefusesADeviceWithoutEnd) {
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { element.readDB("/dev/zero", "", Unknown); }),
            "Could not read file while reading /dev/zero");
}

TEST_F(Database, RefusesAFileThatCannotBeRead) {
  std::string const file =
      "/proc/self/mem";  // opens, yet its start is no one's
  if (!std::filesystem::exists(file)) GTEST_SKIP() << "there is no " << file;
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { element.readDB(file, "", Unknown); }),
      "Could not read file while reading " + file);
}

TEST_F(Database, RefusesAFileLargerThanTheAddressSpace) {
  if (sizeof(std::size_t) > 4) GTEST_SKIP() << "Sizes have 64 bits here";
  scratch.write("a.txt", "");
  std::filesystem::resize_file(scratch.path() / "a.txt", 0xfffffffe);
  EXPECT_EQ(failure(element, "a.txt", dir),
            "Could not read file while reading a.txt from " + dir);
}

TEST_F(Database, RefusesAnUnknownFormat) {
  scratch.write("a.txt", "Photo\n 1 2 3\n");
  EXPECT_EQ(failure(element, "a.txt", dir),
            "Unknown file format while reading a.txt from " + dir);
  EXPECT_EQ(Material<double>::CacheType, Unknown);
  scratch.write("a.txt", database({hydrogen()}));
  element.readDB("a.txt", dir, Unknown);  // an unknown text is no hit
  EXPECT_EQ(element.A, 1.008);
}

TEST_F(Database, ReadsAListOfFilesAsOneText) {
  scratch.write("a.txt", "// nothing yet\n" + hydrogen().text());
  scratch.write("b.txt", oxygen().text() + "End\n");
  Material<double> other("O", 0, 0, 0);
  other.readDB("a.txt;;b.txt", dir, Unknown);
  EXPECT_EQ(other.A, 15.999);
  EXPECT_EQ(Material<double>::CacheName, dir + "/a.txt;;b.txt");
  EXPECT_EQ(Material<double>::cachedDB, "// nothing yet\n" + hydrogen().text() +
                                            "\n" + oxygen().text() + "End\n\n");
}

TEST_F(Database, ServesAListFromTheCache) {
  scratch.write("a.txt", hydrogen().text());
  scratch.write("b.txt", oxygen().text() + "End\n");
  element.readDB("a.txt;b.txt", dir, Unknown);
  std::filesystem::remove(scratch.path() / "b.txt");
  Material<double> other("O", 0, 0, 0);
  other.readDB("a.txt;b.txt", dir, Unknown);
  EXPECT_EQ(other.A, 15.999);
}

TEST_F(Database, TakesAListOfOneFile) {
  scratch.write("a.txt", database({hydrogen()}));
  element.readDB("a.txt;", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
}

TEST_F(Database, ReadsMissingFilesOfAListAsEmptyText) {
  EXPECT_EQ(failure(element, "a.txt;b.txt", dir),
            "Unknown file format while reading a.txt;b.txt from " + dir);
  EXPECT_EQ(Material<double>::cachedDB, "\n\n");
}

TEST_F(Database, FindsNothingInAListOfEmptyNames) {
  EXPECT_EQ(failure(element, ";;", dir),
            "Unknown file format while reading ;; from " + dir);
}

TEST_F(Database, DoesNotMixFormats) {
  scratch.write("a.txt", database({hydrogen()}));
  scratch.write("b.txt", "  1000.04p  0.99\n");
  std::string const text = "Database types can not be mixed due to caching";
  EXPECT_EQ(failure(element, "a.txt;b.txt", dir),
            text + " while reading a.txt;b.txt from " + dir);
  EXPECT_EQ(failure(element, "a.txt;none.txt", dir),
            text + " while reading a.txt;none.txt from " + dir);
}

TEST_F(Database, TakesAFormatBehindFilesWithoutOne) {
  scratch.write("b.txt", database({hydrogen()}));
  element.readDB("none.txt;b.txt", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
}

TEST_F(Database, DoesNotLookForPackedFilesInAList) {
  scratch.write("a.txt.phc", packed(database({hydrogen()})));
  EXPECT_EQ(failure(element, "a.txt;", dir),
            "Unknown file format while reading a.txt; from " + dir);
}

TEST_F(Database, ReadsAFileWhoseNameHoldsASemicolon) {
  scratch.write("a;b.txt", database({hydrogen()}));
  scratch.write("a", "nothing");
  element.readDB("a;b.txt", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
}

TEST_F(Database, SearchesTheDefaultFilesFromTheElementsOwnToTheShippedOne) {
  auto const with = [](double A) {
    ElamElement hydrogens = hydrogen();
    hydrogens.A = A;
    return database({hydrogens});
  };
  auto const found = [&] {
    Material<double> hydrogens("H", 0, 0, 0);
    hydrogens.readDB("", dir, Unknown);
    return hydrogens.A;
  };
  scratch.write("data/ElamDB12.txt", with(4));
  EXPECT_EQ(found(), 4);
  scratch.write("data/mcplib04.txt", with(3));
  EXPECT_EQ(found(), 3);
  scratch.write("data/LocalDB.txt", with(2));
  EXPECT_EQ(found(), 2);
  scratch.write("data/ENDF-VII0/001_H_000.endf", with(1));
  EXPECT_EQ(found(), 1);
}

TEST_F(Database, GoesOnToTheNextDefaultFileIfOneLacksTheElement) {
  scratch.write("data/LocalDB.txt", database({oxygen()}));
  scratch.write("data/ElamDB12.txt", database({hydrogen()}));
  element.readDB("", dir, Unknown);
  EXPECT_EQ(element.A, 1.008);
}

TEST_F(Database, ReportsTheLastDefaultFile) {
  EXPECT_EQ(failure(element, "", dir),
            "Could not open file while reading data/ElamDB12.txt from " + dir);
}

TEST_F(Database, TriesOneDefaultFileForAGivenType) {
  scratch.write("data/ElamDB12.txt", database({hydrogen()}));
  std::string const tail = " from " + dir;
  EXPECT_EQ(
      failure(element, "", dir, ENDF),
      "Could not open file while reading data/ENDF-VII0/001_H_000.endf" + tail);
  EXPECT_EQ(failure(element, "", dir, ElamDB),
            "Could not open file while reading data/LocalDB.txt" + tail);
  EXPECT_EQ(failure(element, "", dir, MCNP),
            "Could not open file while reading data/mcplib04.txt" + tail);
}

TEST_F(Database, NamesTheEndfFileByNumberAndText) {
  auto const file = [&](double Z, std::string const& name) {
    Material<double> material(name, Z, 0, 0);
    std::string const text = failure(material, "", dir, ENDF);
    std::string const head =
        "Could not open file while reading data/ENDF-VII0/";
    return text.substr(head.size(), text.find(" from ") - head.size());
  };
  EXPECT_EQ(file(0, "CdTe"), "000_CdTe_000.endf");
  EXPECT_EQ(file(0, "U"), "092_U_000.endf");
  EXPECT_EQ(file(118, "X"), "118_X_000.endf");
  EXPECT_EQ(file(29.5, "X"), "29.5_X_000.endf");
}

TEST_F(Database, GuessesNoTypeOutsideTheFour) {
  EXPECT_EQ(failure(element, "", dir, static_cast<DBType>(4)),
            "Couldn't guess database!");
}

TEST_F(Database, ReadsAllElementsOfAFileIntoAMap) {
  std::string const text = database({hydrogen(), oxygen()});
  for (std::string const& contents : {text, packed(text)}) {
    std::map<std::string, Material<double>> elements;
    Material<double>::readDB(elements, scratch.write("a", contents));
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements["O"].Z, 8);
    EXPECT_EQ(elements["H"].Name, "H");
  }
}

TEST_F(Database, ReadsAWholeFilePastTheCache) {
  std::string const before = Material<double>::CacheName;
  std::map<std::string, Material<double>> elements;
  Material<double>::readDB(elements,
                           scratch.write("a.txt", database({hydrogen()})));
  EXPECT_EQ(Material<double>::CacheName, before);
}

TEST_F(Database, ReadsOnlyElamTextIntoAMap) {
  std::map<std::string, Material<double>> elements;
  auto const text = [&](std::string const& file) {
    return thrown<std::runtime_error>(
        [&] { Material<double>::readDB(elements, file); });
  };
  EXPECT_EQ(text(dir + "/none.txt"), "Could not open file");
  EXPECT_EQ(text(dir), "Could not open file");
  EXPECT_EQ(text(scratch.write("a.txt", "  1000.04p\n")),
            "Unknown file format");
}
