#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ios>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "photarium/foundation/number.h"
#include "photarium/material/Material.h"
#include "photarium/material/readers.h"

namespace {

// Words and numbers of a text, read as a stream would: across line ends unless
// asked to skip a line.
//
// Where a stream would fail, a strict text throws the failure of the stream
// library. That includes every read that meets the end of the text, even one
// that found what it sought. One that is not strict is exhausted from there on:
// it has empty words and leaves numbers as they are.
class Words {
 public:
  Words(std::string_view text, bool isStrict)
      : rest_(text), isStrict_(isStrict) {}

  std::string_view word() {
    std::string_view const word = extractWord(rest_);
    checkEnd();
    return word;
  }

  // The next word that begins with an "E" and is the first of its line, from
  // the start of a line: the keywords that divide the text do.
  std::string_view keyword() {
    std::size_t at = rest_.find('E');
    while (at != std::string_view::npos && !isFirst(at))
      at = rest_.find('E', at + 1);
    rest_.remove_prefix(std::min(at, rest_.size()));
    return word();
  }

  template <class T>
  void number(T& value) {
    if (rest_.empty()) return checkEnd();
    double read = double(value);  // which it stays at the end of the text
    bool const isNumber = extractNumber(rest_, read);
    value = T(read);
    if (!isNumber) return fail("Number expected");
    checkEnd();
  }

  void skipLine() {
    std::size_t const feed = rest_.find('\n');
    rest_.remove_prefix(feed == std::string_view::npos ? rest_.size()
                                                       : feed + 1);
    if (feed == std::string_view::npos) checkEnd();
  }

  // True where a data line begins.
  bool atBlank() {
    checkEnd();
    return rest_.starts_with(' ');
  }

  bool atEnd() const { return rest_.empty(); }

 private:
  bool isFirst(std::size_t at) const {
    std::size_t const end = rest_.substr(0, at).find_last_not_of(" \t\v\f\r");
    return end == std::string_view::npos || rest_[end] == '\n';
  }

  void fail(char const* cause) {
    rest_ = {};
    if (isStrict_) throw std::ios_base::failure(cause, std::io_errc::stream);
  }

  void checkEnd() {
    if (rest_.empty()) fail("Unexpected end of text");
  }

  std::string_view rest_;
  bool isStrict_;
};

// "K-L3" is a transition from L3; a label without "-" is a level.
std::string_view origin(std::string_view label) {
  std::size_t const dash = label.find('-');
  return dash == std::string_view::npos ? label : label.substr(dash + 1);
}

[[noreturn]] void throwUnexpected(std::string_view keyword) {
  throw std::runtime_error("Unexpected keyword " + std::string(keyword) +
                           " parsing ElamDB");
}

}  // namespace

template <class T>
class Material<T>::ElamReader {
 public:
  ElamReader(Words& in, Material& material) : in_(in), material_(material) {}

  // Reads from behind the symbol up to the end of the element.
  void read() {
    in_.number(material_.Z);
    in_.number(material_.A);
    in_.number(material_.Density);
    in_.skipLine();
    for (;;) {
      std::string_view const word = in_.word();
      if (word == "Edge") {
        readEdge();
      } else if (word == "Photo") {
        readPhoto();
      } else if (word == "Scatter") {
        readScatter();
      } else if (word == "EndElement") {
        build();
        return in_.skipLine();
      } else if (word.starts_with("//")) {
        in_.skipLine();
      } else {
        throwUnexpected(word);
      }
    }
  }

 private:
  using Curve = AttenuationCoeff<T>;

  void readEdge() {
    Edge<T> edge;
    edge.ID.Z = wholeZ();
    edge.ID.Shell = StringToSubshell(std::string(in_.word()));
    in_.number(edge.Energy);
    in_.number(edge.Yield);
    in_.number(edge.Jump);
    edge.Energy /= 1000;  // eV to keV
    material_.Edges.push_back(std::move(edge));
    bool inLines = false;
    for (in_.skipLine(); in_.atBlank(); in_.skipLine()) {
      std::string_view const word = in_.word();
      if (word == "Lines")
        inLines = true;
      else if (word == "CK" || word == "CKtotal")
        continue;  // Coster-Kronig data
      else if (inLines)
        readLine(word);
      else
        throwUnexpected("Edge");
    }
  }

  void readLine(std::string_view label) {
    Edge<T>& edge = material_.Edges.back();
    T energy = 0;
    T intensity = 0;
    in_.word();  // Siegbahn's name of the line
    in_.number(energy);
    in_.number(intensity);
    SubshellID const from(edge.ID.Z,
                          StringToSubshell(std::string(origin(label))));
    edge.Lines.emplace_back(energy / 1000, intensity * edge.Yield,
                            std::string(label), from, /*radiative=*/true);
  }

  void readPhoto() {
    for (in_.skipLine(); in_.atBlank(); in_.skipLine()) {
      T const x = abscissa();
      absorption_.emplace_back(x, ordinate());
    }
  }

  void readScatter() {
    for (in_.skipLine(); in_.atBlank(); in_.skipLine()) {
      T const x = abscissa();
      coherent_.emplace_back(x, ordinate());
      in_.word();  // a second derivative
      incoherent_.emplace_back(x, ordinate());
    }
  }

  // ln(energy in keV) from ln(energy in eV).
  T abscissa() {
    T x = 0;
    in_.number(x);
    return x - ln1000_;
  }

  T ordinate() {
    T y = 0;
    in_.number(y);
    return y;
  }

  unsigned int wholeZ() const {
    T const z = material_.Z;
    T const most = T(std::numeric_limits<unsigned int>::max());
    if (!(z >= 0 && z <= most && z == std::floor(z)))
      throw std::runtime_error("Edge data for non-integer Z not accepted.");
    return static_cast<unsigned int>(z);
  }

  void build() {
    material_.Absorption = curve(absorption_);
    material_.Incoherent = curve(incoherent_);
    material_.Coherent = curve(coherent_);
    std::vector<Stretch> pair;
    initPairData(pair);
    material_.Pair = Curve(pair, T(1), /*linear=*/true);
  }

  // Both scales are logarithmic, and the unit is the library's own.
  static Curve curve(typename Curve::Points& points) {
    return Curve::fromSorted(
        {{std::move(points), Curve::LogLog, /*cubic=*/true}}, T(1),
        /*linear=*/false);
  }

  Words& in_;
  Material& material_;
  typename Curve::Points absorption_;
  typename Curve::Points coherent_;
  typename Curve::Points incoherent_;
  T ln1000_ = std::log(T(1000));
};

template <class T>
void Material<T>::readElam(std::istream& in) {
  in.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
  parseElam(remainingText(in));
}

template <class T>
void Material<T>::readElam(std::map<std::string, Material>& elements,
                           std::istream& in) {
  parseElam(elements, remainingText(in));
}

template <class T>
void Material<T>::parseElam(std::string_view text) {
  Words in(text, /*isStrict=*/true);
  std::string_view symbol;
  for (;;) {
    std::string_view const word = in.keyword();
    if (word == "End") break;
    if (word == "Element") {
      symbol = in.word();
      if (symbol == Name) return ElamReader(in, *this).read();
    }
    in.skipLine();
  }
  if (symbol != Name)
    throw std::runtime_error("Element " + Name + " not found");
}

template <class T>
void Material<T>::parseElam(std::map<std::string, Material>& elements,
                            std::string_view text) {
  Words in(text, /*isStrict=*/false);
  while (!in.atEnd()) {
    std::string_view const word = in.word();
    if (word == "End" || word.empty()) return;
    if (word == "Element") {
      std::string const symbol(in.word());
      Material& element = elements[symbol];
      element.Name = symbol;
      ElamReader(in, element).read();
    } else if (word.starts_with("//")) {
      in.skipLine();
    } else {
      throwUnexpected(word);
    }
  }
}

template void Material<double>::readElam(std::istream&);
template void Material<double>::readElam(
    std::map<std::string, Material<double>>&, std::istream&);
template void Material<double>::parseElam(std::string_view);
template void Material<double>::parseElam(
    std::map<std::string, Material<double>>&, std::string_view);
