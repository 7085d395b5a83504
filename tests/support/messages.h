#pragma once

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>
#include <utility>

/// The text of the exception that `work` ends in, which must be exactly of type
/// `Expected`; empty where there is none.
template <class Expected, class Work>
std::string messageOf(Work&& work) {
  try {
    std::forward<Work>(work)();
  } catch (Expected const& failure) {
    EXPECT_EQ(typeid(failure), typeid(Expected));
    return failure.what();
  }
  ADD_FAILURE() << "no exception";
  return "";
}
