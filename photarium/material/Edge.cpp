#include "photarium/material/Edge.h"

template <class T>
Edge<T>::Edge() : Edge(SubshellID(), 0, 0, 1) {}

template <class T>
Edge<T>::Edge(SubshellID id, T energy, T yield, T jump)
    : ID(id), Energy(energy), Yield(yield), Jump(jump) {}

template class Edge<double>;
