// The switch state document's value and key forms, one codec per C++ type
// of the input model.
//
// ValueCodec<T> reads a JSON value meant for an attribute of type T: it
// gives the value's canonical JSON form (nullopt when the value does not
// fit), the T a canonical form stands for, the zero value, and the text that
// says what was expected ("an unsigned 64-bit integer"). KeyCodec<K> does
// the same for the member names (object keys) of collections keyed by K.
//
// Canonical forms: enumerations by name when the number has one, else the
// number; integers as JSON integers; counterPollPeriod's infinity as "inf";
// keys rewritten canonically ("1" -> "mapQos", "007" -> "7").
//
// The schema (StateSchema) picks the codec from the model's own attribute
// and key types, so a type is described here once whatever entity uses it.
#pragma once

#include <cassert>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "QosSnmp/core/IntfPairKey.h"
#include "QosSnmp/core/IntfStatus.h"
#include "QosSnmp/core/PolicyMapHwStatusKey.h"
#include "QosSnmp/core/QosEnums.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "kel/String.h"
#include "kel/Types.h"
#include "pellix/IntfId.h"

namespace QosSnmpHost {

using Json = nlohmann::json;

namespace detail {

// The value of an optional its caller knows to be set (a text the codec
// made canonical parses again; a target that is a member has a key). An
// empty one is a broken invariant and aborts, like every assertion here.
// Of a temporary, the value itself; else a reference to it.
template <typename T>
const T& present(const std::optional<T>& value) {
  assert(value.has_value());
  return *value;
}
template <typename T>
T present(std::optional<T>&& value) {
  assert(value.has_value());
  return *std::move(value);
}

// The decimal number `text` (digits only, at least one), if it fits in U64.
std::optional<std::uint64_t> parseDecimal(std::string_view text);

// An interface name: letters and '-', then '/'-separated groups of digits,
// then optionally '.' and digits ("Ethernet1/1", "Port-Channel10",
// "Ethernet2/1.100").
bool isInterfaceName(std::string_view name);

// `value` as it appears in an error message: its JSON text, shortened.
std::string shown(const Json& value);

// The enumerator names of an enumeration, by value, read from its printer
// (values the printer prints as a number have no name).
struct EnumNames {
  std::vector<std::string> names;  // "" where a value has no name
  std::string noun;                // "a map type"
  std::string list;                // "\"mapControlPlane\", \"mapQos\", \"mapPbr\""
};

template <typename E>
const EnumNames& enumNames();

// The English noun of each enumeration, for messages.
template <typename E>
constexpr const char* kEnumNoun = "an enumeration value";
template <>
inline constexpr const char* kEnumNoun<Qos::MapType> = "a map type";
template <>
inline constexpr const char* kEnumNoun<Qos::ClassMapCpType> = "a control-plane class kind";
template <>
inline constexpr const char* kEnumNoun<Qos::ClassMapCpStaticType> = "a static control-plane class";
template <>
inline constexpr const char* kEnumNoun<Qos::ClassMapMatchOption> = "a match option";
template <>
inline constexpr const char* kEnumNoun<Qos::ActionType> = "an action type";
template <>
inline constexpr const char* kEnumNoun<Qos::PolicyMapDirection> = "a policy direction";
template <>
inline constexpr const char* kEnumNoun<Qos::MatchCondition> = "a match condition";
template <>
inline constexpr const char* kEnumNoun<Qos::HwProgrammingStatus> = "a programming status";
template <>
inline constexpr const char* kEnumNoun<Qos::RateUnit> = "a rate unit";
template <>
inline constexpr const char* kEnumNoun<Interface::IntfOperStatus> = "an operational status";

template <typename E>
const EnumNames& enumNames() {
  static const EnumNames kNames = [] {
    EnumNames result;
    result.noun = kEnumNoun<E>;
    // Every enumeration of the model numbers its enumerators densely from 0.
    for (Kel::U32 value = 0;; ++value) {
      std::ostringstream out;
      out << static_cast<E>(value);
      const std::string text = out.str();
      if (parseDecimal(text)) {
        break;
      }
      result.list += (result.names.empty() ? "\"" : ", \"") + text + "\"";
      result.names.push_back(text);
    }
    return result;
  }();
  return kNames;
}

// The canonical key or value of enumeration E given by name or decimal
// number: the name when the number has one, else the decimal number.
template <typename E>
std::optional<std::string> canonicalEnum(std::string_view text) {
  const auto& names = enumNames<E>().names;
  for (const auto& name : names) {
    if (name == text) {
      return name;
    }
  }
  const auto number = parseDecimal(text);
  if (!number || *number > std::numeric_limits<Kel::U32>::max()) {
    return std::nullopt;
  }
  return *number < names.size() ? names[*number] : std::to_string(*number);
}

template <typename E>
E enumFromCanonical(std::string_view canonical) {
  const auto& names = enumNames<E>().names;
  for (std::size_t value = 0; value < names.size(); ++value) {
    if (names[value] == canonical) {
      return static_cast<E>(value);
    }
  }
  return static_cast<E>(present(parseDecimal(canonical)));
}

}  // namespace detail

template <typename T>
struct ValueCodec;

template <>
struct ValueCodec<bool> {
  static std::string expected() { return "true or false"; }
  static std::optional<Json> canonical(const Json& value) {
    return value.is_boolean() ? std::optional<Json>(value) : std::nullopt;
  }
  static bool value(const Json& canonical) { return canonical.get<bool>(); }
  static Json zero() { return false; }
};

// Unsigned and signed integers of the model, as JSON integers in range.
template <typename T>
requires(std::is_integral_v<T> && !std::is_same_v<T, bool>) struct ValueCodec<T> {
  static std::string expected() {
    return std::string(std::is_signed_v<T> ? "a signed " : "an unsigned ") + std::to_string(sizeof(T) * 8) +
           "-bit integer";
  }
  static std::optional<Json> canonical(const Json& value) {
    if (value.is_number_unsigned()) {
      const auto number = value.get<std::uint64_t>();
      if (number <= static_cast<std::uint64_t>(std::numeric_limits<T>::max())) {
        return canonicalOf(static_cast<T>(number));
      }
    } else if (value.is_number_integer()) {
      const auto number = value.get<std::int64_t>();
      if (number >= static_cast<std::int64_t>(std::numeric_limits<T>::min()) &&
          (number < 0 || static_cast<std::uint64_t>(number) <= std::numeric_limits<T>::max())) {
        return canonicalOf(static_cast<T>(number));
      }
    }
    return std::nullopt;
  }
  static T value(const Json& canonical) { return canonical.get<T>(); }
  static Json zero() { return canonicalOf(T{}); }

 private:
  static Json canonicalOf(T number) {
    if constexpr (std::is_signed_v<T>) {
      return Json(static_cast<std::int64_t>(number));
    } else {
      return Json(static_cast<std::uint64_t>(number));
    }
  }
};

// A period in seconds: a number >= 0, or "inf" for positive infinity.
template <>
struct ValueCodec<double> {
  static std::string expected() { return "a period in seconds (a number >= 0, or \"inf\")"; }
  static std::optional<Json> canonical(const Json& value) {
    if (value.is_string() && value.get<std::string>() == "inf") {
      return value;
    }
    if (value.is_number()) {
      const double number = value.get<double>();
      if (std::isfinite(number) && number >= 0.0) {
        return Json(number);
      }
    }
    return std::nullopt;
  }
  static double value(const Json& canonical) {
    return canonical.is_string() ? std::numeric_limits<double>::infinity() : canonical.get<double>();
  }
  static Json zero() { return 0.0; }
};

template <>
struct ValueCodec<Kel::String> {
  static std::string expected() { return "a string"; }
  static std::optional<Json> canonical(const Json& value) {
    return value.is_string() ? std::optional<Json>(value) : std::nullopt;
  }
  static Kel::String value(const Json& canonical) { return {canonical.get<std::string>()}; }
  static Json zero() { return ""; }
};

// An enumeration by name or number (a JSON integer or a decimal string).
template <typename E>
requires std::is_enum_v<E>
struct ValueCodec<E> {
  static std::string expected() {
    const auto& names = detail::enumNames<E>();
    return names.noun + " (" + names.list + " or a number)";
  }
  static std::optional<Json> canonical(const Json& value) {
    std::optional<std::string> text;
    if (value.is_string()) {
      text = detail::canonicalEnum<E>(value.get<std::string>());
    } else if (value.is_number_unsigned()) {
      text = detail::canonicalEnum<E>(std::to_string(value.get<std::uint64_t>()));
    }
    if (!text) {
      return std::nullopt;
    }
    if (const auto number = detail::parseDecimal(*text)) {
      return Json(*number);
    }
    return Json(*text);
  }
  static E value(const Json& canonical) {
    return canonical.is_string() ? detail::enumFromCanonical<E>(canonical.get<std::string>())
                                 : static_cast<E>(canonical.get<Kel::U32>());
  }
  static Json zero() { return detail::present(canonical(Json(0U))); }
};

template <typename K>
struct KeyCodec;

template <>
struct KeyCodec<Kel::String> {
  static std::string expected() { return "a name (a non-empty string)"; }
  static std::optional<std::string> canonical(std::string_view text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
  }
  static Kel::String key(const std::string& canonical) { return {canonical}; }
};

template <>
struct KeyCodec<Pellix::IntfId> {
  static std::string expected() {
    return R"(an interface name ("Ethernet1/1", "Port-Channel10", "Ethernet2/1.100"))";
  }
  static std::optional<std::string> canonical(std::string_view text) {
    return detail::isInterfaceName(text) ? std::optional<std::string>(text) : std::nullopt;
  }
  static Pellix::IntfId key(const std::string& canonical) { return Pellix::IntfId(Kel::String(canonical)); }
};

template <typename T>
requires(std::is_integral_v<T>&& std::is_unsigned_v<T>) struct KeyCodec<T> {
  static std::string expected() {
    return "a number (unsigned " + std::to_string(sizeof(T) * 8) + "-bit decimal)";
  }
  static std::optional<std::string> canonical(std::string_view text) {
    const auto number = detail::parseDecimal(text);
    if (!number || *number > std::numeric_limits<T>::max()) {
      return std::nullopt;
    }
    return std::to_string(*number);
  }
  static T key(const std::string& canonical) {
    return static_cast<T>(detail::present(detail::parseDecimal(canonical)));
  }
};

template <typename E>
requires std::is_enum_v<E>
struct KeyCodec<E> {
  static std::string expected() { return ValueCodec<E>::expected(); }
  static std::optional<std::string> canonical(std::string_view text) {
    return detail::canonicalEnum<E>(text);
  }
  static E key(const std::string& canonical) { return detail::enumFromCanonical<E>(canonical); }
};

// "<MapType> <PolicyMapDirection> <pmapName>": "mapQos directionInput pm-in".
template <>
struct KeyCodec<Qos::ServicePolicyKey> {
  static std::string expected();
  static std::optional<std::string> canonical(std::string_view text);
  static Qos::ServicePolicyKey key(const std::string& canonical);
};

// "<intf>" or "<intf> <subIntf>": "Ethernet1/1", "Ethernet1/1 Ethernet1/1.100".
template <>
struct KeyCodec<Qos::IntfPairKey> {
  static std::string expected();
  static std::optional<std::string> canonical(std::string_view text);
  static Qos::IntfPairKey key(const std::string& canonical);
};

// "<PolicyMapDirection> <pmapName>": "directionInput pm-in"; the direction by
// name or number.
template <>
struct KeyCodec<Qos::PolicyMapHwStatusKey> {
  static std::string expected();
  static std::optional<std::string> canonical(std::string_view text);
  static Qos::PolicyMapHwStatusKey key(const std::string& canonical);
};

}  // namespace QosSnmpHost
