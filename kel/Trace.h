// Kel trace: per-module trace lines with 32 levels, configured from the
// KEL_TRACE environment variable or at run time, written through a
// replaceable sink.
//
//   Kel::TraceHandle qosSnmpTrace("QosSnmp");
//
//   if (auto t = qosSnmpTrace.line(8)) {
//     t << "RootSm::handleCmapType( " << type << " )";
//   }
//
// A handle keeps a mask of enabled levels; a disabled line costs one bit
// test, and in the `if` form above its operands are never evaluated. An
// enabled line is formatted as a plain std::ostream would format it, except
// that 8-bit integers print as numbers, and is handed to the current sink
// when the TraceHelper goes out of scope.
//
// Configuration text (KEL_TRACE and traceLevelsIs()):
//
//   text   := entry { ';' entry }        empty entries are skipped
//   entry  := module '/' levels
//   module := a name without ' ', ',', '/' or ';', or '*' for every module
//   levels := [ item { ',' item } ]      an empty list disables the module
//   item   := '*' | n | n '-' m          0 <= n <= m <= 31; '*' is 0-31
//
// Spaces and tabs around entries, modules and items are ignored. An entry
// sets the module's mask to exactly the levels it lists, so later entries
// override earlier ones, and text applied later overrides earlier text for
// the modules it names and leaves the others alone:
//
//   KEL_TRACE='*/0-2;QosSnmp/0-8,12;Kel/'
//     levels 0-2 everywhere, 0-8 and 12 for QosSnmp, nothing for Kel.
//
// KEL_TRACE is read once per process, when the first handle registers or
// traceLevelsIs() is first called, whichever comes first; a malformed value
// is reported on stderr and ignored. Text applied later comes on top of it.
//
// Thread rules: handles register and unregister under a process mutex, and
// the level masks are atomic, so configuration may change while other
// threads trace. Sinks must tolerate concurrent writes if the process
// traces from several threads.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <source_location>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "kel/Assert.h"
#include "kel/Types.h"

namespace Kel {

class TraceHelper;

// A module's trace switch. Handles register themselves in a process
// registry on construction, taking their levels from the current
// configuration, and unregister on destruction (a handle may live in a
// module that is unloaded). A handle is registered by address, so it is
// neither copyable nor movable.
class TraceHandle {
 public:
  static constexpr int kLevelCount = 32;

  explicit TraceHandle(std::string module);
  TraceHandle(const TraceHandle&) = delete;
  TraceHandle& operator=(const TraceHandle&) = delete;
  ~TraceHandle();

  const std::string& module() const noexcept { return module_; }
  // Bit n set: level n is enabled.
  U32 levels() const noexcept { return levels_.load(std::memory_order_relaxed); }
  void levelsIs(U32 mask) noexcept { levels_.store(mask, std::memory_order_relaxed); }

  // REQUIRES: 0 <= level < kLevelCount. The check folds away for a
  // constant level, leaving the bit test.
  bool enabled(int level) const noexcept {
    KEL_ASSERT(static_cast<unsigned>(level) < static_cast<unsigned>(kLevelCount));
    return ((levels() >> level) & 1U) != 0;
  }

  // One trace line at `level`, attributed to the caller's source location.
  TraceHelper line(int level, std::source_location where = std::source_location::current()) const;

 private:
  const std::string module_;
  std::atomic<U32> levels_{0};
};

// Applies `configuration` (format above) to every registered handle and to
// handles registered later. Returns a description of the first error in
// malformed text, and then changes nothing.
std::optional<std::string> traceLevelsIs(const std::string& configuration);

// Forgets all applied configuration and the reading of KEL_TRACE, so the
// next handle registered or traceLevelsIs() call reads KEL_TRACE again.
// Handles keep their current levels.
void traceConfigurationResetForTest();

// Where enabled trace lines go. `file`, `line` and `function` are the
// tracing code's source location. The strings are valid only during the
// call: a sink that keeps a line copies what it keeps.
class TraceSink {
 public:
  TraceSink() = default;
  TraceSink(const TraceSink&) = delete;
  TraceSink& operator=(const TraceSink&) = delete;
  virtual ~TraceSink() = default;

  virtual void write(const TraceHandle& handle, int level, const char* file, unsigned line,
                     const char* function, std::string_view text) = 0;
};

// Installs the process-wide sink; nullptr restores the default, which writes
// "<module>/<level> <file name>:<line> <text>\n" to stderr, one write per
// line. The caller keeps `sink` alive until it is replaced, and replaces it
// only while no other thread is tracing.
void traceSinkIs(TraceSink* sink) noexcept;
// The current sink; never null.
TraceSink* traceSink() noexcept;

struct CapturedTraceLine {
  std::string module;
  int level = 0;
  std::string text;

  friend bool operator==(const CapturedTraceLine&, const CapturedTraceLine&) = default;
};

// Prints `QosSnmp/8 "text"`, so test failures show the line.
std::ostream& operator<<(std::ostream& out, const CapturedTraceLine& line);

// A sink for tests that keeps every line it receives. It is the current
// sink from its construction to its destruction, which reinstates the sink
// that was current before it; nested capturing sinks must be destroyed in
// reverse order of construction.
class CapturingTraceSink : public TraceSink {
 public:
  CapturingTraceSink();
  ~CapturingTraceSink() override;

  void write(const TraceHandle& handle, int level, const char* file, unsigned line, const char* function,
             std::string_view text) override;

  // Read only while no other thread is tracing.
  const std::vector<CapturedTraceLine>& lines() const noexcept { return lines_; }
  // The text of every line, in order.
  std::vector<std::string> texts() const;
  void clear();

 private:
  TraceSink* const previous_;
  mutable std::mutex mutex_;
  std::vector<CapturedTraceLine> lines_;
};

// One trace line. It is enabled when its handle enables its level at
// construction; only then does it allocate a buffer, collect what is
// streamed into it and, on destruction, write the text through the current
// sink. A disabled helper ignores everything streamed into it. Movable, so
// TraceHandle::line() can return it; a moved-from helper writes nothing.
class TraceHelper {
 public:
  TraceHelper(const TraceHandle& handle, int level, const char* file, unsigned line, const char* function)
      : handle_(&handle),
        level_(level),
        file_(file),
        line_(line),
        function_(function),
        buffer_(handle.enabled(level) ? newBuffer() : nullptr) {}
  TraceHelper(TraceHelper&& other) noexcept
      : handle_(other.handle_),
        level_(other.level_),
        file_(other.file_),
        line_(other.line_),
        function_(other.function_),
        buffer_(std::move(other.buffer_)) {}
  TraceHelper(const TraceHelper&) = delete;
  TraceHelper& operator=(const TraceHelper&) = delete;
  TraceHelper& operator=(TraceHelper&&) = delete;
  ~TraceHelper() {
    if (buffer_) {
      write();
    }
  }

  explicit operator bool() const noexcept { return buffer_ != nullptr; }

  // Appends `value` as `std::ostream << value` would, except that 8-bit
  // integers print as numbers and a null C string prints as "(null)".
  // Stream manipulators such as std::hex apply to the rest of the line.
  template <typename T>
  TraceHelper& operator<<(const T& value) {
    if (buffer_) {
      if constexpr (std::is_same_v<T, signed char> || std::is_same_v<T, unsigned char>) {
        *buffer_ << static_cast<int>(value);
      } else if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, char*>) {
        *buffer_ << (value != nullptr ? value : "(null)");
      } else {
        *buffer_ << value;
      }
    }
    return *this;
  }

 private:
  // Out of line, so that a call site carries only the bit test, the
  // streaming and two calls.
  static std::unique_ptr<std::ostringstream> newBuffer();
  // Hands the text to the current sink and disables the helper.
  void write();

  const TraceHandle* handle_;
  int level_;
  const char* file_;
  unsigned line_;
  const char* function_;
  std::unique_ptr<std::ostringstream> buffer_;  // null while disabled
};

inline TraceHelper TraceHandle::line(int level, std::source_location where) const {
  return {*this, level, where.file_name(), where.line(), where.function_name()};
}

}  // namespace Kel
