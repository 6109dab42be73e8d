#include "kel/StateMachineTree.h"

#include <typeinfo>
#include <utility>

#include "kel/TypeName.h"

namespace Kel {
namespace {

void addRowsByLabel(const StateMachineTree::Node& node, std::map<std::string, std::size_t>& rows) {
  for (const auto& keySet : node.keySets) {
    rows[keySet.label] += keySet.rows;
  }
  for (const auto& child : node.children) {
    addRowsByLabel(child, rows);
  }
}

}  // namespace

std::size_t StateMachineTree::Node::ownRows() const {
  std::size_t rows = 0;
  for (const auto& keySet : keySets) {
    rows += keySet.rows;
  }
  return rows;
}

StateMachineTree::StateMachineTree(const StateMachine& root) {
  Node node;
  node.type = madeTypeName(typeid(root));
  root_ = nodeOf(root.members(), std::move(node));
}

StateMachineTree::Node StateMachineTree::nodeOf(const MemberList& members, Node node) {
  members.forEachKeySet([&node](std::string_view label, std::size_t rows) {
    node.keySets.push_back({std::string(label), rows});
  });
  members.forEachChild([this, &node](const MemberList::ChildView& view) {
    Node child;
    child.key = view.key;
    child.type = *view.type;
    child.machine = view.machine != nullptr;
    child = nodeOf(*view.members, std::move(child));
    if (child.machine || !child.keySets.empty() || !child.children.empty()) {
      node.children.push_back(std::move(child));
    }
  });
  // A reactor left out by its owner counts nothing: it has no rows and no
  // machine below it.
  if (node.machine) {
    ++machines_;
  }
  rows_ += node.ownRows();
  return node;
}

std::map<std::string, std::size_t> StateMachineTree::rowsByLabel() const {
  std::map<std::string, std::size_t> rows;
  addRowsByLabel(root_, rows);
  return rows;
}

}  // namespace Kel
