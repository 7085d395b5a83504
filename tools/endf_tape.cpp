#include "tools/endf_tape.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "photarium/foundation/elements.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "tools/endf_thin.h"

namespace Tool {
namespace {

using Key = std::pair<unsigned int, unsigned int>;  // MF and MT

constexpr std::size_t FieldWidth = 11;
constexpr std::size_t DataWidth = 6 * FieldWidth;
constexpr std::size_t LeastWidth = 75;  // with MAT, MF and MT
constexpr Key Head{1, 451};

// What the library uses of a sublibrary; an MT of 534 stands for any level.
struct Kind {
  unsigned int number;
  char const* name;
  std::vector<Key> sections;
};

std::vector<Kind> const& kinds() {
  static std::vector<Kind> const all = {
      {3,
       "photo-atomic",
       {{23, 502},
        {23, 504},
        {23, 516},
        {23, 522},
        {23, 534},
        {27, 502},
        {27, 504},
        {27, 505},
        {27, 506}}},
      {6, "relaxation", {{28, 533}}},
      {113,
       "electro-atomic",
       {{23, 526}, {23, 527}, {23, 534}, {26, 526}, {26, 527}}}};
  return all;
}

Kind const* kindOf(unsigned int number) {
  for (Kind const& kind : kinds())
    if (kind.number == number) return &kind;
  return nullptr;
}

std::string_view field(std::string_view line, std::size_t index) {
  return line.substr(index * FieldWidth, FieldWidth);
}

constexpr char const* Digits = "0123456789";

// A whole number without a sign, 0 if blank.
std::optional<unsigned int> whole(std::string_view text) {
  text = trimmed(text);
  std::uint32_t value = 0;
  if (text.empty()) return value;
  bool const isNumber =
      text.find_first_not_of(Digits) == text.npos && extractNumber(text, value);
  return isNumber ? std::optional<unsigned int>(value) : std::nullopt;
}

std::size_t skip(std::string_view text, std::size_t at, char const* chars) {
  return std::min(text.find_first_not_of(chars, at), text.size());
}

// Brings a number to the form without a letter, flush right in its field if
// that changes it. False if the field holds no number.
bool normalise(char* field) {
  std::string_view const text(field, FieldWidth);
  std::size_t const first = skip(text, 0, " ");
  if (first == text.size()) return true;
  std::size_t at = first + (text[first] == '-' || text[first] == '+' ? 1 : 0);
  std::size_t const point = skip(text, at, Digits);
  std::size_t count = point - at;
  at = point;
  if (at < text.size() && text[at] == '.') {
    at = skip(text, at + 1, Digits);
    count += at - point - 1;
  }
  if (count == 0) return false;
  std::size_t const mantissa = at;
  std::size_t const end = skip(text, at, " ");
  if (end == text.size()) return true;
  bool const hasLetter =
      std::string_view("EeDd").find(text[end]) != std::string_view::npos;
  at = hasLetter ? skip(text, end + 1, " ") : end;
  char sign = '+';
  if (at < text.size() && (text[at] == '-' || text[at] == '+'))
    sign = text[at++];
  else if (!hasLetter)
    return false;
  at = skip(text, at, " ");
  std::size_t const stop = skip(text, at, Digits);
  if (stop == at || skip(text, stop, " ") != text.size()) return false;
  std::string number(text.substr(first, mantissa - first));
  number += sign;
  number += text.substr(at, stop - at);
  if (!hasLetter && number.size() == stop - first) return true;  // as it is
  std::fill(field, field + FieldWidth, ' ');
  std::copy(number.begin(), number.end(), field + FieldWidth - number.size());
  return true;
}

// Walks the lines of one file.
class Parser {
 public:
  Parser(std::string const& file, std::string& text,
         std::map<unsigned int, EndfElement>& elements)
      : file_(file), text_(text), elements_(elements) {}

  void parse() {
    for (std::size_t at = 0; at < text_.size();) {
      std::size_t const end = std::min(text_.find('\n', at), text_.size());
      ++lineNumber_;
      readLine({text_.data() + at, end - at}, at);
      at = end + 1;
    }
    if (section_) fail("the text ends within section " + name(key_));
    if (!isFound_) fail("no material");
  }

 private:
  [[noreturn]] void fail(std::string const& cause) const {
    throw std::runtime_error(file_ + ":" + std::to_string(lineNumber_) + ": " +
                             cause);
  }

  static std::string name(Key const& key) {
    return std::to_string(key.first) + "/" + std::to_string(key.second);
  }

  void readLine(std::string_view line, std::size_t at) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (trimmed(line).empty()) return;
    if (line.size() < LeastWidth) fail("no ENDF record");
    std::string_view const material = trimmed(line.substr(DataWidth, 4));
    bool const isTapeEnd = material == "-1";
    auto const mat = isTapeEnd ? 0 : whole(material);
    auto const mf = whole(line.substr(70, 2));
    auto const mt = whole(line.substr(72, 3));
    if (!mat || !mf || !mt) fail("no ENDF record");
    if (*mt == 0) return readControl(line, *mf, isTapeEnd);
    Key const key(*mf, *mt);
    if (!section_ || key != key_) beginSection(*mat, key);
    if (*mat != sublibrary_->material) fail("another material in a section");
    addLine(line, at);
  }

  // Ends of sections, files, materials and tapes are blank; a tape's head is
  // not.
  void readControl(std::string_view line, unsigned int mf, bool isTapeEnd) {
    bool const isBlank = trimmed(line.substr(0, DataWidth)).empty();
    if (mf == 0 && !isBlank && section_)
      fail("a tape begins within section " + name(key_));
    if (section_) endSection();
    if (mf != 0) return;
    if (!isBlank) tapeHead_ = line;
    if (isTapeEnd || !isBlank) sublibrary_ = nullptr;
  }

  void beginSection(unsigned int mat, Key const& key) {
    if (section_) fail("section " + name(key_) + " has no end");
    key_ = key;
    if (key == Head) {
      pending_ = EndfSublibrary();
      sublibrary_ = &pending_;
      sublibrary_->source = file_ + ":" + std::to_string(lineNumber_);
      sublibrary_->tapeHead = tapeHead_;
      sublibrary_->material = mat;
    }
    // The head has the lowest number that a material uses.
    if (!sublibrary_ || key < Head)
      fail("section " + name(key) + " without a file head");
    auto const [place, isNew] = sublibrary_->sections.try_emplace(key);
    if (!isNew) fail("section " + name(key) + " occurs twice");
    section_ = &place->second;
    begin_ = lineNumber_;
  }

  void addLine(std::string_view line, std::size_t at) {
    auto& lines = section_->lines;
    lines.push_back(line.substr(0, DataWidth));
    constexpr std::size_t numericHeadLines = 4;
    if (key_ == Head && lines.size() > numericHeadLines) return;
    for (std::size_t i = 0; i < 6; ++i)
      if (!normalise(text_.data() + at + i * FieldWidth))
        fail("no number: " + std::string(trimmed(field(lines.back(), i))));
    if (key_ == Head) readHead(lines);
  }

  void readHead(std::vector<std::string_view> const& lines) {
    if (lines.size() == 1) {
      double za = 0;
      std::string_view number = lines[0].substr(0, FieldWidth);
      if (!endfValue(number, za)) fail("no number of an element");
      z_ = za > 0 && za < 1000. * static_cast<double>(ElementsCount)
               ? static_cast<unsigned int>(za / 1000)
               : 0;
      if (z_ == 0 || za != 1000. * z_) fail("no atom of an element");
    }
    if (lines.size() == 3) moveHead(whole(field(lines[2], 4)).value_or(0));
  }

  // The number of the sublibrary tells where the material belongs.
  void moveHead(unsigned int number) {
    if (!kindOf(number))
      fail("no atomic sublibrary: NSUB " + std::to_string(number));
    EndfElement& element = elements_[z_];
    element.z = z_;
    auto const [place, isNew] =
        element.sublibraries.try_emplace(number, std::move(pending_));
    if (!isNew) fail("these data are in " + place->second.source + " already");
    sublibrary_ = &place->second;
    section_ = &sublibrary_->sections.at(Head);
    isFound_ = true;
  }

  void endSection() {
    if (key_ == Head && sublibrary_ == &pending_) fail("a file head too short");
    bool const isTable = key_.first == 23 || key_.first == 27;
    if (isTable && !isWholeTable(section_->lines)) {
      lineNumber_ = begin_;
      fail("section " + name(key_) + " has not as many points as it says");
    }
    section_ = nullptr;
  }

  std::string const& file_;
  std::string& text_;
  std::map<unsigned int, EndfElement>& elements_;
  std::size_t lineNumber_ = 0;
  std::size_t begin_ = 0;  // line at which the section begins
  std::string_view tapeHead_;
  unsigned int z_ = 0;
  Key key_;
  EndfSublibrary pending_;  // until its kind is known
  EndfSublibrary* sublibrary_ = nullptr;
  EndfSection* section_ = nullptr;
  bool isFound_ = false;
};

// The sections under the numbers that the library reads.
std::map<Key, EndfSection const*> renumbered(unsigned int number,
                                             EndfSublibrary const& from) {
  constexpr unsigned int largeAngle = 525;
  constexpr unsigned int elastic = 526;
  bool const isOther =
      number == 113 &&
      std::any_of(from.sections.begin(), from.sections.end(),
                  [](auto const& s) { return s.first.second == largeAngle; });
  std::map<Key, EndfSection const*> sections;
  for (auto const& [key, section] : from.sections) {
    auto const [mf, mt] = key;
    if (isOther && mt == elastic) continue;
    sections[{mf, isOther && mt == largeAngle ? elastic : mt}] = &section;
  }
  return sections;
}

// Appends numbered lines.
class Writer {
 public:
  Writer(std::string& out, unsigned int material)
      : out_(out), material_(right(material, 4)) {}

  void section(Key const& key, std::vector<std::string_view> const& lines) {
    std::string const control =
        material_ + right(key.first, 2) + right(key.second, 3);
    unsigned int number = 0;
    for (std::string_view const line : lines)
      add(line, control, ++number % 100000);
    add("", material_ + right(key.first, 2) + "  0", 99999);
  }

  void endFile() { add("", material_ + " 0  0", 0); }
  void endMaterial() { add("", "   0 0  0", 0); }
  void endTape() { add("", "  -1 0  0", 0); }
  void head(std::string_view line) {
    add(line.substr(0, DataWidth), line.substr(DataWidth, 9), 0);
  }

 private:
  static std::string right(unsigned int number, std::size_t width) {
    std::string const text = std::to_string(number);
    return std::string(width - std::min(width, text.size()), ' ') + text;
  }

  void add(std::string_view data, std::string_view control,
           unsigned int number) {
    out_ += data;
    out_.append(DataWidth - data.size(), ' ');
    out_ += control;
    std::array<char, 6> text{' ', ' ', ' ', ' ', '0', '\n'};
    for (std::size_t i = 5; i > 0 && number > 0; number /= 10)
      text[--i] = static_cast<char>('0' + number % 10);
    out_.append(text.data(), text.size());
  }

  std::string& out_;
  std::string material_;
};

// The reader knows elements up to 99 by 100 Z; the number of the others is
// found by their symbol.
unsigned int materialNumber(unsigned int z, EndfSublibrary const& sublibrary) {
  return z <= 99 ? 100 * z : sublibrary.material;
}

}  // namespace

void EndfTapes::add(std::string const& file, std::string text) {
  texts_.push_back(std::move(text));
  Parser(file, texts_.back(), elements_).parse();
}

std::string endfFileName(unsigned int z) {
  std::string const number = std::to_string(z);
  return std::string(3 - std::min<std::size_t>(3, number.size()), '0') +
         number + "_" + Elements[z] + "_000.endf";
}

std::string endfText(EndfElement const& element, double tolerance) {
  std::string text;
  for (auto const& [number, sublibrary] : element.sublibraries) {
    Writer writer(text, materialNumber(element.z, sublibrary));
    if (!sublibrary.tapeHead.empty()) writer.head(sublibrary.tapeHead);
    unsigned int file = 0;
    for (auto const& [key, section] : renumbered(number, sublibrary)) {
      if (file != 0 && key.first != file) writer.endFile();
      file = key.first;
      bool const isTable = file == 23 || file == 27;
      ThinTable const thin(section->lines, isTable ? tolerance : 0);
      writer.section(key, thin.lines());
    }
    writer.endFile();
    writer.endMaterial();
  }
  Writer(text, 0).endTape();
  return text;
}

std::string endfReport(EndfElement const& element) {
  std::string found;
  std::string missing;
  auto const append = [](std::string& list, std::string const& item) {
    list += (list.empty() ? "" : ", ") + item;
  };
  for (Kind const& kind : kinds()) {
    auto const place = element.sublibraries.find(kind.number);
    if (place == element.sublibraries.end()) {
      append(missing, kind.name);
      continue;
    }
    append(found, kind.name);
    auto const sections = renumbered(kind.number, place->second);
    for (Key const& key : kind.sections)
      if (!sections.count(key))
        append(missing, std::string(kind.name) + " " +
                            std::to_string(key.first) + "/" +
                            std::to_string(key.second));
  }
  std::string const symbol = Elements[element.z];
  std::string text = symbol + ": " + found + '\n';
  if (!missing.empty()) text += symbol + ": missing: " + missing + '\n';
  return text;
}

}  // namespace Tool
