// Kel::assertFail: how the framework reports a broken invariant. Like the C
// library's assert (which the agent uses, and which this project never
// compiles out), it prints the expression, file, line and function and
// aborts the process.
//
//   KEL_ASSERT(slot < capacity);
#pragma once

namespace Kel {

[[noreturn]] void assertFail(const char* expression, const char* file, unsigned line,
                             const char* function) noexcept;

}  // namespace Kel

#define KEL_ASSERT(expression)             \
  (static_cast<bool>(expression) ? void(0) \
                                 : ::Kel::assertFail(#expression, __FILE__, __LINE__, __PRETTY_FUNCTION__))
