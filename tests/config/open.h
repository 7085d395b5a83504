#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/photarium.h"
#include "tests/support/paths.h"

/// A settings class whose protected members a test may call.
template <class C>
class Open : public C {
 public:
  using C::DefaultSection;
  using C::parse;
  using C::read;
  using C::usage;

  /// Applies one section to all classes.
  void apply(OptionMap const& options) { this->parse(options, true); }
};

/// The root class, which cannot stand alone.
class Root : public Config<double> {
 public:
  std::string write(std::string const& prefix, bool chain) const override {
    return Config<double>::write(prefix, chain);
  }

 protected:
  using Config<double>::parse;
  void parse(OptionMap const& options, bool chain) override {
    Config<double>::parse(options, chain);
  }
};

/// Keeps the sections in the order in which they are applied.
class Recorder : public Root {
 public:
  std::vector<OptionMap> applied;

 protected:
  using Root::parse;
  void parse(OptionMap const& options, bool) override {
    applied.push_back(options);
  }
};

/// The text of the exception of type `E` that `call` throws, of no derived
/// one.
template <class E, class Call>
std::string thrown(Call const& call) {
  try {
    call();
  } catch (E const& failure) {
    EXPECT_TRUE(typeid(failure) == typeid(E)) << failure.what();
    return failure.what();
  } catch (std::exception const& failure) {
    ADD_FAILURE() << "another exception: " << failure.what();
    return "";
  }
  ADD_FAILURE() << "no exception";
  return "";
}

/// The findings of one section, none if it has no exception.
template <class C>
std::string findings(Open<C>& settings, OptionMap const& options) {
  return thrown<warning>([&] { settings.apply(options); });
}

/// The text of check() where settings can be used but something is to be told.
template <class C>
std::string corrections(C& settings) {
  return thrown<warning>([&] { settings.check(); });
}

/// The text of check() where settings cannot be used.
template <class C>
std::string refusal(C& settings) {
  return thrown<std::invalid_argument>([&] { settings.check(); });
}
