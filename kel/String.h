// Kel::String: the framework's immutable counted string.
//
// Copies share one buffer (a copy is one count change); the empty string has
// no buffer. The hash is computed once from the characters, so it agrees
// with equality for strings that are not interned. Ordering is byte-wise.
//
//   Kel::String name("copp-system-policy");
//   std::string_view chars = name.view();
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "kel/Types.h"

namespace Kel {

class String {
 public:
  String() noexcept = default;
  String(const char* chars, std::size_t length);
  String(const char* chars);       // NOLINT(google-explicit-constructor)
  String(std::string_view chars);  // NOLINT(google-explicit-constructor)
  String(const std::string& chars)
      : String(std::string_view(chars)) {}  // NOLINT(google-explicit-constructor)
  String(const String& other) noexcept;
  String(String&& other) noexcept;
  String& operator=(const String& other) noexcept;
  String& operator=(String&& other) noexcept;
  ~String();

  std::size_t size() const noexcept { return rep_ ? rep_->size : 0; }
  bool empty() const noexcept { return rep_ == nullptr; }
  const char* data() const noexcept { return rep_ ? rep_->chars : ""; }
  std::string_view view() const noexcept { return {data(), size()}; }
  std::string stringValue() const { return std::string(view()); }
  // 32-bit hash of the characters (FNV-1a); 0x811c9dc5 for the empty string.
  U32 hash() const noexcept { return rep_ ? rep_->hash : kEmptyHash; }

  friend bool operator==(const String& a, const String& b) noexcept {
    return a.rep_ == b.rep_ || (a.hash() == b.hash() && a.view() == b.view());
  }
  friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept {
    return a.view().compare(b.view()) <=> 0;
  }

  static U32 hashOf(std::string_view chars) noexcept;

 private:
  static constexpr U32 kEmptyHash = 0x811c9dc5U;

  struct Rep {
    std::atomic<S32> references;
    U32 size;
    U32 hash;
    char chars[1];
  };

  static Rep* makeRep(std::string_view chars);
  static void release(Rep* rep) noexcept;

  Rep* rep_ = nullptr;
};

std::ostream& operator<<(std::ostream& out, const String& s);

}  // namespace Kel

template <>
struct std::hash<Kel::String> {
  std::size_t operator()(const Kel::String& s) const noexcept { return s.hash(); }
};
