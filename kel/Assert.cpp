#include "kel/Assert.h"

#include <cassert>

namespace Kel {

void assertFail(const char* expression, const char* file, unsigned line, const char* function) noexcept {
  __assert_fail(expression, file, line, function);
}

}  // namespace Kel
