#include "host/state/JsonLineIndex.h"

#include <cstddef>
#include <iterator>
#include <vector>

namespace QosSnmpHost {
namespace {

using Json = nlohmann::json;

// An input iterator over characters that counts the newlines it has passed,
// so that the parser's events can be placed on a line.
class LineCountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  LineCountingIterator(const char* at, int* line) : at_(at), line_(line) {}

  reference operator*() const { return *at_; }
  LineCountingIterator& operator++() {
    if (*at_ == '\n') {
      ++*line_;
    }
    ++at_;
    return *this;
  }
  LineCountingIterator operator++(int) {
    LineCountingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const LineCountingIterator& a, const LineCountingIterator& b) {
    return a.at_ == b.at_;
  }

 private:
  const char* at_;
  int* line_;
};

// Records the line of every object key, under the pointer of its member.
class KeyLines : public nlohmann::json_sax<Json> {
 public:
  KeyLines(const int* line, std::unordered_map<std::string, int>* lines) : line_(line), lines_(lines) {}

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*elements*/) override {
    frames_.emplace_back();
    return true;
  }
  bool key(string_t& key) override {
    frames_.back() = key;
    Json::json_pointer path;
    for (const auto& frame : frames_) {
      path /= frame;
    }
    lines_->emplace(path.to_string(), *line_);
    return true;
  }
  bool end_object() override {
    frames_.pop_back();
    return true;
  }
  // Array elements are not named by the documents' paths: one opaque frame.
  bool start_array(std::size_t /*elements*/) override {
    frames_.emplace_back("-");
    return true;
  }
  bool end_array() override {
    frames_.pop_back();
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

 private:
  const int* line_;
  std::unordered_map<std::string, int>* lines_;
  std::vector<std::string> frames_;
};

}  // namespace

JsonLineIndex::JsonLineIndex(std::string_view text) {
  int line = 1;
  KeyLines sax(&line, &lines_);
  Json::sax_parse(LineCountingIterator(text.data(), &line),
                  LineCountingIterator(text.data() + text.size(), &line), &sax);
}

int JsonLineIndex::lineOf(const nlohmann::json::json_pointer& path) const {
  for (auto at = path; !at.empty(); at = at.parent_pointer()) {
    if (const auto it = lines_.find(at.to_string()); it != lines_.end()) {
      return it->second;
    }
  }
  return 0;
}

}  // namespace QosSnmpHost
