#pragma once

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

/// Writes ENDF-6 text: numbered lines of 80 columns, numbers without an
/// exponent letter.
class EndfText {
 public:
  using Points = std::vector<std::pair<double, double>>;

  EndfText(int z, std::string symbol) : z_(z), symbol_(std::move(symbol)) {}

  std::string const& str() const { return text_; }

  /// A number in 11 columns.
  static std::string real(double value) {
    for (int digits = 7; digits > 0; --digits) {
      char buffer[40];
      std::snprintf(buffer, sizeof(buffer), "% .*E", digits, value);
      std::string number(buffer);
      std::size_t const e = number.find('E');
      std::size_t const first = number.find_first_not_of('0', e + 2);
      number = number.substr(0, e) + number[e + 1] +
               (first == std::string::npos ? "0" : number.substr(first));
      if (number.size() <= 11)
        return std::string(11 - number.size(), ' ') + number;
    }
    return std::string(11, ' ');
  }
  static std::string whole(long value) {
    char buffer[40];
    std::snprintf(buffer, sizeof(buffer), "%11ld", value);
    return buffer;
  }

  /// A line of the section at hand.
  EndfText& line(std::string fields) {
    fields.resize(66, ' ');
    char control[40];
    std::snprintf(control, sizeof(control), "%4d%2d%3d%5d\n", z_ * 100, mf_,
                  mt_, ++ns_);
    text_ += fields + control;
    return *this;
  }
  EndfText& section(int mf, int mt, int linesAhead = 0) {
    mf_ = mf;
    mt_ = mt;
    ns_ = linesAhead;
    return *this;
  }
  EndfText& control(double c1, double c2, long l1, long l2, long n1, long n2) {
    return line(real(c1) + real(c2) + whole(l1) + whole(l2) + whole(n1) +
                whole(n2));
  }
  EndfText& numbers(std::vector<double> const& values) {
    std::string fields;
    for (double const value : values) {
      fields += real(value);
      if (fields.size() < 66) continue;
      line(fields);
      fields.clear();
    }
    return fields.empty() ? *this : line(fields);
  }
  EndfText& wholes(std::vector<long> const& values) {
    std::string fields;
    for (long const value : values) fields += whole(value);
    return line(fields);
  }
  EndfText& points(Points const& all) {
    std::vector<double> flat;
    for (auto const& [x, y] : all) flat.insert(flat.end(), {x, y});
    return numbers(flat);
  }
  EndfText& end() {  // of a section
    char control[100];
    std::snprintf(control, sizeof(control), "%66s%4d%2d  099999\n", "",
                  z_ * 100, mf_);
    text_ += control;
    return *this;
  }

  /// The head of a sublibrary.
  EndfText& head(int sublibrary, double weightRatio) {
    section(1, 451);
    control(z_ * 1000., weightRatio, -1, 0, 0, 0);
    control(0, 0, 0, 0, 0, 6);
    control(0, 1e11, 0, 0, sublibrary, 8);
    control(0, 0, 0, 0, 0, 1);
    char name[40];
    std::snprintf(name, sizeof(name), "%3d-%-2s-  0 TEST", z_, symbol_.c_str());
    line(name);
    return end();
  }

  /// A whole section of MF 23 or 27 with one interpolation law.
  EndfText& table(int mf, int mt, Points const& all, long law = 2) {
    section(mf, mt).control(z_ * 1000., 55.4, 0, 0, 0, 0);
    control(0, 0, 0, 0, 1, static_cast<long>(all.size()));
    wholes({static_cast<long>(all.size()), law});
    return points(all).end();
  }

  /// The text of tape end, as the normaliser leaves it if it has no number.
  EndfText& tapeEnd() {
    text_.append(66, ' ').append("  -1 0  0     \n");
    return *this;
  }

 private:
  int z_;
  std::string symbol_;
  std::string text_;
  int mf_ = 0;
  int mt_ = 0;
  int ns_ = 0;
};

/// A small element with a section of every kind.
inline EndfText smallElement(int z, std::string const& symbol) {
  EndfText text(z, symbol);
  text.head(3, 55.367);
  text.table(23, 501, {{1e3, 9}, {2e5, 1}});
  text.table(23, 502, {{1e3, 5e3}, {7112, 700}, {2e4, 90}, {1e5, 3}}, 5);
  text.table(23, 504, {{1e3, 2}, {7112, 9}, {2e4, 11}, {1e5, 10}});
  text.table(23, 516, {{1.022e6, 0}, {2e6, .5}, {1e7, 3}, {1e11, 20}});
  text.table(23, 522,
             {{1e3, 9e5}, {7112, 4e3}, {7112, 3.5e4}, {2e4, 2e3}, {1e5, 18}});
  text.section(23, 534).control(26000, 55.4, 0, 0, 0, 0);
  text.control(7112, 0, 0, 0, 2, 5).wholes({3, 5, 5, 2});
  text.points({{7112, 3e4}, {9e3, 1.6e4}, {2e4, 1.8e3}, {5e4, 120}, {1e5, 16}});
  text.end();
  text.table(23, 535, {{846, 4e5}, {7112, 3e3}, {1e5, 2}}, 5);
  text.table(27, 502, {{0, 26}, {.1, 25}, {1, 4}, {1e9, 1e-20}});
  text.table(27, 504, {{0, 0}, {.1, 2}, {1, 20}, {1e9, 26}});
  text.table(27, 505, {{1e3, 2}, {7112, .5}, {7112, 3.9}, {1e5, .1}});
  text.table(27, 506, {{1e3, -3}, {7112, -8}, {1e5, 0}});

  text.head(6, 55.3672);
  text.section(28, 533).control(26000, 55.4, 0, 0, 3, 0);
  text.numbers({1, 0, 0, 0, 18, 3, 7112, 2, 0, 0, 0, 0});
  text.numbers({3, 0, 6390, .1, 0, 0, 4, 0, 6403, .2, 0, 0});
  text.numbers({2, 4, 5500, .3, 0, 0});
  text.numbers({2, 0, 0, 0, 6, 0, 846, 2, 0, 0, 0, 0});
  text.numbers({40, 0, 0, 0, 12, 1, 7, 2, 0, 0, 0, 0});
  text.numbers({41, 0, 5, .01, 0, 0}).end();

  text.head(113, 55.36);
  text.table(23, 501, {{10, 1e9}, {1e11, 1}});
  text.table(23, 526, {{10, 3e8}, {1e3, 2e7}, {1e5, 3e4}, {1e11, 1}}, 5);
  text.table(23, 527, {{10, 9e3}, {1e3, 5e3}, {1e5, 2e3}, {1e11, 1e3}}, 5);
  text.table(23, 534, {{7112, 0}, {9e3, 50}, {1e5, 300}});
  text.section(26, 526).control(26000, 55.4, 0, 0, 1, 0);
  text.control(11, 5.4e-4, 0, 2, 1, 2).wholes({2, 2});
  text.points({{10, 1}, {1e11, 1}}).control(0, 0, 0, 0, 1, 2).wholes({2, 2});
  text.control(0, 1e3, 12, 0, 4, 2).points({{-1, .5}, {.999999, .5}});
  text.control(0, 1e6, 12, 0, 8, 4);
  text.points({{-1, 1e-3}, {0, .02}, {.9, .8}, {.999999, 9}}).end();
  text.section(26, 527).control(26000, 55.4, 0, 0, 2, 0);
  text.control(0, 5.4e-4, 0, 1, 1, 2).wholes({2, 2});
  text.points({{10, 1}, {1e11, 1}}).control(0, 0, 1, 2, 1, 2).wholes({2, 2});
  text.control(0, 1e4, 0, 0, 6, 3);
  text.points({{.1, 2}, {100, 1e-3}, {1e4, 1e-5}});
  text.control(0, 1e6, 0, 0, 8, 4);
  text.points({{.1, 1}, {100, 1e-3}, {1e5, 1e-7}, {1e6, 1e-9}}).end();
  text.section(26, 528).control(26000, 55.4, 0, 0, 1, 0);
  text.control(11, 5.4e-4, 0, 8, 1, 2).wholes({2, 2});
  text.points({{10, 1}, {1e11, 1}}).end();
  return text;
}
