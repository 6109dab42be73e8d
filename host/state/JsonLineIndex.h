// JsonLineIndex: the line of a JSON text on which an object member starts,
// by the member's JSON Pointer (keys as written), so that an error about a
// value can name the line of the text it came from.
//
// Asked only when an error needs a line: each lookup is one SAX pass over
// the text that keeps no more than the nesting depth, so it is linear in
// the text whatever its shape.
//
//   const JsonLineIndex lines(text);
//   int line = lines.lineOf(JsonPointer("/hwStatus/numEcnQueues"));  // 0: unknown
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

namespace QosSnmpHost {

class JsonLineIndex {
 public:
  // REQUIRES: `text` outlives the index. Invalid JSON is read up to its
  // first error.
  explicit JsonLineIndex(std::string_view text) : text_(text) {}

  // The line (from 1) of the member at `path`, or of its nearest ancestor
  // member the text has; 0 when there is none (the document itself).
  int lineOf(const nlohmann::json::json_pointer& path) const;

 private:
  std::string_view text_;
};

}  // namespace QosSnmpHost
