#include <stdexcept>

#include "photarium/material/Material.h"

template <class T>
void Material<T>::parseMCNP(std::string_view) {
  throw std::runtime_error("ACE text cannot be read yet");
}

template void Material<double>::parseMCNP(std::string_view);
