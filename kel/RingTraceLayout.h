// The binary layout of a ring trace file, shared by the writer (File) and
// the reader (Reader). docs/ring-trace.md describes it for people.
//
// Every field is little-endian and naturally aligned; every record starts
// on an 8-byte boundary and its length is a multiple of 8. The file is
//
//   FileHeader (128 bytes) | descriptor area | entry area
//
// The descriptor area is filled from its start, one DescriptorRecord per
// registered message site, and never wraps. The entry area is a ring of
// EntryRecords addressed by 64-bit logical byte positions (physical offset =
// position % entry area size); [tail, head) always holds whole records. A
// record never straddles the end of the area: the writer fills the rest of
// the area with a pad record and starts again at offset 0.
#pragma once

#include <bit>
#include <cstddef>
#include <limits>

#include "kel/Types.h"

namespace RingTrace::Layout {

using Kel::U16;
using Kel::U32;
using Kel::U64;

static_assert(std::endian::native == std::endian::little,
              "ring trace files are little-endian and written with plain stores");

inline constexpr char kMagic[8] = {'K', 'E', 'L', 'R', 'I', 'N', 'G', '\0'};
inline constexpr U32 kVersion = 1;

// Longest string argument kept in an entry; longer strings are cut here.
inline constexpr std::size_t kMaxStringBytes = 64;
// Longest text, file name or format kept in a descriptor.
inline constexpr std::size_t kMaxDescriptorStringBytes = 1024;
// Most arguments (format letters) one message may carry.
inline constexpr std::size_t kMaxArguments = 16;

// Message id of a pad record, which fills the end of the entry area.
inline constexpr U32 kPadMessageId = std::numeric_limits<U32>::max();

// Duration field of an entry written by message(): it has no duration.
inline constexpr U64 kNoDuration = std::numeric_limits<U64>::max();
// Duration field of a block timer's entry until the block ends; a crash
// inside the block leaves it so.
inline constexpr U64 kOpenBlock = kNoDuration - 1;

struct FileHeader {
  char magic[8];           // kMagic; written last when the file is created
  U32 version;             // kVersion
  U32 headerBytes;         // sizeof(FileHeader)
  U64 fileBytes;           // size of the whole file
  U64 descriptorOffset;    // == headerBytes
  U64 descriptorBytes;     // size of the descriptor area
  U64 entryOffset;         // == descriptorOffset + descriptorBytes
  U64 entryBytes;          // size of the entry area
  U64 descriptorUsed;      // bytes of the descriptor area holding records
  U32 descriptorCount;     // records in the descriptor area; ids are 0..count-1
  U32 maxStringBytes;      // kMaxStringBytes of the writer
  U64 head;                // logical position where the next entry goes
  U64 tail;                // logical position of the oldest entry
  U64 nextSequence;        // sequence number the next entry gets
  U64 steadyAtCreation;    // steady clock (ns) when the file was created
  U64 realtimeAtCreation;  // wall clock (ns since 1970, UTC) at the same moment
  U64 droppedEntries;      // entries not written because the descriptor area was full
  U64 reserved;
};
static_assert(sizeof(FileHeader) == 128);
static_assert(offsetof(FileHeader, head) == 72);
static_assert(offsetof(FileHeader, reserved) == 120);

// Followed by the format, the file name and the text (no terminators), then
// zero padding to a multiple of 8.
struct DescriptorRecord {
  U32 bytes;        // length of the whole record
  U32 messageId;    // index of the record in the descriptor area
  U32 line;         // source line of the message site
  U16 formatBytes;  // one letter per argument: 'i' integer, 'p' string
  U16 fileBytes;    // source file name
  U32 textBytes;    // message text
  U32 reserved;
};
static_assert(sizeof(DescriptorRecord) == 24);

// Followed by the arguments in format order, then zero padding to a
// multiple of 8: an 'i' argument is 8 bytes (two's complement), a 'p'
// argument one length byte (at most kMaxStringBytes) and that many bytes.
// A pad record has messageId kPadMessageId and only the first two fields.
struct EntryRecord {
  U32 bytes;      // length of the whole record
  U32 messageId;  // descriptor id, or kPadMessageId
  U64 sequence;   // 0 for the first entry of the file, then +1 per entry
  U64 timestamp;  // steady clock, ns
  U64 duration;   // ns, or kNoDuration / kOpenBlock
};
static_assert(sizeof(EntryRecord) == 32);
static_assert(offsetof(EntryRecord, duration) == 24);

inline constexpr U64 kPadRecordBytes = 8;

constexpr U64 roundUpTo8(U64 bytes) noexcept { return (bytes + 7) & ~U64{7}; }

// The longest entry any site can write.
inline constexpr U64 kMaxEntryBytes = roundUpTo8(sizeof(EntryRecord) + kMaxArguments * (1 + kMaxStringBytes));

}  // namespace RingTrace::Layout
