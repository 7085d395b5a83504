#include "photarium/streams/PHMCBuffer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

using Traits = std::char_traits<char>;

// Header, ready before any other static object is.
constexpr std::string_view Magic = "PHMC";

struct Code {
  unsigned int value;
  int bits;
};

constexpr unsigned int EscapeMark = 0x2700;  // 100111, then 8 bits of the byte
constexpr int EscapeBits = 14;
constexpr int PrefixBits = 7;  // with its count field
constexpr Code LineFeedCode{18, 5};
constexpr Code EndCode{EscapeMark | 26, EscapeBits};

constexpr std::array<Code, 256> makeCodes() {
  std::array<Code, 256> codes{};
  for (unsigned int byte = 0; byte < 256; ++byte)
    codes[byte] = {EscapeMark | byte, EscapeBits};
  for (unsigned int digit = 0; digit < 8; ++digit)
    codes['0' + digit] = {digit, 4};
  codes['8'] = {16, 5};
  codes['9'] = {17, 5};
  codes['\n'] = LineFeedCode;
  codes[26] = {3, 2};
  codes[' '] = {76, 7};
  codes['+'] = {154, 8};
  codes['-'] = {310, 9};
  codes['.'] = {311, 9};
  return codes;
}
constexpr std::array<Code, 256> Codes = makeCodes();

Code const& codeOf(int byte) {
  return Codes[static_cast<unsigned char>(byte)];
}

// What a code stands for: a byte, or one of these.
enum Meaning : short { Above = 256, LineFeed, Prefix, Escape, End };

struct Entry {
  short meaning;
  short bits;
};

// By the next 9 bits: no code is longer ahead of the field that it may have.
constexpr int EntryBits = 9;
using Entries = std::array<Entry, 1 << EntryBits>;

constexpr void addEntry(Entries& entries, unsigned int code, int codeBits,
                        Entry entry) {
  int const free = EntryBits - codeBits;
  for (unsigned int tail = 0; tail < 1u << free; ++tail)
    entries[code << free | tail] = entry;
}

constexpr Entries makeEntries() {
  Entries entries{};
  for (short byte = 0; byte < 256; ++byte) {
    Code const code = Codes[static_cast<unsigned char>(byte)];
    if (code.bits == EscapeBits) continue;
    short const meaning = byte == 26     ? short(Above)
                          : byte == '\n' ? short(LineFeed)
                                         : byte;
    addEntry(entries, code.value, code.bits,
             {meaning, static_cast<short>(code.bits)});
  }
  addEntry(entries, 5, 3, {Prefix, PrefixBits});
  addEntry(entries, EscapeMark >> 8, 6, {Escape, EscapeBits});
  return entries;
}
constexpr Entries SymbolEntries = makeEntries();

// All symbols that the next 12 bits hold, as far as they are bytes with a code
// of their own or repeat the byte above, which a zero stands for.
struct Step {
  char text[6];
  unsigned char symbols;
  unsigned char bits;
};
constexpr int StepBits = 12;

constexpr Step makeStep(unsigned int window) {
  Step step{};
  for (;;) {
    unsigned int const left = window << step.bits & ((1u << StepBits) - 1);
    Entry const entry = SymbolEntries[left >> (StepBits - EntryBits)];
    if (entry.meaning > Above || step.bits + entry.bits > StepBits) return step;
    bool const isByte = entry.meaning < Above;
    step.text[step.symbols++] =
        isByte ? static_cast<char>(entry.meaning) : '\0';
    step.bits = static_cast<unsigned char>(step.bits + entry.bits);
  }
}

constexpr std::array<Step, 1 << StepBits> makeSteps() {
  std::array<Step, 1 << StepBits> steps{};
  for (unsigned int window = 0; window < steps.size(); ++window)
    steps[window] = makeStep(window);
  return steps;
}
constexpr std::array<Step, 1 << StepBits> Steps = makeSteps();

// Replaces the zero bytes of `text`, which holds no byte above 127, by those of
// `above`.
std::uint64_t fillFrom(std::uint64_t above, std::uint64_t text) {
  constexpr std::uint64_t low7 = 0x7f7f7f7f7f7f7f7f;
  std::uint64_t const isSet = (text + low7) & ~low7;
  return text | (above & ~((isSet >> 7) * 255));
}

// Bits fetched are kept left-aligned in this many.
constexpr int WindowBits = std::numeric_limits<unsigned int>::digits;
static_assert(WindowBits == 32);

// Fetches bytes until the longest code is complete; false if the source ends or
// fails before. An end code of that length is still to come, so that nothing
// behind it is touched.
bool fetchCode(std::streambuf& source, unsigned int& bits, int& count) {
  try {
    while (count < EscapeBits) {
      int const byte = source.sbumpc();
      if (Traits::eq_int_type(byte, Traits::eof())) return false;
      bits |= static_cast<unsigned int>(byte) << (WindowBits - 8 - count);
      count += 8;
    }
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace

std::string const PHMCBuffer::Header(Magic);
std::string const PHMCBuffer::CRLF = "\r\n";

// A code as it was read.
struct PHMCBuffer::Symbol {
  int meaning;
  int bits;
  unsigned int field;  // value of the bits behind the code
};

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
      rest(other.rest),
      scanned(other.scanned) {
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

// Reading

int PHMCBuffer::underflow() {
  std::size_t used = reading.started ? 0 : readHeader();
  if (reading.plain) {
    input->read(getArea + used, static_cast<std::streamsize>(GetSize - used));
    used += static_cast<std::size_t>(input->gcount());
  } else {
    decode(used);
  }
  if (used == 0) return Traits::eof();
  setg(getArea, getArea, getArea + used);
  return Traits::to_int_type(getArea[0]);
}

// Bytes of plain text that stand where the magic was looked for.
std::size_t PHMCBuffer::readHeader() {
  reading.started = true;
  input->read(getArea, static_cast<std::streamsize>(Magic.size()));
  auto const size = static_cast<std::size_t>(input->gcount());
  if (std::string_view(getArea, size) == Magic) return 0;
  reading.plain = true;
  return size;
}

void PHMCBuffer::fetch() {
  int const byte = input->get();
  if (input->fail()) throw std::runtime_error("Not enough bits in input!");
  reading.bits |= static_cast<unsigned int>(byte)
                  << (WindowBits - 8 - reading.count);
  reading.count += 8;
}

unsigned int PHMCBuffer::extract(int nbits) {
  if (nbits < 1 || nbits > 16)
    throw std::runtime_error("Impossible number of bits requested!");
  unsigned int result = 0;
  while (nbits > 0) {
    int const chunk = std::min(nbits, 8);
    if (reading.count < chunk) fetch();
    result = result << chunk | reading.bits >> (WindowBits - chunk);
    reading.bits <<= chunk;
    reading.count -= chunk;
    nbits -= chunk;
  }
  return result;
}

// What is not there shows once it is needed, by fetch().
bool PHMCBuffer::prefetch() {
  return input->good() &&
         fetchCode(*input->rdbuf(), reading.bits, reading.count);
}

PHMCBuffer::Symbol PHMCBuffer::nextSymbol() const {
  Entry const entry = SymbolEntries[reading.bits >> (WindowBits - EntryBits)];
  unsigned int const code = reading.bits >> (WindowBits - entry.bits);
  if (entry.meaning == Prefix) return {Prefix, entry.bits, code & RepeatMask};
  if (entry.meaning != Escape) return {entry.meaning, entry.bits, 0};
  int const byte = static_cast<int>(code & 255);
  return {byte == Subst ? End : byte, entry.bits, 0};
}

PHMCBuffer::Symbol PHMCBuffer::takeSymbol() {
  prefetch();
  Symbol symbol = nextSymbol();
  while (symbol.bits > reading.count) {
    fetch();
    symbol = nextSymbol();
  }
  reading.bits <<= symbol.bits;
  reading.count -= symbol.bits;
  return symbol;
}

void PHMCBuffer::decode(std::size_t& used) {
  deliverRest(used);
  deliver(used);
  if (input->fail()) return;
  while (used < GetSize && !reading.finished) {
    decodeInside();
    decodeRun();
    deliver(used);
  }
}

// Takes whole steps as long as the line stays inside the one above it. What
// they cannot take is left to decodeRun().
void PHMCBuffer::decodeInside() {
  constexpr std::size_t chunkSize = 256;
  char chunk[chunkSize];
  std::size_t const left =
      reading.second.size() -
      std::min(reading.first.size(), reading.second.size());
  std::size_t const room = std::min(left, chunkSize);
  if (room < sizeof(Step) || !prefetch()) return;
  char const* const above = reading.second.data() + reading.first.size();
  std::streambuf& source = *input->rdbuf();
  unsigned int bits = reading.bits;
  int count = reading.count;
  std::size_t length = 0;
  do {
    Step const& step = Steps[bits >> (WindowBits - StepBits)];
    if (step.symbols == 0) break;
    std::uint64_t text;
    std::uint64_t repeated;
    std::memcpy(&text, &step, sizeof(text));
    std::memcpy(&repeated, above + length, sizeof(repeated));
    text = fillFrom(repeated, text);
    std::memcpy(chunk + length, &text, sizeof(text));
    length += step.symbols;
    bits <<= step.bits;
    count -= step.bits;
  } while (length + sizeof(Step) <= room && fetchCode(source, bits, count));
  reading.bits = bits;
  reading.count = count;
  reading.first.append(chunk, length);
}

void PHMCBuffer::decodeRun() {
  std::uint64_t factor = 1;
  Symbol symbol = takeSymbol();
  for (; symbol.meaning == Prefix; symbol = takeSymbol()) {
    unsigned int const more = symbol.field + 2;
    if (factor > std::numeric_limits<std::uint64_t>::max() / more)
      throw std::runtime_error("Repeat factor too large in input!");
    factor *= more;
  }
  if (symbol.meaning == End)
    reading.finished = true;
  else
    readRun = {factor, symbol.meaning};
}

// Applies the run to the text as far as the getArea area has room.
void PHMCBuffer::deliver(std::size_t& used) {
  std::string& line = reading.first;
  std::string const& above = reading.second;
  while (readRun.count > 0 && used < GetSize) {
    std::uint64_t copies = 1;
    if (readRun.symbol < Above) {
      copies = readRun.count;
      if (copies > lineLimit - line.size())
        throw std::runtime_error("Line too long in input!");
      line.append(static_cast<std::size_t>(copies),
                  static_cast<char>(readRun.symbol));
    } else if (readRun.symbol == Above && line.size() < above.size()) {
      copies =
          std::min<std::uint64_t>(readRun.count, above.size() - line.size());
      line.append(above, line.size(), static_cast<std::size_t>(copies));
    } else {
      outputLine(used);
    }
    readRun.count -= copies;
  }
}

void PHMCBuffer::outputString(std::string& s, std::size_t& used) {
  std::size_t const size = std::min(GetSize - used, s.size());
  s.copy(getArea + used, size);
  used += size;
  s.erase(0, size);
}

void PHMCBuffer::outputLine(std::size_t& used) {
  reading.second.swap(reading.first);
  reading.first.clear();
  rest = reading.second.size() + 1;
  deliverRest(used);
}

void PHMCBuffer::deliverRest(std::size_t& used) {
  std::string const& line = reading.second;
  if (rest > 1) {
    std::size_t const begin = line.size() + 1 - rest;
    std::size_t const size = line.copy(getArea + used, GetSize - used, begin);
    used += size;
    rest -= size;
  }
  if (rest != 1 || used == GetSize) return;
  getArea[used++] = '\n';
  rest = 0;
}

// Writing

namespace {

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

// Length of the run of equal symbols at `begin`.
std::size_t runLength(char const* begin, char const* end) {
  char const symbol = *begin;
  return static_cast<std::size_t>(
      std::find_if(begin + 1, end, [&](char c) { return c != symbol; }) -
      begin);
}

}  // namespace

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
  while (nbits > 0) {
    int const step = std::min(nbits, 8);
    nbits -= step;
    write(/*flushAll=*/false);
    unsigned int const top = nbits < WindowBits ? value >> nbits : 0;
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
  auto const addHeldBack = [&] {
    if (writeRun.count == 0) return;
    Code const code = codeOf(writeRun.symbol);
    addRun(writeRun.count, code.value, code.bits,
           [&](unsigned int value, int bits) { sink.append(value, bits); });
  };
  char const* symbol = writing.third.data();
  char const* const end = symbol + writing.third.size();
  while (symbol != end) {
    std::size_t const length = runLength(symbol, end);
    if (*symbol != writeRun.symbol) {
      addHeldBack();
      writeRun = {0, *symbol};
    }
    writeRun.count += length;
    symbol += length;
  }
  if (final) {
    addHeldBack();
    writeRun.count = 0;
  }
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
    transformLine(std::string_view(raw).substr(begin, end - begin));
    scanned = 0;
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
