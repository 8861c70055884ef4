#include "platform/hostctl/DnsConfig.h"

#include <algorithm>
#include <cctype>

namespace HostCtl::Network {

bool IsValidHostname(const std::string& name) {
    if (name.empty() || name.size() > 63 || name.front() == '-' || name.back() == '-') return false;
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '-'; });
}

bool IsValidDomain(const std::string& domain) {
    if (domain.empty()) return true;
    if (domain.size() > 253) return false;
    size_t start = 0;
    for (;;) {
        const size_t dot = domain.find('.', start);
        if (!IsValidHostname(
                domain.substr(start, dot == std::string::npos ? std::string::npos : dot - start))) {
            return false;
        }
        if (dot == std::string::npos) return true;
        start = dot + 1;
    }
}

std::vector<std::string> SplitNames(const std::string& text) {
    std::vector<std::string> parts;
    std::string current;
    for (char c : text) {
        if (c == ',' || std::isspace(static_cast<unsigned char>(c))) {
            if (!current.empty()) parts.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty()) parts.push_back(current);
    return parts;
}

}  // namespace HostCtl::Network
