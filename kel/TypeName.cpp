#include "kel/TypeName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace Kel {
namespace {

// The demangled name of every object Kel::make<T>() builds starts so; T is
// the first template argument.
constexpr std::string_view kMadeWrapper = "Kel::detail::Tracked<";

}  // namespace

std::string demangledTypeName(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> plain(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return status == 0 && plain ? std::string(plain.get()) : std::string(type.name());
}

std::string unqualifiedTypeName(const std::type_info& type) {
  std::string name = demangledTypeName(type);
  // After the last "::" outside any template argument list.
  std::size_t start = 0;
  int depth = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '<') {
      ++depth;
    } else if (name[i] == '>') {
      --depth;
    } else if (depth == 0 && name.compare(i, 2, "::") == 0) {
      start = i + 2;
    }
  }
  return name.substr(start);
}

std::string madeTypeName(const std::type_info& dynamicType) {
  std::string name = demangledTypeName(dynamicType);
  if (!name.starts_with(kMadeWrapper)) {
    return name;
  }
  // The first template argument: up to the ',' or '>' that closes it at
  // nesting depth zero.
  int depth = 0;
  for (std::size_t i = kMadeWrapper.size(); i < name.size(); ++i) {
    const char c = name[i];
    if (c == '<' || c == '(') {
      ++depth;
    } else if ((c == '>' || c == ')') && depth > 0) {
      --depth;
    } else if ((c == ',' || c == '>') && depth == 0) {
      return name.substr(kMadeWrapper.size(), i - kMadeWrapper.size());
    }
  }
  return name;
}

}  // namespace Kel
