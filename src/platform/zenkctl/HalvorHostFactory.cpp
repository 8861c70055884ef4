#include "platform/zenkctl/HalvorHostFactory.h"

#include "platform/hostctl/HostsTable.h"
#include "platform/zenkctl/AdvancedOptionImpl.h"
#include "platform/zenkctl/CpuInfoImpl.h"
#include "platform/zenkctl/DVPortImpl.h"
#include "platform/zenkctl/DnsConfigImpl.h"
#include "platform/zenkctl/HardwareInfoImpl.h"
#include "platform/zenkctl/Log.h"
#include "platform/zenkctl/MemoryInfoImpl.h"
#include "platform/zenkctl/NetStack.h"
#include "platform/zenkctl/NetworkInfoImpl.h"
#include "platform/zenkctl/PnicImpl.h"
#include "platform/zenkctl/PortGroupImpl.h"
#include "platform/zenkctl/PortsetImpl.h"
#include "platform/zenkctl/Preference.h"
#include "platform/zenkctl/ResourceInfoImpl.h"
#include "platform/zenkctl/RoutingInfoImpl.h"
#include "platform/zenkctl/SmartCardInfoImpl.h"
#include "platform/zenkctl/StorageInfoImpl.h"
#include "platform/zenkctl/SystemIdentityImpl.h"
#include "platform/zenkctl/SystemInfoImpl.h"
#include "platform/zenkctl/UserAdvancedOptionImpl.h"
#include "platform/zenkctl/VirtualSwitchInfoImpl.h"
#include "platform/zenkctl/ZenKernelNicInfoImpl.h"
#include "platform/zenkctl/ZenkCtlExec.h"

namespace ZenkCtl {

HalvorHostFactory::HalvorHostFactory(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

void HalvorHostFactory::Initialize(const std::string& ident) {
    Preference_Init(*_store);
    const HostCtl::Util::ProductNames names = GetSystemIdentity()->GetProductNames();
    Log_SetProductInfo(names.name.c_str(), names.version.c_str(), names.build.c_str(), names.option.c_str());
    Log_InitWithSyslogSimpleInt(ident.c_str(), Log_CfgInterface(), ident.c_str());
}

std::unique_ptr<HostCtl::Network::NetworkInfo> HalvorHostFactory::GetNetworkInfo() const {
    return std::make_unique<Network::NetworkInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Network::DnsConfig> HalvorHostFactory::GetDnsConfig() const {
    return std::make_unique<Network::DnsConfigImpl>(Network::kDefaultNetStack, _store);
}
std::unique_ptr<HostCtl::Network::RoutingInfo> HalvorHostFactory::GetRoutingInfo() const {
    return std::make_unique<Network::RoutingInfoImpl>(Network::kDefaultNetStack, _store);
}
std::unique_ptr<HostCtl::Network::VirtualSwitchInfo> HalvorHostFactory::GetVirtualSwitchInfo() const {
    return std::make_unique<Network::VirtualSwitchInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Network::Pnic> HalvorHostFactory::GetPnic(const std::string& name) const {
    return std::make_unique<Network::PnicImpl>(name, _store);
}
std::unique_ptr<HostCtl::Network::DVPort> HalvorHostFactory::GetDvPort(const std::string& dvsName,
                                                                       const std::string& portKey) const {
    return std::make_unique<Network::DVPortImpl>(dvsName, portKey, _store);
}
std::unique_ptr<HostCtl::Network::Portset> HalvorHostFactory::GetPortset() const {
    return std::make_unique<Network::PortsetImpl>(_store);
}
std::unique_ptr<HostCtl::Network::PortGroup> HalvorHostFactory::GetPortGroup() const {
    return std::make_unique<Network::PortGroupImpl>(_store);
}
std::unique_ptr<HostCtl::Network::ZenKernelNicInfo> HalvorHostFactory::GetZenKernelNicInfo() const {
    return std::make_unique<Network::ZenKernelNicInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Network::HostsFile> HalvorHostFactory::GetHostsFile() const {
    return std::make_unique<HostCtl::Network::HostsTable>();
}
std::unique_ptr<HostCtl::System::SystemInfo> HalvorHostFactory::GetSystemInfo() const {
    return std::make_unique<System::SystemInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Util::SystemIdentity> HalvorHostFactory::GetSystemIdentity() const {
    return std::make_unique<Util::SystemIdentityImpl>(_store);
}
std::unique_ptr<HostCtl::Hardware::HardwareInfo> HalvorHostFactory::GetHardwareInfo() const {
    return std::make_unique<Hardware::HardwareInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Hardware::StorageInfo> HalvorHostFactory::GetStorageInfo() const {
    return std::make_unique<Hardware::StorageInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Hardware::CpuInfo> HalvorHostFactory::GetCpuInfo() const {
    return std::make_unique<Hardware::CpuInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Hardware::MemoryInfo> HalvorHostFactory::GetMemoryInfo() const {
    return std::make_unique<Hardware::MemoryInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Hardware::SmartCardInfo> HalvorHostFactory::GetSmartCardInfo() const {
    return std::make_unique<Hardware::SmartCardInfoImpl>(_store);
}
std::unique_ptr<HostCtl::Adv::AdvancedOption> HalvorHostFactory::GetAdvancedOptions() const {
    return std::make_unique<Adv::AdvancedOptionImpl>(_store);
}
std::unique_ptr<HostCtl::Adv::AdvancedOption> HalvorHostFactory::GetUserAdvancedOptions() const {
    return std::make_unique<Adv::UserAdvancedOptionImpl>(_store);
}
std::unique_ptr<HostCtl::Resource::ResourceInfo> HalvorHostFactory::GetResourceInfo() const {
    return std::make_unique<Resource::ResourceInfoImpl>(_store);
}

HostCtl::Program HalvorHostFactory::HalvorPrograms::Resolve(const HostCtl::Program& documented) const {
    return documented;
}

const HostCtl::HostPrograms& HalvorHostFactory::Programs() const {
    return _programs;
}

int HalvorHostFactory::Exec(const std::string& commandLine) const {
    return Util::ZenkCtl_Exec(commandLine, false, true);
}

}  // namespace ZenkCtl
