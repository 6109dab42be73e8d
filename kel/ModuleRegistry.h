// Kel::ModuleRegistry: how a loadable module makes itself known to the host.
//
// When the host loads a module, the module's load-time initialisation
// registers its generated type table and its entry points here, under plain
// names; the host then finds them by name, with no symbol lookup of mangled
// names. Modules are never unloaded, so everything registered stays valid
// for the life of the process.
//
// Contract:
//   - A module is registered once. Registering a module name again changes
//     nothing and returns false; the first table stays.
//   - An entry point is registered once under its name, with its function
//     type. Registering a name again changes nothing and returns false.
//   - entryPoint<Fn>() answers only for the type the entry point was
//     registered with; any other Fn gives null. Types are compared by their
//     type_info names, not by type_info identity, which may differ between
//     the host and a module loaded on its own.
//   - Every member may be called from any thread.
//
// In a module, at load time:
//
//   [[maybe_unused]] const bool registered = [] {
//     Kel::ModuleRegistry& registry = Kel::ModuleRegistry::instance();
//     registry.moduleIs({"QosSnmp", {"QosSnmp::Status", "QosSnmp::MatchSm"}});
//     registry.entryPointIs<void(Kel::Ptr<Kel::Entity>)>("QosSnmp::start", &start);
//     return true;
//   }();
//
// In the host, after loading it:
//
//   if (auto* start = registry.entryPoint<void(Kel::Ptr<Kel::Entity>)>("QosSnmp::start")) {
//     start(root);
//   }
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Kel {

// The types one module defines, as its generated code lists them.
struct ModuleTypeTable {
  std::string module;
  std::vector<std::string> types;
};

class ModuleRegistry {
 public:
  // A registry of its own, for tests; the process uses instance().
  ModuleRegistry() = default;
  ModuleRegistry(const ModuleRegistry&) = delete;
  ModuleRegistry& operator=(const ModuleRegistry&) = delete;

  // The process-wide registry. It lives in the kel library, so the host and
  // every module linked against kel share it. Never destroyed.
  static ModuleRegistry& instance();

  // Registers `table` under table.module. False, and no change, when that
  // module is registered already.
  bool moduleIs(ModuleTypeTable table);
  // The table registered for `name`, or null. The table stays valid and
  // unchanged for the registry's life.
  const ModuleTypeTable* module(const std::string& name) const;
  // The registered module names, in byte order.
  std::vector<std::string> modules() const;

  // Registers `fn` under `name` as an entry point of type Fn. False, and no
  // change, when `name` is registered already.
  // REQUIRES: fn is not null.
  template <typename Fn>
  bool entryPointIs(const std::string& name, Fn* fn) {
    static_assert(std::is_function_v<Fn>, "an entry point is a function");
    return addEntryPoint(name, reinterpret_cast<AnyFunction>(fn), typeid(Fn).name());
  }
  // The entry point registered under `name`, or null when there is none or
  // it was registered with a type other than Fn.
  template <typename Fn>
  Fn* entryPoint(const std::string& name) const {
    static_assert(std::is_function_v<Fn>, "an entry point is a function");
    return reinterpret_cast<Fn*>(findEntryPoint(name, typeid(Fn).name()));
  }

 private:
  // Every function pointer converts to this and back unchanged.
  using AnyFunction = void (*)();

  struct EntryPoint {
    AnyFunction function;
    std::string typeName;
  };

  bool addEntryPoint(const std::string& name, AnyFunction function, const char* typeName);
  AnyFunction findEntryPoint(const std::string& name, const char* typeName) const;

  mutable std::mutex mutex_;
  // Node-based, so module() may hand out pointers into it.
  std::map<std::string, ModuleTypeTable, std::less<>> modules_;
  std::map<std::string, EntryPoint, std::less<>> entryPoints_;
};

}  // namespace Kel
