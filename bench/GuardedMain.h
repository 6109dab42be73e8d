// guardedMain: runs a benchmark program's body so that no exception leaves
// main: one that escapes is reported as an internal error, with the
// program's name, and the program exits with status 1.
//
//   int main(int argc, char** argv) { return Bench::guardedMain("qos-scale-bench", runProgram, argc, argv); }
#pragma once

#include <exception>
#include <iostream>

namespace Bench {

template <typename Body>
int guardedMain(const char* program, Body&& body, int argc, char** argv) {
  try {
    return body(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << program << ": internal error: " << error.what() << '\n';
  } catch (...) {
    std::cerr << program << ": internal error: unknown exception\n";
  }
  return 1;
}

}  // namespace Bench
