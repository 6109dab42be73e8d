#include "host/state/InvariantView.h"

#include <algorithm>

namespace QosSnmpHost {
namespace {

using Json = InvariantView::Json;
using Path = InvariantView::Path;

// The raw key segments of a JSON Pointer ("~1" stands for '/', "~0" for '~').
Path segmentsOf(const nlohmann::json::json_pointer& pointer) {
  Path segments;
  const std::string text = pointer.to_string();
  std::size_t start = 1;
  while (start <= text.size() && !text.empty()) {
    const std::size_t end = std::min(text.find('/', start), text.size());
    std::string segment;
    for (std::size_t i = start; i < end; ++i) {
      if (text[i] == '~' && i + 1 < end) {
        segment += text[i + 1] == '1' ? '/' : '~';
        ++i;
      } else {
        segment += text[i];
      }
    }
    segments.push_back(std::move(segment));
    start = end + 1;
  }
  return segments;
}

// `prefix` is `path` or one of its ancestors.
bool startsWith(const Path& path, const Path& prefix) {
  return prefix.size() <= path.size() && std::equal(prefix.begin(), prefix.end(), path.begin());
}

}  // namespace

InvariantView::InvariantView(const StateTransition& transition)
    : transition_(transition),
      ownPath_(transition.segments == nullptr ? segmentsOf(transition.path) : Path()),
      path_(transition.segments == nullptr ? &ownPath_ : transition.segments) {}

const Json* InvariantView::find(const Json* node, Path::const_iterator from, Path::const_iterator to) {
  for (; node != nullptr && from != to; ++from) {
    if (!node->is_object()) {
      return nullptr;
    }
    const auto member = node->find(*from);
    node = member == node->end() ? nullptr : &*member;
  }
  return node;
}

const Json* InvariantView::after(const Path& at) const {
  return find(&transition_.after, at.begin(), at.end());
}

const Json* InvariantView::before(const Path& at) const {
  if (isBuild()) {
    return nullptr;
  }
  if (covers(at)) {
    const Json* old = transition_.before;
    return old == nullptr || old->is_null()
               ? nullptr
               : find(old, at.begin() + static_cast<std::ptrdiff_t>(path_->size()), at.end());
  }
  return after(at);
}

bool InvariantView::within(const Path& at) const { return startsWith(*path_, at); }

bool InvariantView::covers(const Path& at) const { return startsWith(at, *path_); }

bool InvariantView::changed(const Path& at) const {
  if (isBuild()) {
    return after(at) != nullptr;
  }
  if (!reaches(at)) {
    return false;
  }
  if (!covers(at)) {
    // An ancestor changed exactly when the changed value did.
    return changed(*path_);
  }
  const Json* was = before(at);
  const Json* now = after(at);
  return was == nullptr || now == nullptr ? was != now : *was != *now;
}

std::vector<std::string> InvariantView::changedMembers(const Path& collection) const {
  std::vector<std::string> keys;
  if (!isBuild() && !reaches(collection)) {
    return keys;
  }
  if (!isBuild() && path_->size() > collection.size()) {
    // The change lies in one member.
    Path member = collection;
    member.push_back((*path_)[collection.size()]);
    if (changed(member)) {
      keys.push_back(member.back());
    }
    return keys;
  }
  const Json* was = before(collection);
  const Json* now = after(collection);
  const auto memberOf = [](const Json* object, const std::string& key) -> const Json* {
    if (object == nullptr || !object->is_object()) {
      return nullptr;
    }
    const auto member = object->find(key);
    return member == object->end() ? nullptr : &*member;
  };
  std::vector<std::string> all;
  for (const Json* object : {was, now}) {
    if (object != nullptr && object->is_object()) {
      for (const auto& member : object->items()) {
        all.push_back(member.key());
      }
    }
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  for (const std::string& key : all) {
    const Json* old = memberOf(was, key);
    const Json* fresh = memberOf(now, key);
    if (old == nullptr || fresh == nullptr ? old != fresh : *old != *fresh) {
      keys.push_back(key);
    }
  }
  return keys;
}

std::vector<std::string> InvariantView::addedMembers(const Path& collection) const {
  std::vector<std::string> keys;
  for (std::string& key : changedMembers(collection)) {
    const Path member = join(collection, {key});
    if (before(member) == nullptr && after(member) != nullptr) {
      keys.push_back(std::move(key));
    }
  }
  return keys;
}

std::string InvariantView::pointerText(const Path& at) {
  nlohmann::json::json_pointer pointer;
  for (const std::string& segment : at) {
    pointer /= segment;
  }
  return pointer.to_string();
}

InvariantView::Path InvariantView::join(Path at, std::initializer_list<std::string_view> keys) {
  for (const std::string_view key : keys) {
    at.emplace_back(key);
  }
  return at;
}

bool InvariantView::flagAfter(const Path& at) const {
  const Json* value = after(at);
  return value != nullptr && value->is_boolean() && value->get<bool>();
}

bool InvariantView::flagBefore(const Path& at) const {
  const Json* value = before(at);
  return value != nullptr && value->is_boolean() && value->get<bool>();
}

}  // namespace QosSnmpHost
