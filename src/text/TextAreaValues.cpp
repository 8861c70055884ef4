#include <syslog.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/TextFields.h"
#include "terminal/CommandRunner.h"
#include "text/HostPlatform.h"
#include "text/TextArea.h"

// The host values that markup names as variables. Each reads its source anew on every call; those marked
// as failing with the platform let its exception reach the screen that lays the text out.

namespace Kovo {

namespace {

constexpr int kCapture = 255;
constexpr const char* kSslCertificate = "/etc/halvor/ssl/host.crt";
constexpr const char* kSshKeygen = "/usr/lib/halvor/openssh/bin/ssh-keygen";

struct Captured {
    int status;
    std::string out;
    std::string err;
};

Captured Run(const char* program, const std::vector<std::string>& argv) {
    Captured r;
    r.status = RunCaptured(program, argv, r.out, r.err, kCapture);
    return r;
}

std::string SshFingerprint(const char* keyFile) {
    Captured r = Run(kSshKeygen, {"ssh-keygen", "-l", "-f", keyFile});
    if (r.status != 0) {
        syslog(LOG_INFO, "Error generating SSH Key Fingerprint: %s", r.err.c_str());
        return {};
    }
    // "<bits> <fingerprint> <comment> (<type>)": the second word.
    const std::vector<std::string> words = HostCtl::Words(r.out);
    return words.size() >= 2 ? words[1] : std::string();
}

HostCtl::Util::SysinfoVersionRecord ReadVersionRecord() {
    return TextPlatform().GetSystemIdentity()->GetVersionRecord();
}

std::string Field(const char* text, size_t size) {
    return std::string(text, strnlen(text, size));
}

enum FirmwareComponent { kPlsa = 1, kBmc = 2, kBios = 3, kAssetTag = 4 };

const char* ComponentName(int component) {
    switch (component) {
        case kPlsa:
            return "PLSA";
        case kBmc:
            return "BMC";
        case kBios:
            return "BIOS";
        case kAssetTag:
            return "asset tag";
        default:
            return "unknown";
    }
}

std::string FirmwareString(int component) {
    try {
        const HostCtl::HostFactory& host = TextPlatform();
        auto hardware = host.GetHardwareInfo();
        switch (component) {
            case kPlsa:
                return host.GetStorageInfo()->GetAdapterVersion("zenhba0");
            case kBmc:
                return hardware->GetBmcVersion();
            case kBios: {
                auto bios = hardware->GetBiosInfo();
                char line[256];
                snprintf(line, sizeof line, "%s (%d.%d) %s", bios.version.c_str(), bios.majorRelease,
                         bios.minorRelease, bios.releaseDate.c_str());
                return line;
            }
            case kAssetTag:
                return hardware->GetAssetTag();
            default:
                syslog(LOG_ERR, "Invalid version id: %d requested", component);
                return {};
        }
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Get %s version string failed, err=%s", ComponentName(component), e.what());
        return "N/A";
    }
}

}  // namespace

std::string TextArea::GetIpValue() {
    try {
        auto nic = TextPlatform().GetNetworkInfo()->GetManagementInterface();
        if (!nic) return "0.0.0.0";
        return nic->GetIpConfig().GetIpv4Address().GetStringAddress();
    } catch (const HostCtl::Lib::HostCtlException&) {
        return "0.0.0.0";
    }
}

std::string TextArea::GetSSLThumbprintValue() {
    Captured r =
        Run("/bin/openssl", {"openssl", "x509", "-in", kSslCertificate, "-noout", "-fingerprint", "-sha1"});
    if (r.status != 0) return {};
    char word[256] = {};
    // Newer openssl names the digest in lower case.
    if (sscanf(r.out.c_str(), "SHA1 Fingerprint=%255s", word) != 1 &&
        sscanf(r.out.c_str(), "sha1 Fingerprint=%255s", word) != 1)
        return {};
    return word;
}

std::string TextArea::GetSSHDsaKeyFingerprintValue() {
    return SshFingerprint("/etc/ssh/ssh_host_dsa_key");
}
std::string TextArea::GetSSHRsaKeyFingerprintValue() {
    return SshFingerprint("/etc/ssh/ssh_host_rsa_key");
}

std::string TextArea::GetSerialNumberValue() {
    return TextPlatform().GetHardwareInfo()->GetSerialNumber();
}

std::string TextArea::GetHostnameValue() {
    auto dns = TextPlatform().GetDnsConfig();
    // The dot is written even without a domain: operators know the trailing-dot form.
    return dns->GetHostname() + "." + dns->GetDomain();
}

std::string TextArea::GetQORProduct() {
    try {
        auto record = ReadVersionRecord();
        return Field(record.productName, sizeof record.productName);
    } catch (const HostCtl::Lib::HostCtlException&) {
        return {};
    }
}

std::string TextArea::GetQORVersion() {
    try {
        auto record = ReadVersionRecord();
        const std::string version = Field(record.productVersion, sizeof record.productVersion);
        // A host whose releases carry no build number (a Linux distribution) shows its version alone.
        if (record.buildNumber == 0) return version;
        char build[16];
        snprintf(build, sizeof build, "%05" PRIu32, record.buildNumber);
        return version + " build-" + build;
    } catch (const HostCtl::Lib::HostCtlException&) {
        return {};
    }
}

std::string TextArea::GetSupportStart() {
    return "N/A";
}
std::string TextArea::GetSupportPeriod() {
    return "N/A";
}

std::string FormatMemory(uint64_t totalPages, uint64_t pageSize) {
    constexpr uint64_t kQuarterGiB = 268435456;
    uint64_t total = totalPages * pageSize;
    total = (total + kQuarterGiB - 1) / kQuarterGiB * kQuarterGiB;
    uint64_t unit = 1048576;
    int index = 0;
    for (int i = 0; i < 4 && total >= unit * 1024; ++i) {
        unit *= 1024;
        ++index;
    }
    const uint64_t whole = total / unit;
    const uint64_t rest = total - whole * unit;
    std::string value = std::to_string(whole);
    if (rest != 0) {
        value += '.';
        value += std::to_string(rest * 10 / unit);
    }
    value += ' ';
    value += "MGTP"[index];
    value += 'B';
    return value;
}

std::string TextArea::GetSystemMemory() {
    auto memory = TextPlatform().GetMemoryInfo();
    return FormatMemory(memory->GetTotalPages(), memory->GetPageSize());
}

std::string TextArea::GetServiceTag() {
    try {
        std::string tag = TextPlatform().GetHardwareInfo()->GetServiceTag();
        return tag.empty() ? "N/A" : tag;
    } catch (const HostCtl::Lib::HostCtlException&) {
        return "N/A";
    }
}

std::string TextArea::GetAssetTag() {
    return FirmwareString(kAssetTag);
}
std::string TextArea::GetBIOSVersion() {
    return FirmwareString(kBios);
}
std::string TextArea::GetBMCVersion() {
    return FirmwareString(kBmc);
}
std::string TextArea::GetCPLDVersion() {
    return "N/A";
}
std::string TextArea::GetPLSAVersion() {
    return FirmwareString(kPlsa);
}

}  // namespace Kovo
