#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace HostCtl::Adv {

// One advanced option of the host. Integer options can be read and written; every write reaches the host
// before SetIntValue returns.
class Option {
  public:
    virtual ~Option() = default;
    virtual std::string GetPath() const = 0;
    virtual bool IsInteger() const = 0;
    // Both throw HostCtl::Lib::HostCtlException for an option that is not an integer, a value outside the
    // option's range, or a store that cannot be read or written.
    virtual int64_t GetIntValue() const = 0;
    virtual void SetIntValue(int64_t value) = 0;
    virtual std::string GetStringValue() const = 0;
};

// The host's advanced options by path ("/UserVars/KovoTimeOut").
class AdvancedOption {
  public:
    virtual ~AdvancedOption() = default;
    // nullptr when the host has no such option.
    virtual std::unique_ptr<Option> FindOption(const std::string& path) = 0;
};

}  // namespace HostCtl::Adv
