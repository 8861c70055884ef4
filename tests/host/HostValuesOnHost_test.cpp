// The values that markup names, read by the console's own functions inside a simulated host.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "ProbeHost.h"

namespace KovoHostTest {
namespace {

// One host, changed step by step: each value as the host holds it. How a value is shaped (the memory's
// rounding, say) is the unit tests' business; here that it is the host's own that is read.
TEST(HostValuesOnHost, EachValueIsReadFromTheHost) {
    const struct {
        std::vector<std::pair<const char*, const char*>> set;  // changed in the host's store first
        const char* name;
        const char* shown;
    } steps[] = {
        {{}, "ip", "10.20.30.41\n"},
        {{}, "BIOSversion", "1.9.2 (1.9) 06/12/2025\n"},
        {{}, "PLSAversion", "3.0.1\n"},
        {{}, "CPLDversion", "N/A\n"},
        {{{"/hardware/memory", R"({"totalPages": 2097153, "pageSize": 4096})"}}, "memory", "8.2 GB\n"},
        // The build number is zero-filled.
        {{{"/system/version/buildNumber", "7"}, {"/system/version/productVersion", R"("2.4.0")"}},
         "qorversion",
         "2.4.0 build-00007\n"},
        {{}, "qorproduct", "KOVO Host\n"},
        // The host's name always carries its dot.
        {{{"/network/dns/hostname", R"("h1")"}, {"/network/dns/domain", R"("example")"}},
         "hostname",
         "h1.example\n"},
        {{{"/network/dns/domain", R"("")"}}, "hostname", "h1.\n"},
        // The management address is the one the interface runs with.
        {{{"/network/zenkNics/0/ipConfig/ipv4/mode", R"("dhcp")"}, {"/network/dhcpLeases", "{}"}},
         "ip",
         "0.0.0.0\n"},
    };
    ProbeHost host;
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        for (const auto& [pointer, json] : step.set) ASSERT_TRUE(host.Set(pointer, json)) << pointer;
        EXPECT_EQ(host.Probe(std::string("value ") + step.name), step.shown);
    }
}

TEST(HostValuesOnHost, FingerprintsOfTheHostsOwnKeysAndAMissingKeyIsEmptyAndLoggedOnce) {
    ProbeHost host;
    std::string rsa = host.Probe("value ssh-rsa-fingerprint");
    EXPECT_EQ(rsa.rfind("SHA256:", 0), 0u) << rsa;
    std::string ssl = host.Probe("value ssl-thumbprint");
    // Twenty colon-separated hexadecimal pairs.
    EXPECT_EQ(ssl.size(), 60u) << ssl;
    EXPECT_EQ(std::count(ssl.begin(), ssl.end(), ':'), 19) << ssl;

    ASSERT_EQ(host.Exec("rm -f /etc/ssh/ssh_host_rsa_key /etc/ssh/ssh_host_rsa_key.pub"), 0);
    EXPECT_EQ(host.Probe("value ssh-rsa-fingerprint"), "\n");
    auto logged = LinesWith(host.Syslog(), "]: Error generating SSH Key Fingerprint: ");
    ASSERT_EQ(logged.size(), 1u) << host.Syslog();
    EXPECT_NE(logged[0].find(" user.info KOVO["), std::string::npos) << logged[0];
}

}  // namespace
}  // namespace KovoHostTest
