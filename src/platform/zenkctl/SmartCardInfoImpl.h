#pragma once

#include <memory>
#include <vector>

#include "platform/hostctl/HardwareInfo.h"
#include "platform/hostctl/SmartCardSlot.h"
#include "platform/hostctl/SmartCardToken.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Hardware {

// Smart-card readers ("/hardware/smartCards/slots": [{id, description, token: null or
// {label, serialNumber, userIds}}]).
class SmartCardInfoImpl : public HostCtl::Hardware::SmartCardInfo {
  public:
    explicit SmartCardInfoImpl(std::shared_ptr<Store::HostStore> store);
    std::vector<HostCtl::Hardware::SmartCardSlot> GetAllSlots() override;
    // True when the slot holds a card, which fills token; HostCtlException for an unknown slot.
    bool GetToken(const HostCtl::Hardware::SmartCardSlot& slot,
                  HostCtl::Hardware::SmartCardToken& token) override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Hardware
