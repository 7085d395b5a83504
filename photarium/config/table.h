#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "photarium/config/Config.h"
#include "photarium/config/findings.h"
#include "photarium/config/value.h"
#include "photarium/foundation/number.h"

namespace Settings {

/// A settings class declares its keys once, as an array of rows. The functions
/// here parse, print and describe a class by walking its rows:
///
///     template <class T>
///     constexpr Row<GridConfig, T> Rows[] = {
///         {"GridFile", &GridConfig<T>::GridFile, "file of the grid"},
///         {"kVp", &GridConfig<T>::kVp, "tube voltage", "kV"},
///     };

/// How the line of a key prints numbers; all have the precision 4.
enum class Format { Fixed, Scientific, General, NoLine };

/// The field that a key sets: one of the class `C`, or none.
template <class C, class T>
using Field =
    std::variant<std::monostate, std::string C::*, bool C::*, T C::*,
                 std::uint32_t C::*, std::uint64_t C::*, std::vector<T> C::*,
                 std::vector<std::uint32_t> C::*, std::vector<std::string> C::*,
                 DBType C::*, Math::Operations C::*, SolidAngleConfig C::*,
                 Backscattering::Model C::*, Characteristic::Model C::*>;

/// Stands in rows of keys that set no field of their own.
inline constexpr std::monostate NoField;

/// One key of a settings class.
template <template <class> class C, class T>
struct Row {
  std::string_view name;  // label of the line; in lower case the key
  Field<C<T>, T> field;
  std::string_view meaning;
  std::string_view unit = {};  // without brackets
  Format format = Format::Fixed;
  T scale = 1;  // texts hold the field times this
};

/// The name in lower case.
std::string keyOf(std::string_view name);

/// True if the lower case `key` is that of `name`.
bool isKeyOf(std::string_view name, std::string_view key);

/// `value` in the default format of a stream.
std::string generalText(double value);

/// Appends `value` as `format` prints it.
void appendValue(std::string& out, double value, Format format);

inline void appendValue(std::string& out, std::string const& value, Format) {
  out += value;
}

inline void appendValue(std::string& out, bool value, Format) {
  out += value ? "true" : "false";
}

inline void appendValue(std::string& out, std::uint32_t value, Format) {
  appendInteger(out, value);
}

inline void appendValue(std::string& out, std::uint64_t value, Format) {
  appendInteger(out, value);
}

template <class E>
requires std::is_enum_v<E>
void appendValue(std::string& out, E value, Format) {
  std::ostringstream text;
  text << value;
  out += text.str();
}

template <class V>
void appendValue(std::string& out, std::vector<V> const& values,
                 Format format) {
  std::string_view separator;
  for (V const& value : values) {
    out += separator;
    appendValue(out, value, format);
    separator = ", ";
  }
}

/// Appends the field of `row` in `object`, nothing if the key has none.
template <template <class> class C, class T>
void appendField(std::string& out, Row<C, T> const& row, C<T> const& object) {
  auto const append = [&](auto field) {
    if constexpr (std::is_same_v<decltype(field), T C<T>::*>)
      appendValue(out, object.*field * row.scale, row.format);
    else if constexpr (!std::is_same_v<decltype(field), std::monostate>)
      appendValue(out, object.*field, row.format);
  };
  std::visit(append, row.field);
}

/// Extracts `value` into the field of `row` in `object`.
template <template <class> class C, class T>
void extractField(Value& value, Row<C, T> const& row, C<T>& object) {
  auto const extract = [&](auto field) {
    using F = decltype(field);
    if constexpr (std::is_same_v<F, T C<T>::*>) {
      T given = object.*field * row.scale;
      value.extract(given);
      if (!value.isBlank()) object.*field = given / row.scale;
    } else if constexpr (!std::is_same_v<F, std::monostate>) {
      value.extract(object.*field);
    }
  };
  std::visit(extract, row.field);
}

/// Applies `options` to `object`. Keys that no row has are passed over; a key
/// for which `special` returns true is done by that. Values that do not parse
/// become findings.
template <template <class> class C, class T, class Special>
void parseRows(std::type_identity_t<std::span<Row<C, T> const>> rows,
               C<T>& object, OptionMap const& options, Findings& findings,
               Special const& special) {
  for (auto const& [key, text] : options) {
    Value value(text);
    if (!special(key, value))
      for (auto const& row : rows)
        if (isKeyOf(row.name, key)) extractField(value, row, object);
    if (value.failed())
      findings.soft("Problem parsing: " + key + "=" + text + "\n");
  }
}

/// The same for a class whose keys have no rules of their own.
template <template <class> class C, class T>
void parseRows(std::type_identity_t<std::span<Row<C, T> const>> rows,
               C<T>& object, OptionMap const& options, Findings& findings) {
  parseRows(rows, object, options, findings,
            [](std::string const&, Value&) { return false; });
}

/// Takes "count" as a signed number and calls `apply` with its absolute value,
/// 1 for 0, and whether it is negative. Nothing but a finding comes of a text
/// that is no number, or of a number above the limit, whose finding names
/// `what` is counted.
template <class Apply>
void parseCount(Value& value, std::string const& what, Findings& findings,
                Apply const& apply) {
  std::int64_t number = 0;
  value.extract(number);
  if (value.failed()) return;
  bool const isNegative = number < 0;
  auto const given = static_cast<std::uint64_t>(number);
  std::uint64_t const count = isNegative ? 0 - given : given;
  constexpr std::uint64_t most = Config<double>::MaxCount;
  if (count <= most)
    apply(std::max<std::size_t>(1, static_cast<std::size_t>(count)),
          isNegative);
  else
    findings.soft("More than " + std::to_string(most) + " " + what +
                  ": count=" + value.text() + "\n");
}

/// Appends the end of a line with its unit.
inline void appendLineEnd(std::string& out, std::string_view unit) {
  if (!unit.empty()) out.append("\t# [").append(unit) += ']';
  out += '\n';
}

/// The lines of the rows for which `shown` is true.
template <template <class> class C, class T, class Shown>
std::string writeRows(std::type_identity_t<std::span<Row<C, T> const>> rows,
                      C<T> const& object, std::string const& prefix,
                      Shown const& shown) {
  std::string out;
  for (auto const& row : rows) {
    if (row.format == Format::NoLine || !shown(row)) continue;
    out.append(prefix).append(row.name) += ": ";
    appendField(out, row, object);
    appendLineEnd(out, row.unit);
  }
  return out;
}

/// The lines of all rows that have one.
template <template <class> class C, class T>
std::string writeRows(std::type_identity_t<std::span<Row<C, T> const>> rows,
                      C<T> const& object, std::string const& prefix) {
  return writeRows(rows, object, prefix, [](Row<C, T> const&) { return true; });
}

/// What the rows tell of their keys.
template <template <class> class C, class T>
std::vector<Setting> describeRows(
    std::type_identity_t<std::span<Row<C, T> const>> rows, C<T> const& object) {
  std::vector<Setting> out;
  for (auto const& row : rows) {
    bool const hasLine = row.format != Format::NoLine;
    std::string value;
    appendField(value, row, object);
    out.push_back({keyOf(row.name), hasLine ? std::string(row.name) : "", value,
                   std::string(row.unit), std::string(row.meaning)});
  }
  return out;
}

/// The bases of a settings class in the order of one of its operations.
template <class... Base>
class Bases {
 public:
  /// The lines of all bases if `chain`.
  template <class C>
  static std::string write(C const& object, std::string const& prefix,
                           bool chain) {
    std::string out;
    if (chain) (appendLines<Base>(out, object, prefix), ...);
    return out;
  }

  /// The settings of all bases if `chain`, and `own` behind them.
  template <class C>
  static std::vector<Setting> settings(C const& object, bool chain,
                                       std::vector<Setting> const& own) {
    std::vector<Setting> out;
    if (chain) (appendSettings<Base>(out, object), ...);
    append(out, own);
    return out;
  }

  /// Gathers what the checks of all bases find.
  template <class C>
  static void check(C& object, Findings& findings) {
    (gather<Base>(object, findings), ...);
  }

 private:
  template <class B, class C>
  static void appendLines(std::string& out, C const& object,
                          std::string const& prefix) {
    out += object.B::write(prefix, /*chain=*/false);
  }

  template <class B, class C>
  static void appendSettings(std::vector<Setting>& out, C const& object) {
    append(out, object.B::settings(/*chain=*/false));
  }

  template <class B, class C>
  static void gather(C& object, Findings& findings) {
    findings.gatherAll([&object] { object.B::check(); });
  }

  static void append(std::vector<Setting>& out,
                     std::vector<Setting> const& more) {
    out.insert(out.end(), more.begin(), more.end());
  }
};

}  // namespace Settings
