// A few bytes of input that stand for a great deal of text.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/streams/packed_support.h"

namespace {

// Prefixes of factor 17.
std::string prefixes(int count) {
  std::string bits;
  for (int i = 0; i < count; ++i) bits += "1011111";
  return bits;
}

class Reader {
 public:
  explicit Reader(std::string const& bytes) : in(bytes), buffer(in, out) {}

  std::string read(std::size_t size) {
    std::string text(size, '\0');
    text.resize(std::size_t(buffer.sgetn(text.data(), std::streamsize(size))));
    return text;
  }

  std::string failure() {
    try {
      while (!read(65536).empty()) {
      }
    } catch (std::runtime_error const& failure) {
      return failure.what();
    }
    return "no failure";
  }

  std::istringstream in;
  std::ostringstream out;
  OpenBuffer buffer;
};

// Most memory that the process ever had [kB].
long peakMemory() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST(PHMCBufferHostile, DeliversAnEndlessRunOfLinesPieceByPiece) {
  // 17^15 line feeds.
  Reader reader(stream(prefixes(15) + Bits::LineFeed + Bits::End));
  long const before = peakMemory();
  for (int i = 0; i < 16; ++i)
    ASSERT_EQ(reader.read(1 << 18), std::string(1 << 18, '\n'));
  EXPECT_LT(peakMemory() - before, 64 * 1024);
}

TEST(PHMCBufferHostile, DeliversAnEndlessRunOfTheLineAbovePieceByPiece) {
  Reader reader(
      stream("0001 0010 0011" + prefixes(15) + Bits::Above + Bits::End));
  long const before = peakMemory();
  std::string expected;
  for (int i = 0; i < 1 << 16; ++i) expected += "123\n";
  for (int i = 0; i < 16; ++i) ASSERT_EQ(reader.read(1 << 18), expected);
  EXPECT_LT(peakMemory() - before, 64 * 1024);
}

TEST(PHMCBufferHostile, RefusesAFactorBeyond64Bits) {
  Reader reader(stream("0001 11" + prefixes(16) + Bits::LineFeed + Bits::End));
  EXPECT_EQ(reader.failure(), "Repeat factor too large in input!");
}

TEST(PHMCBufferHostile, RefusesEndlessPrefixes) {
  Reader reader("PHMC" + bytesOf(prefixes(100000)));
  EXPECT_EQ(reader.failure(), "Repeat factor too large in input!");
}

TEST(PHMCBufferHostile, RefusesALineAboveOneGibibyteBeforeItTakesMemory) {
  long const before = peakMemory();
  // 17^8 is 6.5 times 2^30.
  Reader reader(stream(prefixes(8) + "0001 11" + Bits::End));
  EXPECT_EQ(reader.failure(), "Line too long in input!");
  EXPECT_LT(peakMemory() - before, 64 * 1024);
}

TEST(PHMCBufferHostile, RefusesALineThatGrowsBeyondTheLimit) {
  std::string bits;
  for (int i = 0; i < 100; ++i) bits += "1011111 1011111 0001";
  Reader fitting(stream(bits + Bits::Above + Bits::End));
  fitting.buffer.lineLimit = 28900;
  EXPECT_EQ(fitting.failure(), "no failure");
  Reader tooLong(stream(bits + Bits::Above + Bits::End));
  tooLong.buffer.lineLimit = 28899;
  EXPECT_EQ(tooLong.failure(), "Line too long in input!");
}

TEST(PHMCBufferHostile, DeliversLongLinesThatRepeat) {
  // 17^5 bytes, and a line end; then the same again, twice.
  std::string line(1419857, '7');
  line += '\n';
  Reader reader(stream(prefixes(5) + "0111" + Bits::Above + prefixes(5) +
                       "1010000" + Bits::Above + Bits::Above + Bits::Above +
                       Bits::End));
  EXPECT_EQ(reader.read(3 * line.size() + 1), line + line + line);
}

TEST(PHMCBufferHostile, PacksAndUnpacksALineOfManyFlushesInLinearTime) {
  std::mt19937 random(9);
  std::string line;
  while (line.size() < 8u << 20)
    line += std::to_string(random()) + (line.size() % 3 ? " " : "e");
  std::string const text = "0\n" + line + "\n" + line + "\n";
  EXPECT_EQ(unpacked(packed(text)).text, text);
}

}  // namespace
