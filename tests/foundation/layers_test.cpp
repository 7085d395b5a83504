#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "photarium/foundation/text.h"
#include "tests/support/paths.h"

namespace {

std::vector<std::string> const layers = {"foundation", "streams",  "spline",
                                         "config",     "material", "grid"};

std::vector<std::filesystem::path> sourcesOf(std::string const& layer) {
  std::vector<std::filesystem::path> files;
  for (auto const& entry :
       std::filesystem::directory_iterator(sourceDir() / "photarium" / layer))
    if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
      files.push_back(entry.path());
  return files;
}

// What a file includes in quotes.
std::vector<std::string> includesOf(std::filesystem::path const& file) {
  std::string const mark = "#include \"";
  std::vector<std::string> found;
  for (std::string const& line :
       split<std::string>(fileText(file), "\r\n", false))
    if (line.starts_with(mark))
      found.push_back(line.substr(mark.size(), line.rfind('"') - mark.size()));
  return found;
}

}  // namespace

TEST(layers, IncludeOnlyFromThoseAheadOfThem) {
  for (auto layer = layers.begin(); layer != layers.end(); ++layer)
    for (auto const& file : sourcesOf(*layer))
      for (std::string const& include : includesOf(file)) {
        auto const parts = split<std::string>(include, "/", true);
        ASSERT_EQ(parts.size(), 3U) << file << ": " << include;
        EXPECT_EQ(parts[0], "photarium") << file << ": " << include;
        EXPECT_NE(std::find(layers.begin(), layer + 1, parts[1]), layer + 1)
            << file << ": " << include;
      }
}

TEST(layers, AreAllIncludedByTheUmbrellaHeader) {
  auto const included = includesOf(sourceDir() / "photarium/photarium.h");
  std::string const lists = [] {
    std::string text;
    for (std::string const& layer : layers)
      text += fileText(sourceDir() / "photarium" / layer / "CMakeLists.txt");
    return text;
  }();
  for (std::string const& layer : layers)
    for (auto const& file : sourcesOf(layer)) {
      std::string const name = file.filename().string();
      bool const isPublic = file.extension() == ".h" &&
                            lists.find("  " + name + "\n") != std::string::npos;
      std::string const path = "photarium/" + layer + "/" + name;
      bool const isIncluded =
          std::find(included.begin(), included.end(), path) != included.end();
      EXPECT_EQ(isIncluded, isPublic && name != "export.h") << path;
    }
}
