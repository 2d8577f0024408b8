#pragma once

#include <cstdlib>
#include <iostream>

/// Ends the program with a complaint unless `holds`: the examples are run as tests.
inline void expect(bool holds, const char* what) {
  if (!holds) {
    std::cerr << "not so: " << what << '\n';
    std::exit(EXIT_FAILURE);
  }
}
