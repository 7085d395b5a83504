#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "photarium/foundation/elements.h"
#include "photarium/foundation/enumerations.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
#include "tests/support/on_threads.h"

namespace {

// Numbers of every length there and back, in all notations.
std::string numbers(std::size_t seed) {
  std::string text;
  double value = 1.1 + static_cast<double>(seed);
  for (int i = 0; i < 500; ++i) {
    value = -value * 1.37;
    appendScientific(text, value, i % 20);
    text += ' ';
    appendGeneral(text, value, i % 18);
    text += ' ';
    appendFixed(text, value, 3);
    text += ' ';
  }
  std::string back;
  double read = 0;
  for (std::string_view rest = text; extractNumber(rest, read);)
    appendScientific(back, read, 17);
  return text + back;
}

std::string words(std::size_t seed) {
  std::string const number = std::to_string(seed);
  std::vector<double> values(4);
  split(values, number + ";2,x", ";", /*keepEmpty=*/true);
  std::ostringstream out;
  out << tolower("ABC" + number) << trimmed(" " + number + "\t") << values
      << ConcatPath("folder", number) << Elements[seed + 1] << MCNP;
  std::istringstream in("circularaperture multiply");
  SolidAngleConfig geometry = SphericalCap;
  Math::Operations operation = Math::None;
  in >> geometry >> operation;
  out << geometry << operation;
  return out.str();
}

std::string thrown(std::string const& findings) {
  try {
    throw warning(findings);
  } catch (std::runtime_error const& caught) {
    return caught.what();
  }
}

// What `work` gives on threads is what it gives on one.
template <class Work>
void expectSame(Work const& work) {
  std::string results[ThreadCount];
  onThreads([&](std::size_t i) {
    for (int repeat = 0; repeat < 8; ++repeat) results[i] = work(i);
  });
  for (std::size_t i = 0; i < ThreadCount; ++i) EXPECT_EQ(results[i], work(i));
}

}  // namespace

TEST(FoundationThreads, ReadAndWriteNumbers) {
  expectSame(numbers);
}

TEST(FoundationThreads, ReadAndWriteWords) {
  expectSame(words);
}

TEST(FoundationThreads, ThrowAndCatchWarningsOfTheirOwn) {
  expectSame([](std::size_t i) { return thrown(std::to_string(i) + "\n"); });
}

TEST(FoundationThreads, MayReadOneWarning) {
  warning const shared("one finding\n");
  expectSame([&](std::size_t) {
    warning const copy(shared);
    return std::string(copy.what()) + shared.what();
  });
}
