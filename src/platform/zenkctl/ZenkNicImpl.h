#pragma once

#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/ZenkNic.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// A kernel network interface over the host store ("/network/zenkNics/<i>", found by name).
//
// The object keeps a view of its node. The view is stale after the object's own changes and whenever the
// store was written since it was taken; every accessor refreshes a stale view first.
class ZenkNicImpl : public HostCtl::Network::ZenkNic {
  public:
    explicit ZenkNicImpl(std::string name, std::shared_ptr<Store::HostStore> store);

    std::string GetName() const override { return _name; }
    bool IsValid() override;

    bool IsStale() const;
    void MarkStale() { _stale = true; }
    // Re-reads the interface from the store; HostCtlException when it no longer exists.
    void Refresh();

    HostCtl::Network::IpConfig GetIpConfig() override;
    HostCtl::Network::IpConfig GetConfiguredIpConfig() override;
    void SetIpConfig(const HostCtl::Network::IpConfig& config) override;

    std::string GetMacAddress() override;
    void SetMacAddress(const std::string& mac) override;
    void SetMacAddressFromPnic(const HostCtl::Network::Pnic& pnic) override;

    bool GetDhcpBound() override;
    void SetDhcpBound(bool bound) override;
    void RenewIpv4Lease() override;
    void RenewIpv6Lease() override;

    void Disable() override;
    void Commit() override;
    void Enable() override;
    bool IsEnabled() override;

    HostCtl::Network::ConnectionPoint GetConnectionPoint() override;
    void ConnectToPortGroup(const std::string& portGroup) override;
    void ConnectToDvPort(const std::string& dvsName, const std::string& portKey) override;

  private:
    const nlohmann::json& Node();
    // Changes the node inside one store update, then reworks the running state when asked.
    void Change(const std::function<void(nlohmann::json& nic, nlohmann::json& document)>& change, bool rerun);

    std::string _name;
    std::shared_ptr<Store::HostStore> _store;
    nlohmann::json _node;
    std::string _generation;
    bool _stale = true;
};

}  // namespace ZenkCtl::Network
