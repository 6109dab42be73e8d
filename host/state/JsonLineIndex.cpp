#include "host/state/JsonLineIndex.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
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

// Follows the members on the way to one path: `matched` of its segments
// are the keys of the containers open now. Remembers the line of the
// deepest member of the path it has seen, and stops at the path itself.
class PathLine : public nlohmann::json_sax<Json> {
 public:
  PathLine(const int* line, std::vector<std::string> segments)
      : line_(line), segments_(std::move(segments)) {}

  int found() const { return foundLine_; }

  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& /*value*/) override { return true; }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*elements*/) override { return open(); }
  // Array elements are not named by the documents' paths: a container
  // whose members never match.
  bool start_array(std::size_t /*elements*/) override {
    inArray_.push_back(true);
    return true;
  }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(string_t& key) override {
    // The key's segment index is the depth of its object, less one.
    const std::size_t index = inArray_.size() - 1;
    matched_ = std::min(matched_, index);
    if (matched_ == index && index < segments_.size() && key == segments_[index]) {
      matched_ = index + 1;
      if (matched_ > foundDepth_) {
        foundDepth_ = matched_;
        foundLine_ = *line_;
      }
      return matched_ < segments_.size();
    }
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

 private:
  bool open() {
    inArray_.push_back(false);
    return true;
  }
  bool close() {
    inArray_.pop_back();
    matched_ = std::min(matched_, inArray_.size());
    return true;
  }

  const int* line_;
  std::vector<std::string> segments_;
  std::vector<bool> inArray_;
  std::size_t matched_ = 0;
  std::size_t foundDepth_ = 0;
  int foundLine_ = 0;
};

}  // namespace

int JsonLineIndex::lineOf(const nlohmann::json::json_pointer& path) const {
  std::vector<std::string> segments;
  for (auto at = path; !at.empty(); at = at.parent_pointer()) {
    segments.push_back(at.back());
  }
  std::reverse(segments.begin(), segments.end());
  int line = 1;
  PathLine sax(&line, std::move(segments));
  try {
    Json::sax_parse(LineCountingIterator(text_.data(), &line),
                    LineCountingIterator(text_.data() + text_.size(), &line), &sax);
  } catch (const nlohmann::json::exception&) {
    // The deepest member found before the library gave up stands.
  }
  return sax.found();
}

}  // namespace QosSnmpHost
