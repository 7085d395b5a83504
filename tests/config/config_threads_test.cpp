#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "photarium/config/DetectorConfig.h"
#include "photarium/config/Header.h"
#include "photarium/config/PlotConfig.h"
#include "photarium/config/SpectConfig.h"
#include "tests/support/on_threads.h"
#include "tests/support/paths.h"

namespace {

// Reads one config file of all, and prints what came of it.
template <class C>
std::string configured(std::string const& file, std::string const& line) {
  C settings;
  std::string findings;
  try {
    settings.config("--config " + file + " " + line, "Tube");
    settings.check();
  } catch (std::exception const& found) {
    findings = found.what();
  }
  Config<double> const& base = settings;
  return findings + Header("threads", base);
}

std::string configuredBy(std::size_t i, std::string const& file) {
  std::string const line = "--kvp " + std::to_string(i) + " --material Cu" +
                           std::to_string(i) + " --section b";
  if (i % 3 == 0) return configured<SpectConfig<double>>(file, line);
  if (i % 3 == 1) return configured<PlotConfig<double>>(file, line);
  return configured<DetectorConfig<double>>(file, line + " --count 3");
}

}  // namespace

TEST(ConfigThreads, ReadOneFileIntoSettingsOfTheirOwn) {
  ScratchFolder const scratch;
  std::string const file = scratch.write(
      "settings.cfg",
      "thickness = 0.1\n[Tube]\nsections = a\n[a]\nebin = 0.5\narea = 2\n"
      "geometry = circularaperture\nbsmodel = hunger\n[b]\ndensity = -3\n");
  std::string results[ThreadCount];
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 8; ++repeat)
      results[i] = configuredBy(i, file);
  });
  for (std::size_t i = 0; i < ThreadCount; ++i) {
    EXPECT_EQ(results[i], configuredBy(i, file));
    EXPECT_NE(results[i].find("Cu" + std::to_string(i)), std::string::npos);
  }
}
