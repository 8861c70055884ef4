#pragma once

namespace HostCtl::Resource {

class ResourceInfo {
  public:
    virtual ~ResourceInfo() = default;
    virtual bool HasRunningVirtualMachines() = 0;
};

}  // namespace HostCtl::Resource
