#pragma once

/// Plain records of three and of five members: the nodes and rows of splines,
/// and the stretches of input of an AttenuationCoeff.

/// Three values side by side.
template <class T1, class T2, class T3>
struct triple {
  T1 first;
  T2 second;
  T3 third;
};

/// Five values side by side.
template <class T1, class T2, class T3, class T4, class T5>
struct quint {
  T1 first;
  T2 second;
  T3 third;
  T4 fourth;
  T5 fifth;
};
