#include "photarium/streams/PHMCBuffer.h"

#include <algorithm>
#include <array>
#include <bit>
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

// What the next 12 bits hold: symbols of bytes with a code of their own or of
// Above, as far as they are complete; or one run of Above. No symbols: another
// code, or one that is longer.
struct Step {
  char text[6];           // zero for a byte from the line above
  unsigned char symbols;  // bytes of text, all from the line above in a run
  unsigned char bits;
};
constexpr int StepBits = 12;
constexpr int LongestStep = 17;

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
  // 101, the factor less 2 in 4 bits, 11, and 3 bits of whatever follows.
  for (unsigned int field = 0; field < 16; ++field)
    for (unsigned int tail = 0; tail < 8; ++tail)
      steps[5u << 9 | field << 5 | 3u << 3 | tail] = {
          {}, static_cast<unsigned char>(field + 2), 9};
  return steps;
}
constexpr std::array<Step, 1 << StepBits> Steps = makeSteps();

// Writes the bytes of a step, and more than that; both texts go on behind it.
void applyStep(Step const& step, char const* above, char* line) {
  constexpr std::uint64_t low7 = 0x7f7f7f7f7f7f7f7f;
  std::uint64_t text;
  std::uint64_t repeated;
  std::memcpy(&text, &step, sizeof(text));
  text &= std::bit_cast<std::uint64_t>(Step{{-1, -1, -1, -1, -1, -1}, 0, 0});
  std::memcpy(&repeated, above, sizeof(repeated));
  // No byte of a step is above 127, so that none carries into the next.
  std::uint64_t const isSet = ((text + low7) & ~low7) >> 7;
  text |= repeated & ~(isSet * 255);
  std::memcpy(line, &text, sizeof(text));
  std::memcpy(line + sizeof(text), above + sizeof(text), 16);
}
constexpr std::size_t StepReach = sizeof(Step) + 16;
static_assert(LongestStep <= StepReach);

// The bytes that a stream buffer holds ready. They are seen without being
// taken, so that nothing behind the end code is touched.
struct ReadyBytes : std::streambuf {
  static char const* begin(std::streambuf const& source) {
    return (source.*&ReadyBytes::gptr)();
  }
  static char const* end(std::streambuf const& source) {
    return (source.*&ReadyBytes::egptr)();
  }
  static void take(std::streambuf& source, std::ptrdiff_t size) {
    (source.*&ReadyBytes::gbump)(static_cast<int>(size));
  }
};

// Bits from contiguous bytes, left-aligned.
class BitWindow {
 public:
  BitWindow(unsigned int firstBits, int firstCount, char const* from,
            char const* to)
      : bits(std::uint64_t(firstBits) << 32),
        count(firstCount),
        next(from),
        end(to) {}

  // Makes room for four steps, if that many bytes are ready.
  bool fill() {
    if (end - next < 8) return false;
    std::uint64_t word = 0;
    for (int byte = 0; byte < 8; ++byte)
      word = word << 8 | static_cast<unsigned char>(next[byte]);
    bits |= word >> count;
    next += (63 - count) / 8;
    count |= 56;
    return true;
  }

  Step const& step() const { return Steps[bits >> (64 - StepBits)]; }

  void drop(int size) {
    bits <<= size;
    count -= size;
  }

  // The bits of the byte that was begun; the position behind it.
  char const* leave(unsigned int& leftBits, int& leftCount) const {
    leftCount = count % 8;
    leftBits = static_cast<unsigned int>(bits >> 32) & ~(~0u >> leftCount);
    return next - count / 8;
  }

 private:
  std::uint64_t bits;
  int count;
  char const* next;
  char const* end;
};

// Bits fetched are kept left-aligned in this many.
constexpr int WindowBits = std::numeric_limits<unsigned int>::digits;
static_assert(WindowBits == 32);

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
      lineSize(other.lineSize),
      aboveSize(other.aboveSize),
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

PHMCBuffer::Symbol PHMCBuffer::nextSymbol() const {
  Entry const entry = SymbolEntries[reading.bits >> (WindowBits - EntryBits)];
  unsigned int const code = reading.bits >> (WindowBits - entry.bits);
  if (entry.meaning == Prefix) return {Prefix, entry.bits, code & RepeatMask};
  if (entry.meaning != Escape) return {entry.meaning, entry.bits, 0};
  int const byte = static_cast<int>(code & 255);
  return {byte == Subst ? End : byte, entry.bits, 0};
}

PHMCBuffer::Symbol PHMCBuffer::takeSymbol() {
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

// Takes whole steps from the bytes that are ready, as long as the line stays
// inside the one above it. What they cannot take is left to decodeRun().
void PHMCBuffer::decodeInside() {
  if (lineSize >= aboveSize || !input->good()) return;
  std::size_t const room = aboveSize - lineSize;
  char const* const above = reading.second.data() + lineSize;
  char* const line = reading.first.data() + lineSize;
  std::streambuf& source = *input->rdbuf();
  char const* const ready = ReadyBytes::begin(source);
  BitWindow window(reading.bits, reading.count, ready, ReadyBytes::end(source));
  std::size_t length = 0;
  for (bool isInside = true; isInside && window.fill();) {
    for (int i = 0; i < 4; ++i) {
      Step const& step = window.step();
      isInside = step.symbols != 0 && length + step.symbols <= room;
      if (!isInside) break;
      applyStep(step, above + length, line + length);
      length += step.symbols;
      window.drop(step.bits);
    }
  }
  ReadyBytes::take(source, window.leave(reading.bits, reading.count) - ready);
  lineSize += length;
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

// Applies the run to the text as far as the get area has room.
void PHMCBuffer::deliver(std::size_t& used) {
  while (readRun.count > 0 && used < GetSize) {
    std::uint64_t copies = 1;
    if (readRun.symbol < Above) {
      copies = readRun.count;
      if (copies > lineLimit - lineSize)
        throw std::runtime_error("Line too long in input!");
      auto const size = static_cast<std::size_t>(copies);
      reserveLine(lineSize + size);
      std::fill_n(reading.first.data() + lineSize, size,
                  static_cast<char>(readRun.symbol));
      lineSize += size;
    } else if (readRun.symbol == Above && lineSize < aboveSize) {
      copies = std::min<std::uint64_t>(readRun.count, aboveSize - lineSize);
      auto const size = static_cast<std::size_t>(copies);
      std::copy_n(reading.second.data() + lineSize, size,
                  reading.first.data() + lineSize);
      lineSize += size;
    } else {
      outputLine(used);
    }
    readRun.count -= copies;
  }
}

// Room for a line of that size, and for a step that goes on behind it.
void PHMCBuffer::reserveLine(std::size_t size) {
  if (reading.first.size() < size + StepReach)
    reading.first.resize(size + StepReach + 64);
}

void PHMCBuffer::outputString(std::string& s, std::size_t& used) {
  std::size_t const size = std::min(GetSize - used, s.size());
  s.copy(getArea + used, size);
  used += size;
  s.erase(0, size);
}

void PHMCBuffer::outputLine(std::size_t& used) {
  reading.second.swap(reading.first);
  aboveSize = lineSize;
  lineSize = 0;
  reserveLine(aboveSize);
  rest = aboveSize + 1;
  deliverRest(used);
}

void PHMCBuffer::deliverRest(std::size_t& used) {
  if (rest > 1) {
    std::size_t const size = std::min(rest - 1, GetSize - used);
    std::memcpy(getArea + used, reading.second.data() + aboveSize + 1 - rest,
                size);
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
