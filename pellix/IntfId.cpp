#include "pellix/IntfId.h"

#include <ostream>

namespace Pellix {
namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// Length of the run of digits starting at `from`.
std::size_t digitRunLength(std::string_view s, std::size_t from) noexcept {
  std::size_t end = from;
  while (end < s.size() && isDigit(s[end])) {
    ++end;
  }
  return end - from;
}

// Compares two runs of digits by value, whatever their length: leading zeros
// are skipped, then the longer number is the larger, then the digits decide.
std::strong_ordering compareNumbers(std::string_view a, std::string_view b) noexcept {
  const std::size_t aZeros = a.find_first_not_of('0');
  const std::size_t bZeros = b.find_first_not_of('0');
  a.remove_prefix(aZeros == std::string_view::npos ? a.size() : aZeros);
  b.remove_prefix(bZeros == std::string_view::npos ? b.size() : bZeros);
  if (a.size() != b.size()) {
    return a.size() <=> b.size();
  }
  return a.compare(b) <=> 0;
}

}  // namespace

// The names are read as sequences of tokens: a maximal run of digits is one
// number token, any other byte is a token of its own. A number sorts where
// its digits would sort among the other bytes; since the digits are
// contiguous in ASCII, every non-digit byte is either below or above all of
// them, so this is a total order on tokens whatever the number. The token
// sequences compare lexicographically, and only sequences that differ in
// leading zeros alone fall through to the byte comparison.
std::strong_ordering IntfId::compareNames(std::string_view a, std::string_view b) noexcept {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      const std::size_t aLength = digitRunLength(a, i);
      const std::size_t bLength = digitRunLength(b, j);
      const std::strong_ordering order = compareNumbers(a.substr(i, aLength), b.substr(j, bLength));
      if (order != std::strong_ordering::equal) {
        return order;
      }
      i += aLength;
      j += bLength;
    } else if (a[i] != b[j]) {
      return static_cast<unsigned char>(a[i]) <=> static_cast<unsigned char>(b[j]);
    } else {
      ++i;
      ++j;
    }
  }
  if (i < a.size() || j < b.size()) {
    return i < a.size() ? std::strong_ordering::greater : std::strong_ordering::less;
  }
  return a.compare(b) <=> 0;
}

std::ostream& operator<<(std::ostream& out, const IntfId& id) { return out << id.name(); }

}  // namespace Pellix
