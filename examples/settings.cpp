// A program that takes its settings from a command line, says what is wrong
// with them and prints them as the head of its results.

#include <exception>
#include <iostream>

#include "photarium/photarium.h"

int main() {
  MathConfig<double> settings;
  try {
    // A program hands over its argc and argv; "--help" ends in an exception
    // too, which carries the help.
    settings.config("--operation add --kVp 60 --ebin=half --cubic", "math");
  } catch (warning const& findings) {
    std::cout << findings.what();  // all else is set
  } catch (std::exception const& failure) {
    std::cout << failure.what();
    return 2;
  }
  try {
    settings.check();
  } catch (std::exception const& findings) {
    std::cout << findings.what();
    settings.EBin = 0.5;
  }
  std::cout << settings.write("# ", /*chain=*/true);
}
