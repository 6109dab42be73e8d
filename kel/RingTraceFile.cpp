#include "kel/RingTraceFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>
#include <system_error>
#include <utility>

#include "kel/Assert.h"
#include "kel/RingTrace.h"
#include "kel/RingTraceLayout.h"

namespace RingTrace {

namespace {

using Layout::DescriptorRecord;
using Layout::EntryRecord;
using Layout::FileHeader;

static_assert(File::kMinCapacity - File::kMinCapacity / 8 - sizeof(FileHeader) >= 2 * Layout::kMaxEntryBytes,
              "the smallest ring holds at least two of the longest entries");

class SystemTimeSource final : public TimeSource {
 public:
  U64 steadyNs() noexcept override { return nsOf(CLOCK_MONOTONIC); }
  U64 realtimeNs() noexcept override { return nsOf(CLOCK_REALTIME); }

 private:
  static U64 nsOf(clockid_t clock) noexcept {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<U64>(now.tv_sec) * 1'000'000'000U + static_cast<U64>(now.tv_nsec);
  }
};

constinit std::atomic<U64> nextGeneration{1};

FileHeader& headerOf(char* base) noexcept { return *reinterpret_cast<FileHeader*>(base); }

// Stores a header counter after the bytes it covers, so that a reader in
// another process, or reading after a crash, never sees it run ahead.
template <typename T>
void publish(T& field, T value) noexcept {
  std::atomic_ref<T>(field).store(value, std::memory_order_release);
}

U64 descriptorBytesFor(U64 fileBytes) noexcept { return fileBytes / 8 & ~U64{7}; }

std::string errorText(int error) { return std::system_category().message(error); }

std::string_view cut(const char* chars, std::size_t limit) noexcept {
  const std::string_view whole(chars);
  return whole.substr(0, std::min(whole.size(), limit));
}

// Reports arguments that do not match the site's format and aborts.
[[noreturn]] void badArguments(const Site& site, const Argument* arguments, std::size_t count) noexcept {
  std::string given;
  for (std::size_t i = 0; i < count; ++i) {
    given += arguments[i].kind();
  }
  std::fprintf(stderr, "ring trace site \"%s\" (%s:%u) has format \"%s\" but was given arguments \"%s\"\n",
               site.text(), site.file(), site.line(), site.format(), given.c_str());
  Kel::assertFail("ring trace arguments match the site's format", __FILE__, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace

TimeSource& TimeSource::system() noexcept {
  static SystemTimeSource source;
  return source;
}

std::unique_ptr<File> File::create(const std::string& path, U64 capacity, TimeSource& timeSource) {
  if (capacity < kMinCapacity || capacity > kMaxCapacity) {
    throw Error(path + ": ring capacity " + std::to_string(capacity) + " is not between " +
                std::to_string(kMinCapacity) + " and " + std::to_string(kMaxCapacity) + " bytes");
  }
  const U64 fileBytes = Layout::roundUpTo8(capacity);
  // Keep the previous ring: after a crash the agent is restarted at once,
  // and the crash's trace is what someone will want to read. Moving it
  // also leaves anyone who still maps it undisturbed. When it cannot be
  // moved, O_TRUNC reuses it.
  // A trace holds the names and keys of the switch's configuration: both
  // rings are readable by their owner only, whatever the umask or the mode
  // a file left by an older run had.
  const std::string previous = path + kPreviousSuffix;
  if (std::rename(path.c_str(), previous.c_str()) == 0) {
    ::chmod(previous.c_str(), S_IRUSR | S_IWUSR);
  }
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (fd < 0) {
    throw Error(path + ": cannot create: " + errorText(errno));
  }
  if (::fchmod(fd, S_IRUSR | S_IWUSR) != 0) {
    const int error = errno;
    ::close(fd);
    throw Error(path + ": cannot make owner-only: " + errorText(error));
  }
  if (const int error = ::posix_fallocate(fd, 0, static_cast<off_t>(fileBytes)); error != 0) {
    ::close(fd);
    throw Error(path + ": cannot allocate " + std::to_string(fileBytes) + " bytes: " + errorText(error));
  }
  void* const base = ::mmap(nullptr, fileBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  const int mapError = errno;
  ::close(fd);
  if (base == MAP_FAILED) {
    throw Error(path + ": cannot map: " + errorText(mapError));
  }
  return std::unique_ptr<File>(new File(path, static_cast<char*>(base), fileBytes, timeSource));
}

File::File(std::string path, char* base, U64 fileBytes, TimeSource& timeSource)
    : path_(std::move(path)),
      base_(base),
      fileBytes_(fileBytes),
      timeSource_(timeSource),
      generation_(nextGeneration.fetch_add(1, std::memory_order_relaxed)),
      descriptors_(base + sizeof(FileHeader)),
      descriptorBytes_(descriptorBytesFor(fileBytes)),
      entries_(descriptors_ + descriptorBytes_),
      entryBytes_(fileBytes - sizeof(FileHeader) - descriptorBytes_) {
  // The file is all zeros: only the non-zero fields need storing, and the
  // magic goes last, so a file whose creation was cut short is not taken
  // for an empty ring.
  FileHeader& header = headerOf(base_);
  header.version = Layout::kVersion;
  header.headerBytes = sizeof(FileHeader);
  header.fileBytes = fileBytes_;
  header.descriptorOffset = sizeof(FileHeader);
  header.descriptorBytes = descriptorBytes_;
  header.entryOffset = sizeof(FileHeader) + descriptorBytes_;
  header.entryBytes = entryBytes_;
  header.maxStringBytes = Layout::kMaxStringBytes;
  header.steadyAtCreation = timeSource_.steadyNs();
  header.realtimeAtCreation = timeSource_.realtimeNs();
  std::atomic_thread_fence(std::memory_order_release);
  std::memcpy(header.magic, Layout::kMagic, sizeof(header.magic));
}

File::~File() { ::munmap(base_, fileBytes_); }

void File::writeMessage(Site& site, const Argument* arguments, std::size_t count) noexcept {
  writeEntry(site, arguments, count, timeSource_.steadyNs(), Layout::kNoDuration);
}

File::BlockStart File::writeBlockStart(Site& site, const Argument* arguments, std::size_t count) noexcept {
  const U64 now = timeSource_.steadyNs();
  return {writeEntry(site, arguments, count, now, Layout::kOpenBlock), now};
}

void File::writeBlockEnd(const BlockStart& start) noexcept {
  if (start.position < tail_ || start.position >= head_) {
    return;  // overwritten since
  }
  const U64 now = timeSource_.steadyNs();
  const U64 duration = std::min(now > start.startNs ? now - start.startNs : 0, Layout::kOpenBlock - 1);
  char* const field = entries_ + start.position % entryBytes_ + offsetof(EntryRecord, duration);
  std::atomic_ref<U64>(*reinterpret_cast<U64*>(field)).store(duration, std::memory_order_relaxed);
}

U64 File::writeEntry(Site& site, const Argument* arguments, std::size_t count, U64 timestamp,
                     U64 duration) noexcept {
  if (count != site.argumentCount_) {
    badArguments(site, arguments, count);
  }
  U64 bytes = sizeof(EntryRecord);
  for (std::size_t i = 0; i < count; ++i) {
    if (arguments[i].kind() != site.format_[i]) {
      badArguments(site, arguments, count);
    }
    bytes += arguments[i].kind() == 'i' ? sizeof(S64)
                                        : 1 + std::min(arguments[i].chars().size(), Layout::kMaxStringBytes);
  }
  if (site.generation_ != generation_) {
    registerSite(site);
  }
  if (site.messageId_ == Site::kNoMessageId) {
    publish(headerOf(base_).droppedEntries, ++droppedEntries_);
    return kNotWritten;
  }
  bytes = Layout::roundUpTo8(bytes);
  const U64 offset = reserve(bytes);

  char* const record = entries_ + offset;
  const EntryRecord fixed{static_cast<U32>(bytes), site.messageId_, nextSequence_, timestamp, duration};
  std::memcpy(record, &fixed, sizeof(fixed));
  char* out = record + sizeof(fixed);
  for (std::size_t i = 0; i < count; ++i) {
    const Argument& argument = arguments[i];
    if (argument.kind() == 'i') {
      const S64 value = argument.integer();
      std::memcpy(out, &value, sizeof(value));
      out += sizeof(value);
    } else {
      const std::size_t length = std::min(argument.chars().size(), Layout::kMaxStringBytes);
      *out++ = static_cast<char>(length);
      if (length != 0) {  // an empty view may have no characters at all
        std::memcpy(out, argument.chars().data(), length);
      }
      out += length;
    }
  }
  std::memset(out, 0, static_cast<std::size_t>(record + bytes - out));

  const U64 position = head_;
  head_ += bytes;
  headOffset_ = offset + bytes == entryBytes_ ? 0 : offset + bytes;
  ++nextSequence_;
  publish(headerOf(base_).nextSequence, nextSequence_);
  publishHead();
  return position;
}

void File::registerSite(Site& site) noexcept {
  site.generation_ = generation_;
  site.messageId_ = Site::kNoMessageId;
  const std::string_view format = cut(site.format_, Layout::kMaxDescriptorStringBytes);
  const std::string_view file = cut(site.file_, Layout::kMaxDescriptorStringBytes);
  const std::string_view text = cut(site.text_, Layout::kMaxDescriptorStringBytes);
  const U64 bytes = Layout::roundUpTo8(sizeof(DescriptorRecord) + format.size() + file.size() + text.size());
  if (bytes > descriptorBytes_ - descriptorUsed_) {
    return;
  }
  char* const record = descriptors_ + descriptorUsed_;
  const DescriptorRecord fixed{static_cast<U32>(bytes),
                               descriptorCount_,
                               site.line_,
                               static_cast<Layout::U16>(format.size()),
                               static_cast<Layout::U16>(file.size()),
                               static_cast<U32>(text.size()),
                               0};
  char* out = record;
  for (const std::string_view part :
       {std::string_view(reinterpret_cast<const char*>(&fixed), sizeof(fixed)), format, file, text}) {
    std::memcpy(out, part.data(), part.size());
    out += part.size();
  }
  std::memset(out, 0, static_cast<std::size_t>(record + bytes - out));

  descriptorUsed_ += bytes;
  site.messageId_ = descriptorCount_++;
  FileHeader& header = headerOf(base_);
  publish(header.descriptorUsed, descriptorUsed_);
  publish(header.descriptorCount, descriptorCount_);
}

U64 File::reserve(U64 bytes) noexcept {
  if (headOffset_ + bytes > entryBytes_) {
    const U64 pad = entryBytes_ - headOffset_;
    makeRoom(pad);
    const U32 padRecord[2] = {static_cast<U32>(pad), Layout::kPadMessageId};
    std::memcpy(entries_ + headOffset_, padRecord, sizeof(padRecord));
    head_ += pad;
    headOffset_ = 0;
    publishHead();
  }
  makeRoom(bytes);
  return headOffset_;
}

void File::makeRoom(U64 bytes) noexcept {
  if (head_ + bytes - tail_ <= entryBytes_) {
    return;
  }
  do {
    U32 length = 0;
    std::memcpy(&length, entries_ + tailOffset_, sizeof(length));
    tail_ += length;
    tailOffset_ += length;
    if (tailOffset_ == entryBytes_) {
      tailOffset_ = 0;
    }
  } while (head_ + bytes - tail_ > entryBytes_);
  publish(headerOf(base_).tail, tail_);
}

void File::publishHead() noexcept { publish(headerOf(base_).head, head_); }

}  // namespace RingTrace
