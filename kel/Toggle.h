// Feature toggles: a named switch with a built-in default that the
// installed ToggleStore may override.
//
// The process has at most one store, installed with toggleStoreIs() (a null
// store removes it). getToggleState() asks it for the toggle's configured
// state and falls back to `defaultState` when there is no store or the store
// has no answer (file missing, toggle absent, file unreadable). Nothing is
// cached here: every call asks the store, so a caller that reads a toggle
// on a hot path reads it once and keeps the value. Both functions may be
// called from any thread.
//
//   Kel::toggleStoreIs(std::make_shared<Kel::JsonToggleStore>(""));
//   const bool ecn = Kel::getToggleState("QosEcnStats", "qos", false);
#pragma once

#include <memory>
#include <string>

#include "kel/ToggleStore.h"

namespace Kel {

bool getToggleState(const std::string& name, const std::string& file, bool defaultState);

void toggleStoreIs(std::shared_ptr<ToggleStore> store);
// The installed store, or null.
std::shared_ptr<ToggleStore> toggleStore();

}  // namespace Kel
