// Helpers shared by the input model's key records and keyed entities.
//
// hashCombine/hashFinish build a record's 32-bit hash from its fields'
// hashes: combine each field in order, then finish, so that records that
// differ in any field (or only in the order of equal field values) spread
// over the whole range. keyText gives the printed form of a key, which keyed
// entities take as their entity name.
//
//   U32 h = hashFinish(hashCombine(hashCombine(kKeyHashSeed, a), b));
#pragma once

#include <bit>
#include <sstream>

#include "kel/String.h"
#include "kel/Types.h"

namespace Qos {

inline constexpr Kel::U32 kKeyHashSeed = 0x9747b28cU;

// Mixes one field's 32-bit hash into `seed` (MurmurHash3's block step).
constexpr Kel::U32 hashCombine(Kel::U32 seed, Kel::U32 value) noexcept {
  value *= 0xcc9e2d51U;
  value = std::rotl(value, 15);
  value *= 0x1b873593U;
  seed ^= value;
  seed = std::rotl(seed, 13);
  return seed * 5U + 0xe6546b64U;
}

// Final avalanche (MurmurHash3's fmix32): every input bit reaches every
// output bit.
constexpr Kel::U32 hashFinish(Kel::U32 h) noexcept {
  h ^= h >> 16;
  h *= 0x85ebca6bU;
  h ^= h >> 13;
  h *= 0xc2b2ae35U;
  h ^= h >> 16;
  return h;
}

// `key` as its operator<< prints it.
template <typename K>
Kel::String keyText(const K& key) {
  std::ostringstream out;
  out << key;
  return {out.str()};
}

}  // namespace Qos
