// RingTrace::File: a ring trace file being written, mapped into memory.
//
// The file has a fixed size, chosen at creation. Entries go into a circular
// area and overwrite the oldest ones once it is full; the text of each
// message is written once per file, as a descriptor, when its site first
// writes (see RingTrace.h). The mapping is shared, so every entry is in the
// page cache as soon as it is written and survives a crash of the process
// (not of the machine). docs/ring-trace.md describes the layout.
//
// Writing is not thread-safe: one thread (the reactor thread) writes a file,
// and the default-file functions of RingTrace.h are called on that thread.
// Another process may read the file while it is being written (Reader
// copies it and keeps only what was consistent while it copied).
//
//   auto file = RingTrace::File::create("/var/tmp/qos.ring");
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

#include "kel/Types.h"

namespace RingTrace {

using Kel::S64;
using Kel::U32;
using Kel::U64;

class Argument;
class Site;

// A ring trace file that cannot be created, opened or understood. what()
// names the path and the reason.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where a File takes its time from. Timestamps and durations come from
// steadyNs(); realtimeNs() is read once, at creation, so that a reader can
// turn steady timestamps into wall-clock times.
class TimeSource {
 public:
  virtual ~TimeSource() = default;
  // Nanoseconds of a clock that never goes back (CLOCK_MONOTONIC).
  virtual U64 steadyNs() noexcept = 0;
  // Nanoseconds since 1970-01-01T00:00:00Z (CLOCK_REALTIME).
  virtual U64 realtimeNs() noexcept = 0;

  // The system clocks.
  static TimeSource& system() noexcept;
};

class File {
 public:
  static constexpr U64 kDefaultCapacity = U64{4} << 20;
  static constexpr U64 kMinCapacity = U64{16} << 10;
  static constexpr U64 kMaxCapacity = U64{1} << 30;

  // Appended to the path of the file that create() replaces.
  static constexpr const char* kPreviousSuffix = ".prev";

  // Creates the file at `path` with `capacity` bytes, rounded up to a
  // multiple of 8, and maps it. A file already at `path` is first renamed
  // to path + kPreviousSuffix (replacing the one there), so the ring of a
  // process that crashed survives its restart. An eighth of the file
  // holds descriptors, the rest (less a 128-byte header) entries. The disk
  // blocks are allocated now, so a full disk fails here and not later.
  // `timeSource` must outlive the file. Throws Error when `capacity` is
  // outside [kMinCapacity, kMaxCapacity] or the file cannot be created,
  // sized or mapped.
  static std::unique_ptr<File> create(const std::string& path, U64 capacity = kDefaultCapacity,
                                      TimeSource& timeSource = TimeSource::system());

  File(const File&) = delete;
  File& operator=(const File&) = delete;
  // Unmaps the file; its contents stay on disk.
  ~File();

  const std::string& path() const noexcept { return path_; }
  U64 capacity() const noexcept { return fileBytes_; }
  // Unique among the files of this process, never 0. A site registers its
  // descriptor again when the file's generation differs from the one it
  // last registered with.
  U64 generation() const noexcept { return generation_; }
  U32 descriptorCount() const noexcept { return descriptorCount_; }
  // Entries written so far, including those the ring has overwritten.
  U64 entriesWritten() const noexcept { return nextSequence_; }
  // Entries not written because the descriptor area was full.
  U64 droppedEntries() const noexcept { return droppedEntries_; }

  // Writers for message() and BlockTimer (RingTrace.h), which convert the
  // arguments; use those instead.
  //
  // Writes one entry of `site` with `count` arguments and no duration.
  // REQUIRES: the arguments match the site's format, letter by letter.
  void writeMessage(Site& site, const Argument* arguments, std::size_t count) noexcept;
  // Writes one entry of `site` whose duration is still open. Returns its
  // position for writeBlockEnd(), or kNotWritten.
  struct BlockStart {
    U64 position;
    U64 startNs;
  };
  static constexpr U64 kNotWritten = ~U64{0};
  BlockStart writeBlockStart(Site& site, const Argument* arguments, std::size_t count) noexcept;
  // Stores the time since `start` as the duration of the entry written by
  // writeBlockStart(), unless the ring has overwritten it since.
  void writeBlockEnd(const BlockStart& start) noexcept;

 private:
  File(std::string path, char* base, U64 fileBytes, TimeSource& timeSource);

  U64 writeEntry(Site& site, const Argument* arguments, std::size_t count, U64 timestamp,
                 U64 duration) noexcept;
  void registerSite(Site& site) noexcept;
  // Makes room for a record of `bytes` at the head and returns its offset
  // in the entry area, first padding the end of the area if it does not fit.
  U64 reserve(U64 bytes) noexcept;
  // Moves the tail past the oldest records until `bytes` more fit.
  void makeRoom(U64 bytes) noexcept;
  void publishHead() noexcept;

  const std::string path_;
  char* const base_;
  const U64 fileBytes_;
  TimeSource& timeSource_;
  const U64 generation_;

  // Copies of the header's counters; the header is only ever stored to.
  char* const descriptors_;
  const U64 descriptorBytes_;
  U64 descriptorUsed_ = 0;
  U32 descriptorCount_ = 0;

  char* const entries_;
  const U64 entryBytes_;
  U64 head_ = 0;
  U64 headOffset_ = 0;  // head_ % entryBytes_
  U64 tail_ = 0;
  U64 tailOffset_ = 0;  // tail_ % entryBytes_
  U64 nextSequence_ = 0;
  U64 droppedEntries_ = 0;
};

}  // namespace RingTrace
