// PluginLoader: finds and loads the agent plug-in, and hands back the root
// factory the plug-in registers when it is loaded.
//
// The plug-in registers "QosSnmp::rootSmFactory" with Kel::ModuleRegistry
// from its load-time initialisation; loading it is all it takes. A plug-in
// is never unloaded.
//
//   std::string error;
//   QosSnmp::RootSmFactory* factory = PluginLoader::load(PluginLoader::defaultPath(), error);
#pragma once

#include <string>

#include "QosSnmp/core/RootSm.h"

namespace QosSnmpHost {

class PluginLoader {
 public:
  // The module of the build tree the executable was built in.
  static std::string defaultPath();

  // The factory, or null with `error` saying why (file missing, not a
  // loadable module, or a module that registers no factory).
  static QosSnmp::RootSmFactory* load(const std::string& path, std::string& error);
};

}  // namespace QosSnmpHost
