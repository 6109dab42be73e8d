// The kel-ringtrace command, kept in the library so that tests run it;
// kel/tools/kel-ringtrace.cpp only hands it argv.
//
//   kel-ringtrace FILE                 every entry, oldest first
//   kel-ringtrace --descriptors FILE   the descriptor table
//
// An entry line is
//
//   <sequence> <time> <duration> <text> [<argument> ...] (<file>:<line>)
//
// time: wall-clock UTC with nanoseconds, 2024-05-01T12:00:00.000001500Z;
// duration: nanoseconds, "-" for a message, "open" for a block that has
// not ended (the process stopped inside it); arguments: integers in
// decimal, strings in double quotes with '"', '\' and non-printable bytes
// escaped (\", \\, \xNN). A descriptor line is
//
//   <message id> <format, or - when empty> <text> (<file>:<line>)
//
// Exit status: 0 when the file was printed, 2 with a message on the error
// stream for bad usage or a missing or malformed file.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "kel/RingTraceReader.h"
#include "kel/Types.h"

namespace RingTrace {

std::string formatEntry(const Reader& reader, const Entry& entry);
std::string formatDescriptor(const Descriptor& descriptor);
// 1970-01-01T00:00:00.000000000Z form of `realtimeNs`.
std::string formatTime(S64 realtimeNs);

// Runs the command with `arguments` (argv without the program name) and
// returns its exit status.
int runRingTraceCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace RingTrace
