#include "photarium/config/sections.h"

#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "photarium/foundation/text.h"

namespace Settings {

namespace {

// The names that a section includes, in the order in which they apply.
std::vector<std::string> includedBy(OptionMap const& options) {
  std::vector<std::string> names;
  auto const list = options.find("sections");
  if (list != options.end())
    split(names, list->second.substr(0, list->second.find('\n')), ",;",
          /*keepEmpty=*/true);
  auto const single = options.find("section");
  if (single != options.end()) names.push_back(single->second);
  return names;
}

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
    stack_.push_back({nullptr, sections, 0});
    while (!stack_.empty()) {
      Level& level = stack_.back();
      if (level.next < level.names.size())
        enter(level.names[level.next++]);
      else
        leave();
    }
    return std::move(merged_);
  }

 private:
  using Section = SectionMap::value_type;

  struct Level {
    Section const* section;  // null above the first
    std::vector<std::string> names;
    std::size_t next;
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
    stack_.push_back({&*found, includedBy(found->second), 0});
  }

  void leave() {
    Section const* const section = stack_.back().section;
    stack_.pop_back();
    if (section == nullptr) return;
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
