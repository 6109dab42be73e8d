#include "host/state/StateCodec.h"

#include <cctype>

#include "host/state/InputLimits.h"

namespace QosSnmpHost {
namespace detail {

std::optional<std::uint64_t> parseDecimal(std::string_view text) {
  std::uint64_t number = 0;
  if (text.empty() || text.front() == '+' || text.front() == '-') {
    return std::nullopt;
  }
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return number;
}

bool isInterfaceName(std::string_view name) {
  std::size_t at = 0;
  const auto isDigit = [&] { return at < name.size() && std::isdigit(static_cast<unsigned char>(name[at])); };
  const auto digits = [&] {
    const std::size_t start = at;
    while (isDigit()) {
      ++at;
    }
    return at > start;
  };
  if (name.empty() || !std::isalpha(static_cast<unsigned char>(name[0]))) {
    return false;
  }
  while (at < name.size() && (std::isalpha(static_cast<unsigned char>(name[at])) || name[at] == '-')) {
    ++at;
  }
  if (!digits()) {
    return false;
  }
  while (at < name.size() && name[at] == '/') {
    ++at;
    if (!digits()) {
      return false;
    }
  }
  if (at < name.size() && name[at] == '.') {
    ++at;
    if (!digits()) {
      return false;
    }
  }
  return at == name.size();
}

std::string shown(const Json& value) {
  // The value's depth is bounded where it was parsed; strings are valid
  // UTF-8 there too, but a replacement beats an exception here.
  std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text.size() > InputLimits::kMaxShownBytes) {
    text = text.substr(0, InputLimits::kMaxShownBytes) + "...";
  }
  return text;
}

}  // namespace detail

namespace {

// Splits off the text before the first space; nullopt when there is none.
std::optional<std::pair<std::string_view, std::string_view>> splitFirst(std::string_view text) {
  const auto space = text.find(' ');
  if (space == std::string_view::npos) {
    return std::nullopt;
  }
  return std::pair{text.substr(0, space), text.substr(space + 1)};
}

}  // namespace

std::string KeyCodec<Qos::ServicePolicyKey>::expected() {
  return "a service policy key (\"<map type> <direction> <policy-map name>\", for example \"mapQos "
         "directionInput pm-in\")";
}

std::optional<std::string> KeyCodec<Qos::ServicePolicyKey>::canonical(std::string_view text) {
  const auto first = splitFirst(text);
  if (!first) {
    return std::nullopt;
  }
  const auto second = splitFirst(first->second);
  if (!second || second->second.empty()) {
    return std::nullopt;
  }
  const auto type = detail::canonicalEnum<Qos::MapType>(first->first);
  const auto direction = detail::canonicalEnum<Qos::PolicyMapDirection>(second->first);
  if (!type || !direction) {
    return std::nullopt;
  }
  return *type + ' ' + *direction + ' ' + std::string(second->second);
}

Qos::ServicePolicyKey KeyCodec<Qos::ServicePolicyKey>::key(const std::string& canonical) {
  const auto first = detail::present(splitFirst(canonical));
  const auto second = detail::present(splitFirst(first.second));
  return {detail::enumFromCanonical<Qos::MapType>(first.first),
          detail::enumFromCanonical<Qos::PolicyMapDirection>(second.first), Kel::String(second.second)};
}

std::string KeyCodec<Qos::IntfPairKey>::expected() {
  return R"(an interface pair ("<interface>" or "<interface> <sub-interface>"))";
}

std::optional<std::string> KeyCodec<Qos::IntfPairKey>::canonical(std::string_view text) {
  const auto pair = splitFirst(text);
  if (!pair) {
    return detail::isInterfaceName(text) ? std::optional<std::string>(text) : std::nullopt;
  }
  if (!detail::isInterfaceName(pair->first) || !detail::isInterfaceName(pair->second)) {
    return std::nullopt;
  }
  return std::string(text);
}

Qos::IntfPairKey KeyCodec<Qos::IntfPairKey>::key(const std::string& canonical) {
  const auto pair = splitFirst(canonical);
  if (!pair) {
    return {Pellix::IntfId(Kel::String(canonical)), Pellix::IntfId()};
  }
  return {Pellix::IntfId(Kel::String(pair->first)), Pellix::IntfId(Kel::String(pair->second))};
}

std::string KeyCodec<Qos::PolicyMapHwStatusKey>::expected() {
  return "a policy-map hardware key (\"<direction> <policy-map name>\", for example \"directionInput "
         "pm-in\")";
}

std::optional<std::string> KeyCodec<Qos::PolicyMapHwStatusKey>::canonical(std::string_view text) {
  const auto pair = splitFirst(text);
  if (!pair || pair->second.empty()) {
    return std::nullopt;
  }
  const auto direction = detail::canonicalEnum<Qos::PolicyMapDirection>(pair->first);
  if (!direction) {
    return std::nullopt;
  }
  return *direction + ' ' + std::string(pair->second);
}

Qos::PolicyMapHwStatusKey KeyCodec<Qos::PolicyMapHwStatusKey>::key(const std::string& canonical) {
  const auto pair = detail::present(splitFirst(canonical));
  return {static_cast<Kel::U32>(detail::enumFromCanonical<Qos::PolicyMapDirection>(pair.first)),
          Kel::String(pair.second)};
}

}  // namespace QosSnmpHost
