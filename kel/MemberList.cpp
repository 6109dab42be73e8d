#include "kel/MemberList.h"

#include "kel/Assert.h"

namespace Kel {
namespace {

// The innermost object under construction on this thread.
thread_local MemberList::ConstructionFrame* innermostFrame = nullptr;

}  // namespace

MemberList::ConstructionFrame::ConstructionFrame(const void* object, std::size_t size)
    : begin_(static_cast<const std::byte*>(object)), end_(begin_ + size), outer_(innermostFrame) {
  innermostFrame = this;
}

MemberList::ConstructionFrame::~ConstructionFrame() { innermostFrame = outer_; }

MemberList::MemberList() : head_{&head_} {
  ConstructionFrame* frame = innermostFrame;
  if (frame != nullptr && frame->owner_ == nullptr && frame->contains(this)) {
    frame->owner_ = this;
  }
}

MemberList::~MemberList() { KEL_ASSERT(empty()); }

MemberList* MemberList::listAt(const void* address) {
  for (const ConstructionFrame* frame = innermostFrame; frame != nullptr; frame = frame->outer_) {
    if (frame->contains(address)) {
      return frame->owner_;
    }
  }
  return nullptr;
}

void MemberList::append(Member* member) {
  Link* last = &head_;
  while (last->next != &head_) {
    last = last->next;
  }
  last->next = member;
  member->next = &head_;
}

void MemberList::visit(Visitor& visitor) const {
  for (const Link* link = head_.next; link != &head_; link = link->next) {
    static_cast<const Member*>(link)->describe(visitor);
  }
}

// A member on no list links to itself, so that leaving is the same walk.
MemberList::Member::Member() : Link{this} {
  if (MemberList* list = listAt(this)) {
    list->append(this);
  }
}

MemberList::Member::~Member() {
  Link* before = this;
  while (before->next != this) {
    before = before->next;
  }
  before->next = next;
}

}  // namespace Kel
