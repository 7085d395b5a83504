// Loading where memory ends: each request for it is refused in turn. The first
// refusal ends the load as std::bad_alloc; it never leads to other data or to a
// finding.

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <string>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/material/EndfText.h"
#include "tests/material/elam_text.h"
#include "tests/material/fingerprint.h"
#include "tests/support/paths.h"
#include "tests/support/refused_memory.h"

namespace {

ElamElement iron() {
  ElamElement element = copper();
  element.symbol = "Fe";
  element.Z = 26;
  return element;
}

class MemoryOfMaterial : public testing::Test {
 protected:
  MemoryOfMaterial() {
    folder_.write("data/ElamDB12.txt",
                  database({hydrogen(), oxygen(), copper(), iron()}));
    folder_.write("data/LocalDB.txt", database({oxygen()}));
    folder_.write("data/ELossCorrections.txt",
                  "Cu 29 0.45636 322 8.96 58.270 2.956 4.4190 -0.0254 3.2792 "
                  "0.14339 2.9044 0.08 0.019 15.46\n");
  }

  // The material and its findings, with so many requests granted; nothing if
  // that ended in std::bad_alloc.
  std::optional<std::string> loaded(std::string const& text, long requests) {
    MaterialConfig<double> config;
    config.Directory = folder_.path().string();
    config.Material = text;
    Material<double>::CacheName.clear();  // each load from the disk
    Material<double> material;
    std::string findings;
    refuseMemoryAfter(requests);
    try {
      material.update(config);
      wasRefused_ = endMemoryRefusals();
    } catch (warning const& found) {
      wasRefused_ = endMemoryRefusals();
      findings = found.what();
    } catch (std::bad_alloc const&) {
      wasRefused_ = endMemoryRefusals();
      return {};
    }
    return findings + config.DataFile + Fingerprint(material).str();
  }

  // Refuses one request after the other until none is left to refuse.
  void expectAllOrNothing(std::string const& text) {
    std::optional<std::string> const whole = loaded(text, -1);
    ASSERT_TRUE(whole);
    long refusals = 0;
    for (wasRefused_ = true; wasRefused_; ++refusals) {
      auto const outcome = loaded(text, refusals);
      // A sort goes on without the memory that it asked for.
      if (!outcome) continue;
      ASSERT_EQ(*outcome, *whole) << "request " << refusals;
    }
    EXPECT_GT(refusals, 50);
  }

  ScratchFolder folder_;
  bool wasRefused_ = false;
};

}  // namespace

TEST_F(MemoryOfMaterial, ThatEndsEndsTheLoadOfAnElement) {
  expectAllOrNothing("Cu");
}

TEST_F(MemoryOfMaterial, ThatEndsEndsTheLoadOfAComposite) {
  expectAllOrNothing("CuO");
}

TEST_F(MemoryOfMaterial, ThatEndsDoesNotLeadToTheNextDatabase) {
  folder_.write("data/ENDF-VII0/026_Fe_000.endf",
                smallElement(26, "Fe").tapeEnd().str());
  expectAllOrNothing("Fe");
  EXPECT_EQ(Material<double>::CacheType, ENDF);
}
