#include <algorithm>
#include <random>

#include "tests/config/open.h"
#include "tests/support/memory.h"

namespace {

using Words = std::vector<std::string>;

// A file with this text, and settings that name it.
class Sections : public testing::Test {
 protected:
  void file(std::string const& text) {
    settings.ConfigFile = folder_.write("a.cfg", text);
  }

  // The values of the key "n" in the order of application.
  Words order() const {
    Words out;
    for (auto const& options : settings.applied)
      if (options.contains("n")) out.push_back(options.at("n"));
    return out;
  }

  Recorder settings;

 private:
  ScratchFolder folder_;
};

// The list by plain recursion.
void flattenPlainly(SectionMap const& data, Words& sections,
                    Words const& ancestors) {
  Words merged;
  for (auto const& name : sections) {
    OptionMap const& options = data.at(name);
    if (std::find(ancestors.begin(), ancestors.end(), name) !=
        ancestors.end()) {
      merged.push_back(name);
      continue;
    }
    Words children;
    if (options.contains("sections"))
      children = split<std::string>(options.at("sections"), ",;", true);
    if (options.contains("section")) children.push_back(options.at("section"));
    Words below = ancestors;
    below.push_back(name);
    flattenPlainly(data, children, below);
    merged.insert(merged.end(), children.begin(), children.end());
    merged.push_back(name);
  }
  sections = merged;
}

std::string chain(int length) {
  std::string text;
  for (int i = 0; i < length; ++i)
    text += "[s" + std::to_string(i) + "]\nsection = s" +
            std::to_string((i + 1) % length) + "\n";
  return text;
}

std::string doubling(int levels) {
  std::string text;
  for (int i = 0; i < levels; ++i) {
    std::string const next = "s" + std::to_string(i + 1);
    text +=
        "[s" + std::to_string(i) + "]\nsections = " + next + "," + next + "\n";
  }
  return text + "[s" + std::to_string(levels) + "]\n";
}

}  // namespace

TEST_F(Sections, ApplyFromTheWeakestSource) {
  file("n = general\n[a]\nn = a\n[b]\nn = b\n[Tool]\nn = tool\n");
  EXPECT_TRUE(settings.config("--section b --section=a --n line", "Tool"));
  EXPECT_EQ(order(), (Words{"general", "b", "a", "line"}));
  EXPECT_EQ(settings.Sections, (Words{"General", "b", "a", "CmdLine"}));
}

TEST_F(Sections, HaveADefaultOfTheProgram) {
  file("n = general\n[Tool]\nn = tool\n");
  EXPECT_TRUE(settings.config("--n=line", "Tool"));
  EXPECT_EQ(order(), (Words{"general", "tool", "line"}));
}

TEST_F(Sections, DropADefaultThatTheFileLacks) {
  file("n = general\n");
  EXPECT_TRUE(settings.config("", "Tool"));
  EXPECT_EQ(settings.Sections, Words{"General"});
}

TEST_F(Sections, AreComparedWithTheirCase) {
  file("[tube]\n");
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { settings.config("--section Tube", ""); }),
            "Section Tube not found!\n");
  EXPECT_TRUE(settings.applied.empty());
}

TEST_F(Sections, OfTheCommandLineApplyAheadOfItsKeys) {
  file("[a]\nn = a\n[ b]\nn = b\n");
  EXPECT_TRUE(settings.config("--n=line '--sections=a, b'", ""));
  EXPECT_EQ(order(), (Words{"a", "b", "line"}));
}

TEST_F(Sections, InTheFileBeatTheCommandLineWhereTheyBearItsName) {
  file("[CmdLine]\nn = file\n");
  EXPECT_TRUE(settings.config("--n=line --m=line", ""));
  EXPECT_EQ(settings.applied.back().at("n"), "file");
  EXPECT_EQ(settings.applied.back().at("m"), "line");
}

TEST_F(Sections, ApplyBehindThoseTheyInclude) {
  file(
      "[a]\nn = a\nsections = b;c\nsection = d\n[b]\nn = b\nsection = e\n"
      "[c]\nn = c\n[d]\nn = d\n[e]\nn = e\n");
  EXPECT_TRUE(settings.config("--section a", ""));
  EXPECT_EQ(order(), (Words{"e", "b", "c", "d", "a"}));
}

TEST_F(Sections, AreNotTrimmedInLists) {
  file("[a]\nsections = b, c\n[b]\n[c]\n");
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { settings.config("--section a", ""); }),
      "Section  c not found!\n");
}

TEST_F(Sections, OfAnEmptyListHaveAnEmptyName) {
  file("[a]\nsections =\n");
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { settings.config("--section a", ""); }),
      "Section  not found!\n");
}

TEST_F(Sections, ApplyTwiceWhereTheyIncludeThemselves) {
  file("[a]\nn = a\nsection = a\n");
  EXPECT_TRUE(settings.config("--section a", ""));
  EXPECT_EQ(settings.Sections, (Words{"General", "a", "a"}));
  EXPECT_EQ(order(), (Words{"a", "a"}));
}

TEST_F(Sections, ApplyTwiceWhereTheyIncludeThemselvesOverOthers) {
  file("[a]\nsection = b\n[b]\nsection = a\n");
  EXPECT_TRUE(settings.config("--section a", ""));
  EXPECT_EQ(settings.Sections, (Words{"General", "a", "b", "a"}));
}

TEST_F(Sections, AddToThoseOfAFormerCall) {
  file("[a]\n");
  EXPECT_TRUE(settings.config("--section a", ""));
  EXPECT_TRUE(settings.config("", ""));
  EXPECT_EQ(settings.Sections, (Words{"General", "General", "a"}));
}

TEST_F(Sections, KeepTheCommandLineOfAFormerCall) {
  EXPECT_TRUE(settings.config("--n line", ""));
  EXPECT_EQ(thrown<std::runtime_error>([&] { settings.config("", ""); }),
            "Section CmdLine not found!\n");
}

TEST_F(Sections, EndWithAFinding) {
  file("[a]\ntime = x\n[b]\ntime = 7\n");
  Root root;
  root.ConfigFile = settings.ConfigFile;
  EXPECT_EQ(thrown<warning>([&] { root.config("--sections a,b", ""); }),
            "Problem parsing: time=x\n");
  EXPECT_EQ(root.Time, 0);
}

TEST_F(Sections, AreReadAsTheyStandWithoutACommandLine) {
  file("n = general\n[a]\nn = a\n");
  Open<Recorder> open;
  open.ConfigFile = settings.ConfigFile;
  open.Sections = {"a"};
  open.read(/*optional=*/false);
  EXPECT_EQ(open.Sections, Words{"a"});
  EXPECT_EQ(open.applied.size(), 1U);
}

TEST_F(Sections, FlattenOnlyBelowAncestors) {
  Open<Recorder> open;
  SectionMap const data{{"a", {{"sections", "b,c"}}}, {"b", {}}, {"c", {}}};
  Words sections{"a", "c"};
  Words ancestors{"c"};
  open.parse(data, sections, ancestors);
  EXPECT_EQ(sections, (Words{"b", "c", "a", "c"}));
  EXPECT_TRUE(open.applied.empty());
}

TEST_F(Sections, OfACycleOf10000NamesApplyOnceAndOneTwice) {
  file(chain(10000));
  EXPECT_TRUE(settings.config("--section s0", ""));
  EXPECT_EQ(settings.Sections.size(), 10002U);
  EXPECT_EQ(settings.Sections[1], "s0");
  EXPECT_EQ(settings.Sections[2], "s9999");
  EXPECT_EQ(settings.Sections.back(), "s0");
}

TEST_F(Sections, OfALongChainDoNotExhaustTheStack) {
  file(chain(200000) + "[s199999]\nsections = General\n");
  EXPECT_TRUE(settings.config("--section s0", ""));
  EXPECT_EQ(settings.Sections.size(), 200003U);
}

TEST_F(Sections, MayRepeatALot) {
  file(doubling(15));
  EXPECT_TRUE(settings.config("--section s0", ""));
  EXPECT_EQ(settings.Sections.size(), 65536U);
}

TEST_F(Sections, MustNotRepeatWithoutLimit) {
  for (int const levels : {17, 60, 10000}) {
    settings.Sections.clear();
    file(doubling(levels));
    EXPECT_EQ(thrown<std::runtime_error>(
                  [&] { settings.config("--section s0", ""); }),
              "Sections repeated too often!\n");
    EXPECT_TRUE(settings.applied.empty());
  }
}

TEST_F(Sections, OfAnEndlessListTakeNoMemory) {
  // 25 million names.
  std::string list;
  for (int i = 0; i < 25'000'000; ++i) list += "b,";
  file("[a]\nsections = " + list + "b\n[b]\n");
  long const before = peakMemory();
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { settings.config("--section a", ""); }),
      "Sections repeated too often!\n");
  EXPECT_LT(peakMemory() - before, 400 * 1024);
}

TEST_F(Sections, MustNotRepeatALongTextWithoutLimit) {
  file(doubling(10) + "n = " + std::string(1'000'000, 'x') + "\n");
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { settings.config("--section s0", ""); }),
      "Sections repeated too often!\n");
}

TEST_F(Sections, FlattenAsAPlainRecursionDoes) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    SectionMap data;
    for (char name = 'a'; name < 'f'; ++name) {
      OptionMap& options = data[std::string(1, name)];
      for (auto const* key : {"section", "sections"})
        if (random() % 3 == 0) {
          std::string& list = options[key];
          list = static_cast<char>('a' + random() % 5);
          if (std::string(key) == "sections" && random() % 2 == 0)
            list += std::string(1, ",;"[random() % 2]) +
                    static_cast<char>('a' + random() % 5);
        }
    }
    Words sections{"a", "c"};
    Words expected = sections;
    flattenPlainly(data, expected, {});
    Open<Recorder> open;
    Words none;
    open.parse(data, sections, none);
    ASSERT_EQ(sections, expected) << "round " << round;
  }
}
