// Small entities and machines for the framework's own tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "kel/Attribute.h"
#include "kel/Collection.h"
#include "kel/Entity.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"
#include "kel/StateMachine.h"
#include "kel/String.h"

namespace KelTest {

// An entity with one scalar and two collections.
class Gadget : public Kel::Entity {
 public:
  struct Color : Kel::ScalarAttribute<1> {};
  struct Part : Kel::CollectionAttribute<2, Kel::String> {};
  struct Port : Kel::CollectionAttribute<3, int> {};

  using Entity::Entity;

  int color() const { return color_.get(); }
  void colorIs(int color) { color_.set(*this, color); }

  const Kel::Collection<Part, Kel::Ptr<Gadget>>& part() const { return part_; }
  Kel::Ptr<const Gadget> part(const Kel::String& name) const { return part_.get(name); }
  void partIs(const Kel::String& name, Kel::Ptr<Gadget> part) { part_.set(*this, name, std::move(part)); }
  bool partDel(const Kel::String& name) { return part_.del(*this, name); }
  void partDelAll() { part_.delAll(*this); }

  const Kel::Collection<Port, bool>& port() const { return port_; }
  void portIs(int port, bool up) { port_.set(*this, port, up); }
  bool portDel(int port) { return port_.del(*this, port); }
  // Notifies a change of `port` without a key, as a broken publisher might.
  void notifyPortWithoutKey() const { notify(Port::id); }

 private:
  Kel::Scalar<Color, int> color_;
  Kel::Collection<Part, Kel::Ptr<Gadget>> part_;
  Kel::Collection<Port, bool> port_;
};

// Records what its reactors deliver, as "name:event" texts.
class Recorder : public Kel::StateMachine {
 public:
  explicit Recorder(std::vector<std::string>* log) : log_(log) {}
  void record(const std::string& event) { log_->push_back(event); }

 private:
  std::vector<std::string>* log_;
};

// A reactor on a Gadget that records every delivery, tagged with its name.
class GadgetReactor
    : public Kel::Notifiee<GadgetReactor, Recorder, const Gadget, Gadget::Color, Gadget::Part, Gadget::Port> {
 public:
  GadgetReactor(Recorder* owner, Kel::Ptr<const Gadget> gadget, std::string tag)
      : Notifiee(owner, std::move(gadget)), tag_(std::move(tag)) {}

  void on(Gadget::Color /*attr*/) { owner().record(tag_ + ":color"); }
  void on(Gadget::Part /*attr*/, const Kel::String& name) {
    owner().record(tag_ + ":part " + name.stringValue());
  }
  void on(Gadget::Port /*attr*/, const int& port) { owner().record(tag_ + ":port " + std::to_string(port)); }

 private:
  std::string tag_;
};

}  // namespace KelTest
