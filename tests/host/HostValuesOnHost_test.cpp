// The values that markup names, read by the console's own functions inside a simulated host.
#include <gtest/gtest.h>

#include <algorithm>

#include "ProbeHost.h"

namespace KovoHostTest {
namespace {

// How the size is rounded is the unit tests' business; here that it is the host's pages that are read.
TEST(HostValuesOnHost, MemoryFromTheHostsPages) {
    ProbeHost host;
    ASSERT_TRUE(host.Set("/hardware/memory", R"({"totalPages": 2097153, "pageSize": 4096})"));
    EXPECT_EQ(host.Probe("value memory"), "8.2 GB\n");
}

TEST(HostValuesOnHost, VersionCarriesAZeroFilledBuildNumber) {
    ProbeHost host;
    ASSERT_TRUE(host.Set("/system/version/buildNumber", "7"));
    ASSERT_TRUE(host.Set("/system/version/productVersion", R"("2.4.0")"));
    EXPECT_EQ(host.Probe("value qorversion"), "2.4.0 build-00007\n");
    EXPECT_EQ(host.Probe("value qorproduct"), "KOVO Host\n");
}

TEST(HostValuesOnHost, HostNameAlwaysCarriesItsDot) {
    ProbeHost host;
    ASSERT_TRUE(host.Set("/network/dns/hostname", R"("h1")"));
    ASSERT_TRUE(host.Set("/network/dns/domain", R"("example")"));
    EXPECT_EQ(host.Probe("value hostname"), "h1.example\n");
    ASSERT_TRUE(host.Set("/network/dns/domain", R"("")"));
    EXPECT_EQ(host.Probe("value hostname"), "h1.\n");
}

TEST(HostValuesOnHost, FingerprintsOfTheHostsOwnKeysAndCertificate) {
    ProbeHost host;
    std::string rsa = host.Probe("value ssh-rsa-fingerprint");
    EXPECT_EQ(rsa.rfind("SHA256:", 0), 0u) << rsa;
    std::string ssl = host.Probe("value ssl-thumbprint");
    // Twenty colon-separated hexadecimal pairs.
    EXPECT_EQ(ssl.size(), 60u) << ssl;
    EXPECT_EQ(std::count(ssl.begin(), ssl.end(), ':'), 19) << ssl;
}

TEST(HostValuesOnHost, MissingSshKeyGivesAnEmptyValueAndOneLogLine) {
    ProbeHost host;
    ASSERT_EQ(host.Exec("rm -f /etc/ssh/ssh_host_rsa_key /etc/ssh/ssh_host_rsa_key.pub"), 0);
    EXPECT_EQ(host.Probe("value ssh-rsa-fingerprint"), "\n");
    auto logged = LinesWith(host.Syslog(), "]: Error generating SSH Key Fingerprint: ");
    ASSERT_EQ(logged.size(), 1u) << host.Syslog();
    EXPECT_NE(logged[0].find(" user.info KOVO["), std::string::npos) << logged[0];
}

TEST(HostValuesOnHost, ManagementAddressIsWhatTheInterfaceRunsWith) {
    ProbeHost host;
    EXPECT_EQ(host.Probe("value ip"), "10.20.30.41\n");
    ASSERT_TRUE(host.Set("/network/zenkNics/0/ipConfig/ipv4/mode", R"("dhcp")"));
    ASSERT_TRUE(host.Set("/network/dhcpLeases", R"({})"));
    EXPECT_EQ(host.Probe("value ip"), "0.0.0.0\n");
}

TEST(HostValuesOnHost, FirmwareStrings) {
    ProbeHost host;
    EXPECT_EQ(host.Probe("value BIOSversion"), "1.9.2 (1.9) 06/12/2025\n");
    EXPECT_EQ(host.Probe("value PLSAversion"), "3.0.1\n");
    EXPECT_EQ(host.Probe("value CPLDversion"), "N/A\n");
}

}  // namespace
}  // namespace KovoHostTest
