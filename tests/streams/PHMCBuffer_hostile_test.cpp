// A few bytes of input that stand for a great deal of text.

#include <gtest/gtest.h>

#include "tests/streams/packed_support.h"
#include "tests/support/memory.h"

namespace {

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

TEST(PHMCBufferHostile, RefusesALineWhoseLengthIsZeroIn32Bits) {
  std::string bits;
  for (int i = 0; i < 8; ++i) bits += "101 1110";  // a factor of 16
  Reader reader(stream(bits + "0001 11" + Bits::End));
  EXPECT_EQ(reader.failure(), "Line too long in input!");
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

TEST(PHMCBufferHostile, EndsTextAtItsLimit) {
  std::string const bytes = packed("1\n234\n234\n\n");
  for (std::size_t const limit : {11u, 12u, 1000u}) {
    Reader fitting(bytes);
    fitting.buffer.limitText(limit - 1);
    fitting.buffer.limitText(limit);
    EXPECT_EQ(fitting.failure(), "no failure") << limit;
    EXPECT_FALSE(fitting.buffer.exceededLimit());
  }
  for (std::size_t const limit : {0u, 1u, 2u, 4u, 5u, 6u, 9u, 10u}) {
    Reader tooLong(bytes);
    tooLong.buffer.limitText(limit);
    EXPECT_EQ(tooLong.failure(), "Packed text is too long") << limit;
    EXPECT_TRUE(tooLong.buffer.exceededLimit());
  }
}

TEST(PHMCBufferHostile, EndsEndlessTextAtItsLimit) {
  long const before = peakMemory();
  for (auto const& bytes : Endless::All) {
    Reader reader(bytes);
    reader.buffer.limitText(1 << 22);
    EXPECT_EQ(reader.failure(), "Packed text is too long");
    EXPECT_TRUE(reader.buffer.exceededLimit());
  }
  EXPECT_LT(peakMemory() - before, 64 * 1024);
}

TEST(PHMCBufferHostile, KeepsTheLimitInACopy) {
  Reader reader(Endless::LineFeeds);
  reader.buffer.limitText(100000);
  EXPECT_EQ(reader.read(10), std::string(10, '\n'));
  PHMCBuffer copy(reader.buffer);
  std::string text(100000, '\0');
  EXPECT_THROW(copy.sgetn(text.data(), 100000), std::runtime_error);
  EXPECT_TRUE(copy.exceededLimit());
}

TEST(PHMCBufferHostile, HasNoLimitForPlainText) {
  Reader reader(std::string(100000, 'x'));
  reader.buffer.limitText(10);
  EXPECT_EQ(reader.read(200000).size(), 100000u);
  EXPECT_FALSE(reader.buffer.exceededLimit());
}

TEST(PHMCBufferHostile, TakesASixtyfourfoldTextForPlausible) {
  std::uint64_t const mebibyte = 1 << 20;
  EXPECT_EQ(PHMCBuffer::plausibleText(0), 64 * mebibyte);
  EXPECT_EQ(PHMCBuffer::plausibleText(mebibyte), 64 * mebibyte);
  EXPECT_EQ(PHMCBuffer::plausibleText(2 * mebibyte), 128 * mebibyte);
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
