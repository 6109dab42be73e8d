// JsonLineIndex: the line on which each object member of a JSON text
// starts, by the member's JSON Pointer (keys as written), so that an error
// about a value can name the line of the text it came from.
//
// Built on demand (only when an error needs a line): one extra SAX pass
// over the text.
//
//   const JsonLineIndex lines(text);
//   int line = lines.lineOf(JsonPointer("/hwStatus/numEcnQueues"));  // 0: unknown
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include <nlohmann/json.hpp>

namespace QosSnmpHost {

class JsonLineIndex {
 public:
  // REQUIRES: `text` is valid JSON (else every line reads as unknown).
  explicit JsonLineIndex(std::string_view text);

  // The line (from 1) of the member at `path`, or of its nearest listed
  // ancestor; 0 when none is known (the document itself).
  int lineOf(const nlohmann::json::json_pointer& path) const;

 private:
  std::unordered_map<std::string, int> lines_;
};

}  // namespace QosSnmpHost
