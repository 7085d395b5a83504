#include "photarium/streams/PHMCBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/streams/packed_support.h"

namespace {

constexpr int Eof = std::char_traits<char>::eof();

std::string const Refusal =
    "Input contains special value -- cannot be compressed!";

void put(std::streambuf& buffer, std::string const& text) {
  buffer.sputn(text.data(), std::streamsize(text.size()));
}

std::string getAll(std::streambuf& buffer) {
  return {std::istreambuf_iterator<char>(&buffer), {}};
}

template <class Action>
std::string failureOf(Action action) {
  try {
    action();
  } catch (std::runtime_error const& failure) {
    return failure.what();
  }
  return "no failure";
}

// The bits that one protected operation writes.
template <class Action>
std::string written(Action action) {
  std::stringstream out;
  OpenBuffer buffer(out, out);
  action(buffer);
  buffer.write(/*flushAll=*/true);
  return out.str();
}

// Format

TEST(PHMCBuffer, HasTheConstantsOfTheFormat) {
  EXPECT_EQ(PHMCBuffer::Header, "PHMC");
  EXPECT_EQ(OpenBuffer::CRLF, "\r\n");
  EXPECT_EQ(OpenBuffer::RepeatCode, 5);
  EXPECT_EQ(OpenBuffer::RepeatCodeLength, 3);
  EXPECT_EQ(OpenBuffer::RepeatBits, 4);
  EXPECT_EQ(OpenBuffer::RepeatMask, 15);
  EXPECT_EQ(OpenBuffer::MaxRepeat, 17);
  EXPECT_EQ(OpenBuffer::Subst, 26);
}

TEST(PHMCBuffer, StartsAStateWithNothing) {
  PHMCBuffer::StreamState const state;
  EXPECT_EQ(state.bits, 0u);
  EXPECT_EQ(state.count, 0);
  EXPECT_EQ(state.first + state.second + state.third, "");
  EXPECT_FALSE(state.started || state.finished || state.plain);
}

TEST(PHMCBuffer, PacksTwoLinesInTwelveBytes) {
  EXPECT_EQ(packed("1.5 2\n1.5 3\n"),
            std::string("PHMC\x19\xBA\xCC\x2A\x79\xF3\x8D\0", 12));
}

TEST(PHMCBuffer, UnpacksTheTwelveBytes) {
  EXPECT_EQ(
      unpacked(std::string("PHMC\x19\xBA\xCC\x2A\x79\xF3\x8D\0", 12)).text,
      "1.5 2\n1.5 3\n");
}

TEST(PHMCBuffer, GivesEachSymbolItsCode) {
  EXPECT_EQ(packed("01234567\n"),
            stream("0000 0001 0010 0011 0100 0101 0110 0111 11" + Bits::End));
  EXPECT_EQ(packed("89 +-.\n"),
            stream("10000 10001 1001100 10011010 100110110 100110111 11" +
                   Bits::End));
  EXPECT_EQ(packed("E\n"), stream("100111 01000101 11" + Bits::End));
}

TEST(PHMCBuffer, CodesEveryOtherByteByItsEscape) {
  std::string const own = "0123456789 +-.\n\r\x1a";
  for (int byte = 0; byte < 256; ++byte) {
    if (own.find(char(byte)) != own.npos) continue;
    std::string bits;
    for (int bit = 7; bit >= 0; --bit) bits += byte >> bit & 1 ? '1' : '0';
    EXPECT_EQ(packed(std::string(1, char(byte)) + "\n"),
              stream(Bits::Escape + bits + Bits::Above + Bits::End))
        << byte;
  }
}

TEST(PHMCBuffer, EndsALineThatIsShorterThanTheOneAboveWithALineFeed) {
  EXPECT_EQ(packed("12\n1\n"), stream("0001 0010 11 11 10010" + Bits::End));
}

TEST(PHMCBuffer, EndsALineOfTheLengthOfTheOneAboveWithSubst) {
  EXPECT_EQ(packed("1\n2\n"), stream("0001 11 0010 11" + Bits::End));
}

TEST(PHMCBuffer, EndsALongerLineWithSubst) {
  EXPECT_EQ(packed("1\n234\n"),
            stream("0001 11 0010 0011 0100 11" + Bits::End));
}

TEST(PHMCBuffer, CodesAnEmptyLineBehindTextAsALineFeed) {
  EXPECT_EQ(packed("1\n\n"), stream("0001 11 10010" + Bits::End));
}

TEST(PHMCBuffer, CodesAnEmptyLineBehindAnEmptyLineAsSubst) {
  EXPECT_EQ(packed("1\n\n\n"), stream("0001 11 10010 11" + Bits::End));
}

TEST(PHMCBuffer, CodesASecondEqualLineAsOneRun) {
  // The first line's terminator belongs to the run: 1 + 4 + 1.
  EXPECT_EQ(packed("1234\n1234\n"),
            stream("0001 0010 0011 0100 101 0100 11" + Bits::End));
}

TEST(PHMCBuffer, PacksAThousandEqualLinesInAFewBytes) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "1.2345E+01 6.7890E-02\n";
  EXPECT_LT(packed(text).size(), 50u);
  EXPECT_EQ(unpacked(packed(text)).text, text);
}

TEST(PHMCBuffer, ContinuesARunAcrossFlushes) {
  std::stringstream out;
  PHMCBuffer buffer(out, out, /*plain=*/false);
  for (int i = 0; i < 300; ++i) {
    put(buffer, "7\n");
    buffer.pubsync();
  }
  buffer.close();
  std::string text;
  for (int i = 0; i < 300; ++i) text += "7\n";
  EXPECT_EQ(out.str(), packed(text));
}

// Runs

TEST(PHMCBuffer, WritesShortRunsAsCopies) {
  EXPECT_EQ(written([](auto& b) { b.repeat(1, 3, 2); }), bytesOf("11"));
  EXPECT_EQ(written([](auto& b) { b.repeat(3, 3, 2); }), bytesOf("11 11 11"));
  EXPECT_EQ(written([](auto& b) { b.repeat(4, 3, 2); }),
            bytesOf("11 11 11 11"));
  EXPECT_EQ(written([](auto& b) { b.repeat(2, 1, 4); }), bytesOf("0001 0001"));
}

TEST(PHMCBuffer, WritesRunsByAPrefixWhereThatIsNoLonger) {
  EXPECT_EQ(written([](auto& b) { b.repeat(5, 3, 2); }), bytesOf("1010011 11"));
  EXPECT_EQ(written([](auto& b) { b.escape('E', 2); }),
            bytesOf("1010000 10011101000101"));
  // 7 + 7 bits either way take the prefix.
  EXPECT_EQ(written([](auto& b) { b.repeat(2, 76, 7); }),
            bytesOf("1010000 1001100"));
}

TEST(PHMCBuffer, WritesSeventeenByOnePrefix) {
  EXPECT_EQ(written([](auto& b) { b.newline(17); }), bytesOf("1011111 10010"));
}

TEST(PHMCBuffer, WritesEighteenAsSeventeenAndOne) {
  EXPECT_EQ(written([](auto& b) { b.newline(18); }),
            bytesOf("1011111 10010 10010"));
}

TEST(PHMCBuffer, MultipliesPrefixes) {
  EXPECT_EQ(written([](auto& b) { b.newline(300); }),
            bytesOf("1011111 1011111 10010 1011001 10010"));
  EXPECT_EQ(written([](auto& b) { b.newline(289); }),
            bytesOf("1011111 1011111 10010"));
  EXPECT_EQ(written([](auto& b) { b.newline(34); }),
            bytesOf("1011111 1010000 10010"));
}

TEST(PHMCBuffer, WritesOneSymbolForARunOfNone) {
  EXPECT_EQ(written([](auto& b) { b.newline(0); }), bytesOf("10010"));
}

TEST(PHMCBuffer, RefusesToRepeatLessThanOneBit) {
  std::stringstream out;
  OpenBuffer buffer(out, out);
  EXPECT_EQ(failureOf([&] { buffer.repeat(3, 1, 0); }),
            "Cannot repeat less than one bit!");
}

TEST(PHMCBuffer, UnpacksARunOfEveryLengthThatItPacks) {
  for (std::size_t count : {2u, 16u, 17u, 18u, 34u, 288u, 289u, 290u, 4913u,
                            5000u, 83521u, 100000u}) {
    std::string const text = std::string(count, 'x') + "\n";
    EXPECT_EQ(unpacked(packed(text)).text, text) << count;
  }
}

// Bits

TEST(PHMCBuffer, AppendsTheLowBitsFromTheTop) {
  EXPECT_EQ(written([](auto& b) {
              b.append(0xFFF5, 4);
              b.append(0x2745, 14);
              b.append(3, 0);
              b.append(3, -1);
            }),
            bytesOf("0101 10011101000101"));
}

TEST(PHMCBuffer, AppendsZerosAboveAllBitsOfTheValue) {
  EXPECT_EQ(written([](auto& b) { b.append(0x80000003u, 40); }),
            bytesOf("00000000 10000000 00000000 00000000 00000011"));
}

TEST(PHMCBuffer, WritesWholeBytesBeforeItAppends) {
  std::stringstream out;
  OpenBuffer buffer(out, out);
  buffer.append(0x41, 8);
  EXPECT_EQ(out.str(), "");
  buffer.append(1, 1);
  EXPECT_EQ(out.str(), "A");
  buffer.write(/*flushAll=*/false);
  EXPECT_EQ(out.str(), "A");
  buffer.write(/*flushAll=*/true);
  EXPECT_EQ(out.str(), "A\x80");
}

TEST(PHMCBuffer, HoldsBackTheLastBitsOfAFlushAsAppendDoes) {
  std::stringstream out;
  OpenBuffer buffer(out, out);
  put(buffer, "1234x\n5");
  buffer.pubsync();  // the run of the line end waits: 16 + 14 bits
  EXPECT_EQ(out.str(), stream("0001 0010 0011 0100 10011101"));
}

TEST(PHMCBuffer, ExtractsBitsFromTheTop) {
  std::istringstream in("\xA5\x0F\xC3\x01");
  std::ostringstream out;
  OpenBuffer buffer(in, out);
  EXPECT_EQ(buffer.extract(1), 1u);
  EXPECT_EQ(buffer.extract(3), 2u);
  EXPECT_EQ(buffer.extract(16), 0x50FCu);
  EXPECT_EQ(buffer.extract(12), 0x301u);
}

TEST(PHMCBuffer, RefusesWidthsThatItCannotExtract) {
  std::istringstream in("1234");
  std::ostringstream out;
  OpenBuffer buffer(in, out);
  for (int width : {-1, 0, 17})
    EXPECT_EQ(failureOf([&] { buffer.extract(width); }),
              "Impossible number of bits requested!");
  EXPECT_EQ(buffer.extract(8), unsigned('1'));
}

TEST(PHMCBuffer, ExtractsNothingBehindTheEnd) {
  std::istringstream in("1");
  std::ostringstream out;
  OpenBuffer buffer(in, out);
  EXPECT_EQ(failureOf([&] { buffer.extract(9); }), "Not enough bits in input!");
}

// Text

TEST(PHMCBuffer, LeavesTheOutputEmptyIfNothingIsWritten) {
  EXPECT_EQ(packed(""), "");
}

TEST(PHMCBuffer, MeetsTheEndOfAnEmptyInputAtOnce) {
  EXPECT_EQ(unpacked(""), Outcome());
}

TEST(PHMCBuffer, HandsTextWithoutTheMagicOn) {
  for (std::string const text : {"P", "PHM", "abc", "PHMX", "1 2\r\n3\x1a\n"})
    EXPECT_EQ(unpacked(text).text, text);
}

TEST(PHMCBuffer, HandsLongPlainTextOn) {
  std::string const text(200000, 'x');
  EXPECT_EQ(unpacked(text).text, text);
}

TEST(PHMCBuffer, MeetsTheEndBehindTheMagicAlone) {
  EXPECT_EQ(unpacked("PHMC").failure, "Not enough bits in input!");
}

TEST(PHMCBuffer, UnpacksAnEndCodeAloneToNothing) {
  EXPECT_EQ(unpacked(stream(Bits::End)), Outcome());
}

TEST(PHMCBuffer, CopiesPackedTextThrough) {
  std::string const once = packed("1 2 3\n4 5 6\n");
  EXPECT_EQ(packed(once), once);
}

TEST(PHMCBuffer, CopiesPackedTextOfManyFlushesThrough) {
  std::mt19937 random(5);
  std::string const once = packed(randomTable(random, 100000));
  EXPECT_EQ(packed(once), once);
}

TEST(PHMCBuffer, LooksForTheMagicInTheFirstFlushAlone) {
  std::stringstream out;
  PHMCBuffer buffer(out, out, /*plain=*/false);
  put(buffer, "PH");
  buffer.pubsync();
  put(buffer, "MC\n");
  buffer.close();
  EXPECT_EQ(unpacked(out.str()).text, "PHMC\n");
}

TEST(PHMCBuffer, TerminatesTheLastLine) {
  EXPECT_EQ(unpacked(packed("1 2\n3")).text, "1 2\n3\n");
}

TEST(PHMCBuffer, KeepsEveryByteButSubst) {
  std::string text;
  for (int byte = 0; byte < 256; ++byte)
    if (byte != 26 && byte != '\r') text += char(byte);
  text += text + "\n";
  EXPECT_EQ(unpacked(packed(text)).text, text);
}

TEST(PHMCBuffer, ReadsAnyLineEnd) {
  EXPECT_EQ(unpacked(packed("a\r\nb\n\rc\rd\ne")).text, "a\nb\nc\nd\ne\n");
  EXPECT_EQ(unpacked(packed("a\n\nb\r\rc")).text, "a\n\nb\n\nc\n");
  EXPECT_EQ(unpacked(packed("\r\n\r\n\n\r")).text, "\n\n\n");
}

TEST(PHMCBuffer, ReadsALineEndThatAFlushParts) {
  std::stringstream out;
  PHMCBuffer buffer(out, out, /*plain=*/false);
  for (char c : std::string("a\r\nb\n\rc\r\r")) {
    buffer.sputc(c);
    buffer.pubsync();
  }
  buffer.close();
  EXPECT_EQ(unpacked(out.str()).text, "a\nb\nc\n\n");
}

TEST(PHMCBuffer, DropsALineThatHasNoEndAheadOfTheEndCode) {
  EXPECT_EQ(unpacked(stream("0001 11 0010" + Bits::End)).text, "1\n");
}

TEST(PHMCBuffer, TakesAnEscapedLineFeedForAByteOfTheLine) {
  // The second line repeats three bytes: 1, the line feed and 2.
  EXPECT_EQ(
      unpacked(stream("0001 100111 00001010 0010 11 11 11 11 11" + Bits::End))
          .text,
      "1\n2\n1\n2\n");
}

TEST(PHMCBuffer, IgnoresAPrefixAheadOfTheEndCode) {
  EXPECT_EQ(unpacked(stream("0001 11 1011111" + Bits::End)).text, "1\n");
}

TEST(PHMCBuffer, RepeatsTheLineAboveWithItsEnd) {
  // 3 bytes and the terminator, three times: 1 + 3 * 4 copies of Subst.
  EXPECT_EQ(unpacked(stream("0001 0010 0011 1011011 11" + Bits::End)).text,
            "123\n123\n123\n123\n");
}

// Where the input stands

TEST(PHMCBuffer, LeavesWhatIsBehindThePackedText) {
  EXPECT_EQ(unpacked(packed("1 2\n3 4\n") + "behind").behind, "behind");
}

TEST(PHMCBuffer, ReadsPackedTextsOneBehindTheOther) {
  std::istringstream in(packed("1 2\n") + packed("3\n") + packed("4\n4\n"));
  std::ostringstream out;
  std::string text;
  for (int i = 0; i < 3; ++i) {
    PHMCBuffer buffer(in, out, /*plain=*/false);
    text += getAll(buffer) + "|";
  }
  EXPECT_EQ(text, "1 2\n|3\n|4\n4\n|");
}

TEST(PHMCBuffer, ReadsNoByteTooManyFromASourceWithoutBuffer) {
  struct Unbuffered : std::streambuf {
    explicit Unbuffered(std::string text) : bytes(std::move(text)) {}
    int underflow() override {
      return next < bytes.size() ? traits_type::to_int_type(bytes[next])
                                 : traits_type::eof();
    }
    int uflow() override {
      int const c = underflow();
      if (c != traits_type::eof()) ++next;
      return c;
    }
    std::string bytes;
    std::size_t next = 0;
  };
  for (std::string const text : {"1\n", "12\n12\n", "1.5 2\n1.5 3\n", "x\n"}) {
    Unbuffered source(packed(text) + "behind");
    std::istream in(&source);
    std::ostringstream out;
    PHMCBuffer buffer(in, out, /*plain=*/false);
    EXPECT_EQ(getAll(buffer), text);
    EXPECT_EQ(source.bytes.substr(source.next), "behind") << text;
  }
}

TEST(PHMCBuffer, ReadsNothingFromAFailedInput) {
  std::istringstream in(packed("1\n"));
  in.setstate(std::ios::failbit);
  std::ostringstream out;
  PHMCBuffer buffer(in, out, /*plain=*/false);
  EXPECT_EQ(buffer.sgetc(), Eof);
}

TEST(PHMCBuffer, SetsTheFailureOfAnInputThatEndsTooSoon) {
  std::istringstream in(packed("1\n").substr(0, 5));
  std::ostringstream out;
  PHMCBuffer buffer(in, out, /*plain=*/false);
  EXPECT_EQ(failureOf([&] { buffer.sgetc(); }), "Not enough bits in input!");
  EXPECT_TRUE(in.eof() && in.fail());
  EXPECT_EQ(buffer.sgetc(), Eof);
}

TEST(PHMCBuffer, TakesAThrowingSourceForItsEnd) {
  struct Broken : std::streambuf {
    explicit Broken(std::string text) : bytes(std::move(text)) {
      setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
    }
    int underflow() override { throw std::runtime_error("broken"); }
    std::string bytes;
  };
  std::string const text = "123456789012345678901234567890";
  for (std::size_t size : {4u, 5u, 10u, 20u}) {
    Broken source(packed(text + "\n" + text + "1\n").substr(0, size));
    std::istream in(&source);
    std::ostringstream out;
    PHMCBuffer buffer(in, out, /*plain=*/false);
    EXPECT_EQ(failureOf([&] { buffer.sgetc(); }), "Not enough bits in input!");
    EXPECT_TRUE(in.bad());
  }
}

// Life

TEST(PHMCBuffer, WritesPlainTextIfAsked) {
  std::stringstream out;
  PHMCBuffer buffer(out, out, /*plain=*/true);
  put(buffer, "1 2\r\n\x1a");
  buffer.close();
  EXPECT_EQ(out.str(), "1 2\r\n\x1a");
}

TEST(PHMCBuffer, UnpacksWhatIsPackedThoughItWritesPlainText) {
  std::istringstream in(packed("1 2\n"));
  std::ostringstream out;
  PHMCBuffer buffer(in, out, /*plain=*/true);
  EXPECT_EQ(getAll(buffer), "1 2\n");
}

TEST(PHMCBuffer, WritesOneEndCodeHoweverOftenItIsClosed) {
  std::stringstream out;
  {
    PHMCBuffer buffer(out, out, /*plain=*/false);
    put(buffer, "1 2\n");
    buffer.close();
    buffer.close();
  }
  EXPECT_EQ(out.str(), packed("1 2\n"));
}

TEST(PHMCBuffer, WritesTheEndCodeWhenItIsDestroyed) {
  std::stringstream out;
  {
    PHMCBuffer buffer(out, out, /*plain=*/false);
    put(buffer, "1 2\n");
  }
  EXPECT_EQ(out.str(), packed("1 2\n"));
}

TEST(PHMCBuffer, CodesTextBehindTheEndCodeWithoutASecondOne) {
  std::stringstream out;
  {
    OpenBuffer buffer(out, out);
    put(buffer, "1\n");
    buffer.close();
    put(buffer, "2345\n6\n");
  }
  // The terminator of the last line waits for good, and so do the last bits.
  EXPECT_EQ(out.str(), packed("1\n") + bytesOf("0010 0011"));
}

TEST(PHMCBuffer, WritesNoEndCodeForTextBehindAnEmptyClose) {
  std::stringstream out;
  {
    PHMCBuffer buffer(out, out, /*plain=*/false);
    buffer.close();
    put(buffer, "1 2\n");
  }
  EXPECT_EQ(out.str(), "PHMC");
}

TEST(PHMCBuffer, ReturnsZeroFromItsOperations) {
  std::stringstream out;
  OpenBuffer buffer(out, out);
  EXPECT_EQ(buffer.overflow(Eof), 0);
  EXPECT_EQ(buffer.overflow('7'), 0);
  EXPECT_EQ(buffer.sync(), 0);
}

TEST(PHMCBuffer, ReportsAFailedOverflowFromSync) {
  struct Failing : OpenBuffer {
    using OpenBuffer::OpenBuffer;
    int overflow(int) override { return Eof; }
  };
  std::stringstream out;
  Failing buffer(out, out);
  EXPECT_EQ(buffer.pubsync(), -1);
}

TEST(PHMCBuffer, TakesTheCharacterOfOverflowIntoAFullArea) {
  std::string const text = std::string(4095, '7') + "\n" + "8\n";
  std::stringstream out;
  OpenBuffer buffer(out, out);
  put(buffer, text.substr(0, 4096));
  EXPECT_EQ(out.str(), "");
  buffer.overflow('8');
  EXPECT_EQ(out.str().substr(0, 4), "PHMC");
  put(buffer, "\n");
  buffer.close();
  EXPECT_EQ(out.str(), packed(text));
}

TEST(PHMCBuffer, MovesTextToItsGetArea) {
  std::stringstream none;
  OpenBuffer buffer(none, none);
  std::string text = "12345";
  std::size_t used = 65536 - 3;
  buffer.outputString(text, used);
  EXPECT_EQ(text, "45");
  EXPECT_EQ(used, 65536u);
}

TEST(PHMCBuffer, DeliversAnEmptyLine) {
  std::istringstream in(stream(Bits::End));
  std::ostringstream out;
  OpenBuffer buffer(in, out);
  std::size_t used = 65536;
  buffer.outputLine(used);
  EXPECT_EQ(used, 65536u);
  EXPECT_EQ(getAll(buffer), "\n");
}

TEST(PHMCBuffer, CopiesWithAreasOfItsOwn) {
  std::istringstream in(packed("1 2\n3 4\n"));
  std::stringstream out;
  {
    PHMCBuffer first(in, out, /*plain=*/false);
    EXPECT_EQ(first.sbumpc(), '1');
    PHMCBuffer second(first);
    EXPECT_EQ(first.sbumpc(), ' ');
    EXPECT_EQ(getAll(second), " 2\n3 4\n");
    EXPECT_EQ(getAll(first), "2\n3 4\n");
    put(first, "5\n");
    put(second, "6\n");
    first.close();
    EXPECT_EQ(out.str(), packed("5\n"));
  }
  EXPECT_EQ(out.str(), packed("5\n") + packed("6\n"));
}

TEST(PHMCBuffer, CopiesTextThatWaitsInThePutArea) {
  std::stringstream out;
  {
    PHMCBuffer first(out, out, /*plain=*/false);
    put(first, "5\n");
    PHMCBuffer const second(first);
  }
  EXPECT_EQ(out.str(), packed("5\n") + packed("5\n"));
}

TEST(PHMCBuffer, CopiesInTheMiddleOfALongText) {
  std::mt19937 random(11);
  std::string const bytes = packed(randomTable(random, 300000));
  std::string const text = unpacked(bytes).text;
  std::istringstream in(bytes);
  std::ostringstream out;
  PHMCBuffer first(in, out, /*plain=*/false);
  std::string read(100000, '\0');
  first.sgetn(read.data(), std::streamsize(read.size()));
  PHMCBuffer second(first);
  EXPECT_EQ(read + getAll(second), text);
}

// Failures

TEST(PHMCBuffer, RefusesSubstAndCanBeDestroyed) {
  std::stringstream out;
  {
    PHMCBuffer buffer(out, out, /*plain=*/false);
    put(buffer, "1\n2\x1a\n");
    EXPECT_EQ(failureOf([&] { buffer.close(); }), Refusal);
    EXPECT_EQ(failureOf([&] { buffer.close(); }), Refusal);
  }
  EXPECT_EQ(out.str(), "PHMC");
}

TEST(PHMCBuffer, RefusesSubstInALineWithoutEnd) {
  std::stringstream out;
  PHMCBuffer buffer(out, out, /*plain=*/false);
  put(buffer, "1\n2\x1a");
  EXPECT_EQ(buffer.pubsync(), 0);
  EXPECT_EQ(failureOf([&] { buffer.close(); }), Refusal);
}

TEST(PHMCBuffer, LeavesARefusedTextWithoutEndCode) {
  std::stringstream out;
  {
    PHMCBuffer buffer(out, out, /*plain=*/false);
    put(buffer, "1\n2\n3\n");
    buffer.pubsync();
    put(buffer, "\x1a\n");
  }
  EXPECT_EQ(unpacked(out.str()).failure, "Not enough bits in input!");
}

TEST(PHMCBuffer, IsDestroyedQuietlyOverAnOutputThatThrows) {
  std::ostringstream out;
  std::istringstream in;
  out.exceptions(std::ios::badbit | std::ios::failbit);
  EXPECT_NO_THROW({
    PHMCBuffer buffer(in, out, false);
    put(buffer, "1 2\n");
    EXPECT_ANY_THROW(out.setstate(std::ios::badbit));
  });
}

TEST(PHMCBuffer, RefusesALineLongerThanItsLimit) {
  std::stringstream out;
  OpenBuffer buffer(out, out);
  buffer.lineLimit = 10000;
  put(buffer, std::string(10000, 'x') + "\n");
  EXPECT_EQ(buffer.pubsync(), 0);
  EXPECT_EQ(failureOf([&] {
              put(buffer, std::string(10001, 'x'));
              buffer.pubsync();
            }),
            "Line too long to be compressed!");
}

TEST(PHMCBuffer, NeedsEveryByteOfPackedText) {
  std::mt19937 random(3);
  std::string const bytes = packed(randomTable(random, 3000));
  for (std::size_t size = 4; size < bytes.size(); ++size)
    ASSERT_EQ(unpacked(bytes.substr(0, size)).failure,
              "Not enough bits in input!")
        << size;
}

TEST(PHMCBuffer, DeliversTheSameTextAheadOfATruncationAsThePlainCodec) {
  std::mt19937 random(4);
  std::string const bytes = packed(randomTable(random, 300000));
  for (std::size_t size = 0; size < bytes.size(); size += 997)
    ASSERT_EQ(unpacked(bytes.substr(0, size)),
              outcome<PlainCodec>(bytes.substr(0, size)))
        << size;
}

// Against the plain codec

// Writes `text` in random pieces with random flushes.
template <class Codec>
std::string packedInPieces(std::string const& text, unsigned seed) {
  std::mt19937 random(seed);
  std::stringstream out;
  Codec codec(out, out);
  for (std::size_t at = 0; at < text.size();) {
    std::size_t const size = std::min<std::size_t>(
        random() % (random() % 9 ? 60 : 9000) + 1, text.size() - at);
    codec.sputn(text.data() + at, std::streamsize(size));
    at += size;
    if (random() % 3 == 0) codec.pubsync();
  }
  codec.close();
  return out.str();
}

TEST(PHMCBuffer, PacksAsThePlainCodecDoes) {
  std::mt19937 random(1);
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::string const text = randomTable(random, random() % 20000);
    std::string const bytes = packedInPieces<PlainCodec>(text, seed);
    ASSERT_EQ(packedInPieces<OpenBuffer>(text, seed), bytes) << seed;
    ASSERT_EQ(unpacked(bytes), outcome<PlainCodec>(bytes)) << seed;
  }
}

TEST(PHMCBuffer, PacksTextOfAnyBytesAsThePlainCodecDoes) {
  std::mt19937 random(2);
  for (unsigned seed = 0; seed < 500; ++seed) {
    std::string text;
    auto const span = 1 + random() % 200;
    for (auto size = random() % 300; size > 0; --size) {
      char const c = char(random() % span + 7);
      text += c == 26 ? '\0' : c;
    }
    std::string const bytes = packedInPieces<PlainCodec>(text, seed);
    ASSERT_EQ(packedInPieces<OpenBuffer>(text, seed), bytes) << seed;
    ASSERT_EQ(unpacked(bytes), outcome<PlainCodec>(bytes)) << seed;
  }
}

TEST(PHMCBuffer, UnpacksGarbageAsThePlainCodecDoes) {
  std::mt19937 random(6);
  int compared = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = "PHMC";
    for (auto size = random() % 40; size > 0; --size) bytes += char(random());
    try {
      Outcome const expected = outcome<PlainCodec>(bytes);
      ASSERT_EQ(unpacked(bytes), expected) << i;
      ++compared;
    } catch (PlainCodec::Excess) {
      // A run that only the library's codec can deliver.
    }
  }
  EXPECT_GT(compared, 15000);
}

TEST(PHMCBuffer, UnpacksDamagedTextAsThePlainCodecDoes) {
  std::mt19937 random(8);
  std::string const bytes = packed(randomTable(random, 20000));
  for (int i = 0; i < 300; ++i) {
    std::string damaged = bytes;
    damaged[4 + random() % (bytes.size() - 4)] ^= char(1 << random() % 8);
    try {
      Outcome const expected = outcome<PlainCodec>(damaged);
      ASSERT_EQ(unpacked(damaged), expected) << i;
    } catch (PlainCodec::Excess) {
      // As above.
    }
  }
}

}  // namespace
