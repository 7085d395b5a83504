#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/material/EndfText.h"
#include "tests/material/elam_text.h"
#include "tests/material/fingerprint.h"
#include "tests/support/on_threads.h"
#include "tests/support/paths.h"

namespace {

// What loading a material gives: its curves and what is written back.
std::string loaded(std::string const& directory, std::string const& file,
                   std::string const& text) {
  MaterialConfig<double> config;
  config.Directory = directory;
  config.DataFile = file;
  config.CorrFile = "corrections.txt";
  config.Material = text;
  Material<double> material;
  std::ostringstream out;
  try {
    material.update(config);
  } catch (warning const& findings) {
    out << findings.what();
  }
  out << config.Material << '\n' << config.DataFile << '\n';
  out << config.DataType << ' ' << config.Density << '\n';
  out << material.Absorption << material.Coherent << material.Incoherent;
  return out.str();
}

class MaterialThreads : public testing::Test {
 protected:
  MaterialThreads() {
    scratch.write("corrections.txt", "# none\n");
    // Databases that differ in the weight of copper.
    for (std::size_t i = 0; i < ThreadCount; ++i) {
      ElamElement element = copper();
      element.photo.atOnekeV += static_cast<double>(i);
      std::string const folder = std::to_string(i) + "/";
      scratch.write(folder + "data/ElamDB12.txt",
                    database({hydrogen(), oxygen(), element}));
      scratch.write(folder + "corrections.txt", "# none\n");
    }
  }

  std::string folder(std::size_t i) const {
    return (scratch.path() / std::to_string(i)).string();
  }

  ScratchFolder scratch;
  std::string results[ThreadCount];
};

}  // namespace

TEST_F(MaterialThreads, LoadTheSameFromOneDatabase) {
  std::vector<std::string> const texts = {"Cu", "H2O", "CuO", "O 1 H 3"};
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 8; ++repeat)
      results[i] =
          loaded(folder(0), "data/ElamDB12.txt", texts[i % texts.size()]);
  });
  for (std::size_t i = 0; i < ThreadCount; ++i)
    EXPECT_EQ(results[i],
              loaded(folder(0), "data/ElamDB12.txt", texts[i % texts.size()]));
}

TEST_F(MaterialThreads, WriteBackTheFilesThatTheyReadThemselves) {
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 8; ++repeat)
      results[i] = loaded(folder(i), "", i % 2 == 0 ? "Cu" : "CuO");
  });
  for (std::size_t i = 0; i < ThreadCount; ++i) {
    EXPECT_EQ(results[i], loaded(folder(i), "", i % 2 == 0 ? "Cu" : "CuO"));
    EXPECT_NE(results[i].find(folder(i) + "/data/ElamDB12.txt"),
              std::string::npos);
  }
}

TEST_F(MaterialThreads, LeaveACacheOfOnePiece) {
  onThreads([&](std::size_t i) { loaded(folder(i), "", "Cu"); });
  std::string const name = Material<double>::CacheName;
  std::string const text = Material<double>::cachedDB;
  EXPECT_EQ(Material<double>::CacheType, ElamDB);
  EXPECT_EQ(text, fileText(name) + "\n");
}

TEST_F(MaterialThreads, MayEvaluateASharedMaterial) {
  MaterialConfig<double> config;
  config.Directory = folder(0);
  config.CorrFile = "corrections.txt";
  config.Material = "H";
  Material<double> const shared(config);
  double const expected = shared.Absorption(8., false);
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 1000; ++repeat) {
      double const energy = 1 + static_cast<double>((i + 7) * 13 % 90);
      shared.Absorption(energy, false);
      if (shared.Absorption(8., false) != expected) results[i] = "differs";
    }
  });
  for (std::string const& result : results) EXPECT_EQ(result, "");
}

TEST_F(MaterialThreads, LoadFromDatabasesOfSeveralFormats) {
  scratch.write("data/ENDF-VII0/026_Fe_000.endf",
                smallElement(26, "Fe").tapeEnd().str());
  scratch.write("data/ElamDB12.txt", database({oxygen(), copper()}));
  std::vector<std::string> const texts = {"Fe", "Cu", "CuO", "FeO"};
  std::string const folder = scratch.path().string();
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 8; ++repeat)
      results[i] = loaded(folder, "", texts[i % texts.size()]);
  });
  for (std::size_t i = 0; i < ThreadCount; ++i)
    EXPECT_EQ(results[i], loaded(folder, "", texts[i % texts.size()]));
}

// Every curve and surface, between and at its nodes.
TEST_F(MaterialThreads, MayEvaluateAllOfASharedMaterial) {
  Material<double> material("Fe", 0, 0, 0);
  std::istringstream in(smallElement(26, "Fe").str());
  material.readENDF(in);
  Material<double> const& shared = material;
  std::string const expected = Fingerprint(shared).str();
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 20; ++repeat) {
      Material<double> const copy(shared);
      if (Fingerprint(shared).str() != expected) results[i] = "differs";
      if (Fingerprint(copy).str() != expected) results[i] = "copy differs";
    }
  });
  for (std::string const& result : results) EXPECT_EQ(result, "");
}
