// OidIndexCodec<Fields...>: the instance identifier of a table row (the
// sub-identifiers after the column), written from and read back into the
// fields of its index, one field encoder per field, in declared order.
//
// Field encoders:
//   OctetStringIndexField<MaxSize>   OCTET STRING (SIZE (0..MaxSize)), not
//                                    IMPLIED: the length, then one
//                                    sub-identifier per byte.
//   IntegerIndexField<T, Min, Max>   an integer (or enumeration) in
//                                    [Min, Max], 0 <= Min: one sub-identifier.
//
// With these encodings, the OID order of two encodable indexes is the order
// of their fields compared one after the other, strings length first and
// then byte by byte (unsigned), integers by value: the order of the MIB
// model's index records. A value outside what the MIB declares (a negative
// integer, an integer out of range, a string longer than MaxSize) is not
// encodable; callers skip rows whose index is not.
//
// seek() turns any suffix, whole, cut short or malformed, into the place
// where the first row after it starts in a sorted table:
//   after      the suffix is the encoding of `values`, or begins with it:
//              the answer is the first row strictly above `values`;
//   atOrAfter  no encodable index lies between the suffix and `values`,
//              and `values` encodes above the suffix: the answer is the
//              first row at or above `values`;
//   nullopt    every encodable index encodes at or below the suffix.
//
//   using Codec = OidIndexCodec<OctetStringIndexField<30>, IntegerIndexField<Kel::S32, 0, 2>>;
//   Oid suffix;
//   Codec::encode({"cm1", 1}, suffix);                 // 3.99.109.49.1
//   std::optional<Codec::Values> v = Codec::decode(suffix);
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "host/snmp/CachePrefetch.h"
#include "host/snmp/MibView.h"
#include "snmp/String.h"

namespace QosSnmpHost {

// How reading one field of a suffix went.
enum class FieldRead {
  exact,   // the field was read whole; the position moved past it
  raised,  // value is the smallest value encoding above the suffix here
  past,    // every value of the field encodes below the suffix here
};

template <std::size_t MaxSize>
struct OctetStringIndexField {
  using Value = Snmp::String;
  using Ref = const Value&;

  static Value min() { return {}; }
  static bool encodable(const Value& value) noexcept { return value.size() <= MaxSize; }
  static void prefetch(const Value& value) noexcept { prefetchLine(value.data()); }
  static void encode(const Value& value, Oid& out) {
    out.push_back(static_cast<std::uint32_t>(value.size()));
    for (const char c : value.view()) {
      out.push_back(static_cast<unsigned char>(c));
    }
  }
  static FieldRead read(OidSpan suffix, std::size_t& pos, Value& value) {
    if (pos == suffix.size()) {
      value = min();
      return FieldRead::raised;
    }
    const std::uint32_t length = suffix[pos];
    if (length > MaxSize) {
      return FieldRead::past;
    }
    std::string bytes;
    bytes.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
      const std::size_t at = pos + 1 + i;
      if (at == suffix.size()) {
        bytes.resize(length, '\0');
        value = Value(bytes);
        return FieldRead::raised;
      }
      if (suffix[at] > 0xFF) {
        // Every string of this length that starts with `bytes` is below.
        auto next = above(std::move(bytes), length);
        if (!next) {
          return FieldRead::past;
        }
        value = Value(*next);
        return FieldRead::raised;
      }
      bytes.push_back(static_cast<char>(suffix[at]));
    }
    pos += 1 + length;
    value = Value(bytes);
    return FieldRead::exact;
  }
  // The next string in index order: same length with the bytes counted up
  // by one, or one byte longer and all zero.
  static std::optional<Value> successor(const Value& value) {
    auto next = above(value.stringValue(), value.size());
    if (!next) {
      return std::nullopt;
    }
    return Value(*next);
  }

 private:
  // The smallest string of `length` bytes above every string of that length
  // that starts with `prefix`; when there is none, the smallest of length + 1.
  static std::optional<std::string> above(std::string prefix, std::size_t length) {
    for (auto it = prefix.rbegin(); it != prefix.rend(); ++it) {
      if (static_cast<unsigned char>(*it) != 0xFF) {
        *it = static_cast<char>(static_cast<unsigned char>(*it) + 1);
        prefix.resize(length, '\0');
        return prefix;
      }
      *it = '\0';
    }
    if (length + 1 > MaxSize) {
      return std::nullopt;
    }
    return std::string(length + 1, '\0');
  }
};

template <typename T, std::int64_t Min, std::int64_t Max>
struct IntegerIndexField {
  static_assert(0 <= Min && Min <= Max && Max <= 0xFFFFFFFF, "an index integer is one sub-identifier");
  using Value = T;
  using Ref = T;

  static Value min() noexcept { return static_cast<T>(Min); }
  static bool encodable(Value value) noexcept {
    const auto wide = static_cast<std::int64_t>(value);
    return Min <= wide && wide <= Max;
  }
  static void encode(Value value, Oid& out) { out.push_back(static_cast<std::uint32_t>(value)); }
  static void prefetch(Value /*value*/) noexcept {}
  static FieldRead read(OidSpan suffix, std::size_t& pos, Value& value) noexcept {
    if (pos == suffix.size()) {
      value = min();
      return FieldRead::raised;
    }
    const std::int64_t wide = suffix[pos];
    if (wide < Min) {
      value = min();
      return FieldRead::raised;
    }
    if (wide > Max) {
      return FieldRead::past;
    }
    value = static_cast<T>(wide);
    ++pos;
    return FieldRead::exact;
  }
  static std::optional<Value> successor(Value value) noexcept {
    const auto wide = static_cast<std::int64_t>(value);
    if (wide >= Max) {
      return std::nullopt;
    }
    return static_cast<T>(wide + 1);
  }
};

enum class SeekBound { atOrAfter, after };

template <typename... Fields>
class OidIndexCodec {
 public:
  using Values = std::tuple<typename Fields::Value...>;
  // The fields of a record viewed in place (strings by reference), for
  // encoding without copying them.
  using Refs = std::tuple<typename Fields::Ref...>;
  static constexpr std::size_t kFields = sizeof...(Fields);

  struct Seek {
    Values values;
    SeekBound bound;
  };

  // Tuple: Values or Refs.
  template <typename Tuple = Values>
  static bool encodable(const Tuple& values) {
    return forAll([&]<std::size_t I>() { return field<I>::encodable(std::get<I>(values)); });
  }

  // REQUIRES: encodable(values).
  template <typename Tuple = Values>
  static void encode(const Tuple& values, Oid& out) {
    forAll([&]<std::size_t I>() {
      field<I>::encode(std::get<I>(values), out);
      return true;
    });
  }

  // Asks for the cache lines the fields' encoding will read (the strings'
  // characters) ahead of time; touches nothing itself.
  template <typename Tuple = Values>
  static void prefetch(const Tuple& values) {
    forAll([&]<std::size_t I>() {
      field<I>::prefetch(std::get<I>(values));
      return true;
    });
  }

  // The index the suffix encodes exactly, or nullopt.
  static std::optional<Values> decode(OidSpan suffix) {
    Values values{Fields::min()...};
    std::size_t pos = 0;
    const bool whole = forAll([&]<std::size_t I>() {
      return field<I>::read(suffix, pos, std::get<I>(values)) == FieldRead::exact;
    });
    if (!whole || pos != suffix.size()) {
      return std::nullopt;
    }
    return values;
  }

  static std::optional<Seek> seek(OidSpan suffix) {
    Values values{Fields::min()...};
    std::size_t pos = 0;
    FieldRead stop = FieldRead::exact;
    std::size_t stopAt = kFields;
    forAll([&]<std::size_t I>() {
      stop = field<I>::read(suffix, pos, std::get<I>(values));
      stopAt = I;
      return stop == FieldRead::exact;
    });
    switch (stop) {
      case FieldRead::exact:
        return Seek{std::move(values), SeekBound::after};
      case FieldRead::raised:
        resetFrom(values, stopAt + 1);
        return Seek{std::move(values), SeekBound::atOrAfter};
      case FieldRead::past:
        break;
    }
    // Nothing at or after the suffix shares the fields read whole: count
    // the nearest one that can grow up by one and start the rest over.
    for (std::size_t i = stopAt; i-- > 0;) {
      if (raiseField(values, i)) {
        resetFrom(values, i + 1);
        return Seek{std::move(values), SeekBound::atOrAfter};
      }
    }
    return std::nullopt;
  }

 private:
  template <std::size_t I>
  using field = std::tuple_element_t<I, std::tuple<Fields...>>;

  // Calls f.template operator()<I>() for I = 0, 1, ... while it returns
  // true; true when every call did.
  template <typename F>
  static bool forAll(F&& f) {
    return [&]<std::size_t... I>(std::index_sequence<I...>) { return (f.template operator()<I>() && ...); }
    (std::make_index_sequence<kFields>{});
  }

  static void resetFrom(Values& values, std::size_t first) {
    forAll([&]<std::size_t I>() {
      if (I >= first) {
        std::get<I>(values) = field<I>::min();
      }
      return true;
    });
  }

  static bool raiseField(Values& values, std::size_t i) {
    bool raised = false;
    forAll([&]<std::size_t I>() {
      if (I == i) {
        if (auto next = field<I>::successor(std::get<I>(values))) {
          std::get<I>(values) = std::move(*next);
          raised = true;
        }
      }
      return true;
    });
    return raised;
  }
};

}  // namespace QosSnmpHost
