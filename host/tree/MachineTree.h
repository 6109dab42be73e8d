// MachineTree: the live tree of the agent's state machines under its root,
// rendered for an operator: every machine with the key its owner holds it
// under, its type, and the rows each of its key sets holds. It reads the
// machines through the framework's introspection (Kel::StateMachineTree),
// so it knows the root only as a Kel::StateMachine.
//
//   const QosSnmpHost::MachineTree tree(*root);
//   std::cout << tree.text();   // or tree.dot()
//
// text(): one line per machine, children in member order (a keyed member's
// children in key order), indented two spaces per level:
//
//   QosSnmp::RootSm
//     [mapQos] QosSnmp::ClassMapTableSm
//       [cm-voice] QosSnmp::MatchSm  rows: ClassMapMatchTableIndex 2
//   machines 3, rows 2
//
// A reactor that owns rows (or a machine below it) shows " (reactor)" after
// its type. The last line counts the machines and the rows of every key
// set. Rows a machine keeps otherwise than in a key set are not counted.
//
// dot(): the same tree as a Graphviz digraph, one node per line of text()
// (labels quoted and escaped), an edge from each owner to each child, and
// the totals as the graph's label.
//
// The tree is a snapshot taken on construction, on the thread the machines
// live on; rendering it later touches no machine.
#pragma once

#include <cstddef>
#include <string>

#include "kel/StateMachine.h"
#include "kel/StateMachineTree.h"

namespace QosSnmpHost {

class MachineTree {
 public:
  explicit MachineTree(const Kel::StateMachine& root) : tree_(root) {}

  std::string text() const;
  std::string dot() const;

  std::size_t machines() const { return tree_.machines(); }
  // The rows of every key set in the tree.
  std::size_t rows() const { return tree_.rows(); }
  const Kel::StateMachineTree& tree() const { return tree_; }

 private:
  Kel::StateMachineTree tree_;
};

}  // namespace QosSnmpHost
