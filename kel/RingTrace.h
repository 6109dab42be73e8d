// RingTrace: binary message tracing into a fixed-size ring file that
// survives a crash of the process, for "what was the agent doing" after the
// fact. Off by default; when off, a message or block timer costs one test
// of the default-file pointer.
//
// Each place in the code that writes a message owns a Site: its text, one
// format letter per argument ('i' integer, 'p' string) and its source file
// and line. The first time a site writes to a file it registers that as a
// descriptor in the file and gets a message id; every entry then holds only
// the id, a sequence number, a timestamp, a duration and the argument
// values. A site registers again with every new default file.
//
//   void RootSm::handleCmapType(Qos::MapType type) {
//     static constinit RingTrace::Site site("void QosSnmp::RootSm::handleCmapType(Qos::MapType)", "i");
//     RingTrace::BlockTimer timer(site, type);  // entry now, duration at the end of the scope
//     ...
//   }
//   static constinit RingTrace::Site dropped("policy map dropped", "pi");
//   RingTrace::message(dropped, policyName, classCount);
//
// Arguments: "i" takes any integral or enum type, stored as 64 bits (read
// back as signed); "p" takes std::string_view, const char* (null reads as
// ""), std::string, or any type with view() returning a string_view (such
// as Kel::String) or else stringValue() returning a std::string (interface
// ids). Strings longer than Layout::kMaxStringBytes (64) are cut there.
// Passing arguments that do not match the site's format, in number or kind,
// is a programming error and aborts (when ring tracing is on); a format
// with a letter other than 'i' or 'p', or more than Layout::kMaxArguments
// letters, does not compile in a constinit site.
//
// Timestamps and durations are steady-clock nanoseconds (File's
// TimeSource); the file records the wall-clock time of its creation so a
// reader can show wall-clock times.
//
// The default file: set with openDefaultRingTraceFile() (the host's
// --ring-trace FILE) or defaultRingTraceFileIs(), cleared with
// closeDefaultRingTraceFile(). When the kel library is loaded, before main
// and before any caller can see the default file, KEL_RING_TRACE=PATH in
// the environment opens PATH as the default file with the default capacity.
//
// Thread rules: none of this is thread-safe. Sites, block timers and the
// default file belong to one thread (the reactor thread).
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <memory>
#include <source_location>
#include <string>
#include <string_view>
#include <type_traits>

#include "kel/RingTraceFile.h"
#include "kel/RingTraceLayout.h"
#include "kel/Types.h"

namespace RingTrace {

namespace detail {

// The default file; null when ring tracing is off.
extern File* defaultFile;

// Reports a site format with a letter other than 'i' or 'p' or too many
// letters. Not constexpr, so reaching it while constant-initialising a
// site is a compile error.
[[noreturn]] void badSiteFormat(const char* format) noexcept;

constexpr U32 argumentCountOf(const char* format) noexcept {
  std::size_t count = 0;
  for (; format[count] != '\0'; ++count) {
    if (format[count] != 'i' && format[count] != 'p') {
      badSiteFormat(format);
    }
  }
  if (count > Layout::kMaxArguments) {
    badSiteFormat(format);
  }
  return static_cast<U32>(count);
}

}  // namespace detail

// One message site. Meant to be a function-local `static constinit`, which
// costs nothing to initialise; it is trivially destructible.
class Site {
 public:
  // `text` and `format` must outlive the site (string literals). `where`
  // is the site's declaration; GCC reports the line on which the
  // declaration's initialiser ends.
  constexpr Site(const char* text, const char* format,
                 std::source_location where = std::source_location::current()) noexcept
      : text_(text),
        format_(format),
        file_(where.file_name()),
        line_(where.line()),
        argumentCount_(detail::argumentCountOf(format)) {}
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  const char* text() const noexcept { return text_; }
  const char* format() const noexcept { return format_; }
  const char* file() const noexcept { return file_; }
  U32 line() const noexcept { return line_; }
  U32 argumentCount() const noexcept { return argumentCount_; }

 private:
  friend class File;
  static constexpr U32 kNoMessageId = ~U32{0};

  const char* text_;
  const char* format_;
  const char* file_;
  U32 line_;
  U32 argumentCount_;
  // The file generation this site last registered with (0: none) and the
  // message id it got there (kNoMessageId: that file's descriptor area
  // was full).
  U64 generation_ = 0;
  U32 messageId_ = kNoMessageId;
};

// One argument on its way into an entry: kind 'i' or 'p', as in a format.
// A 'p' argument refers to characters it does not own.
class Argument {
 public:
  explicit constexpr Argument(S64 integer) noexcept : kind_('i'), integer_(integer) {}
  explicit constexpr Argument(std::string_view chars) noexcept : kind_('p'), chars_(chars) {}

  char kind() const noexcept { return kind_; }
  S64 integer() const noexcept { return integer_; }
  std::string_view chars() const noexcept { return chars_; }

 private:
  char kind_;
  S64 integer_ = 0;
  std::string_view chars_;
};

namespace detail {

template <typename T>
constexpr bool kUnsupportedArgument = false;

// The value an argument is carried as until it is written: S64, a
// std::string_view, or, for types that only offer stringValue(), the
// std::string it returns, which lives until the end of the caller's full
// expression.
template <typename T>
auto carried(const T& value) {
  if constexpr (std::is_enum_v<T> || std::is_integral_v<T>) {
    return static_cast<S64>(value);
  } else if constexpr (std::is_array_v<T>) {
    static_assert(std::is_same_v<std::remove_cv_t<std::remove_extent_t<T>>, char>,
                  "a ring trace array argument is a character array");
    const std::string_view whole(value, std::extent_v<T>);
    return whole.substr(0, whole.find('\0'));
  } else if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, char*>) {
    return value != nullptr ? std::string_view(value) : std::string_view();
  } else if constexpr (std::is_convertible_v<const T&, std::string_view>) {
    return std::string_view(value);
  } else if constexpr (requires {
                         { value.view() } -> std::convertible_to<std::string_view>;
                       }) {
    return std::string_view(value.view());
  } else if constexpr (requires {
                         { value.stringValue() } -> std::convertible_to<std::string>;
                       }) {
    return std::string(value.stringValue());
  } else {
    static_assert(kUnsupportedArgument<T>,
                  "a ring trace argument is an integer, an enum, a string, or has view() or stringValue()");
  }
}

template <typename... Carried>
void writeMessage(File& file, Site& site, const Carried&... carried) noexcept {
  const std::array<Argument, sizeof...(Carried)> arguments{Argument(carried)...};
  file.writeMessage(site, arguments.data(), arguments.size());
}

}  // namespace detail

// The process's default ring file, or null when ring tracing is off.
inline File* defaultRingTraceFile() noexcept { return detail::defaultFile; }

// Makes `file` the default file (null turns ring tracing off) and closes
// the previous one. Its sites register again on their next write.
void defaultRingTraceFileIs(std::unique_ptr<File> file) noexcept;

// Creates the ring file at `path` and makes it the default file. Throws
// Error, leaving the default file as it was, when it cannot be created.
File* openDefaultRingTraceFile(const std::string& path, U64 capacity = File::kDefaultCapacity);

// Turns ring tracing off, closing the default file.
void closeDefaultRingTraceFile() noexcept;

// When KEL_RING_TRACE names a path, opens it as the default file with the
// default capacity; a failure is reported on stderr and leaves the default
// file as it was. Returns the default file. Runs once when the library is
// loaded; tests call it again.
File* openDefaultRingTraceFileFromEnvironment() noexcept;

// Writes one entry of `site` into the default file, if there is one.
template <typename... Args>
void message(Site& site, const Args&... args) noexcept {
  if (File* file = detail::defaultFile; file != nullptr) [[unlikely]] {
    detail::writeMessage(*file, site, detail::carried(args)...);
  }
}

// Times a block: writes an entry of `site` into the default file when
// constructed, and stores the time until its destruction as that entry's
// duration, unless by then the ring has overwritten the entry or the
// default file has changed. An entry whose block never ended (the process
// crashed in it) reads as an open block.
class BlockTimer {
 public:
  template <typename... Args>
  explicit BlockTimer(Site& site, const Args&... args) noexcept {
    if (File* file = detail::defaultFile; file != nullptr) [[unlikely]] {
      start(*file, site, detail::carried(args)...);
    }
  }
  BlockTimer(const BlockTimer&) = delete;
  BlockTimer& operator=(const BlockTimer&) = delete;
  ~BlockTimer() {
    if (file_ != nullptr) [[unlikely]] {
      finish();
    }
  }

 private:
  template <typename... Carried>
  void start(File& file, Site& site, const Carried&... carried) noexcept {
    const std::array<Argument, sizeof...(Carried)> arguments{Argument(carried)...};
    start_ = file.writeBlockStart(site, arguments.data(), arguments.size());
    if (start_.position != File::kNotWritten) {
      file_ = &file;
      generation_ = file.generation();
    }
  }
  void finish() noexcept;

  File* file_ = nullptr;
  U64 generation_ = 0;
  File::BlockStart start_{0, 0};
};

}  // namespace RingTrace
