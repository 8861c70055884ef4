#pragma once

#include <memory>

#include "platform/zenkctl/Host.h"

namespace HostCtl {

class HostFactory {
  public:
    // This host, over its store.
    static std::unique_ptr<Host> GetHost(
        std::shared_ptr<ZenkCtl::Store::HostStore> store = ZenkCtl::Store::HostStore::System()) {
        return std::make_unique<Host>(std::move(store));
    }
};

}  // namespace HostCtl
