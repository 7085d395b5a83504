#pragma once

#include <exception>
#include <string>
#include <typeinfo>

/// What `action` throws, with the text that it carries, if it is of the very
/// type `E` and not of one derived from it; else what happened instead.
template <class E, class Action>
std::string thrown(Action const& action) {
  try {
    action();
  } catch (E const& exception) {
    if (typeid(exception) == typeid(E)) return exception.what();
    return std::string("derived exception: ") + exception.what();
  } catch (std::exception const& exception) {
    return std::string("other exception: ") + exception.what();
  }
  return "nothing thrown";
}
