#include "photarium/streams/PHMCStream.h"

#include <limits>
#include <locale>

#include "tests/streams/packed_support.h"
#include "tests/support/paths.h"

namespace {

constexpr auto In = std::ios::in | std::ios::binary;
constexpr auto Out = std::ios::out | std::ios::binary;

std::string const Worked("PHMC\x19\xBA\xCC\x2A\x79\xF3\x8D\0", 12);

std::string textOf(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), {}};
}

struct CommaDecimals : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

// Another global locale as long as the object lives.
class GlobalLocale {
 public:
  explicit GlobalLocale(std::locale const& locale)
      : before(std::locale::global(locale)) {}
  GlobalLocale(GlobalLocale const&) = delete;
  GlobalLocale& operator=(GlobalLocale const&) = delete;
  ~GlobalLocale() { std::locale::global(before); }

 private:
  std::locale before;
};

TEST(PHMCStream, PacksIntoAPairOfStreams) {
  std::istringstream in;
  std::ostringstream out;
  PHMCStream stream(in, out);
  stream << 1.5 << " " << 2 << "\n" << 1.5 << " " << 3 << "\n";
  stream.close();
  EXPECT_EQ(out.str(), Worked);
  EXPECT_TRUE(stream.good());
  EXPECT_TRUE(out.good());
}

TEST(PHMCStream, UnpacksAPairOfStreams) {
  std::istringstream in(Worked);
  std::ostringstream out;
  PHMCStream stream(in, out);
  double numbers[4] = {};
  for (double& number : numbers) stream >> number;
  EXPECT_EQ(numbers[0] + numbers[1] + numbers[2] + numbers[3], 8.);
  EXPECT_TRUE(stream.good());
}

TEST(PHMCStream, PacksTheStandardOutputByDefault) {
  std::ostringstream out;
  std::streambuf* const before = std::cout.rdbuf(out.rdbuf());
  {
    PHMCStream stream;
    stream << "1.5 2\n1.5 3\n";
  }
  std::cout.rdbuf(before);
  EXPECT_EQ(out.str(), Worked);
}

TEST(PHMCStream, UnpacksTheStandardInputByDefault) {
  std::istringstream in(Worked);
  std::streambuf* const before = std::cin.rdbuf(in.rdbuf());
  std::string text;
  {
    PHMCStream stream;
    text = textOf(stream);
  }
  std::cin.rdbuf(before);
  EXPECT_EQ(text, "1.5 2\n1.5 3\n");
}

TEST(PHMCStream, WritesPlainTextIfAsked) {
  std::istringstream in;
  std::ostringstream out;
  PHMCStream stream(in, out, /*plain=*/true);
  stream << "1.5 2\r\n";
  stream.close();
  EXPECT_EQ(out.str(), "1.5 2\r\n");
}

TEST(PHMCStream, ReadsBackWhatItWroteIntoAFile) {
  ScratchFolder const folder;
  std::string const name = (folder.path() / "table.phc").string();
  PHMCStream written(name, /*plain=*/false, Out);
  written << "1.5 2\r\n1.5 3";
  written.close();
  EXPECT_EQ(fileText(name), Worked);
  PHMCStream read(name, /*plain=*/false, In);
  EXPECT_EQ(textOf(read), "1.5 2\n1.5 3\n");
}

TEST(PHMCStream, WritesAFileOfPlainTextAndReadsItBack) {
  ScratchFolder const folder;
  std::string const name = (folder.path() / "table.txt").string();
  PHMCStream written(name, /*plain=*/true, Out);
  written << "1.5 2\r\n";
  written.close();
  EXPECT_EQ(fileText(name), "1.5 2\r\n");
  PHMCStream read(name, /*plain=*/true, In);
  EXPECT_EQ(textOf(read), "1.5 2\r\n");
}

TEST(PHMCStream, ReadsPlainTextUnchanged) {
  ScratchFolder const folder;
  std::string const name = folder.write("table.txt", "1\r\n2\r\n\x1a");
  PHMCStream read(name, /*plain=*/false, In);
  EXPECT_EQ(textOf(read), "1\r\n2\r\n\x1a");
}

TEST(PHMCStream, PassesItsOpenModeOn) {
  ScratchFolder const folder;
  std::string const name = folder.write("table.txt", "1\n");
  {
    PHMCStream more(name, /*plain=*/true, Out | std::ios::app);
    more << "2\n";
  }
  EXPECT_EQ(fileText(name), "1\n2\n");
}

TEST(PHMCStream, FailsQuietlyOnANameThatCannotBeOpened) {
  ScratchFolder const folder;
  PHMCStream missing((folder.path() / "none.phc").string(), false, In);
  EXPECT_TRUE(missing.fail());
  PHMCStream nowhere((folder.path() / "none/x.phc").string(), false, Out);
  EXPECT_TRUE(nowhere.fail());
}

TEST(PHMCStream, LeavesAFileEmptyThatIsNeverWritten) {
  ScratchFolder const folder;
  std::string const name = (folder.path() / "empty.phc").string();
  { PHMCStream unused(name, /*plain=*/false, Out); }
  EXPECT_EQ(fileText(name), "");
}

TEST(PHMCStream, WritesOneEndCodeByCloseAndDestruction) {
  ScratchFolder const folder;
  std::string const name = (folder.path() / "table.phc").string();
  {
    PHMCStream written(name, /*plain=*/false, Out);
    written << "1.5 2\n1.5 3\n";
    written.close();
    written.close();
  }
  EXPECT_EQ(fileText(name), Worked);
}

TEST(PHMCStream, CompletesTheTextWhenItIsDestroyed) {
  ScratchFolder const folder;
  std::string const name = (folder.path() / "table.phc").string();
  {
    PHMCStream written(name, /*plain=*/false, Out);
    written << "1.5 2\n1.5 3\n";
  }
  EXPECT_EQ(fileText(name), Worked);
}

TEST(PHMCStream, SetsBadbitWhereTheTextIsRefused) {
  std::istringstream in;
  std::ostringstream out;
  PHMCStream stream(in, out);
  stream << "1\x1a\n2\n" << std::flush;
  EXPECT_TRUE(stream.bad());
}

TEST(PHMCStream, ThrowsWhereTheTextIsRefusedIfItsMaskHoldsBadbit) {
  std::istringstream in;
  std::ostringstream out;
  PHMCStream stream(in, out);
  stream.exceptions(std::ios::badbit);
  try {
    stream << "1\x1a\n2\n" << std::flush;
    FAIL() << "accepted";
  } catch (std::runtime_error const& failure) {
    EXPECT_STREQ(failure.what(),
                 "Input contains special value -- cannot be compressed!");
  }
}

TEST(PHMCStream, ThrowsFromCloseWhereTheTextIsRefused) {
  std::istringstream in;
  std::ostringstream out;
  PHMCStream stream(in, out);
  stream << "1\x1a\n";
  EXPECT_THROW(stream.close(), std::runtime_error);
}

TEST(PHMCStream, TakesABrokenFileForAShortOne) {
  std::istringstream in(Worked.substr(0, 10));
  std::ostringstream out;
  PHMCStream stream(in, out);
  std::string line;
  EXPECT_FALSE(std::getline(stream, line));
  EXPECT_TRUE(stream.bad());
}

TEST(PHMCStream, ThrowsOnABrokenFileIfItsMaskHoldsBadbit) {
  std::istringstream in(Worked.substr(0, 10));
  std::ostringstream out;
  PHMCStream stream(in, out);
  stream.exceptions(std::ios::badbit);
  std::string line;
  try {
    std::getline(stream, line);
    FAIL() << "accepted";
  } catch (std::runtime_error const& failure) {
    EXPECT_STREQ(failure.what(), "Not enough bits in input!");
  }
}

TEST(PHMCStream, SetsBadbitBeyondTheLimitOfItsText) {
  std::istringstream in(packed("1\n2\n"));
  std::ostringstream out;
  PHMCStream stream(in, out);
  stream.limitText(3);
  std::string line;
  EXPECT_FALSE(std::getline(stream, line));
  EXPECT_TRUE(stream.bad());
  EXPECT_TRUE(stream.exceededLimit());
}

TEST(PHMCStream, LimitsItsTextByTheSizeOfAFile) {
  ScratchFolder const folder;
  // 72 MB of text need a file of a little more than 1 MB.
  std::string const bytes =
      stream(prefixes(4) + "0111" + Bits::Above + prefixes(6) + "1010001" +
             Bits::Above + Bits::End);
  std::string const small = folder.write("small.phc", bytes);
  std::string const large =
      folder.write("large.phc", bytes + std::string(1200000, ' '));
  std::ostringstream out;
  for (std::string const& name : {small, large, std::string("none")}) {
    std::istringstream in(bytes);
    PHMCStream text(in, out);
    text.limitText(name);
    text.ignore(std::numeric_limits<std::streamsize>::max());
    EXPECT_EQ(text.exceededLimit(), name != large) << name;
  }
}

TEST(PHMCStream, UnpacksTextThatWasPackedTwice) {
  std::istringstream in(Worked), none;
  std::ostringstream out;
  PHMCStream inner(in, out);
  PHMCStream outer(inner, out);
  EXPECT_EQ(textOf(outer), "1.5 2\n1.5 3\n");
}

TEST(PHMCStream, TellsOfADiskThatIsFull) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  PHMCStream stream("/dev/full", /*plain=*/false, Out);
  stream << "1.5 2\n";
  stream.close();
  EXPECT_TRUE(stream.bad());
}

TEST(PHMCStream, IsGoodBehindReadingAndClosing) {
  ScratchFolder const folder;
  PHMCStream read(folder.write("table.txt", "1\n"), /*plain=*/false, In);
  int number = 0;
  read >> number;
  read.close();
  EXPECT_TRUE(read.good());
}

TEST(PHMCStream, WritesAndReadsNumbersInTheClassicLocale) {
  GlobalLocale const comma(
      std::locale(std::locale::classic(), new CommaDecimals));
  ScratchFolder const folder;
  std::string const name = (folder.path() / "table.phc").string();
  PHMCStream written(name, /*plain=*/true, Out);
  written << 1234.5 << "\n";
  written.close();
  EXPECT_EQ(fileText(name), "1234.5\n");
  std::istringstream in("2.5\n");
  std::ostringstream out;
  PHMCStream read(in, out);
  double number = 0;
  read >> number;
  EXPECT_EQ(number, 2.5);
}

}  // namespace
