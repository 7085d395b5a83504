// Attenuation of copper at three energies. Run it in the root of the source
// tree, or set Directory to the folder that holds data/.

#include <photarium/photarium.h>

#include <cstdio>

int main() {
  MaterialConfig<double> settings;
  settings.config("--material Cu", "");
  Material<double> const copper(settings);
  auto const attenuation =
      copper.Absorption + copper.Coherent + copper.Incoherent;
  for (double energy : {8., 10., 100.})  // [keV]
    std::printf("%3.0f keV %8.3f cm^2/g\n", energy, attenuation(energy, false));
}
