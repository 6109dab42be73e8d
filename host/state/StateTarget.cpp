#include "host/state/StateTarget.h"

#include <stdexcept>
#include <vector>

namespace QosSnmpHost {
namespace {

constexpr const char* kPathForm = "a JSON Pointer (\"/qosStatus/cmapType/mapQos\") or an array of segments";

std::vector<std::string> segmentsOf(const Json& path) {
  std::vector<std::string> segments;
  if (path.is_array()) {
    for (const auto& segment : path) {
      if (!segment.is_string()) {
        throw std::invalid_argument(std::string("\"path\": expected ") + kPathForm + ", got " + path.dump());
      }
      segments.push_back(segment.get<std::string>());
    }
    return segments;
  }
  if (!path.is_string()) {
    throw std::invalid_argument(std::string("\"path\": expected ") + kPathForm + ", got " + path.dump());
  }
  const auto& text = path.get_ref<const std::string&>();
  if (!text.empty() && text.front() != '/') {
    throw std::invalid_argument("\"path\": a JSON Pointer starts with '/', got " + path.dump());
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('/', at + 1), text.size());
    std::string segment;
    for (std::size_t i = at + 1; i < end; ++i) {
      if (text[i] != '~') {
        segment += text[i];
      } else if (i + 1 < end && (text[i + 1] == '0' || text[i + 1] == '1')) {
        segment += text[++i] == '0' ? '~' : '/';
      } else {
        throw std::invalid_argument("\"path\": '~' must be followed by '0' or '1' in " + path.dump());
      }
    }
    segments.push_back(std::move(segment));
    at = end;
  }
  return segments;
}

// `text` followed by the JSON Pointer segment of `key` ("~" as "~0", "/" as
// "~1").
std::string appendSegment(std::string text, std::string_view key) {
  text += '/';
  for (const char c : key) {
    if (c == '~') {
      text += "~0";
    } else if (c == '/') {
      text += "~1";
    } else {
      text += c;
    }
  }
  return text;
}

// Walks a path down the schema and the document, one entity at a time.
class Walk {
 public:
  Walk(std::vector<std::string> segments, const Json& document)
      : segments_(std::move(segments)), document_(document) {}

  StateTarget run() {
    if (segments_.empty()) {
      throw std::invalid_argument(R"("path": the whole document cannot be changed; name a root ()" +
                                  stateSchema().rootList() + ") or something below one");
    }
    const auto* root = stateSchema().root(segments_.front());
    if (root == nullptr) {
      throw SchemaError{
          JsonPointer() / segments_.front(),
          "unknown root \"" + segments_.front() + "\" (expected " + stateSchema().rootList() + ")"};
    }
    standOn(root->type, JsonPointer() / root->name, "", "");
    target_.holderPathText = appendSegment("", root->name);
    holder_ = memberOf(&document_, root->name);
    while (!done()) {
      if (holder_ == nullptr) {
        throw SchemaError{target_.holderPath, "does not exist (so nothing below it can be changed)"};
      }
      const Attr* attr = stepToAttribute();
      if (done()) {
        break;  // the attribute itself
      }
      if (attr->isCollection()) {
        stepToMember(*attr);
      } else {
        stepIntoOwnEntity(*attr);
      }
    }
    return target_;
  }

 private:
  bool done() const { return at_ == segments_.size(); }
  // The member `key` of `object`; null when either is absent.
  static const Json* memberOf(const Json* object, const std::string& key) {
    if (object == nullptr || !object->is_object()) {
      return nullptr;
    }
    const auto it = object->find(key);
    return it == object->end() ? nullptr : &*it;
  }
  const std::string& segment() const { return segments_[at_]; }

  void standOn(const EntityType* type, JsonPointer path, std::string key, std::string ownerKey) {
    target_.holderType = type;
    target_.path = path;
    target_.holderPath = std::move(path);
    target_.holderKey = std::move(key);
    target_.holderOwnerKey = std::move(ownerKey);
    target_.attr = nullptr;
    target_.key.reset();
  }

  // The attribute named by the next segment (a directory's one collection
  // has no segment of its own).
  const Attr* stepToAttribute() {
    const EntityType& type = *target_.holderType;
    if (type.flat) {
      target_.attr = &type.attrs.front();
      target_.attrPath = target_.holderPath;
      attrText_ = target_.holderPathText;
      attrValue_ = holder_;
      return target_.attr;
    }
    target_.attr = type.attr(segment());
    if (target_.attr == nullptr) {
      throw SchemaError{
          target_.holderPath / segment(),
          "unknown attribute \"" + segment() + "\" of " + type.name + " (expected " + type.attrList() + ")"};
    }
    target_.attrPath = target_.holderPath / target_.attr->name;
    target_.path = target_.attrPath;
    attrText_ = appendSegment(target_.holderPathText, target_.attr->name);
    attrValue_ = memberOf(holder_, target_.attr->name);
    ++at_;
    return target_.attr;
  }

  void stepToMember(const Attr& attr) {
    const std::string key = canonicalKey(attr, segment(), target_.attrPath / segment());
    target_.key = key;
    target_.path = target_.attrPath / key;
    if (++at_ == segments_.size()) {
      return;
    }
    if (attr.kind == Attr::Kind::values) {
      throw SchemaError{target_.path / segment(),
                        "a member of \"" + attr.name + "\" is a value: nothing is below it"};
    }
    target_.enclosing.emplace();
    target_.enclosing->attr = &attr;
    target_.enclosing->holderPath = target_.holderPath;
    target_.enclosing->key = key;
    holder_ = memberOf(attrValue_, key);
    standOn(attr.member, target_.path, key, target_.holderKey);
    target_.holderPathText = appendSegment(attrText_, key);
  }

  // Below an entity-valued scalar: the entity it holds as its own.
  void stepIntoOwnEntity(const Attr& attr) {
    if (attr.kind != Attr::Kind::entityOrReference) {
      throw SchemaError{target_.attrPath / segment(),
                        "\"" + attr.name + "\" is a scalar attribute: nothing is below it"};
    }
    const Json* value = attrValue_;
    if (value == nullptr || !value->is_object()) {
      throw SchemaError{target_.attrPath / segment(),
                        "\"" + attr.name + "\" does not hold an entity of its own: nothing is below it"};
    }
    holder_ = value;
    standOn(attr.member, target_.attrPath, value->at("name").get<std::string>(), target_.holderKey);
    target_.holderPathText = attrText_;
  }

  std::vector<std::string> segments_;
  const Json& document_;
  // The values at target_.holderPath and target_.attrPath; null when absent.
  const Json* holder_ = nullptr;
  const Json* attrValue_ = nullptr;
  // The JSON Pointer text of target_.attrPath.
  std::string attrText_;
  std::size_t at_ = 1;
  StateTarget target_;
};

}  // namespace

StateTarget StateTarget::resolve(const Json& path, const Json& document) {
  return Walk(segmentsOf(path), document).run();
}

}  // namespace QosSnmpHost
