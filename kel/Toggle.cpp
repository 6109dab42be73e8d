#include "kel/Toggle.h"

#include <mutex>
#include <utility>

namespace Kel {
namespace {

struct InstalledStore {
  std::mutex mutex;
  std::shared_ptr<ToggleStore> store;
};

InstalledStore& installedStore() {
  static auto* installed = new InstalledStore;  // never destroyed: read during static teardown
  return *installed;
}

}  // namespace

void toggleStoreIs(std::shared_ptr<ToggleStore> store) {
  InstalledStore& installed = installedStore();
  std::shared_ptr<ToggleStore> previous;
  {
    const std::lock_guard lock(installed.mutex);
    previous = std::exchange(installed.store, std::move(store));
  }
  // `previous` is released here, outside the lock, in case its destructor
  // reaches back into the toggles.
}

std::shared_ptr<ToggleStore> toggleStore() {
  InstalledStore& installed = installedStore();
  const std::lock_guard lock(installed.mutex);
  return installed.store;
}

bool getToggleState(const std::string& name, const std::string& file, bool defaultState) {
  // The store is asked without the lock held: it may read a file.
  const std::shared_ptr<ToggleStore> store = toggleStore();
  if (!store) {
    return defaultState;
  }
  return store->toggleState(name, file).value_or(defaultState);
}

}  // namespace Kel
