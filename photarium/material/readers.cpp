#include "photarium/material/readers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <ios>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <utility>

#include "photarium/streams/PHMCBuffer.h"
#include "photarium/streams/PHMCStream.h"

namespace {

// Half of what a string can hold. Only where sizes have 32 bits is that to be
// reached.
constexpr std::size_t LongestText =
    std::numeric_limits<std::ptrdiff_t>::max() / 2;

[[noreturn]] void refuse() {
  throw std::runtime_error("Could not read file");
}

// Appends what is left in `in`, taking `first` bytes at once.
void appendRest(std::streambuf& in, std::string& text, std::size_t first,
                std::size_t limit = LongestText) {
  std::size_t size = text.size();
  std::size_t got = 0;
  std::size_t wanted = first;
  do {
    text.resize(size + wanted);
    got = static_cast<std::size_t>(
        in.sgetn(text.data() + size, static_cast<std::streamsize>(wanted)));
    size += got;
    if (size > limit) refuse();
    if (got < wanted) break;
    wanted = std::min(std::max(first, size), limit - size + 1);
  } while (true);
  text.resize(size);
}

// Devices may have no end, nor may files that a kernel or another process makes
// up while they are read.
constexpr std::uintmax_t SizelessLimit = std::uintmax_t{512} << 20;

}  // namespace

bool isTableName(std::string_view line) {
  return line.size() >= 10 && line[6] == '.' &&
         (line[9] == 'p' || line[9] == 'P');
}

std::string remainingText(std::istream& in) {
  std::string text;
  if (in.good()) appendRest(*in.rdbuf(), text, std::size_t{1} << 16);
  return text;
}

std::string_view remainingView(std::istream& in, std::string& storage) {
  auto* const buffer = dynamic_cast<std::stringbuf*>(in.rdbuf());
  std::streamoff const at =
      buffer && in.good() ? std::streamoff(in.tellg()) : -1;
  if (at < 0) {
    storage = remainingText(in);
    return storage;
  }
  std::string_view const rest =
      std::string_view(buffer->view()).substr(static_cast<std::size_t>(at));
  in.seekg(0, std::ios::end);
  return rest;
}

bool readFile(std::string const& path, std::string& text) {
  text.clear();
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return false;
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  std::uintmax_t size = std::filesystem::file_size(path, ignored);
  if (ignored) size = 0;
  if (size > LongestText) refuse();
  // What has no size, as a pipe, is taken in blocks. Two bytes more than the
  // file holds see its end, and leave room for line ends.
  std::size_t const first =
      size == 0 ? std::size_t{1} << 16 : std::size_t(size) + 2;
  auto const limit = std::size_t(std::min<std::uintmax_t>(
      std::max(SizelessLimit, size + size / 2), LongestText));
  try {
    appendRest(*file.rdbuf(), text, first, limit);
  } catch (std::ios_base::failure const&) {
    refuse();
  }
  return true;
}

void unpack(std::string& text) {
  if (!text.starts_with(PHMCBuffer::Header)) return;
  // A short hostile input must not fill the memory.
  std::uint64_t const limit = std::min<std::uint64_t>(
      PHMCBuffer::plausibleText(text.size()), LongestText);
  std::istringstream packed(std::move(text));
  std::ostringstream unused;
  PHMCStream stream(packed, unused, /*plain=*/false);
  stream.limitText(limit);
  text.clear();
  appendRest(*stream.rdbuf(), text, std::size_t{1} << 16);
}
