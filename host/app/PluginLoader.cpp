#include "host/app/PluginLoader.h"

#include <dlfcn.h>

#include <filesystem>

#include "kel/ModuleRegistry.h"

namespace QosSnmpHost {

namespace {

constexpr const char* kFactoryName = "QosSnmp::rootSmFactory";

}  // namespace

std::string PluginLoader::defaultPath() { return QOS_SNMP_AGENT_BUILT_MODULE; }

QosSnmp::RootSmFactory* PluginLoader::load(const std::string& path, std::string& error) {
  std::error_code missing;
  if (!std::filesystem::exists(path, missing)) {
    error = "plug-in " + path + ": no such file";
    return nullptr;
  }
  if (::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
    const char* reason = ::dlerror();
    error = "plug-in " + path + ": " + (reason != nullptr ? reason : "cannot be loaded");
    return nullptr;
  }
  auto* factory = Kel::ModuleRegistry::instance().entryPoint<QosSnmp::RootSmFactory>(kFactoryName);
  if (factory == nullptr) {
    error = "plug-in " + path + ": registers no " + kFactoryName;
  }
  return factory;
}

}  // namespace QosSnmpHost
