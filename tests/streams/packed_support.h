#pragma once

#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "photarium/streams/PHMCBuffer.h"
#include "tests/support/PlainCodec.h"
#include "tests/support/packed_bits.h"

/// `text` packed in one go.
inline std::string packed(std::string const& text) {
  std::stringstream out;
  PHMCBuffer buffer(out, out, /*plain=*/false);
  buffer.sputn(text.data(), std::streamsize(text.size()));
  buffer.close();
  return out.str();
}

/// What reading ended in: the text, the message of its failure, and the bytes
/// that the input has left.
struct Outcome {
  std::string text;
  std::string failure;
  std::string behind;

  bool operator==(Outcome const&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, Outcome const& outcome) {
  return out << outcome.text.size() << " bytes, '" << outcome.failure << "', "
             << outcome.behind.size() << " left";
}

/// The outcome of reading `bytes` until `limit` bytes of text have come.
template <class Codec>
Outcome outcome(std::string const& bytes,
                std::size_t limit = std::string::npos) {
  std::istringstream in(bytes);
  std::ostringstream out;
  Codec codec(in, out);
  Outcome result;
  try {
    while (result.text.size() < limit &&
           codec.sgetc() != std::char_traits<char>::eof()) {
      std::string text(std::size_t(codec.in_avail()), '\0');
      codec.sgetn(text.data(), std::streamsize(text.size()));
      result.text += text;
    }
  } catch (std::runtime_error const& failure) {
    result.failure = failure.what();
  }
  in.clear();
  result.behind.assign(std::istreambuf_iterator<char>(in), {});
  return result;
}

/// The library's codec, with its protected operations in reach.
class OpenBuffer : public PHMCBuffer {
 public:
  OpenBuffer(std::istream& in, std::ostream& out, bool plain = false)
      : PHMCBuffer(in, out, plain) {}

  using PHMCBuffer::append;
  using PHMCBuffer::CRLF;
  using PHMCBuffer::encode;
  using PHMCBuffer::eof;
  using PHMCBuffer::escape;
  using PHMCBuffer::extract;
  using PHMCBuffer::lineLimit;
  using PHMCBuffer::MaxRepeat;
  using PHMCBuffer::newline;
  using PHMCBuffer::outputLine;
  using PHMCBuffer::outputString;
  using PHMCBuffer::overflow;
  using PHMCBuffer::repeat;
  using PHMCBuffer::RepeatBits;
  using PHMCBuffer::RepeatCode;
  using PHMCBuffer::RepeatCodeLength;
  using PHMCBuffer::RepeatMask;
  using PHMCBuffer::Subst;
  using PHMCBuffer::sync;
  using PHMCBuffer::underflow;
  using PHMCBuffer::write;
};

/// What reading `bytes` ends in, by the library.
inline Outcome unpacked(std::string const& bytes) {
  return outcome<OpenBuffer>(bytes);
}

/// Lines such as tables have them: columns of numbers that change little from
/// line to line, with some that are empty, repeat, or hold other text.
inline std::string randomTable(std::mt19937& random, std::size_t size) {
  static char const* const ends[] = {"\n", "\n", "\n", "\r\n", "\r", "\n\r"};
  std::string text, line;
  auto const below = [&](unsigned n) { return random() % n; };
  while (text.size() < size) {
    switch (below(8)) {
      case 0:
        line.resize(below(100), "0123456789 .+-eE\t\x7f"[below(18)]);
        break;
      case 1:
        line.resize(line.size() / (1 + below(3)));
        break;
      case 2:
        for (auto i = below(20); i > 0; --i) {
          line += char(random());
          if (std::string("\r\n\x1a").find(line.back()) != std::string::npos)
            line.pop_back();
        }
        break;
      default:
        for (char& c : line)
          if (below(4) == 0) c = "0123456789"[below(10)];
    }
    for (auto i = below(16) == 0 ? below(400) : 1u; i > 0; --i)
      text += line + ends[below(6)];
  }
  return text;
}
