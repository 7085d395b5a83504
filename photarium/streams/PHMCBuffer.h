#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <limits>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

#include "photarium/foundation/export.h"

/// Codec of the packed text format, as a stream buffer over a pair of streams.
///
/// What is written to it reaches the output packed; what is read from it is the
/// text of the input, packed or not: the reader recognises the 4 bytes of the
/// magic and hands anything else on unchanged. PHMCStream is the stream to use
/// it through.
///
///     std::stringstream packed;
///     PHMCBuffer buffer(packed, packed, /*plain=*/false);
///     buffer.sputn("1.5 2\n1.5 3\n", 12);
///     buffer.close();  // 12 bytes, of which the magic takes 4
///
/// The format is made for tables of numbers. Each line is compared with the one
/// above it and bytes that repeat are replaced by one symbol, Subst. The
/// symbols go by a fixed prefix code, most significant bit first: Subst takes 2
/// bits, a digit 4 or 5, a sign or point 8 or 9, a blank 7, a letter 14; a
/// repeat prefix of 7 bits multiplies the symbol behind it by 2 to 17, and
/// prefixes multiply one another. An end code closes the stream, zero bits fill
/// its last byte, and nothing behind that is read: the input stands on the byte
/// behind the packed text.
///
/// Line ends are CR, LF or both in either order and come back as a single LF; a
/// last line without one gains it. The byte 26 (Subst) cannot be packed.
///
/// Failures are std::runtime_error. Standard streams turn them into `badbit`
/// unless their exception mask holds it. A buffer that failed is good for
/// nothing but its destruction, which never throws. A text that was refused
/// stays without end code, so that nobody takes it for whole.
///
/// A few bytes of packed input can stand for any amount of text. It is
/// delivered piece by piece, and memory stays below five times the longest line
/// (two lines, with room to grow). A line has at most `lineLimit` bytes, 1 GiB;
/// who keeps or searches the text sets a limit of its own by limitText().
///
/// One thread at a time. The object is large (two areas, 70 kB).
class PHOTARIUM_EXPORT PHMCBuffer : public std::streambuf {
 public:
  /// The magic, "PHMC": the first bytes of each packed stream.
  static std::string const Header;

  /// State of one direction, but for the sizes and runs that only the codec
  /// itself needs.
  struct StreamState {
    unsigned int bits = 0;  // fetched, not yet taken, left-aligned; or
                            // collected, not yet written, right-aligned
    int count = 0;          // number of those bits
    std::string first;      // line under construction; or raw text not coded
    std::string second;     // previous line
    std::string third;      // symbols of the lines that are being coded
    bool started = false;   // the test for the magic, or for none, was made
    bool finished = false;  // the end code was read, or written
    bool plain = false;     // no packing: bytes pass through
  };

  /// A codec that reads packed text from `in` and writes it to `out`. Neither
  /// is owned; both must outlive the buffer. With `plain` the text is written
  /// as it stands; the reader is not affected.
  PHMCBuffer(std::istream& in, std::ostream& out, bool plain);

  /// A codec on the same streams in the same state, with areas of its own.
  /// Text in the put area is written by each copy.
  PHMCBuffer(PHMCBuffer const& other);
  PHMCBuffer& operator=(PHMCBuffer const&) = delete;

  /// Completes the output as close() does, without throwing.
  ~PHMCBuffer() override;

  /// Writes what is left and the end code, and flushes the output. A second
  /// call only flushes. If nothing was ever written nothing is.
  void close();

  /// Text that packed input of `packedSize` bytes may be taken to hold at most:
  /// 64 times its size, or 64 MiB if that is more. Tables reach ten times.
  static constexpr std::uint64_t plausibleText(std::uint64_t packedSize) {
    constexpr std::uint64_t least = std::uint64_t{64} << 20;
    return std::max(least, 64 * packedSize);
  }

  /// From now on packed input gives at most `size` bytes of text, and no line
  /// that could not fit. More ends in std::runtime_error "Packed text is too
  /// long". There is no limit at first. Plain input has none.
  void limitText(std::uint64_t size) { textLeft = size; }

  /// True once that limit ended the text.
  bool exceededLimit() const { return isTooLong; }

 protected:
  static std::string const CRLF;                      // the line end set
  static constexpr unsigned short RepeatCode = 5;     // opens a repeat prefix
  static constexpr signed char RepeatCodeLength = 3;  // [bits]
  static constexpr unsigned char RepeatBits = 4;      // width of its count
  static constexpr unsigned char RepeatMask = 15;     // largest count field
  static constexpr unsigned char MaxRepeat = 17;      // factor it stands for
  static constexpr char Subst = 26;  // repeats the byte above; ends a line

  /// Takes the put area and `c`, if that is not the end-of-file value, to the
  /// output. Returns 0, even for a character. Throws std::runtime_error "Input
  /// contains special value -- cannot be compressed!" for a byte 26, and
  /// "Line too long to be compressed!" beyond `lineLimit`.
  int overflow(int c) override;

  /// Fills the get area. Throws std::runtime_error "Not enough bits in input!"
  /// where the input lacks its end code, "Repeat factor too large in input!"
  /// and "Line too long in input!" for text that nobody can have packed, and
  /// what limitText() has.
  int underflow() override;

  /// Flushes the put area by overflow(). The output itself is not flushed.
  int sync() override;

  // The codec itself reads and writes several bits and whole texts at a time.
  // extract(), escape(), newline() and outputString() are there for derived
  // classes and tests.

  /// The next `nbits` bits of the input, 1 to 16. Throws std::runtime_error
  /// "Impossible number of bits requested!" or "Not enough bits in input!".
  unsigned int extract(int nbits);

  /// Adds the low `nbits` bits of `value` to the output, if there are any.
  void append(unsigned int value, int nbits);

  /// Writes the whole bytes collected; all bits, filled up with zeros, if
  /// `flushAll`.
  void write(bool flushAll);

  /// Adds `count` copies of a code, by repeat prefixes where they are shorter;
  /// one copy for a count of 0. Throws std::runtime_error "Cannot repeat less
  /// than one bit!" for a code of less.
  void repeat(std::size_t count, unsigned int code, int nbits);

  /// Adds `count` copies of a byte that has no code of its own.
  void escape(char c, std::size_t count);

  /// Adds `count` line feeds.
  void newline(std::size_t count);

  /// Packs the complete lines of the raw text, all of it if `final`. The last
  /// run of equal symbols waits for more unless `final`.
  void encode(bool final);

  /// What close() does.
  void eof();

  /// Moves as much of `s` as has room to the get area, behind its `used` bytes.
  void outputString(std::string& s, std::size_t& used);

  /// Ends the line under construction and delivers it. To be called while the
  /// get area has room.
  void outputLine(std::size_t& used);

  /// Longest line that is packed or unpacked, in bytes.
  std::size_t lineLimit = std::size_t(1) << 30;

 private:
  static constexpr std::size_t PutSize = 4096;
  static constexpr std::size_t GetSize = 65536;

  // Copies of a symbol: yet to be delivered, or held back for more to come.
  struct Run {
    std::uint64_t count = 0;
    int symbol = 0;
  };
  struct Symbol;

  std::size_t readHeader();
  void fetch();
  Symbol nextSymbol() const;
  Symbol takeSymbol();
  void decode(std::size_t& used);
  void decodeInside();
  void decodeRun();
  void deliver(std::size_t& used);
  void deliverRest(std::size_t& used);
  void reserveLine(std::size_t size);
  void requireText(std::uint64_t more);
  template <class Add>
  static void addRun(std::uint64_t count, unsigned int code, int nbits,
                     Add add);
  void writeText(std::string_view text);
  std::size_t transformLines(bool final);
  std::size_t lineEnd(std::size_t begin) const;
  void transformLine(std::string_view line);

  std::istream* input;
  std::ostream* output;
  StreamState reading;
  StreamState writing;
  char putArea[PutSize + 1];  // with a place for the character of overflow()
  char getArea[GetSize];
  Run readRun;
  Run writeRun;
  // The lines of the read state have spare bytes behind them.
  std::size_t lineSize = 0;   // of the line under construction
  std::size_t aboveSize = 0;  // of the previous line
  std::size_t rest = 0;       // bytes of the previous line, with its line feed,
                              // that found no room in the get area
  std::size_t scanned = 0;    // bytes of raw text known to hold no line end
  // Text that may follow the last complete line.
  std::uint64_t textLeft = std::numeric_limits<std::uint64_t>::max();
  bool isTooLong = false;  // there was more
};
