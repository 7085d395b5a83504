// The pages are true: what they show is what comes out.

#include <algorithm>

#include "tests/tools/Program.h"

namespace {

std::vector<std::string> linesOf(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// A command of a page with the lines of output below it. A line "..." stands
/// for any number of lines.
struct Example {
  std::string command;
  std::vector<std::string> output;
};

// Indented lines; "$ " begins a command, a backslash at its end goes on.
std::vector<Example> examplesOf(std::string const& page) {
  std::vector<Example> examples;
  bool inExample = false;
  for (auto const& line : linesOf(page)) {
    if (line.starts_with("    $ ")) {
      examples.push_back({line.substr(6), {}});
      inExample = true;
    } else if (!line.starts_with("    ")) {
      inExample = inExample && line.empty();
    } else if (inExample && examples.back().command.ends_with('\\')) {
      examples.back().command.back() = ' ';
      examples.back().command += line.substr(4);
    } else if (inExample) {
      examples.back().output.push_back(line.substr(4));
    }
  }
  return examples;
}

bool matches(std::vector<std::string> const& expected,
             std::vector<std::string> const& lines, std::size_t i = 0,
             std::size_t j = 0) {
  if (i == expected.size()) return j == lines.size();
  if (expected[i] == "...")
    return matches(expected, lines, i + 1, j) ||
           (j < lines.size() && matches(expected, lines, i, j + 1));
  return j < lines.size() && lines[j] == expected[i] &&
         matches(expected, lines, i + 1, j + 1);
}

// The lines of a fenced block of `language`.
std::string blockOf(std::string const& page, std::string const& language) {
  std::string const fence = "```" + language + "\n";
  std::size_t const begin = page.find(fence);
  if (begin == std::string::npos) return "";
  std::size_t const start = begin + fence.size();
  return page.substr(start, page.find("```", start) - start);
}

// The targets of the links of a page that are files of the project.
std::vector<std::string> filesLinkedIn(std::string const& page) {
  std::vector<std::string> files;
  for (std::size_t at = 0; (at = page.find("](", at)) != std::string::npos;) {
    at += 2;
    std::string target = page.substr(at, page.find(')', at) - at);
    bool const isElsewhere = target.find("://") != std::string::npos;
    target.resize(std::min(target.find('#'), target.size()));
    if (!isElsewhere && !target.empty()) files.push_back(target);
  }
  return files;
}

}  // namespace

TEST(Pages, LinkToFilesThatExist) {
  std::vector<std::filesystem::path> pages{sourceDir() / "README.md"};
  for (auto const& entry :
       std::filesystem::directory_iterator(sourceDir() / "docs"))
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  std::size_t count = 0;
  for (auto const& page : pages)
    for (auto const& file : filesLinkedIn(fileText(page))) {
      EXPECT_TRUE(std::filesystem::exists(page.parent_path() / file))
          << page << " links to " << file;
      ++count;
    }
  EXPECT_GT(count, 10u);
}

TEST(ProgramPage, ShowsWhatItsExamplesPrint) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  auto const examples = examplesOf(fileText(sourceDir() / "docs/program.md"));
  EXPECT_GT(examples.size(), 10u);
  for (auto const& [command, output] : examples) {
    Outcome const outcome = program.shell("exec 2>&1; " + command);
    EXPECT_TRUE(matches(output, linesOf(outcome.out)))
        << command << "\nprints\n"
        << outcome.out;
  }
}

TEST(ProgramPage, HasAnExampleOfEveryCommand) {
  std::string const page = fileText(sourceDir() / "docs/program.md");
  auto const overview = linesOf(Program().run({"help"}).out);
  int count = 0;
  for (auto const& line : overview) {
    if (!line.starts_with("  ")) continue;
    std::string const name = line.substr(2, line.find(' ', 2) - 2);
    EXPECT_NE(page.find("photarium " + name), std::string::npos) << name;
    ++count;
  }
  EXPECT_GE(count, 7);
}

TEST(Readme, ShowsTheHeadOfTheBrassTable) {
  std::string const page = fileText(sourceDir() / "README.md");
  auto const table = linesOf(Program()
                                 .run({"mu", "--material", "CuZn", "--acrp",
                                       "--kvp", "100", "--ebin", "1"})
                                 .out);
  std::string const head = blockOf(page, "text");
  auto const shown = linesOf(head);
  ASSERT_GE(shown.size(), 5u);
  for (std::size_t i = 0; i < shown.size(); ++i) EXPECT_EQ(shown[i], table[i]);
}

TEST(Readme, ShowsTheExampleThatIsBuiltAndRun) {
  std::string const page = fileText(sourceDir() / "README.md");
  std::string const example = fileText(sourceDir() / "examples/copper.cpp");
  EXPECT_NE(example.find(blockOf(page, "cpp")), std::string::npos);
  EXPECT_FALSE(blockOf(page, "cpp").empty());
  std::string const expected =
      fileText(sourceDir() / "examples/copper.expected");
  EXPECT_EQ(blockOf(page, "output"), expected);
}

TEST(LibraryPage, ShowsTheToolThatIsBuiltAndRun) {
  std::string const page = fileText(sourceDir() / "docs/library.md");
  std::string const tool = blockOf(page, "cpp");
  EXPECT_FALSE(tool.empty());
  EXPECT_NE(fileText(sourceDir() / "examples/tool.cpp").find(tool),
            std::string::npos);
}
