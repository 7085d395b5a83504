#include "photarium/streams/PHMCBuffer.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "photarium/streams/packed_codes.h"

// Life and writing; PHMCBuffer_reading.cpp has the rest.

namespace {

using PackedText::Code;
using PackedText::Codes;
using PackedText::EndCode;
using PackedText::EscapeBits;
using PackedText::EscapeMark;
using PackedText::LineFeedCode;
using PackedText::Magic;
using PackedText::PrefixBits;
using Traits = std::char_traits<char>;

// Bits of several codes, which go to the output as whole words. It leaves the
// state as PHMCBuffer::append() does.
class BitSink {
 public:
  BitSink(unsigned int firstBits, int firstCount, std::ostream& target)
      : bits(firstBits), count(firstCount), out(target) {}

  void append(unsigned int value, int nbits) {
    bits = bits << nbits | value;
    count += nbits;
    lastBits = nbits;
    if (count >= WordBits + Kept) putWord();
  }

  // Writes all bytes but those of the last 8 bits or less that were added.
  void finish(unsigned int& leftBits, int& leftCount) {
    if (lastBits > 0) {
      int const step = (lastBits - 1) % 8 + 1;
      int const kept = (count - step) % 8 + step;
      while (count > kept) putByte();
    }
    flush();
    leftBits = static_cast<unsigned int>(bits & ((1u << count) - 1));
    leftCount = count;
  }

 private:
  static constexpr int WordBits = 32;
  static constexpr int Kept = 16;  // no fewer stay behind a word

  void putByte() {
    count -= 8;
    buffer[size++] = static_cast<char>(bits >> count & 255);
  }

  void flush() {
    out.write(buffer, static_cast<std::streamsize>(size));
    size = 0;
  }

  void putWord() {
    for (int byte = 0; byte < WordBits / 8; ++byte) putByte();
    if (size + WordBits / 8 + 2 > sizeof(buffer)) flush();
  }

  std::uint64_t bits;
  int count;
  int lastBits = 0;
  std::ostream& out;
  char buffer[4096];
  std::size_t size = 0;
};

bool isLineEnd(char c) {
  return c == '\n' || c == '\r';
}

}  // namespace

std::string const PHMCBuffer::Header(Magic);
std::string const PHMCBuffer::CRLF = "\r\n";

PHMCBuffer::PHMCBuffer(std::istream& source, std::ostream& target, bool plain)
    : input(&source), output(&target) {
  writing.started = plain;
  writing.plain = plain;
  setp(putArea, putArea + PutSize);
}

PHMCBuffer::PHMCBuffer(PHMCBuffer const& other)
    : std::streambuf(other),
      lineLimit(other.lineLimit),
      input(other.input),
      output(other.output),
      reading(other.reading),
      writing(other.writing),
      readRun(other.readRun),
      writeRun(other.writeRun),
      lineSize(other.lineSize),
      aboveSize(other.aboveSize),
      rest(other.rest),
      scanned(other.scanned),
      textLeft(other.textLeft),
      isTooLong(other.isTooLong) {
  std::copy(other.pbase(), other.pptr(), putArea);
  setp(putArea, putArea + PutSize);
  pbump(static_cast<int>(other.pptr() - other.pbase()));
  std::copy(other.eback(), other.egptr(), getArea);
  setg(getArea, getArea + (other.gptr() - other.eback()),
       getArea + (other.egptr() - other.eback()));
}

PHMCBuffer::~PHMCBuffer() {
  try {
    eof();
  } catch (...) {
    // The text was refused, or the output throws: it stays without end code.
  }
}

void PHMCBuffer::close() {
  eof();
}

int PHMCBuffer::sync() {
  return overflow(Traits::eof()) == Traits::eof() ? -1 : 0;
}

// Hands the codes of `count` copies to `add` as value and bits.
template <class Add>
void PHMCBuffer::addRun(std::uint64_t count, unsigned int code, int nbits,
                        Add add) {
  auto const addPrefix = [&](std::uint64_t field) {
    add(RepeatCode << RepeatBits | static_cast<unsigned int>(field),
        RepeatCodeLength + RepeatBits);
  };
  while (count > MaxRepeat) {
    std::uint64_t factor = 1;
    do {
      addPrefix(RepeatMask);
      factor *= MaxRepeat;
    } while (count / factor > MaxRepeat);
    std::uint64_t const last = count / factor;
    count -= last * factor;
    if (last > 1) addPrefix(last - 2);
    if (count != 0) add(code, nbits);
  }
  auto const copies = static_cast<int>(count);
  if (copies >= 2 && nbits + PrefixBits <= nbits * copies) {
    addPrefix(count - 2);
    count = 1;
  }
  add(code, nbits);  // also closes the prefixes that took all copies
  while (count-- > 1) add(code, nbits);
}

int PHMCBuffer::overflow(int c) {
  auto size = static_cast<std::size_t>(pptr() - pbase());
  if (!Traits::eq_int_type(c, Traits::eof()))
    putArea[size++] = Traits::to_char_type(c);
  if (size == 0) return 0;
  std::string_view const text(putArea, size);
  setp(putArea, putArea + PutSize);
  if (!writing.started) {
    writing.started = true;
    writing.plain = text.starts_with(Magic);
    if (!writing.plain) writeText(Magic);
  }
  if (writing.plain) {
    writeText(text);
  } else {
    writing.first.append(text);
    encode(/*final=*/false);
  }
  return 0;
}

void PHMCBuffer::writeText(std::string_view text) {
  output->write(text.data(), static_cast<std::streamsize>(text.size()));
}

void PHMCBuffer::eof() {
  sync();
  if (writing.started && !writing.finished && !writing.plain) {
    encode(/*final=*/true);
    repeat(1, EndCode.value, EndCode.bits);
    write(/*flushAll=*/true);
  }
  output->flush();
  writing.finished = true;
}

void PHMCBuffer::write(bool flushAll) {
  while (writing.count >= 8) {
    writing.count -= 8;
    output->put(static_cast<char>(writing.bits >> writing.count & 255));
    writing.bits &= (1u << writing.count) - 1;
  }
  if (!flushAll || writing.count == 0) return;
  output->put(static_cast<char>(writing.bits << (8 - writing.count) & 255));
  writing.bits = 0;
  writing.count = 0;
}

void PHMCBuffer::append(unsigned int value, int nbits) {
  constexpr int valueBits = std::numeric_limits<unsigned int>::digits;
  while (nbits > 0) {
    int const step = std::min(nbits, 8);
    nbits -= step;
    write(/*flushAll=*/false);
    unsigned int const top = nbits < valueBits ? value >> nbits : 0;
    writing.bits = writing.bits << step | (top & ((1u << step) - 1));
    writing.count += step;
  }
}

void PHMCBuffer::repeat(std::size_t count, unsigned int code, int nbits) {
  if (nbits < 1) throw std::runtime_error("Cannot repeat less than one bit!");
  addRun(count, code, nbits,
         [this](unsigned int value, int bits) { append(value, bits); });
}

void PHMCBuffer::escape(char c, std::size_t count) {
  repeat(count, EscapeMark | static_cast<unsigned char>(c), EscapeBits);
}

void PHMCBuffer::newline(std::size_t count) {
  repeat(count, LineFeedCode.value, LineFeedCode.bits);
}

void PHMCBuffer::encode(bool final) {
  writing.first.erase(0, transformLines(final));
  BitSink sink(writing.bits, writing.count, *output);
  Run run = writeRun;
  auto const addSymbols = [&] {
    Code const code = Codes[static_cast<unsigned char>(run.symbol)];
    if (run.count == 1)
      sink.append(code.value, code.bits);
    else if (run.count > 1)
      addRun(run.count, code.value, code.bits,
             [&](unsigned int value, int bits) { sink.append(value, bits); });
  };
  for (char const symbol : writing.third) {
    if (symbol != run.symbol) {
      addSymbols();
      run = {0, symbol};
    }
    ++run.count;
  }
  if (final) {
    addSymbols();
    run.count = 0;
  }
  writeRun = run;
  sink.finish(writing.bits, writing.count);
}

// Turns the complete lines of the raw text into symbols; their length there.
std::size_t PHMCBuffer::transformLines(bool final) {
  std::string const& raw = writing.first;
  writing.third.clear();
  std::size_t begin = 0;
  while (begin < raw.size()) {
    std::size_t const end = lineEnd(begin + scanned);
    if (end - begin > lineLimit)
      throw std::runtime_error("Line too long to be compressed!");
    scanned = end - begin;
    // Behind a line end in last place its second character may follow.
    if (!final && end + 1 >= raw.size()) return begin;
    scanned = 0;
    transformLine(std::string_view(raw).substr(begin, end - begin));
    bool const isPair = end + 1 < raw.size() && isLineEnd(raw[end + 1]) &&
                        raw[end + 1] != raw[end];
    begin = end + (isPair ? 2 : 1);
  }
  return begin;
}

// Position of the next line end of the raw text, its size if there is none.
std::size_t PHMCBuffer::lineEnd(std::size_t begin) const {
  std::string const& raw = writing.first;
  auto const from = raw.begin() + static_cast<std::ptrdiff_t>(begin);
  return static_cast<std::size_t>(std::find_if(from, raw.end(), isLineEnd) -
                                  raw.begin());
}

void PHMCBuffer::transformLine(std::string_view line) {
  if (line.find(Subst) != line.npos)
    throw std::runtime_error(
        "Input contains special value -- cannot be compressed!");
  std::string& above = writing.second;
  std::size_t const common = std::min(line.size(), above.size());
  std::size_t const begin = writing.third.size();
  writing.third.append(line);
  char* const symbols = writing.third.data() + begin;
  for (std::size_t i = 0; i < common; ++i)
    symbols[i] = line[i] == above[i] ? Subst : line[i];
  writing.third += line.size() < above.size() ? '\n' : Subst;
  above = line;
}
