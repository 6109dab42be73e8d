// kel-ringtrace: prints a ring trace file; see kel/RingTraceCommand.h.
#include <iostream>
#include <string>
#include <vector>

#include "kel/RingTraceCommand.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return RingTrace::runRingTraceCommand(arguments, std::cout, std::cerr);
}
