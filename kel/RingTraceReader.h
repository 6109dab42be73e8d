// RingTrace::Reader: reads a ring trace file (see RingTraceFile.h) into
// descriptors and entries, oldest entry first.
//
// The file comes from outside the process, so everything in it is checked
// before it is used: a file that is missing, truncated or inconsistent
// throws Error naming the path and the fault. A file being written by a
// live process is copied, and only the entries that stayed intact while it
// was copied are returned.
//
//   const RingTrace::Reader reader("/var/tmp/qos.ring");
//   for (const RingTrace::Entry& entry : reader.entries()) {
//     std::cout << reader.descriptorOf(entry).text << '\n';
//   }
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "kel/RingTraceFile.h"
#include "kel/Types.h"

namespace RingTrace {

// One registered message site.
struct Descriptor {
  U32 messageId = 0;
  std::string text;
  std::string format;  // one letter per argument: 'i' integer, 'p' string
  std::string file;
  U32 line = 0;
};

// An argument value: S64 for 'i', std::string for 'p'.
using Value = std::variant<S64, std::string>;

// One entry, as written by message() or a BlockTimer.
struct Entry {
  U64 sequence = 0;
  U32 messageId = 0;              // index into Reader::descriptors()
  U64 timestampNs = 0;            // steady clock
  bool isBlock = false;           // written by a BlockTimer
  std::optional<U64> durationNs;  // set once the block has ended
  std::vector<Value> arguments;   // in format order
};

class Reader {
 public:
  // Reads the file at `path`. Throws Error when it cannot be read or is not
  // a well-formed ring trace file.
  explicit Reader(const std::string& path);

  const std::string& path() const noexcept { return path_; }
  // Descriptor i has message id i.
  const std::vector<Descriptor>& descriptors() const noexcept { return descriptors_; }
  // Oldest first.
  const std::vector<Entry>& entries() const noexcept { return entries_; }
  const Descriptor& descriptorOf(const Entry& entry) const { return descriptors_.at(entry.messageId); }

  U64 capacity() const noexcept { return capacity_; }
  // Entries the writer dropped because its descriptor area was full.
  U64 droppedEntries() const noexcept { return droppedEntries_; }
  // Wall-clock time (ns since 1970-01-01T00:00:00Z) of a steady timestamp,
  // from the pair of clock readings taken when the file was created.
  S64 realtimeNsOf(U64 timestampNs) const noexcept;

 private:
  std::string path_;
  std::vector<Descriptor> descriptors_;
  std::vector<Entry> entries_;
  U64 capacity_ = 0;
  U64 droppedEntries_ = 0;
  U64 steadyAtCreation_ = 0;
  U64 realtimeAtCreation_ = 0;
};

}  // namespace RingTrace
