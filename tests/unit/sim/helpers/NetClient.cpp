// Changes a host's network through the platform, the way the console's network screens do, so that
// tests see the host follow. Runs the actions named on its command line, in order, on the management
// interface:
//   ipv4 static ADDRESS NETMASK GATEWAY | ipv4 dhcp | ipv4 none     ZenkNic.SetIpConfig
//   gateway ADDRESS                                                 RoutingInfo.SetZenKernelDefaultGateway
//   fqdn NAME                                                       DnsConfig.SetFqdn
//   nameservers ADDRESS[,ADDRESS...]                                RemoveNameServers, AddNameServer each
//   search TEXT                                                     DnsConfig.SetSearchDomainsString
//   save                                                            DnsConfig.SaveConfig
//   switch-of PORTGROUP                                             prints
//   VirtualSwitchInfo.GetPortGroupSwitch
// A failing operation prints "failed: MESSAGE" and ends with status 1; a usage error with status 2.
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "platform/hostctl/HostCtlException.h"
#include "platform/zenkctl/StoreFaults.h"

namespace {

using HostCtl::Network::IpAddress;
using HostCtl::Network::Ipv4Address;

[[noreturn]] void Usage(const std::string& why) {
    std::cerr << "sim_net_client: " << why << "\n";
    std::exit(2);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        // The host's platform, chosen as the console chooses it.
        const auto host = ZenkCtl::MakeHalvorPlatform(ZenkCtl::Store::HostStore::System());
        const auto dns = host->GetDnsConfig();
        for (int i = 1; i < argc; ++i) {
            const std::string action = argv[i];
            auto next = [&]() -> std::string {
                if (i + 1 >= argc) Usage(action + " needs an argument");
                return argv[++i];
            };
            if (action == "ipv4") {
                const auto nic = host->GetNetworkInfo()->GetManagementInterface();
                if (!nic) Usage("the host has no management interface");
                auto config = nic->GetConfiguredIpConfig();
                const std::string mode = next();
                if (mode == "static") {
                    config.SetUseDhcp(false);
                    config.SetIpv4Address(Ipv4Address(next()));
                    config.SetIpv4Netmask(Ipv4Address(next()));
                    config.SetIpv4Gateway(Ipv4Address(next()));
                    config.SetDnsFromDhcp(false);
                } else if (mode == "dhcp") {
                    config.SetUseDhcp(true);
                    config.SetDnsFromDhcp(true);
                } else if (mode == "none") {
                    config.SetIpv4UseNone();
                } else {
                    Usage("unknown IPv4 mode " + mode);
                }
                nic->SetIpConfig(config);
            } else if (action == "gateway") {
                host->GetRoutingInfo()->SetZenKernelDefaultGateway(Ipv4Address(next()), false);
            } else if (action == "fqdn") {
                dns->SetFqdn(next(), false, "");
            } else if (action == "nameservers") {
                std::istringstream list(next());
                dns->RemoveNameServers();
                for (std::string server; std::getline(list, server, ',');) {
                    const auto address = IpAddress::Parse(server);
                    if (!address) Usage("not an address: " + server);
                    dns->AddNameServer(*address);
                }
            } else if (action == "search") {
                dns->SetSearchDomainsString(next());
            } else if (action == "save") {
                dns->SaveConfig();
            } else if (action == "switch-of") {
                std::cout << host->GetVirtualSwitchInfo()->GetPortGroupSwitch(next()) << "\n";
            } else {
                Usage("unknown action " + action);
            }
        }
    } catch (const HostCtl::Lib::HostCtlException& e) {
        std::cout << "failed: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
