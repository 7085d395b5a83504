#include "tools/embedded_data.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>

// The assembler copies the files into the object as they stand.
#define PHOTARIUM_EMBED(symbol, file)                      \
  asm(".section .rodata\n"                                 \
      ".global " #symbol "Begin, " #symbol "End\n" #symbol \
      "Begin:\n.incbin \"" file "\"\n" #symbol             \
      "End:\n.byte 0\n"                                    \
      ".previous\n");                                      \
  extern "C" char const symbol##Begin[], symbol##End[]

PHOTARIUM_EMBED(photariumDatabase, PHOTARIUM_DATABASE_FILE);
PHOTARIUM_EMBED(photariumCorrections, PHOTARIUM_CORRECTIONS_FILE);

namespace Tool {
namespace {

constexpr char DescriptorFolder[] = "/proc/self/fd/";

// A file in memory with a path to open it by. It stays open as long as the
// process lives.
std::string inMemory(char const* name, std::string_view text) {
  int const descriptor = memfd_create(name, MFD_CLOEXEC);
  while (descriptor >= 0 && !text.empty()) {
    ssize_t const written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  if (descriptor < 0 || !text.empty())
    throw std::runtime_error(std::string("Could not unfold ") + name + ": " +
                             std::strerror(errno));
  return DescriptorFolder + std::to_string(descriptor);
}

}  // namespace

std::string embeddedDatabase() {
  static std::string const path =
      inMemory("ElamDB12.txt", {photariumDatabaseBegin, photariumDatabaseEnd});
  return path;
}

std::string embeddedCorrections() {
  static std::string const path =
      inMemory("ELossCorrections.txt",
               {photariumCorrectionsBegin, photariumCorrectionsEnd});
  return path;
}

bool isEmbedded(std::string const& path) {
  return path.starts_with(DescriptorFolder);
}

}  // namespace Tool
