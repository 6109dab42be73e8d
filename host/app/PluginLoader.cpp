#include "host/app/PluginLoader.h"

#include <dlfcn.h>

#include <filesystem>

#include "kel/ModuleRegistry.h"

namespace QosSnmpHost {

namespace {

constexpr const char* kFactoryName = "QosSnmp::rootSmFactory";

}  // namespace

std::string PluginLoader::programDir() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error || !program.has_parent_path() ? std::string(".") : program.parent_path().string();
}

std::string PluginLoader::defaultPath() {
  const std::filesystem::path dir = programDir();
  const std::filesystem::path installed = (dir / QOS_PLUGIN_FROM_PROGRAM_INSTALLED).lexically_normal();
  const std::filesystem::path built = (dir / QOS_PLUGIN_FROM_PROGRAM_BUILT).lexically_normal();
  std::error_code ignored;
  if (!std::filesystem::exists(installed, ignored) && std::filesystem::exists(built, ignored)) {
    return built.string();
  }
  return installed.string();
}

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
