#include "kel/RingTraceReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

#include "kel/RingTraceLayout.h"

namespace RingTrace {

namespace {

using Layout::DescriptorRecord;
using Layout::EntryRecord;
using Layout::FileHeader;

// How often a file that a live process keeps lapping is copied again
// before the reader gives up.
constexpr int kReadAttempts = 3;

std::string errorText(int error) { return std::system_category().message(error); }

class FdCloser {
 public:
  explicit FdCloser(int fd) noexcept : fd_(fd) {}
  FdCloser(const FdCloser&) = delete;
  FdCloser& operator=(const FdCloser&) = delete;
  ~FdCloser() { ::close(fd_); }

 private:
  int fd_;
};

// Everything the reader knows about the file while decoding it.
class Decoder {
 public:
  Decoder(const std::string& path, const std::vector<char>& bytes, const FileHeader& header, U64 tail)
      : path_(path), bytes_(bytes), header_(header), tail_(tail) {}

  std::vector<Descriptor> descriptors() const;
  std::vector<Entry> entries(const std::vector<Descriptor>& descriptors) const;

 private:
  [[noreturn]] void malformed(const std::string& fault) const {
    throw Error(path_ + ": malformed ring trace file: " + fault);
  }
  std::vector<Value> arguments(const Descriptor& descriptor, const char* at, const char* end,
                               U64 position) const;

  const std::string& path_;
  const std::vector<char>& bytes_;
  const FileHeader& header_;
  const U64 tail_;
};

std::vector<Descriptor> Decoder::descriptors() const {
  std::vector<Descriptor> descriptors;
  const char* const area = bytes_.data() + header_.descriptorOffset;
  U64 at = 0;
  for (U32 id = 0; id < header_.descriptorCount; ++id) {
    const std::string where = "descriptor " + std::to_string(id);
    if (header_.descriptorUsed - at < sizeof(DescriptorRecord)) {
      malformed(where + " lies beyond the used descriptor bytes");
    }
    DescriptorRecord fixed{};
    std::memcpy(&fixed, area + at, sizeof(fixed));
    if (fixed.bytes % 8 != 0 || fixed.bytes < sizeof(fixed) || fixed.bytes > header_.descriptorUsed - at) {
      malformed(where + " has length " + std::to_string(fixed.bytes));
    }
    if (fixed.messageId != id) {
      malformed(where + " has message id " + std::to_string(fixed.messageId));
    }
    if (sizeof(fixed) + U64{fixed.formatBytes} + fixed.fileBytes + fixed.textBytes > fixed.bytes) {
      malformed(where + " has strings longer than the record");
    }
    const char* chars = area + at + sizeof(fixed);
    Descriptor& descriptor = descriptors.emplace_back();
    descriptor.messageId = id;
    descriptor.format.assign(chars, fixed.formatBytes);
    chars += fixed.formatBytes;
    descriptor.file.assign(chars, fixed.fileBytes);
    chars += fixed.fileBytes;
    descriptor.text.assign(chars, fixed.textBytes);
    descriptor.line = fixed.line;
    if (descriptor.format.size() > Layout::kMaxArguments ||
        descriptor.format.find_first_not_of("ip") != std::string::npos) {
      malformed(where + " has format \"" + descriptor.format + "\"");
    }
    at += fixed.bytes;
  }
  return descriptors;
}

std::vector<Entry> Decoder::entries(const std::vector<Descriptor>& descriptors) const {
  std::vector<Entry> entries;
  const char* const ring = bytes_.data() + header_.entryOffset;
  const U64 head = header_.head;
  for (U64 position = tail_; position < head;) {
    const std::string where = "entry at position " + std::to_string(position);
    const U64 offset = position % header_.entryBytes;
    U32 start[2] = {0, 0};  // length, message id
    std::memcpy(start, ring + offset, sizeof(start));
    const U32 length = start[0];
    if (length < Layout::kPadRecordBytes || length % 8 != 0 || length > head - position ||
        length > header_.entryBytes - offset) {
      malformed(where + " has length " + std::to_string(length));
    }
    if (start[1] != Layout::kPadMessageId) {
      if (length < sizeof(EntryRecord)) {
        malformed(where + " has length " + std::to_string(length));
      }
      if (start[1] >= descriptors.size()) {
        malformed(where + " has unknown message id " + std::to_string(start[1]));
      }
      EntryRecord fixed{};
      std::memcpy(&fixed, ring + offset, sizeof(fixed));
      Entry& entry = entries.emplace_back();
      entry.sequence = fixed.sequence;
      entry.messageId = fixed.messageId;
      entry.timestampNs = fixed.timestamp;
      entry.isBlock = fixed.duration != Layout::kNoDuration;
      if (entry.isBlock && fixed.duration != Layout::kOpenBlock) {
        entry.durationNs = fixed.duration;
      }
      entry.arguments = arguments(descriptors[fixed.messageId], ring + offset + sizeof(fixed),
                                  ring + offset + length, position);
    }
    position += length;
  }
  return entries;
}

std::vector<Value> Decoder::arguments(const Descriptor& descriptor, const char* at, const char* end,
                                      U64 position) const {
  const auto fault = [&](const std::string& what) {
    malformed("entry at position " + std::to_string(position) + " " + what);
  };
  std::vector<Value> values;
  values.reserve(descriptor.format.size());
  for (const char kind : descriptor.format) {
    if (kind == 'i') {
      if (end - at < static_cast<std::ptrdiff_t>(sizeof(S64))) {
        fault("ends inside an integer argument");
      }
      S64 value = 0;
      std::memcpy(&value, at, sizeof(value));
      values.emplace_back(value);
      at += sizeof(value);
    } else {
      if (at == end) {
        fault("ends inside a string argument");
      }
      const auto length = static_cast<unsigned char>(*at++);
      if (length > header_.maxStringBytes || end - at < length) {
        fault("has a string argument of length " + std::to_string(length));
      }
      values.emplace_back(std::string(at, length));
      at += length;
    }
  }
  if (end - at >= 8) {
    fault("has " + std::to_string(end - at) + " bytes after its arguments");
  }
  return values;
}

void readFully(const std::string& path, int fd, void* buffer, std::size_t bytes) {
  std::size_t done = 0;
  while (done < bytes) {
    const ssize_t got =
        ::pread(fd, static_cast<char*>(buffer) + done, bytes - done, static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      throw Error(path + ": cannot read: " + errorText(errno));
    }
    if (got == 0) {
      throw Error(path + ": became shorter while being read");
    }
    done += static_cast<std::size_t>(got);
  }
}

// Checks everything the decoder relies on: the areas lie inside the file,
// in order, and [tail, head) fits the entry area.
void checkHeader(const std::string& path, const FileHeader& header, U64 fileBytes) {
  const auto malformed = [&](const std::string& fault) {
    throw Error(path + ": malformed ring trace file: " + fault);
  };
  if (std::memcmp(header.magic, Layout::kMagic, sizeof(header.magic)) != 0) {
    throw Error(path + ": not a ring trace file");
  }
  if (header.version != Layout::kVersion) {
    throw Error(path + ": unsupported ring trace file version " + std::to_string(header.version));
  }
  if (header.headerBytes != sizeof(FileHeader)) {
    malformed("header length " + std::to_string(header.headerBytes));
  }
  if (header.fileBytes != fileBytes) {
    malformed("the file has " + std::to_string(fileBytes) + " bytes but its header says " +
              std::to_string(header.fileBytes));
  }
  if (header.descriptorOffset != header.headerBytes || header.descriptorBytes % 8 != 0 ||
      header.descriptorBytes > fileBytes - header.descriptorOffset ||
      header.entryOffset != header.descriptorOffset + header.descriptorBytes || header.entryBytes % 8 != 0 ||
      header.entryBytes < Layout::kMaxEntryBytes || header.entryBytes > fileBytes - header.entryOffset) {
    malformed("areas do not fit the file");
  }
  if (header.descriptorUsed > header.descriptorBytes) {
    malformed("more descriptor bytes used than there are");
  }
  if (header.tail > header.head || header.head - header.tail > header.entryBytes || header.tail % 8 != 0 ||
      header.head % 8 != 0) {
    malformed("entry positions " + std::to_string(header.tail) + " to " + std::to_string(header.head));
  }
  if (header.maxStringBytes > 255) {
    malformed("maximum string length " + std::to_string(header.maxStringBytes));
  }
}

}  // namespace

Reader::Reader(const std::string& path) : path_(path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    throw Error(path + ": cannot open: " + errorText(errno));
  }
  const FdCloser closer(fd);
  struct stat status {};
  if (::fstat(fd, &status) != 0) {
    throw Error(path + ": cannot read: " + errorText(errno));
  }
  if (!S_ISREG(status.st_mode)) {
    throw Error(path + ": not a regular file");
  }
  const auto fileBytes = static_cast<U64>(status.st_size);
  if (fileBytes < sizeof(FileHeader) || fileBytes > File::kMaxCapacity) {
    throw Error(path + ": not a ring trace file (" + std::to_string(fileBytes) + " bytes)");
  }

  // A live writer may move on while the file is copied. Entries from the
  // tail it had after the copy up to the head it had before are intact:
  // the header is copied first, and the writer moves the tail before it
  // overwrites anything.
  std::vector<char> bytes(fileBytes);
  FileHeader header{};
  U64 tail = 0;
  for (int attempt = 1;; ++attempt) {
    readFully(path, fd, bytes.data(), bytes.size());
    std::memcpy(&header, bytes.data(), sizeof(header));
    checkHeader(path, header, fileBytes);
    FileHeader after{};
    readFully(path, fd, &after, sizeof(after));
    if (after.realtimeAtCreation == header.realtimeAtCreation && after.tail <= header.head) {
      tail = std::max(header.tail, after.tail);
      break;
    }
    if (attempt == kReadAttempts) {
      throw Error(path + ": changed too fast to be read; read it again");
    }
  }

  const Decoder decoder(path, bytes, header, tail);
  descriptors_ = decoder.descriptors();
  entries_ = decoder.entries(descriptors_);
  capacity_ = header.fileBytes;
  droppedEntries_ = header.droppedEntries;
  steadyAtCreation_ = header.steadyAtCreation;
  realtimeAtCreation_ = header.realtimeAtCreation;
}

S64 Reader::realtimeNsOf(U64 timestampNs) const noexcept {
  // Unsigned arithmetic wraps, so a timestamp from before the creation
  // reading still comes out right.
  return static_cast<S64>(realtimeAtCreation_ + (timestampNs - steadyAtCreation_));
}

}  // namespace RingTrace
