#include "host/tree/MachineTree.h"

#include <ostream>
#include <sstream>

namespace QosSnmpHost {
namespace {

using Node = Kel::StateMachineTree::Node;

// "[key] type (reactor)", without the rows.
std::string heading(const Node& node) {
  std::string text;
  if (node.key) {
    text += '[' + *node.key + "] ";
  }
  text += node.type;
  if (!node.machine) {
    text += " (reactor)";
  }
  return text;
}

// "Label n, Label m", or empty without key sets.
std::string keySetRows(const Node& node) {
  std::string text;
  for (const auto& keySet : node.keySets) {
    if (!text.empty()) {
      text += ", ";
    }
    text += keySet.label + ' ' + std::to_string(keySet.rows);
  }
  return text;
}

std::string totals(const Kel::StateMachineTree& tree) {
  return "machines " + std::to_string(tree.machines()) + ", rows " + std::to_string(tree.rows());
}

void writeText(std::ostream& out, const Node& node, std::size_t depth) {
  out << std::string(2 * depth, ' ') << heading(node);
  if (!node.keySets.empty()) {
    out << "  rows: " << keySetRows(node);
  }
  out << '\n';
  for (const Node& child : node.children) {
    writeText(out, child, depth + 1);
  }
}

// `text` as the inside of a quoted dot string: quotes and backslashes
// escaped, line breaks as dot's "\n".
std::string dotEscaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      escaped += '\\';
      escaped += c;
    } else if (c == '\n' || c == '\r') {
      escaped += "\\n";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

// Writes `node` as n<next> and its subtree after it; returns its id.
std::size_t writeDot(std::ostream& out, const Node& node, std::size_t& next) {
  const std::size_t id = next++;
  std::string label = heading(node);
  if (!node.keySets.empty()) {
    label += "\nrows: " + keySetRows(node);
  }
  out << "  n" << id << " [label=\"" << dotEscaped(label) << '"' << (node.machine ? "" : ", style=dashed")
      << "];\n";
  for (const Node& child : node.children) {
    const std::size_t childId = writeDot(out, child, next);
    out << "  n" << id << " -> n" << childId << ";\n";
  }
  return id;
}

}  // namespace

std::string MachineTree::text() const {
  std::ostringstream out;
  writeText(out, tree_.root(), 0);
  out << totals(tree_) << '\n';
  return out.str();
}

std::string MachineTree::dot() const {
  std::ostringstream out;
  out << "digraph machines {\n";
  out << "  label=\"" << dotEscaped(totals(tree_)) << "\";\n";
  out << "  node [shape=box];\n";
  std::size_t next = 0;
  writeDot(out, tree_.root(), next);
  out << "}\n";
  return out.str();
}

}  // namespace QosSnmpHost
