// SPDX-License-Identifier: Apache-2.0
#include "host/machine/port_tree.h"

#include <map>
#include <utility>

#include "host/machine/names.h"

namespace pciinfo {
namespace {

constexpr std::size_t kLeastAlike = 4;

/// The functions behind each port.
using Behind = std::map<DomainAddress, FunctionList>;

/// Whether the port that a function names can lead to it: it exists, and its bus has a lower
/// number. So no loop is possible, whatever a plug-in claims.
bool HasPort(const MachineModel& machine, const MachineFunction& function) {
  const auto& port = function.parentPort;
  return port && port->domain == function.address.domain &&
         port->address.bus < function.address.address.bus && machine.Find(*port) != nullptr;
}

PortNode MakeNode(const MachineFunction& function, const Behind& behind) {
  PortNode node{{&function}, {}};
  const auto list = behind.find(function.address);
  if (list == behind.end()) return node;
  for (const MachineFunction* inner : list->second) node.behind.push_back(MakeNode(*inner, behind));
  return node;
}

bool AreAlike(const PortNode& left, const PortNode& right) {
  const MachineFunction& one = *left.functions.front();
  const MachineFunction& other = *right.functions.front();
  return left.behind.empty() && right.behind.empty() && one.place == other.place &&
         one.slot == other.slot && ModelText(one) == ModelText(other);
}

void FoldNodes(std::vector<PortNode>& nodes) {
  std::vector<PortNode> folded;
  for (std::size_t start = 0; start < nodes.size();) {
    std::size_t end = start + 1;
    while (end < nodes.size() && AreAlike(nodes[start], nodes[end])) ++end;
    if (end - start < kLeastAlike) end = start + 1;
    PortNode& first = folded.emplace_back(std::move(nodes[start]));
    FoldNodes(first.behind);
    for (std::size_t i = start + 1; i < end; ++i) {
      first.functions.push_back(nodes[i].functions.front());
    }
    start = end;
  }
  nodes = std::move(folded);
}

void PruneNodes(std::vector<PortNode>& nodes,
                const std::function<bool(const MachineFunction& function)>& keeps) {
  std::erase_if(nodes, [&keeps](PortNode& node) {
    PruneNodes(node.behind, keeps);
    return node.behind.empty() && !keeps(*node.functions.front());
  });
}

}  // namespace

std::vector<RootBus> MakePortTree(const MachineModel& machine) {
  Behind behind;
  std::map<std::pair<unsigned, unsigned>, FunctionList> roots;
  for (const MachineFunction& function : machine.functions) {
    if (HasPort(machine, function)) {
      behind[*function.parentPort].push_back(&function);
    } else {
      roots[{function.address.domain, function.address.address.bus}].push_back(&function);
    }
  }
  std::vector<RootBus> tree;
  for (const auto& [place, functions] : roots) {
    RootBus& root = tree.emplace_back(RootBus{place.first, place.second, {}});
    for (const MachineFunction* function : functions) {
      root.nodes.push_back(MakeNode(*function, behind));
    }
  }
  return tree;
}

void FoldAlike(std::vector<RootBus>& tree) {
  for (RootBus& root : tree) FoldNodes(root.nodes);
}

void Prune(std::vector<RootBus>& tree,
           const std::function<bool(const MachineFunction& function)>& keeps) {
  for (RootBus& root : tree) PruneNodes(root.nodes, keeps);
  std::erase_if(tree, [](const RootBus& root) { return root.nodes.empty(); });
}

}  // namespace pciinfo
