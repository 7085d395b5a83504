#include "photarium/foundation/text.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "photarium/foundation/warning.h"

namespace {

using Words = std::vector<std::string>;
using Numbers = std::vector<double>;

std::string trimmedCopy(std::string text, std::string const& chars) {
  trim(text, chars);
  return text;
}

std::string decommented(std::string text) {
  decomment(text);
  return text;
}

// What a list in place of `values` makes of them.
Numbers after(Numbers values, std::string const& list) {
  split(values, list, ",;", /*keepEmpty=*/true);
  return values;
}

template <class T>
std::string failureOf(std::vector<T>& values, std::string const& list) {
  try {
    split(values, list, ",;", /*keepEmpty=*/true);
  } catch (std::runtime_error const& error) {
    return error.what();
  }
  return "no failure";
}

}  // namespace

TEST(tolower, FoldsLettersAlone) {
  EXPECT_EQ(tolower(""), "");
  EXPECT_EQ(tolower("AbZ[]@`{09\xC4\xE4"), "abz[]@`{09\xC4\xE4");
  EXPECT_EQ(tolower(std::string("A\0B", 3)), std::string("a\0b", 3));
}

TEST(decomment, CutsAtTheFirstMark) {
  EXPECT_EQ(decommented("a = 1 # b # c"), "a = 1 ");
  EXPECT_EQ(decommented("\"a # b\""), "\"a ");
  EXPECT_EQ(decommented("a"), "a");
  EXPECT_EQ(decommented("#"), "");
  EXPECT_EQ(decommented(""), "");
}

TEST(trim, CutsBothEnds) {
  EXPECT_EQ(trimmedCopy(" \ta b\r\n", Blanks), "a b");
  EXPECT_EQ(trimmedCopy(" \t\r\n", Blanks), "");
  EXPECT_EQ(trimmedCopy("", Blanks), "");
  EXPECT_EQ(trimmedCopy("\"\"a\"b\"", "\""), "a\"b");
  EXPECT_EQ(trimmedCopy(" a ", ""), " a ");
  EXPECT_EQ(trimmed(" a\v"), "a\v");
}

TEST(isAbsolutePath, KnowsRootsAndDrives) {
  EXPECT_TRUE(isAbsolutePath("/x"));
  EXPECT_TRUE(isAbsolutePath("\\x"));
  EXPECT_TRUE(isAbsolutePath("c:x"));
  EXPECT_TRUE(isAbsolutePath("Z:"));
  EXPECT_FALSE(isAbsolutePath(""));
  EXPECT_FALSE(isAbsolutePath("c"));
  EXPECT_FALSE(isAbsolutePath("1:x"));
  EXPECT_FALSE(isAbsolutePath("[:x"));
  EXPECT_FALSE(isAbsolutePath("{:x"));
  EXPECT_FALSE(isAbsolutePath("\xE4:x"));
  EXPECT_FALSE(isAbsolutePath(":x"));
  EXPECT_FALSE(isAbsolutePath("x/y"));
}

TEST(ConcatPath, PutsOneSlashBetween) {
  EXPECT_EQ(ConcatPath("data/", "x"), "data/x");
  EXPECT_EQ(ConcatPath("data", "x"), "data/x");
  EXPECT_EQ(ConcatPath("data//", "./x//y"), "data//./x//y");
}

TEST(ConcatPath, GivesTheOtherPartForAnEmptyOne) {
  EXPECT_EQ(ConcatPath("", "x"), "x");
  EXPECT_EQ(ConcatPath("data", ""), "data");
  EXPECT_EQ(ConcatPath(" \"\" ", "\"x\""), "x");
  EXPECT_EQ(ConcatPath("", ""), "");
}

TEST(ConcatPath, LetsAnAbsoluteFileStandAlone) {
  EXPECT_EQ(ConcatPath("data", "/x"), "/x");
  EXPECT_EQ(ConcatPath("data", "\\x"), "\\x");
  EXPECT_EQ(ConcatPath("data", "c:x"), "c:x");
}

TEST(ConcatPath, KeepsBlanksInsideQuotes) {
  EXPECT_EQ(ConcatPath(" \"a b\" ", "x"), "a b/x");
  EXPECT_EQ(ConcatPath("\" a \"", "\" x \""), " a / x ");
}

TEST(ConcatPath, PutsASlashBehindABackslash) {
  EXPECT_EQ(ConcatPath("a\\", "x"), "a\\/x");
}

TEST(split, KeepsEmptyFieldsOnDemand) {
  EXPECT_EQ(split<std::string>("a,,b", ",", true), (Words{"a", "", "b"}));
  EXPECT_EQ(split<std::string>("a,", ",", true), (Words{"a", ""}));
  EXPECT_EQ(split<std::string>(",a", ",", true), (Words{"", "a"}));
  EXPECT_EQ(split<std::string>("", ",", true), Words{""});
}

TEST(split, DropsEmptyFieldsOnDemand) {
  EXPECT_EQ(split<std::string>("a,,b", ",", false), (Words{"a", "b"}));
  EXPECT_EQ(split<std::string>("a,", ",", false), Words{"a"});
  EXPECT_EQ(split<std::string>(",,", ",", false), Words{});
  EXPECT_EQ(split<std::string>("", ",", false), Words{});
}

TEST(split, CutsAtAnyDelimiterAndTrimsNothing) {
  EXPECT_EQ(split<std::string>(" a ; b,c", ",;", true),
            (Words{" a ", " b", "c"}));
  EXPECT_EQ(split<std::string>("a b", "", true), Words{"a b"});
}

TEST(split, ClearsTheWordsThatStoodThere) {
  Words words{"old"};
  split(words, "a", ",", true);
  EXPECT_EQ(words, Words{"a"});
}

TEST(split, FillsASizedVectorWithTheLastNumber) {
  EXPECT_EQ(after({7, 8, 9}, "1;2"), (Numbers{1, 2, 2}));
  EXPECT_EQ(after({7, 8, 9}, "0.1"), (Numbers{0.1, 0.1, 0.1}));
}

TEST(split, CutsAListToTheSizeOfTheVector) {
  EXPECT_EQ(after({7, 8, 9}, "1,2,3,4"), (Numbers{1, 2, 3}));
}

TEST(split, NeverParsesBeyondTheSizeOfTheVector) {
  EXPECT_EQ(after({7, 8, 9}, "1,2,3,x"), (Numbers{1, 2, 3}));
}

TEST(split, GrowsAnEmptyVector) {
  EXPECT_EQ(after({}, "1,2;3"), (Numbers{1, 2, 3}));
  EXPECT_EQ(split<double>("1 2 ", " ", false), (Numbers{1, 2}));
  EXPECT_EQ(split<double>("", ",", false), Numbers{});
}

TEST(split, FillsWithTheFirstNumberWhereThereIsNoField) {
  Numbers numbers{7, 8};
  split(numbers, "", ",", false);
  EXPECT_EQ(numbers, (Numbers{7, 7}));
}

TEST(split, IgnoresTextBehindANumber) {
  EXPECT_EQ(after({}, " 1keV,2.5e1x"), (Numbers{1, 25}));
}

TEST(split, NamesTheFieldThatIsNoNumber) {
  Numbers numbers{7, 8, 9};
  EXPECT_EQ(failureOf(numbers, "1,x,3"), "Couldn't parse x");
  EXPECT_EQ(numbers, (Numbers{1, 8, 9}));
  Numbers none;
  EXPECT_EQ(failureOf(none, "1,"), "Couldn't parse ");
  EXPECT_EQ(failureOf(none, "nan"), "Couldn't parse nan");
  std::vector<unsigned int> counts;
  EXPECT_EQ(failureOf(counts, "4294967296"), "Couldn't parse 4294967296");
}

TEST(split, WrapsNegativeCounts) {
  EXPECT_EQ(split<unsigned int>("-1,2.5", ",", true),
            (std::vector<unsigned int>{4294967295U, 2}));
}

TEST(vectorReader, TakesOneLine) {
  std::istringstream in("1,2;3\n4");
  Numbers first;
  Numbers second{0, 0};
  in >> first >> second;
  EXPECT_EQ(first, (Numbers{1, 2, 3}));
  EXPECT_EQ(second, (Numbers{4, 4}));
}

TEST(vectorReader, KeepsEmptyWordsAndCarriageReturns) {
  std::istringstream in("a,,b\r\n");
  Words words{"old", "older"};
  in >> words;
  EXPECT_EQ(words, (Words{"a", "", "b\r"}));
}

TEST(vectorReader, ReadsAnExhaustedStreamAsAnEmptyField) {
  std::istringstream in;
  Words words;
  in >> words;
  EXPECT_EQ(words, Words{""});
  Numbers numbers;
  EXPECT_THROW(in >> numbers, std::runtime_error);
  std::vector<unsigned int> counts{1};
  EXPECT_THROW(in >> counts, std::runtime_error);
}

TEST(vectorPrinter, PutsCommasBetween) {
  std::ostringstream out;
  out << Numbers{} << Numbers{1.5} << '|' << Numbers{1, 2.25, 3};
  EXPECT_EQ(out.str(), "1.5|1, 2.25, 3");
}

TEST(vectorPrinter, TakesTheFormatOfTheStream) {
  std::ostringstream out;
  out << std::scientific;
  out.precision(2);
  out << Numbers{1, 2};
  EXPECT_EQ(out.str(), "1.00e+00, 2.00e+00");
}

TEST(warning, CarriesItsFindings) {
  warning const first("a\nb\n");
  warning second("");
  second = first;
  EXPECT_STREQ(second.what(), "a\nb\n");
  EXPECT_STREQ(warning(second).what(), "a\nb\n");
}

TEST(warning, IsCaughtAsARuntimeError) {
  EXPECT_THROW(throw warning("x"), std::runtime_error);
}
