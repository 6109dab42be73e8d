// PluginLoader: finds and loads the agent plug-in, and hands back the root
// factory the plug-in registers when it is loaded.
//
// The plug-in registers "QosSnmp::rootSmFactory" with Kel::ModuleRegistry
// from its load-time initialisation; loading it is all it takes. A plug-in
// is never unloaded.
//
// The default plug-in is found relative to the program's own file, so that
// an installed program and a program in its build tree each find their own
// and neither carries the path of the other: first where the install rules
// put it (the program's ../lib/<arch>/qos-snmp-agent/), then where the
// build puts it.
//
//   std::string error;
//   QosSnmp::RootSmFactory* factory = PluginLoader::load(PluginLoader::defaultPath(), error);
#pragma once

#include <string>

#include "QosSnmp/core/RootSm.h"

namespace QosSnmpHost {

class PluginLoader {
 public:
  // The directory of the running program's file (/proc/self/exe); "." when
  // the system does not say.
  static std::string programDir();

  // The installed plug-in next to the program if there is one, else the
  // build tree's; the installed place when neither exists (for the error).
  static std::string defaultPath();

  // The factory, or null with `error` saying why (file missing, not a
  // loadable module, or a module that registers no factory).
  static QosSnmp::RootSmFactory* load(const std::string& path, std::string& error);
};

}  // namespace QosSnmpHost
