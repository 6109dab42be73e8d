// The framework's mutator errors. Mutators throw them; the agent never
// catches them, so they end the process unless the host refuses the input
// that would cause them before it reaches the agent.
#pragma once

#include <stdexcept>
#include <string>

namespace Kel {

class MutatorException : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

// A required entity argument was null.
class MutatorArgNullPointerException : public MutatorException {
 public:
  explicit MutatorArgNullPointerException(const std::string& argument)
      : MutatorException("null pointer for required argument '" + argument + "'"), argument_(argument) {}
  const std::string& argument() const { return argument_; }

 private:
  std::string argument_;
};

// A keyed child exists already under the key, built from other arguments.
class MutatorReinstantiatingException : public MutatorException {
 public:
  explicit MutatorReinstantiatingException(const std::string& what) : MutatorException(what) {}
};

// A member exists already with another value, and its value may not change.
class MutatorReinstValException : public MutatorException {
 public:
  explicit MutatorReinstValException(const std::string& what) : MutatorException(what) {}
};

[[noreturn]] void throwMutatorArgNullPointerException(const std::string& argument);
[[noreturn]] void throwMutatorReinstantiating(const std::string& what);
[[noreturn]] void throwMutatorReinstVal(const std::string& what);

// Throws MutatorArgNullPointerException naming `argument` when `p` is null.
template <typename P>
void requireArgument(const P& p, const char* argument) {
  if (!p) {
    throwMutatorArgNullPointerException(argument);
  }
}

}  // namespace Kel
