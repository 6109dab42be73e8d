// PrintableText: input quoted in an operator's message, made safe to print
// as part of one line.
//
// Control characters are escaped as in JSON ("\n", "\t", "\u001b"), bytes
// that are not valid UTF-8 as "\xNN", and the result is cut after `maxBytes`
// bytes of output (never inside an escape or a character), with "..."
// appended when anything was cut. Valid UTF-8 passes unchanged.
//
//   std::cerr << PrintableText::of(error.message, InputLimits::kMaxMessageBytes) << '\n';
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosSnmpHost {

class PrintableText {
 public:
  static std::string of(std::string_view text, std::size_t maxBytes);
};

}  // namespace QosSnmpHost
