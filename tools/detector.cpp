// detector: the settings of a detector, for writers of tools that use them.

#include <string>

#include "photarium/config/DetectorConfig.h"
#include "photarium/material/Material.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/command.h"
#include "tools/loading.h"

namespace Tool {
namespace {

constexpr char Usage[] =
    "photarium detector [OPTIONS]: prints the settings of a detector. --check "
    "looks the\ndensity of the material up, checks the settings and prints "
    "what it corrected.\n\n";

Option const CheckOption{"check", "", "check and correct the settings"};

}  // namespace

void runDetector(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, CheckOption});
  DetectorConfig<double> settings;
  line.configure(settings, "detector", Usage);
  if (line.has("check")) {
    Material<double> material;
    load(material, settings);
    check(settings);
  }
  Output output(line.value("output"));
  output.stream() << settings.write("", /*chain=*/true);
  output.finish();
}

}  // namespace Tool
