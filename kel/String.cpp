#include "kel/String.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>

#include "kel/PtrInterface.h"

namespace Kel {

U32 String::hashOf(std::string_view chars) noexcept {
  U32 h = kEmptyHash;
  for (const char c : chars) {
    h ^= static_cast<unsigned char>(c);
    h *= 16777619U;
  }
  return h;
}

String::Rep* String::makeRep(std::string_view chars) {
  if (chars.empty()) {
    return nullptr;
  }
  void* memory = std::malloc(offsetof(Rep, chars) + chars.size() + 1);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  Rep* rep = new (memory) Rep{{1}, static_cast<U32>(chars.size()), hashOf(chars), {0}};
  std::memcpy(rep->chars, chars.data(), chars.size());
  rep->chars[chars.size()] = '\0';
  return rep;
}

void String::release(Rep* rep) noexcept {
  if (rep != nullptr && countAdd<S32>(rep->references, -1) == 0) {
    rep->~Rep();
    std::free(rep);
  }
}

String::String(const char* chars, std::size_t length) : rep_(makeRep({chars, length})) {}
String::String(const char* chars)
    : rep_(makeRep(chars == nullptr ? std::string_view() : std::string_view(chars))) {}
String::String(std::string_view chars) : rep_(makeRep(chars)) {}

String::String(const String& other) noexcept : rep_(other.rep_) {
  if (rep_ != nullptr) {
    countAdd<S32>(rep_->references, 1);
  }
}

String::String(String&& other) noexcept : rep_(other.rep_) { other.rep_ = nullptr; }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): counts the new before releasing the old.
String& String::operator=(const String& other) noexcept {
  if (other.rep_ != nullptr) {
    countAdd<S32>(other.rep_->references, 1);
  }
  release(rep_);
  rep_ = other.rep_;
  return *this;
}

String& String::operator=(String&& other) noexcept {
  if (this != &other) {
    release(rep_);
    rep_ = other.rep_;
    other.rep_ = nullptr;
  }
  return *this;
}

String::~String() { release(rep_); }

std::ostream& operator<<(std::ostream& out, const String& s) { return out << s.view(); }

}  // namespace Kel
