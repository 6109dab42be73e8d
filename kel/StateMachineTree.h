// StateMachineTree: a snapshot of the live tree of state machines under a
// root, taken through the machines' MemberLists: for every machine, the key
// its owner holds it under, the type it was made as, and how many rows each
// of its key sets holds.
//
//   const Kel::StateMachineTree tree(*root);
//   tree.root().type;                   // "QosSnmp::RootSm"
//   tree.root().children[0].key;        // "mapQos"
//   tree.rows();                        // the rows of every key set
//
// Children come in member order (see MemberList), a ChildMap's in key order. A
// reactor held in a Child or ChildMap is a node (machine false) only when it
// owns a key set or has a node below it; other reactors are left out.
// Only members of machines built by Kel::make<T>() are seen (see
// MemberList); the tree reads the machines, never changes them.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kel/StateMachine.h"

namespace Kel {

class StateMachineTree {
 public:
  struct KeySetRows {
    std::string label;  // the index type's unqualified name
    std::size_t rows = 0;
  };

  struct Node {
    std::optional<std::string> key;  // none for the root and a single child
    std::string type;
    bool machine = true;
    std::vector<KeySetRows> keySets;  // in member order
    std::vector<Node> children;

    std::size_t ownRows() const;
  };

  explicit StateMachineTree(const StateMachine& root);

  const Node& root() const { return root_; }
  // Machine nodes, the root included (reactor nodes are not counted).
  std::size_t machines() const { return machines_; }
  // The rows of every key set in the tree.
  std::size_t rows() const { return rows_; }
  // The rows of the tree's key sets, summed by label.
  std::map<std::string, std::size_t> rowsByLabel() const;

 private:
  Node nodeOf(const MemberList& members, Node node);

  Node root_;
  std::size_t machines_ = 0;
  std::size_t rows_ = 0;
};

}  // namespace Kel
