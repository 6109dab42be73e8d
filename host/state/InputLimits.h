// InputLimits: the bounds every input of the host is held to before any of
// it is parsed or applied, so that no document, change line or stream can
// exhaust the stack, the memory or the time of the reactor thread.
//
// The defaults are far above anything a switch publishes (the deepest
// member of a state document is 11 levels down; a change line is a few
// hundred bytes) and far below what would hurt:
// - maxDepth: JSON nesting, checked by a linear scan before the parser
//   builds anything, so nothing that recurses over a value (printing,
//   copying, destroying) ever sees more than this many levels;
// - maxLineBytes: one change line; a longer line is skipped up to its
//   newline without being kept, and refused;
// - maxAdvanceSeconds: one "advance" line; a longer pause is written as
//   several lines, so that the work of the timers it fires stays
//   proportional to the input;
// - kMaxShownBytes, kMaxPathBytes, kMaxMessageBytes: how much of the input an
//   error message quotes (a value, a path, the whole message).
#pragma once

#include <cstddef>

namespace QosSnmpHost {

struct InputLimits {
  std::size_t maxDepth = 64;
  std::size_t maxLineBytes = std::size_t{4} << 20U;
  double maxAdvanceSeconds = 86400.0;

  static constexpr std::size_t kMaxShownBytes = 60;
  static constexpr std::size_t kMaxPathBytes = 256;
  static constexpr std::size_t kMaxMessageBytes = 1024;
};

}  // namespace QosSnmpHost
