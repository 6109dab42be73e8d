#include "kel/ModuleRegistry.h"

#include <utility>

#include "kel/Assert.h"

namespace Kel {

ModuleRegistry& ModuleRegistry::instance() {
  static auto* registry = new ModuleRegistry;  // never destroyed: modules outlive static teardown
  return *registry;
}

bool ModuleRegistry::moduleIs(ModuleTypeTable table) {
  const std::lock_guard lock(mutex_);
  const auto [slot, added] = modules_.try_emplace(table.module);
  if (added) {
    slot->second = std::move(table);
  }
  return added;
}

const ModuleTypeTable* ModuleRegistry::module(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const auto found = modules_.find(name);
  return found == modules_.end() ? nullptr : &found->second;
}

std::vector<std::string> ModuleRegistry::modules() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  names.reserve(modules_.size());
  for (const auto& [name, table] : modules_) {
    names.push_back(name);
  }
  return names;
}

bool ModuleRegistry::addEntryPoint(const std::string& name, AnyFunction function, const char* typeName) {
  KEL_ASSERT(function != nullptr);
  const std::lock_guard lock(mutex_);
  return entryPoints_.try_emplace(name, EntryPoint{function, typeName}).second;
}

ModuleRegistry::AnyFunction ModuleRegistry::findEntryPoint(const std::string& name,
                                                           const char* typeName) const {
  const std::lock_guard lock(mutex_);
  const auto found = entryPoints_.find(name);
  if (found == entryPoints_.end() || found->second.typeName != typeName) {
    return nullptr;
  }
  return found->second.function;
}

}  // namespace Kel
