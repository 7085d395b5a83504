// import-endf: atomic tapes of the laboratories in the form and the folder in
// which the library looks for them.

#include <zlib.h>

#include <filesystem>
#include <istream>
#include <memory>
#include <new>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/number.h"
#include "photarium/streams/PHMCStream.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/command.h"
#include "tools/data_folder.h"
#include "tools/endf_tape.h"

namespace Tool {
namespace {

namespace fs = std::filesystem;

constexpr char Usage[] =
    "photarium import-endf [--to DIR] [--pack] [--thin TOL] FILE...\n\n"
    "Takes ENDF-6 tapes of the photo-atomic, atomic relaxation and "
    "electro-atomic\nsublibraries as the laboratories publish them, plain or "
    "gzip, and writes for each\nelement the file that all commands read: "
    "DIR/data/ENDF-VII0/ZZZ_Sym_000.endf.\nName all tapes of an element in one "
    "call. Prints what was found and what is\nmissing.\n\n";

Option const ToOption{"to", "DIR",
                      "folder that holds data/; by default the one that all "
                      "commands read"};
Option const PackOption{"pack", "", "write packed files"};
Option const ThinOption{"thin", "TOL",
                        "drop points that linear interpolation gives within "
                        "this part"};

// A file that stands for more text than all sublibraries together is no tape.
constexpr std::size_t LongestText = std::size_t{1} << 30;

struct CloseGzip {
  void operator()(gzFile file) const { gzclose(file); }
};

// A whole file, unpacked if it is in gzip form.
std::string fileText(std::string const& name) {
  std::error_code ignored;
  if (fs::is_directory(name, ignored))
    throw std::runtime_error(name + ": is a folder");
  std::unique_ptr<gzFile_s, CloseGzip> const file(gzopen(name.c_str(), "rb"));
  if (!file) throw std::runtime_error(name + ": Could not open file");
  gzbuffer(file.get(), 1U << 17);
  std::string text;
  for (int got = 1; got > 0;) {
    std::size_t const size = text.size();
    constexpr unsigned int piece = 1U << 20;
    text.resize(size + piece);
    got = gzread(file.get(), text.data() + size, piece);
    text.resize(size + static_cast<std::size_t>(got > 0 ? got : 0));
    if (text.size() > LongestText)
      throw std::runtime_error(name + ": Too long for a tape");
  }
  int error = Z_OK;
  gzerror(file.get(), &error);
  if (error == Z_MEM_ERROR) throw std::bad_alloc();
  if (error != Z_OK) throw std::runtime_error(name + ": Could not read file");
  return text;
}

double tolerance(CommandLine const& line) {
  if (!line.has(ThinOption.name)) return 0;
  std::string const text = line.value(ThinOption.name);
  std::string_view rest = text;
  double value = 0;
  bool const isNumber = extractNumber(rest, value) && rest.empty();
  if (!isNumber || !(value >= 0 && value < 1))
    throw UsageError("--thin " + text + " is no part of a value");
  return value;
}

// The folder that the other commands read from, unless another one is asked
// for.
fs::path folder(CommandLine const& line) {
  std::string to = line.value(ToOption.name);
  if (to.empty()) {
    MaterialConfig<double> settings;
    locateData(settings);
    to = settings.Directory;
  }
  return fs::path(to) / "data" / "ENDF-VII0";
}

// The plain file is found ahead of the packed one, so only one of them stays.
void write(fs::path const& path, std::string const& text, bool packed) {
  Output output(path.string() + (packed ? ".phc" : ""));
  if (packed) {
    std::istringstream nothing;
    PHMCStream stream(nothing, output.stream(), /*plain=*/false);
    stream.exceptions(std::ios::badbit);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
  } else {
    output.stream().write(text.data(),
                          static_cast<std::streamsize>(text.size()));
  }
  output.finish();
  std::error_code ignored;
  fs::remove(packed ? path : fs::path(path.string() + ".phc"), ignored);
}

}  // namespace

void runImportEndf(Arguments const& arguments) {
  CommandLine const line(arguments, {ToOption, PackOption, ThinOption},
                         CommandLine::Files::Some);
  line.finish(Usage);
  if (line.files().empty()) throw UsageError("No tape given.");
  double const thin = tolerance(line);
  EndfTapes tapes;
  for (auto const& file : line.files()) tapes.add(file, fileText(file));

  fs::path const to = folder(line);
  fs::create_directories(to);
  Output report("");
  for (auto const& [z, element] : tapes.elements()) {
    fs::path const path = to / endfFileName(z);
    write(path, endfText(element, thin), line.has(PackOption.name));
    report.stream() << endfReport(element);
  }
  report.stream() << tapes.elements().size() << " elements in "
                  << to.generic_string() << '\n';
  report.finish();
}

}  // namespace Tool
