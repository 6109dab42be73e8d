#include "host/state/StateTarget.h"

#include <optional>
#include <stdexcept>
#include <vector>

namespace QosSnmpHost {
namespace {

// Walks a path down the schema and the document, one entity at a time. The
// canonical segments grow as it goes; the target's pointers are made from
// them once, at the end (and an error's pointer when one is thrown).
class Walk {
 public:
  Walk(std::vector<std::string> raw, const Json& document) : raw_(std::move(raw)), document_(document) {}

  StateTarget run() {
    if (raw_.empty()) {
      throw std::invalid_argument(R"("path": the whole document cannot be changed; name a root ()" +
                                  stateSchema().rootList() + ") or something below one");
    }
    target_.root = stateSchema().root(raw_.front());
    if (target_.root == nullptr) {
      throw SchemaError{JsonPointer() / raw_.front(),
                        "unknown root \"" + raw_.front() + "\" (expected " + stateSchema().rootList() + ")"};
    }
    segments().push_back(target_.root->name);
    standOn(target_.root->type, "", "");
    target_.holderPathText = pointerAppend("", target_.root->name);
    holder_ = memberOf(&document_, target_.root->name);
    while (!done()) {
      if (holder_ == nullptr) {
        throw SchemaError{pointer(holderDepth_), "does not exist (so nothing below it can be changed)"};
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
    return finish();
  }

 private:
  bool done() const { return at_ == raw_.size(); }
  // The member `key` of `object`; null when either is absent.
  static const Json* memberOf(const Json* object, const std::string& key) {
    if (object == nullptr || !object->is_object()) {
      return nullptr;
    }
    const auto it = object->find(key);
    return it == object->end() ? nullptr : &*it;
  }
  const std::string& segment() const { return raw_[at_]; }
  std::vector<std::string>& segments() { return target_.segments; }
  // The pointer of the first `depth` canonical segments.
  JsonPointer pointer(std::size_t depth) const {
    JsonPointer made;
    for (std::size_t i = 0; i < depth; ++i) {
      made.push_back(target_.segments[i]);
    }
    return made;
  }
  // The pointer of the canonical segments so far, then the raw segment at hand.
  JsonPointer pointerToSegment() const { return pointer(target_.segments.size()) / segment(); }

  // Stands on the entity whose path is the canonical segments so far.
  void standOn(const EntityType* type, std::string key, std::string ownerKey) {
    target_.holderType = type;
    holderDepth_ = target_.segments.size();
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
      attrDepth_ = holderDepth_;
      attrText_ = target_.holderPathText;
      attrValue_ = holder_;
      return target_.attr;
    }
    target_.attr = type.attr(segment());
    if (target_.attr == nullptr) {
      throw SchemaError{pointerToSegment(), "unknown attribute \"" + segment() + "\" of " + type.name +
                                                " (expected " + type.attrList() + ")"};
    }
    segments().push_back(target_.attr->name);
    attrDepth_ = holderDepth_ + 1;
    attrText_ = pointerAppend(target_.holderPathText, target_.attr->name);
    attrValue_ = memberOf(holder_, target_.attr->name);
    ++at_;
    return target_.attr;
  }

  void stepToMember(const Attr& attr) {
    // The error's pointer is made only for a key that does not fit.
    std::optional<std::string> canonical = attr.keyCanonical(segment());
    std::string key = canonical ? std::move(*canonical) : canonicalKey(attr, segment(), pointerToSegment());
    segments().push_back(key);
    target_.key = key;
    if (++at_ == raw_.size()) {
      return;
    }
    if (attr.kind == Attr::Kind::values) {
      throw SchemaError{pointerToSegment(),
                        "a member of \"" + attr.name + "\" is a value: nothing is below it"};
    }
    target_.enclosing.emplace();
    target_.enclosing->attr = &attr;
    target_.enclosing->holderPathText = target_.holderPathText;
    target_.enclosing->key = key;
    holder_ = memberOf(attrValue_, key);
    target_.holderPathText = pointerAppend(attrText_, key);
    standOn(attr.member, std::move(key), target_.holderKey);
  }

  // Below an entity-valued scalar: the entity it holds as its own.
  void stepIntoOwnEntity(const Attr& attr) {
    if (attr.kind != Attr::Kind::entityOrReference) {
      throw SchemaError{pointerToSegment(),
                        "\"" + attr.name + "\" is a scalar attribute: nothing is below it"};
    }
    const Json* value = attrValue_;
    if (value == nullptr || !value->is_object()) {
      throw SchemaError{pointerToSegment(),
                        "\"" + attr.name + "\" does not hold an entity of its own: nothing is below it"};
    }
    holder_ = value;
    target_.holderPathText = attrText_;
    standOn(attr.member, value->at("name").get<std::string>(), target_.holderKey);
  }

  StateTarget finish() {
    target_.path = pointer(target_.segments.size());
    target_.holderPath = pointer(holderDepth_);
    if (target_.attr == nullptr) {
      target_.pathText = target_.holderPathText;
      target_.place = holder_;
      return std::move(target_);
    }
    target_.attrPath = pointer(attrDepth_);
    target_.attrPathText = attrText_;
    target_.pathText = target_.key ? pointerAppend(attrText_, *target_.key) : attrText_;
    target_.place = attrValue_;
    return std::move(target_);
  }

  std::vector<std::string> raw_;
  const Json& document_;
  // The values at the holder's and the attribute's paths; null when absent.
  const Json* holder_ = nullptr;
  const Json* attrValue_ = nullptr;
  // How many canonical segments the holder's and the attribute's paths have.
  std::size_t holderDepth_ = 0;
  std::size_t attrDepth_ = 0;
  // The JSON Pointer text of the attribute's path.
  std::string attrText_;
  std::size_t at_ = 1;
  StateTarget target_;
};

}  // namespace

StateTarget StateTarget::resolve(std::vector<std::string> segments, const Json& document) {
  return Walk(std::move(segments), document).run();
}

}  // namespace QosSnmpHost
