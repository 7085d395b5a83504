#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "photarium/streams/PHMCBuffer.h"
#include "photarium/streams/packed_codes.h"

namespace {

using PackedText::Code;
using PackedText::Codes;
using PackedText::EscapeBits;
using PackedText::EscapeMark;
using PackedText::Magic;
using PackedText::PrefixBits;
using Traits = std::char_traits<char>;

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
  constexpr char all = static_cast<char>(255);
  text &=
      std::bit_cast<std::uint64_t>(Step{{all, all, all, all, all, all}, 0, 0});
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

  Step const& step() const {
    return Steps[static_cast<std::size_t>(bits >> (64 - StepBits))];
  }

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

// A code as it was read.
struct PHMCBuffer::Symbol {
  int meaning;
  int bits;
  unsigned int field;  // value of the bits behind the code
};

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
      requireText(copies);
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

// Tests that the line under construction may have so many bytes more.
void PHMCBuffer::requireText(std::uint64_t more) {
  isTooLong = more > textLeft || lineSize > textLeft - more;
  if (isTooLong) throw std::runtime_error("Packed text is too long");
}

void PHMCBuffer::outputString(std::string& s, std::size_t& used) {
  std::size_t const size = std::min(GetSize - used, s.size());
  s.copy(getArea + used, size);
  used += size;
  s.erase(0, size);
}

void PHMCBuffer::outputLine(std::size_t& used) {
  requireText(1);
  textLeft -= lineSize + 1;
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
