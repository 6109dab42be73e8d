#include "host/state/PrintableText.h"

#include <array>
#include <cstdint>

namespace QosSnmpHost {
namespace {

// The length of the valid UTF-8 sequence starting at `at`, or 0.
std::size_t utf8Length(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byte(at);
  std::size_t length = 0;
  std::uint32_t min = 0;
  if (lead < 0x80U) {
    return 1;
  }
  if ((lead & 0xE0U) == 0xC0U) {
    length = 2;
    min = 0x80U;
  } else if ((lead & 0xF0U) == 0xE0U) {
    length = 3;
    min = 0x800U;
  } else if ((lead & 0xF8U) == 0xF0U) {
    length = 4;
    min = 0x10000U;
  } else {
    return 0;
  }
  if (at + length > text.size()) {
    return 0;
  }
  std::uint32_t point = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80U) {
      return 0;
    }
    point = (point << 6U) | (byte(at + i) & 0x3FU);
  }
  const bool surrogate = point >= 0xD800U && point <= 0xDFFFU;
  return point < min || point > 0x10FFFFU || surrogate ? 0 : length;
}

std::string escaped(std::uint8_t byte, bool invalid) {
  constexpr std::array<char, 16> kHex = {'0', '1', '2', '3', '4', '5', '6', '7',
                                         '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
  switch (byte) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  std::string out = invalid ? "\\x" : "\\u00";
  out += kHex[byte >> 4U];
  out += kHex[byte & 0xFU];
  return out;
}

}  // namespace

std::string PrintableText::of(std::string_view text, std::size_t maxBytes) {
  std::string out;
  out.reserve(text.size() < maxBytes ? text.size() : maxBytes);
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    std::size_t length = utf8Length(text, at);
    std::string piece;
    if (length == 0) {
      piece = escaped(byte, true);
      length = 1;
    } else if (byte < 0x20U || byte == 0x7FU) {
      piece = escaped(byte, false);
    } else {
      piece = std::string(text.substr(at, length));
    }
    if (out.size() + piece.size() > maxBytes) {
      return out + "...";
    }
    out += piece;
    at += length;
  }
  return out;
}

}  // namespace QosSnmpHost
