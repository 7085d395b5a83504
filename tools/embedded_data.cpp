#include "tools/embedded_data.h"

#include <string_view>

#include "tools/system.h"

// The assembler copies the files into the object as they stand.
#ifdef _WIN32
#define PHOTARIUM_READ_ONLY ".section .rdata, \"dr\"\n"
#define PHOTARIUM_BACK ".text\n"
#else
#define PHOTARIUM_READ_ONLY ".section .rodata\n"
#define PHOTARIUM_BACK ".previous\n"
#endif
#define PHOTARIUM_EMBED(symbol, file)                                          \
  asm(PHOTARIUM_READ_ONLY ".global " #symbol "Begin, " #symbol "End\n" #symbol \
                          "Begin:\n.incbin \"" file "\"\n" #symbol             \
                          "End:\n.byte 0\n" PHOTARIUM_BACK);                   \
  extern "C" char const symbol##Begin[], symbol##End[]

PHOTARIUM_EMBED(photariumDatabase, PHOTARIUM_DATABASE_FILE);
PHOTARIUM_EMBED(photariumCorrections, PHOTARIUM_CORRECTIONS_FILE);

namespace Tool {

std::string embeddedDatabase() {
  static std::string const path = System::privateFile(
      "ElamDB12.txt", {photariumDatabaseBegin, photariumDatabaseEnd});
  return path;
}

std::string embeddedCorrections() {
  static std::string const path =
      System::privateFile("ELossCorrections.txt",
                          {photariumCorrectionsBegin, photariumCorrectionsEnd});
  return path;
}

bool isEmbedded(std::string const& path) {
  return System::isPrivate(path);
}

}  // namespace Tool
