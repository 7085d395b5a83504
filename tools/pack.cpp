// pack and unpack: text in the packed form of PHMCStream and back.

#include <istream>
#include <ostream>
#include <sstream>
#include <vector>

#include "photarium/streams/PHMCStream.h"
#include "tools/CommandLine.h"
#include "tools/Input.h"
#include "tools/Output.h"
#include "tools/command.h"

namespace Tool {
namespace {

using Transfer = void (*)(std::istream&, std::ostream&);

// Piecewise, as a whole buffer inserted at once would swallow the cause of a
// failure.
void copy(std::istream& in, std::ostream& out) {
  std::vector<char> piece(65536);
  do {
    in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    out.write(piece.data(), in.gcount());
  } while (in && out);
}

void pack(std::istream& in, std::ostream& out) {
  std::istringstream nothing;
  PHMCStream packed(nothing, out, /*plain=*/false);
  packed.exceptions(std::ios::badbit);
  copy(in, packed);
  packed.close();
}

void unpack(std::istream& in, std::ostream& out) {
  std::ostringstream nothing;
  PHMCStream packed(in, nothing, /*plain=*/false);
  packed.exceptions(std::ios::badbit);
  copy(packed, out);
}

void run(Arguments const& arguments, Transfer transfer,
         std::string const& usage) {
  CommandLine const line(arguments, {OutputOption}, CommandLine::Files::Some);
  line.finish(usage);
  if (line.files().size() > 1)
    throw UsageError("One file at a time: " + line.files()[1] +
                     " not understood.");
  Input input(line.files().empty() ? "-" : line.files().front());
  Output output(line.value("output"));
  transfer(input.stream(), output.stream());
  input.finish();
  output.finish();
}

}  // namespace

void runPack(Arguments const& arguments) {
  run(arguments, pack,
      "photarium pack [FILE] [--output FILE]\n\n"
      "Packs a text of numbers; standard input and output where no file is "
      "named. All\ncommands read packed files like plain ones; a database "
      "NAME is also found as\nNAME.phc. Line ends become line feeds. A text "
      "that is packed stays as it is.\n");
}

void runUnpack(Arguments const& arguments) {
  run(arguments, unpack,
      "photarium unpack [FILE] [--output FILE]\n\n"
      "Unpacks what \"photarium pack\" packed; a plain text stays as it is. "
      "Standard input\nand output where no file is named.\n");
}

}  // namespace Tool
