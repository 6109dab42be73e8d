#include "snmp/HashShortenedIdentifier.h"

#include <string>
#include <string_view>

namespace Snmp {
namespace {

std::string hexDigits(Kel::U32 hash) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string digits(HashShortenedIdentifier::kHashDigits, '0');
  for (char& digit : digits) {
    digit = kDigits[hash >> 28U];
    hash <<= 4U;
  }
  return digits;
}

}  // namespace

String HashShortenedIdentifier::generateHashShortenedIdentifier(const Kel::String& name,
                                                                std::size_t maxLength) const {
  if (name.size() <= maxLength) {
    return {name};
  }
  // Kel::String's hash is FNV-1a over the characters, so it is the hash the
  // contract promises, already computed.
  const std::string hash = hexDigits(name.hash());
  if (maxLength <= kHashDigits) {
    return {std::string_view(hash).substr(0, maxLength)};
  }
  if (maxLength <= kSuffixLength) {
    // No room for the separator and a character of the name: keep the name's
    // leading characters before the digits.
    return {std::string(name.view().substr(0, maxLength - kHashDigits)) + hash};
  }
  std::string shortened(name.view().substr(0, maxLength - kSuffixLength));
  shortened += kSeparator;
  shortened += hash;
  return {shortened};
}

}  // namespace Snmp
