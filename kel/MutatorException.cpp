#include "kel/MutatorException.h"

namespace Kel {

void throwMutatorArgNullPointerException(const std::string& argument) {
  throw MutatorArgNullPointerException(argument);
}

void throwMutatorReinstantiating(const std::string& what) {
  throw MutatorReinstantiatingException("re-instantiating " + what + " with other arguments");
}

void throwMutatorReinstVal(const std::string& what) {
  throw MutatorReinstValException("changing the value of " + what);
}

}  // namespace Kel
