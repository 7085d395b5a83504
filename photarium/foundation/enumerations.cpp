#include "photarium/foundation/enumerations.h"

#include <cstddef>
#include <stdexcept>
#include <string>

#include "photarium/foundation/text.h"

namespace {

// A value with a word that selects it and the text that it prints; null where
// it has none.
struct Word {
  std::uint32_t value;
  char const* read;  // in lower case
  char const* printed;
};

template <class E>
struct Vocabulary;

template <>
struct Vocabulary<Backscattering::Model> {
  static constexpr char const* unknown = "Unknown backscattering model!";
  static constexpr Word words[] = {
      {Backscattering::Photarium, "photarium", "Photarium"},
      {Backscattering::PHMModel, "phmmodel", "PHMModel"},
      {Backscattering::PHMFast, "phmfast", "PHMFast"},
      {Backscattering::Ebel, "ebel", "Ebel"},
      {Backscattering::Hunger, "hunger", "Hunger"},
      {Backscattering::Storm, "storm", "Storm"},
      {Backscattering::Edtf, "edtf", "Edtf"}};
};

template <>
struct Vocabulary<Characteristic::Model> {
  static constexpr char const* unknown =
      "Unknown characteristic radiation model!";
  static constexpr Word words[] = {
      {Characteristic::None, "none", "None"},
      {Characteristic::Ebel, "ebel", "Ebel"},
      {Characteristic::PHMSimple, "phmsimple", "PHMSimple"},
      {Characteristic::PHMFull, "phmfull", "PHMFull"},
      {Characteristic::PHMFull, "photarium", nullptr},
      {Characteristic::PHMCascade, "phmcascade", "PHMCascade"}};
};

template <>
struct Vocabulary<SolidAngleConfig> {
  static constexpr char const* unknown =
      "Unknown solid angle geometric configuration!";
  static constexpr Word words[] = {
      {SphericalCap, "sphericalcap", "SphericalCap"},
      {CircularAperture, "circularaperture", "CircularAperture"}};
};

template <>
struct Vocabulary<Math::Operations> {
  static constexpr char const* unknown = "Unknown math operation!";
  static constexpr Word words[] = {
      {Math::None, nullptr, "none"},  // the default only
      {Math::Add, "+", "+"},
      {Math::Add, "add", nullptr},
      {Math::Add, "addition", nullptr},
      {Math::Subtract, "-", "-"},
      {Math::Subtract, "subtract", nullptr},
      {Math::Subtract, "subtraction", nullptr},
      {Math::Multiply, "*", "*"},
      {Math::Multiply, "multiply", nullptr},
      {Math::Multiply, "multiplication", nullptr},
      {Math::Divide, "/", "/"},
      {Math::Divide, "divide", nullptr},
      {Math::Divide, "division", nullptr},
      {Math::Rebin, "rebin", "rebin"}};
};

template <>
struct Vocabulary<DBType> {
  static constexpr char const* unknown = "Unknown database type!";
  static constexpr Word words[] = {{Unknown, "unknown", "Unknown"},
                                   {ElamDB, "elamdb", "ElamDB"},
                                   {ENDF, "endf", "ENDF"},
                                   {MCNP, "mcnp", "MCNP"}};
};

template <class E>
std::istream& read(std::istream& in, E& target) {
  std::string text;
  in >> text;
  text = tolower(text);
  for (Word const& word : Vocabulary<E>::words) {
    if (word.read == nullptr || text != word.read) continue;
    target = static_cast<E>(word.value);
    return in;
  }
  throw std::runtime_error(Vocabulary<E>::unknown);
}

template <class E>
std::ostream& print(std::ostream& out, E value) {
  for (Word const& word : Vocabulary<E>::words)
    if (word.printed != nullptr && word.value == value)
      return out << word.printed;
  return out << std::to_string(static_cast<std::uint32_t>(value));
}

}  // namespace

namespace Backscattering {

std::istream& operator>>(std::istream& in, Model& model) {
  return read(in, model);
}

std::ostream& operator<<(std::ostream& out, Model model) {
  return print(out, model);
}

}  // namespace Backscattering

namespace Characteristic {

std::istream& operator>>(std::istream& in, Model& model) {
  return read(in, model);
}

std::ostream& operator<<(std::ostream& out, Model model) {
  return print(out, model);
}

}  // namespace Characteristic

namespace Math {

std::istream& operator>>(std::istream& in, Operations& operation) {
  return read(in, operation);
}

std::ostream& operator<<(std::ostream& out, Operations operation) {
  return print(out, operation);
}

}  // namespace Math

std::istream& operator>>(std::istream& in, SolidAngleConfig& config) {
  return read(in, config);
}

std::ostream& operator<<(std::ostream& out, SolidAngleConfig config) {
  return print(out, config);
}

std::istream& operator>>(std::istream& in, DBType& type) {
  return read(in, type);
}

std::ostream& operator<<(std::ostream& out, DBType type) {
  return print(out, type);
}
