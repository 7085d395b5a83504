#include "photarium/material/Line.h"

#include <utility>

template <class T>
Line<T>::Line() : Line(0, 0, std::string(), true) {}

template <class T>
Line<T>::Line(T energy, T intensity, std::string label, bool radiative)
    : Line(energy, intensity, std::move(label), SubshellID(), radiative) {}

template <class T>
Line<T>::Line(T energy, T intensity, std::string label, SubshellID from,
              bool radiative)
    : Line(energy, intensity, std::move(label), from, SubshellID(), radiative) {
}

template <class T>
Line<T>::Line(T energy, T intensity, std::string label, SubshellID from,
              SubshellID to, bool radiative)
    : Energy(energy),
      Intensity(intensity),
      Label(std::move(label)),
      Radiative(radiative),
      From(from),
      To(to) {}

template class Line<double>;
