// LoadError: why a switch state document or a change line was refused, as
// one line for an operator: "<file>:<line>: <path>: <message>", for example
//
//   changes.jsonl:7: /qosStatus/pmapType/mapQos/pmap/pm1/classPrio/x: expected a priority (unsigned
//   32-bit decimal), got "x"
//
// The path is the canonical JSON Pointer of the offending value in the
// document (left out when the error is not about one value, for example a
// JSON syntax error or a missing file); the line is 0 when unknown (then
// left out too). Source names where a text came from; Result<T> is a value or
// the error that prevented it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace QosSnmpHost {

// Where a document or a change line came from.
struct Source {
  std::string file;
  int line = 0;
};

struct LoadError {
  std::string file;
  int line = 0;
  // The offending value's JSON Pointer; nullopt when the error is not about
  // one value. The whole document is "" and prints as "(document)".
  std::optional<std::string> path;
  std::string message;

  // "<file>:<line>: <path>: <message>", without the parts that are unknown.
  std::string text() const;
};

// A line of the change stream over the length limit (InputLimits), which
// the reader dropped without keeping it.
inline LoadError overlongLineError(const Source& where, std::size_t bytes, std::size_t maxBytes) {
  return LoadError{where.file, where.line, std::nullopt,
                   "line of " + std::to_string(bytes) + " bytes is longer than the limit of " +
                       std::to_string(maxBytes) + " bytes; skipped"};
}

// A value of type T, or the LoadError that prevented it.
template <typename T>
class Result {
 public:
  Result(T value) : value_(std::move(value)) {}          // NOLINT(google-explicit-constructor)
  Result(LoadError error) : error_(std::move(error)) {}  // NOLINT(google-explicit-constructor)

  bool ok() const { return value_.has_value(); }
  explicit operator bool() const { return ok(); }

  // REQUIRES: ok(). The optional's own check (std::bad_optional_access)
  // stands for the assertion, hence the NOLINTs.
  T& value() { return value_.value(); }                    // NOLINT(bugprone-unchecked-optional-access)
  const T& value() const { return value_.value(); }        // NOLINT(bugprone-unchecked-optional-access)
  T* operator->() { return &value_.value(); }              // NOLINT(bugprone-unchecked-optional-access)
  const T* operator->() const { return &value_.value(); }  // NOLINT(bugprone-unchecked-optional-access)

  // REQUIRES: !ok(), checked likewise.
  const LoadError& error() const { return error_.value(); }  // NOLINT(bugprone-unchecked-optional-access)

 private:
  std::optional<T> value_;
  std::optional<LoadError> error_;
};

}  // namespace QosSnmpHost
