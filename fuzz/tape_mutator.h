#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size,
                                        std::size_t capacity);

/// Changes an ENDF tape by its lines of 80 columns and fields of 11, which
/// single bytes put in or taken out would only break.
///
/// Leaves a third of the changes, and all of what is no tape, to the fuzzer.
class TapeMutator {
 public:
  TapeMutator(std::string& text, unsigned int seed)
      : text_(text), random_(seed) {}

  /// False where the fuzzer is to change the text itself.
  bool mutate() {
    if (lines() < 2 || text_[Line - 1] != '\n' || pick(3) == 0) return false;
    for (std::size_t change = pick(3) + 1; change > 0 && lines() > 1; --change)
      mutateLine();
    return true;
  }

 private:
  static constexpr std::size_t Line = 81;
  static constexpr std::size_t Field = 11;
  static constexpr std::size_t Fields = 6;
  static constexpr std::size_t Control = Fields * Field;
  static constexpr std::size_t ControlSize = 9;  // material, file and section

  // Counts, laws and numbers at the ends of what readers take.
  static constexpr std::string_view Numbers[] = {
      "          0", "          1", "          2", "          3",
      "          5", "          6", "        113", "         -1",
      " 4294967295", " 1.000000+0", "-1.000000+0", " 1.000000+9",
      " 0.000000+0", " 1.00000-99", "1.00000+308", "           "};
  static constexpr std::string_view Controls[] = {
      " 1451", "23501", "23502", "23516", "23522", "23526", "23534",
      "23572", "26525", "26526", "26527", "26528", "27502", "27504",
      "27505", "27506", "28533", " 0  0", "23  0"};

  std::size_t lines() const { return text_.size() / Line; }
  std::size_t pick(std::size_t count) { return random_() % count; }
  std::size_t anyLine() { return pick(lines()) * Line; }
  std::size_t anyField() { return anyLine() + pick(Fields) * Field; }

  void put(std::size_t at, std::string_view part) {
    text_.replace(at, part.size(), part);
  }

  // The fuzzer's own change of one field.
  void mutateField(std::size_t at) {
    std::uint8_t field[Field];
    std::memcpy(field, text_.data() + at, Field);
    std::size_t const size = LLVMFuzzerMutate(field, Field, Field);
    std::fill(field + size, field + Field, std::uint8_t{' '});
    put(at, {reinterpret_cast<char const*>(field), Field});
  }

  void mutateLine() {
    switch (pick(8)) {
      case 0:
        return put(anyField(), Numbers[pick(std::size(Numbers))]);
      case 1:
        return put(anyField(), text_.substr(anyField(), Field));
      case 2:
        return put(anyLine() + Control + 4,
                   Controls[pick(std::size(Controls))]);
      case 3:
        return put(anyLine() + Control,
                   text_.substr(anyLine() + Control, ControlSize));
      case 4:
        text_.erase(anyLine(), Line);
        return;
      case 5: {
        std::string const copy = text_.substr(anyLine(), Line);
        text_.insert(anyLine(), copy);
        return;
      }
      case 6:
        return put(anyLine(), text_.substr(anyLine(), Line));
      default:
        return mutateField(anyField());
    }
  }

  std::string& text_;
  std::minstd_rand random_;
};

/// A change of a tape that stands behind the first `ahead` bytes of the input,
/// for LLVMFuzzerCustomMutator().
inline std::size_t mutateTape(std::uint8_t* data, std::size_t size,
                              std::size_t capacity, unsigned int seed,
                              std::size_t ahead) {
  if (size <= ahead) return LLVMFuzzerMutate(data, size, capacity);
  std::string text(reinterpret_cast<char const*>(data) + ahead, size - ahead);
  bool const isChanged = TapeMutator(text, seed).mutate();
  if (!isChanged || ahead + text.size() > capacity)
    return LLVMFuzzerMutate(data, size, capacity);
  std::memcpy(data + ahead, text.data(), text.size());
  return ahead + text.size();
}
