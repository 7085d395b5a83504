#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>

/// The packed text format bit by bit and symbol by symbol, as slow and as plain
/// as it can be written: what the library's codec is compared with.
///
/// It keeps whole runs in memory. Unpacking gives up with Excess where a run
/// would take more than `limit` bytes.
class PlainCodec : public std::streambuf {
 public:
  struct Excess {};

  PlainCodec(std::istream& source, std::ostream& target,
             std::size_t bytes = std::size_t(1) << 22)
      : in(source), out(target), limit(bytes) {
    setp(put, put + sizeof(put) - 1);
  }

  void close() {
    sync();
    if (started && !finished && !passing) {
      encode(true);
      append(10010, 14);
      if (bitCount > 0) append(0, 8 - bitCount);
    }
    out.flush();
    finished = true;
  }

 protected:
  int sync() override { return overflow(traits_type::eof()); }

  int overflow(int c) override {
    std::size_t n = std::size_t(pptr() - pbase());
    if (c != traits_type::eof()) put[n++] = char(c);
    if (n == 0) return 0;
    if (!started) {
      started = true;
      passing = n >= 4 && std::string(put, 4) == "PHMC";
      if (!passing) out.write("PHMC", 4);
    }
    if (passing) {
      out.write(put, std::streamsize(n));
    } else {
      raw.append(put, n);
      encode(false);
    }
    setp(put, put + sizeof(put) - 1);
    return 0;
  }

  int underflow() override {
    used = 0;
    if (!tested) readHeader();
    if (plain) {
      in.read(get + used, std::streamsize(sizeof(get) - used));
      used += std::size_t(in.gcount());
    } else {
      output(overhang);
      while (!ended && used < sizeof(get) && in) decode();
    }
    if (used == 0) return traits_type::eof();
    setg(get, get, get + used);
    return traits_type::to_int_type(get[0]);
  }

 private:
  static constexpr char S = 26;

  // Writing

  void append(unsigned value, int bits) {
    while (bits-- > 0) {
      byte = byte << 1 | (value >> bits & 1);
      if (++bitCount < 8) continue;
      out.put(char(byte));
      byte = 0;
      bitCount = 0;
    }
  }

  void appendPrefix(std::size_t factor) {
    append(5, 3);
    append(unsigned(factor - 2), 4);
  }

  void repeat(std::size_t count, unsigned code, int bits) {
    while (count > 17) {
      std::size_t f = 1;
      do {
        appendPrefix(17);
        f *= 17;
      } while (count / f > 17);
      std::size_t const q = count / f;
      count -= q * f;
      if (q > 1) appendPrefix(q);
      if (count != 0) append(code, bits);
    }
    if (count >= 2 && bits + 7 > bits * int(count)) {
      while (count-- > 0) append(code, bits);
      return;
    }
    if (count >= 2) appendPrefix(count);
    append(code, bits);
  }

  void repeatSymbol(std::size_t count, char symbol) {
    switch (symbol) {
      case S:
        return repeat(count, 0b11, 2);
      case '8':
        return repeat(count, 0b10000, 5);
      case '9':
        return repeat(count, 0b10001, 5);
      case '\n':
        return repeat(count, 0b10010, 5);
      case ' ':
        return repeat(count, 0b1001100, 7);
      case '+':
        return repeat(count, 0b10011010, 8);
      case '-':
        return repeat(count, 0b100110110, 9);
      case '.':
        return repeat(count, 0b100110111, 9);
      default:
        break;
    }
    if (symbol >= '0' && symbol <= '7')
      return repeat(count, unsigned(symbol - '0'), 4);
    repeat(count, 0x2700u | static_cast<unsigned char>(symbol), 14);
  }

  void encode(bool final) {
    while (!raw.empty()) {
      std::size_t p = raw.find_first_of("\r\n");
      if (!final && (p == raw.npos || p + 1 == raw.size())) break;
      if (p == raw.npos) p = raw.size();
      for (std::size_t i = 0; i < p; ++i) {
        if (raw[i] == S)
          throw std::runtime_error(
              "Input contains special value -- cannot be compressed!");
        symbols += i < above.size() && raw[i] == above[i] ? S : raw[i];
      }
      symbols += p < above.size() ? '\n' : S;
      above = raw.substr(0, p);
      bool const isPair = p + 1 < raw.size() &&
                          (raw[p + 1] == '\r' || raw[p + 1] == '\n') &&
                          raw[p + 1] != raw[p];
      raw.erase(0, p + (isPair ? 2 : 1));
    }
    if (symbols.empty()) return;
    std::size_t end = symbols.size();
    if (!final) {
      std::size_t const last = symbols.find_last_not_of(symbols.back());
      if (last == symbols.npos) return;
      end = last + 1;
    }
    for (std::size_t i = 0; i < end;) {
      std::size_t const next =
          std::min(symbols.find_first_not_of(symbols[i], i), end);
      repeatSymbol(next - i, symbols[i]);
      i = next;
    }
    symbols.erase(0, end);
  }

  // Reading

  void readHeader() {
    tested = true;
    in.read(get, 4);
    used = std::size_t(in.gcount());
    plain = std::string(get, used) != "PHMC";
    if (!plain) used = 0;
  }

  unsigned take(int bits) {
    unsigned result = 0;
    while (bits-- > 0) {
      if (fetchedCount == 0) {
        int const c = in.get();
        if (in.fail()) throw std::runtime_error("Not enough bits in input!");
        fetched = unsigned(c);
        fetchedCount = 8;
      }
      result = result << 1 | (fetched >> --fetchedCount & 1);
    }
    return result;
  }

  void decode() {
    std::size_t r = 1;
    while (true) {
      if (take(1) == 0) return copy(r, char('0' + take(3)));
      if (take(1) == 1) return copyAbove(r);
      if (take(1) == 0) break;
      r *= take(4) + 2;
      if (r > limit) throw Excess();
    }
    switch (take(2)) {
      case 0:
        return copy(r, '8');
      case 1:
        return copy(r, '9');
      case 2:
        while (r-- > 0) endLine();
        return;
      default:
        break;
    }
    if (take(1) == 1) {
      unsigned const value = take(8);
      if (value == 26)
        ended = true;
      else
        copy(r, char(value));
    } else if (take(1) == 0) {
      copy(r, ' ');
    } else if (take(1) == 0) {
      copy(r, '+');
    } else {
      copy(r, take(1) == 0 ? '-' : '.');
    }
  }

  void copy(std::size_t r, char c) {
    line.append(r, c);
    if (line.size() > limit) throw Excess();
  }

  void copyAbove(std::size_t r) {
    for (; r > 0; --r) {
      if (line.size() < previous.size())
        line += previous[line.size()];
      else
        endLine();
    }
  }

  void endLine() {
    previous = line;
    line += '\n';
    output(line);
    overhang += line;
    line.clear();
    if (overhang.size() > limit) throw Excess();
  }

  void output(std::string& text) {
    std::size_t const n = std::min(sizeof(get) - used, text.size());
    text.copy(get + used, n);
    used += n;
    text.erase(0, n);
  }

  std::istream& in;
  std::ostream& out;
  std::size_t limit;
  char put[4097];
  char get[65536];

  std::string raw, above, symbols;
  unsigned byte = 0;
  int bitCount = 0;
  bool started = false, finished = false, passing = false;

  std::string line, previous, overhang;
  std::size_t used = 0;
  unsigned fetched = 0;
  int fetchedCount = 0;
  bool tested = false, ended = false, plain = false;
};
