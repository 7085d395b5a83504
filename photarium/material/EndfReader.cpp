#include <stdexcept>

#include "photarium/material/Material.h"

template <class T>
typename Material<T>::Fields Material<T>::parseENDFline(std::string const&) {
  return {};
}

template <class T>
void Material<T>::parseENDF(std::string_view) {
  throw std::runtime_error("ENDF text cannot be read yet");
}

template Material<double>::Fields Material<double>::parseENDFline(
    std::string const&);
template void Material<double>::parseENDF(std::string_view);
