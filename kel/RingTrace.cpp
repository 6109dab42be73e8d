#include "kel/RingTrace.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "kel/Assert.h"

namespace RingTrace {

namespace detail {

constinit File* defaultFile = nullptr;

void badSiteFormat(const char* format) noexcept {
  std::fprintf(stderr, "ring trace site format \"%s\" is not made of at most %zu letters 'i' and 'p'\n",
               format, Layout::kMaxArguments);
  Kel::assertFail("ring trace site format", __FILE__, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace detail

namespace {

// Owns the default file. Clears the pointer the inline paths read before
// the file goes, so a message written while the process exits finds
// tracing off instead of an unmapped file.
class DefaultFileOwner {
 public:
  ~DefaultFileOwner() { fileIs(nullptr); }

  void fileIs(std::unique_ptr<File> file) noexcept {
    std::unique_ptr<File> previous = std::exchange(file_, std::move(file));
    detail::defaultFile = file_.get();
    previous.reset();
  }

 private:
  std::unique_ptr<File> file_;
};

DefaultFileOwner& defaultFileOwner() {
  static DefaultFileOwner owner;
  return owner;
}

// KEL_RING_TRACE is honoured from the start: reading it at load time keeps
// the inline paths down to one pointer test.
[[maybe_unused]] const bool kEnvironmentRead = (openDefaultRingTraceFileFromEnvironment(), true);

}  // namespace

void defaultRingTraceFileIs(std::unique_ptr<File> file) noexcept {
  defaultFileOwner().fileIs(std::move(file));
}

File* openDefaultRingTraceFile(const std::string& path, U64 capacity) {
  defaultRingTraceFileIs(File::create(path, capacity));
  return detail::defaultFile;
}

void closeDefaultRingTraceFile() noexcept { defaultRingTraceFileIs(nullptr); }

File* openDefaultRingTraceFileFromEnvironment() noexcept {
  const char* path = std::getenv("KEL_RING_TRACE");
  if (path == nullptr || *path == '\0') {
    return detail::defaultFile;
  }
  try {
    return openDefaultRingTraceFile(path);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "KEL_RING_TRACE: %s; ring tracing stays as it was\n", error.what());
    return detail::defaultFile;
  }
}

void BlockTimer::finish() noexcept {
  // Compare addresses first: file_ may have been closed, and a new file may
  // have been created at the same address.
  if (detail::defaultFile == file_ && file_->generation() == generation_) {
    file_->writeBlockEnd(start_);
  }
}

}  // namespace RingTrace
