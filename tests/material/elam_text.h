#pragma once

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

// Small databases in ElamDB text, with curves of a closed form: a power law is
// a straight line between logarithms, which a natural spline keeps.

struct PowerLaw {
  double atOnekeV;  // [cm^2/g]
  double exponent;
  double operator()(double energy) const {
    return atOnekeV * std::pow(energy, exponent);
  }
};

inline std::string digits(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.17g", value);
  return text;
}

// A data line of the section "Photo"; the energy in keV.
inline std::string photoLine(double energy, double value) {
  return " " + digits(std::log(energy * 1000)) + " " + digits(std::log(value)) +
         " 0\n";
}

inline std::string scatterLine(double energy, double coherent,
                               double incoherent) {
  return " " + digits(std::log(energy * 1000)) + " " +
         digits(std::log(coherent)) + " 0 " + digits(std::log(incoherent)) +
         " 0\n";
}

struct ElamElement {
  std::string symbol;
  double Z, A, density;
  PowerLaw photo, coherent, incoherent;
  std::string edges;  // sections as they stand in the file

  std::string text() const {
    std::string all = "Element " + symbol + " " + digits(Z) + " " + digits(A) +
                      " " + digits(density) + "\n" + edges + "Photo\n";
    for (double const energy : {1., 3., 10., 30., 100.})
      all += photoLine(energy, photo(energy));
    all += "Scatter\n";
    for (double const energy : {1., 3., 10., 30., 100.})
      all += scatterLine(energy, coherent(energy), incoherent(energy));
    return all + "EndElement\n";
  }
};

inline ElamElement hydrogen() {
  return {"H", 1, 1.008, 8e-5, {10, -3}, {1, -1.5}, {0.5, -0.1}, ""};
}

inline ElamElement oxygen() {
  return {"O", 8, 15.999, 1.3e-3, {4000, -3}, {3, -1.5}, {0.2, -0.1}, ""};
}

inline ElamElement copper() {
  return {"Cu",
          29,
          63.546,
          8.96,
          {10000, -2.9},
          {8, -1.6},
          {0.1, -0.2},
          "Edge K 8979 0.44 7.9\n"
          "  Lines\n"
          "    K-L3 Ka1 8047.78 0.5 ignored\n"
          "    K-L2 Ka2 8027.83 0.25\n"
          "  CK\n"
          "    CKtotal 0.3\n"
          "Edge L3 933 0.01 3 rest\n"};
}

inline std::string database(std::vector<ElamElement> const& elements) {
  std::string text = "// a small database\n";
  for (auto const& element : elements) text += element.text();
  return text + "End\n";
}
