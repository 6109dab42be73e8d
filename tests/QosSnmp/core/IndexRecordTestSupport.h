// Test support for the MIB index records: a reference of the record hash
// written straight from its definition, independently of
// QosSnmp::IndexHash, and a printer helper.
//
// The reference collects the bytes every field contributes, then runs the
// byte step over them and the closing steps:
//
//   EXPECT_EQ(index.hash(), HashReference().text("cmap").word(0).result());
#pragma once

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "kel/Types.h"

namespace QosSnmpTest {

class HashReference {
 public:
  // A 32-bit field: four bytes, least significant first.
  HashReference& word(Kel::U32 value) {
    bytes_.push_back(value & 0xffU);
    bytes_.push_back((value >> 8) & 0xffU);
    bytes_.push_back((value >> 16) & 0xffU);
    bytes_.push_back((value >> 24) & 0xffU);
    return *this;
  }
  HashReference& word(Kel::S32 value) { return word(static_cast<Kel::U32>(value)); }
  // An 8-bit field: one byte.
  HashReference& byte(Kel::U8 value) {
    bytes_.push_back(value);
    return *this;
  }
  // A string field: the bytes of the 32-bit FNV-1a hash of its characters.
  HashReference& text(std::string_view chars) { return word(fnv1a(chars)); }

  Kel::U32 result() const {
    Kel::U32 h = 0;
    for (const Kel::U32 b : bytes_) {
      h = h + b;
      h = h + (h << 10);
      h = h ^ (h >> 6);
    }
    h = h + (h << 3);
    h = h ^ (h >> 11);
    h = h + (h << 15);
    return h;
  }

  static Kel::U32 fnv1a(std::string_view chars) {
    Kel::U32 h = 2166136261U;
    for (const unsigned char c : chars) {
      h = (h ^ c) * 16777619U;
    }
    return h;
  }

 private:
  std::vector<Kel::U32> bytes_;
};

// What operator<< writes for `value`.
template <typename T>
std::string printed(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace QosSnmpTest
