#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/NicTeamingPolicy.h"

// Conversions between the network value types and their form in the host store. Every reader throws
// HostCtl::Lib::HostCtlException for a node of the wrong shape, naming the node.
namespace ZenkCtl::Network::Json {

nlohmann::json FromIpConfig(const HostCtl::Network::IpConfig& config);
HostCtl::Network::IpConfig ToIpConfig(const nlohmann::json& node);

nlohmann::json FromTeaming(const HostCtl::Network::NicTeamingPolicy& policy);
HostCtl::Network::NicTeamingPolicy ToTeaming(const nlohmann::json& node);

// Typed field access with a clear error.
std::string Text(const nlohmann::json& node, const char* key, const std::string& fallback = {});
bool Flag(const nlohmann::json& node, const char* key, bool fallback = false);
int64_t Integer(const nlohmann::json& node, const char* key, int64_t fallback = 0);
std::vector<std::string> TextList(const nlohmann::json& node, const char* key);

// The element of an array of objects whose "name" is name, or nullptr.
nlohmann::json* FindNamed(nlohmann::json& array, const std::string& name, const char* key = "name");
const nlohmann::json* FindNamed(const nlohmann::json& array, const std::string& name,
                                const char* key = "name");

// The array or object at pointer inside document, created empty when absent.
nlohmann::json& ArrayAt(nlohmann::json& document, const char* pointer);
nlohmann::json& ObjectAt(nlohmann::json& document, const char* pointer);
// The node at pointer or a null node when absent.
const nlohmann::json& At(const nlohmann::json& document, const char* pointer);

// The management interface's node in a host document: the kernel interface marked "management", else
// the one on the port group "Management Network", else the first; nullptr when there is none. Nodes of
// the wrong type are passed over, so the simulated host can ask any document it is given.
const nlohmann::json* ManagementNic(const nlohmann::json& document);

}  // namespace ZenkCtl::Network::Json
