#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/StoreFaults.h"

// What the simulated host keeps in its store beside the platform's own members: the "simulation" member,
// which a real host's store never has. The console's platform looks at one part of it, the faults (see
// docs/SIMULATED-HOST.md); the rest is for the simulated host's network alone.
namespace KovoSim::Simulation {

inline constexpr const char* kMember = "/simulation";
// Platform operations and host programs made to fail: {"<operation>": "<text>"}.
inline constexpr const char* kFaults = ZenkCtl::StoreFaultSource::kFaults;
// Names the host's DNS server answers, from the scenario: {"name": "address" or ["address", ...]}.
inline constexpr const char* kNames = "/simulation/names";
// More addresses the host's network answers on, from the scenario.
inline constexpr const char* kAnswering = "/simulation/answering";
// Addresses whose DNS port the simulated host holds without ever answering (a hung name server).
inline constexpr const char* kSilentNameServers = "/simulation/silentNameServers";

// The platform's table with the simulation's members.
const std::vector<ZenkCtl::Store::Schema::Node>& Table();
// ZenkCtl::Store::Schema::Check against that table: scenarios and values set from outside a host.
std::vector<std::string> Check(const nlohmann::json& value, const std::string& pointer = "");

}  // namespace KovoSim::Simulation
