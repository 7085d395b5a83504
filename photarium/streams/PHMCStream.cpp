#include "photarium/streams/PHMCStream.h"

#include <filesystem>
#include <locale>
#include <system_error>

PHMCStream::PHMCStream(std::istream& source, std::ostream& target, bool plain)
    : std::iostream(nullptr), buffer(source, target, plain) {
  rdbuf(&buffer);  // now that it exists
  imbue(std::locale::classic());
}

PHMCStream::PHMCStream(std::string const& name, bool plain, int mode)
    : std::iostream(nullptr),
      file(name, static_cast<std::ios::openmode>(mode)),
      buffer(file, file, plain) {
  rdbuf(&buffer);
  imbue(std::locale::classic());
  setstate(file.rdstate());
}

PHMCStream::~PHMCStream() {
  try {
    close();
  } catch (...) {
    // The text was refused, and stays without its end code.
  }
}

void PHMCStream::limitText(std::string const& name) {
  std::error_code unknown;
  std::uint64_t const size = std::filesystem::file_size(name, unknown);
  limitText(PHMCBuffer::plausibleText(unknown ? 0 : size));
}

void PHMCStream::close() {
  bool const isOwnFile = file.is_open();
  buffer.close();
  bool const isClosed = file.rdbuf()->close() != nullptr;
  if (!isClosed) file.setstate(std::ios::failbit);
  if (isOwnFile && (!isClosed || file.bad())) setstate(std::ios::badbit);
}
