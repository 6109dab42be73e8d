// Test support for the QoS input model: a printer helper and a state machine
// that its tests' reactors record deliveries into, as texts.
//
//   class StatusReactor : public Kel::Notifiee<StatusReactor, QosInputTest::Recorder,
//                                              const Qos::Status, Qos::Status::CmapType> {
//    public:
//     using Notifiee::Notifiee;
//     void on(Qos::Status::CmapType, const Qos::MapType& t) { owner().record("cmapType", t); }
//   };
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "kel/StateMachine.h"

namespace QosInputTest {

using Texts = std::vector<std::string>;

// `value` as its operator<< prints it.
template <typename T>
std::string printed(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// Keeps "<attribute>" for a scalar delivery and "<attribute> <key>" for a
// collection delivery, in order.
class Recorder : public Kel::StateMachine {
 public:
  void record(const std::string& attribute) { log_.push_back(attribute); }
  template <typename K>
  void record(const std::string& attribute, const K& key) {
    log_.push_back(attribute + " " + printed(key));
  }

  const Texts& log() const { return log_; }
  void clear() { log_.clear(); }

 private:
  Texts log_;
};

}  // namespace QosInputTest
