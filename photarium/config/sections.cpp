#include "photarium/config/sections.h"

#include <optional>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "photarium/foundation/text.h"

namespace Settings {

namespace {

// The names that a section includes, in the order in which they apply. They
// are cut one by one: far more than the limits admit may fit a file.
class Includes {
 public:
  explicit Includes(OptionMap const& options) {
    auto const list = options.find("sections");
    if (list != options.end()) list_ = firstLine(list->second);
    auto const single = options.find("section");
    if (single != options.end()) single_ = single->second;
  }

  // None behind the last.
  std::optional<std::string_view> next() {
    if (!list_) return std::exchange(single_, std::nullopt);
    std::size_t const end = list_->find_first_of(ListDelimiters);
    std::string_view const name = list_->substr(0, end);
    if (end == std::string_view::npos)
      list_.reset();
    else
      list_->remove_prefix(end + 1);
    return name;
  }

 private:
  std::optional<std::string_view> list_;
  std::optional<std::string_view> single_;
};

std::size_t textSize(std::string const& name, OptionMap const& options) {
  std::size_t size = name.size();
  for (auto const& [key, value] : options) size += key.size() + value.size();
  return size;
}

// Walks the sections with a stack of its own: a chain may be as long as the
// file.
class Flattener {
 public:
  Flattener(SectionMap const& data, std::vector<std::string> const& ancestors,
            RepeatLimits limits)
      : data_(data), left_(limits) {
    for (auto const& name : ancestors) state_[name].isOpen = true;
  }

  std::vector<std::string> flatten(std::vector<std::string> const& sections) {
    for (auto const& section : sections) {
      enter(section);
      while (!stack_.empty()) {
        auto const name = stack_.back().includes.next();
        if (name)
          enter(std::string(*name));
        else
          leave();
      }
    }
    return std::move(merged_);
  }

 private:
  using Section = SectionMap::value_type;

  struct Level {
    Section const* section;
    Includes includes;
  };

  struct State {
    bool isOpen = false;    // being flattened
    bool isMerged = false;  // stands in the list
  };

  void enter(std::string const& name) {
    auto const found = data_.find(name);
    if (found == data_.end())
      throw std::runtime_error("Section " + name + " not found!\n");
    State& state = state_[found->first];
    if (state.isOpen) {
      merge(*found);
      return;
    }
    state.isOpen = true;
    stack_.push_back({&*found, Includes(found->second)});
  }

  void leave() {
    Section const* const section = stack_.back().section;
    stack_.pop_back();
    state_[section->first].isOpen = false;
    merge(*section);
  }

  void merge(Section const& section) {
    bool& isMerged = state_[section.first].isMerged;
    if (isMerged) countRepeat(textSize(section.first, section.second));
    isMerged = true;
    merged_.push_back(section.first);
  }

  void countRepeat(std::size_t size) {
    if (left_.count == 0 || left_.text < size)
      throw std::runtime_error("Sections repeated too often!\n");
    --left_.count;
    left_.text -= size;
  }

  SectionMap const& data_;
  RepeatLimits left_;
  std::unordered_map<std::string_view, State> state_;
  std::vector<Level> stack_;
  std::vector<std::string> merged_;
};

}  // namespace

std::vector<std::string> flattenSections(
    SectionMap const& data, std::vector<std::string> const& sections,
    std::vector<std::string> const& ancestors, RepeatLimits limits) {
  return Flattener(data, ancestors, limits).flatten(sections);
}

}  // namespace Settings
