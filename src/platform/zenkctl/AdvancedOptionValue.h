#pragma once

#include <memory>
#include <string>

#include "platform/hostctl/AdvancedOption.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Adv {

// An advanced option kept in the host store under "/advancedOptions" + its path, e.g. the option
// "/UserVars/KovoTimeOut" lives at the JSON pointer "/advancedOptions/UserVars/KovoTimeOut" as
// {"type": "integer", "value": 600, "default": 600, "min": 0, "max": 86400}.
class AdvancedOptionValue : public HostCtl::Adv::Option {
  public:
    AdvancedOptionValue(std::string path, std::shared_ptr<Store::HostStore> store);

    std::string GetPath() const override { return _path; }
    bool IsInteger() const override;
    int64_t GetIntValue() const override;
    void SetIntValue(int64_t value) override;
    std::string GetStringValue() const override;

    // The JSON pointer of an option path ("/UserVars/X" -> "/advancedOptions/UserVars/X").
    static std::string PointerOf(const std::string& path);

  private:
    std::string _path;
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Adv
