// Fixed-width integer names used throughout the platform and the agent.
#pragma once

#include <cstdint>

namespace Kel {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
using S8 = std::int8_t;
using S16 = std::int16_t;
using S32 = std::int32_t;
using S64 = std::int64_t;

// Identifies one attribute of an entity type in notifications. Ids are
// unique within one entity type (a derived type continues its base's ids).
using AttributeId = U32;

}  // namespace Kel
