// JsonSkimmer: a SAX reader of JSON text that keeps nothing. Every event is
// accepted; the first error stops the pass and leaves its byte position.
// Passes that look for one thing in a text (where an error lies, the line
// of a member) derive from it and override the events they need.
//
//   JsonSkimmer skimmer;
//   nlohmann::json::sax_parse(text, &skimmer);   // skimmer.errorAt: 0 when none
#pragma once

#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

namespace QosSnmpHost {

class JsonSkimmer : public nlohmann::json_sax<nlohmann::json> {
 public:
  // The position (from 1) at which the library gave up; 0 when it did not.
  std::size_t errorAt = 0;

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*elements*/) override { return true; }
  bool key(string_t& /*key*/) override { return true; }
  bool end_object() override { return true; }
  bool start_array(std::size_t /*elements*/) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    errorAt = position;
    return false;
  }
};

}  // namespace QosSnmpHost
