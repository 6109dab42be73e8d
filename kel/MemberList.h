// MemberList: the members an object owns that make up the tree of state
// machines: its Kel::Child and Kel::ChildMap children and its Kel::KeySet row
// records. Every StateMachine has one, and so has every reactor that a Child
// or ChildMap makes; a tool walks them to show the live tree and count the
// rows each machine owns, knowing nothing of the machines' types.
//
//   machine.members().forEachKeySet([](std::string_view label, std::size_t rows) { ... });
//   machine.members().forEachChild([](const Kel::MemberList::ChildView& child) { ... });
//
// How a member finds its list: Kel::make<T>() opens a ConstructionFrame over
// the memory of the object it builds. The object's MemberList claims that
// frame, and every member constructed inside that memory while the object is
// being built enlists with the list of the innermost such frame. A member
// anywhere else (a local, a node of a container, a machine not built by
// make<T>()) belongs to no list and is never shown. A member leaves its list
// when it is destroyed; being a subobject, it always goes before its list.
//
// Cost: a member carries a vtable pointer and one link (16 bytes), a list one
// link (8 bytes). The list is circular and singly linked, in construction
// order (declaration order, for members built with the object); enlisting
// and leaving walk the owner's few members.
//
// Thread rule: a list is used on the thread its owner lives on; frames belong
// to the thread that opens them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kel {

class StateMachine;

class MemberList {
  struct Link {
    Link* next;
  };

 public:
  // A child as its owner holds it.
  struct ChildView {
    std::optional<std::string> key;  // the ChildMap key as printed; none for a Child
    const std::string* type;         // the type it was made as, "QosSnmp::MatchSm"
    const StateMachine* machine;     // null for a reactor child
    const MemberList* members;       // the child's own members
  };

  class Visitor {
   public:
    virtual void onChild(const ChildView& child) = 0;
    // `label`: the index type without its namespace ("ClassMapTableIndex").
    virtual void onKeySet(std::string_view label, std::size_t rows) = 0;

   protected:
    ~Visitor() = default;
  };

  // The base of Child, ChildMap and KeySet. Membership follows the object's
  // address: a copy enlists where it is built, and assignment leaves both
  // memberships as they are.
  class Member : public Link {
   public:
    // A key set reports itself with one onKeySet(); a Child or ChildMap
    // reports each child it holds with onChild(), a ChildMap in key order.
    virtual void describe(Visitor& visitor) const = 0;

   protected:
    Member();
    Member(const Member& /*other*/) : Member() {}
    Member& operator=(const Member& /*other*/) { return *this; }
    // Virtual only so that a Child, ChildMap or KeySet destroyed in place
    // (inside std::optional, say) reads as safe to every compiler; nothing
    // is ever deleted through a Member.
    virtual ~Member();
  };

  // Opened by Kel::make<T>() around the construction of one object, whose
  // memory is [object, object + size).
  class ConstructionFrame {
   public:
    ConstructionFrame(const void* object, std::size_t size);
    ~ConstructionFrame();
    ConstructionFrame(const ConstructionFrame&) = delete;
    ConstructionFrame& operator=(const ConstructionFrame&) = delete;

   private:
    friend class MemberList;
    bool contains(const void* address) const { return address >= begin_ && address < end_; }

    const std::byte* begin_;
    const std::byte* end_;
    MemberList* owner_ = nullptr;
    ConstructionFrame* outer_;
  };

  // Claims the innermost frame when this list lies in its object.
  MemberList();
  // REQUIRES: every member has left.
  ~MemberList();
  MemberList(const MemberList&) = delete;
  MemberList& operator=(const MemberList&) = delete;

  bool empty() const { return head_.next == &head_; }

  // Every member, in construction order, describes itself to `visitor`.
  void visit(Visitor& visitor) const;
  // f(const ChildView&) for every child.
  template <typename F>
  void forEachChild(F&& f) const;
  // f(std::string_view label, std::size_t rows) for every key set.
  template <typename F>
  void forEachKeySet(F&& f) const;

 private:
  // The list of the innermost object under construction whose memory holds
  // `address`, or null.
  static MemberList* listAt(const void* address);
  void append(Member* member);

  Link head_;
};

template <typename F>
void MemberList::forEachChild(F&& f) const {
  struct Adapter final : Visitor {
    explicit Adapter(F& f) : f(f) {}
    void onChild(const ChildView& child) override { f(child); }
    void onKeySet(std::string_view /*label*/, std::size_t /*rows*/) override {}
    F& f;
  } adapter(f);
  visit(adapter);
}

template <typename F>
void MemberList::forEachKeySet(F&& f) const {
  struct Adapter final : Visitor {
    explicit Adapter(F& f) : f(f) {}
    void onChild(const ChildView& /*child*/) override {}
    void onKeySet(std::string_view label, std::size_t rows) override { f(label, rows); }
    F& f;
  } adapter(f);
  visit(adapter);
}

}  // namespace Kel
