#include "session/WelcomeWindow.h"

#include <curses.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "access/LoginAudit.h"
#include "access/LoginDialog.h"
#include "access/LoginDisabledDialog.h"
#include "frames/Log.h"
#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/HardwareInfo.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/SystemIdentity.h"
#include "platform/hostctl/SystemInfo.h"
#include "session/GeneralWindow.h"
#include "system/ShutdownDialog.h"
#include "terminal/Colors.h"
#include "terminal/KeyReader.h"
#include "terminal/KovoTimeout.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

// This build's edition, shown where the host's version line names the release.
constexpr const char* kReleaseInVersionLine = "7.0.0";
constexpr const char* kEditionLabel = "1.0 Tech Preview";
constexpr const char* kTipsLine = "Tips for running this host: https://kovo.example.org/tips";
constexpr const char* kNoAdapter =
    "No compatible network adapter found. Please consult the product's Hardware Compatibility Guide (HCG) "
    "for "
    "a list of supported adapters.";
constexpr const char* kNoAdapterAlert = "No compatible network adapter found.";

// IPv6 address types as the host reports them.
enum Ipv6AddressType { kIpv6Static = 0, kIpv6Autoconf = 7, kIpv6Dhcp = 9 };

std::string Trim(const std::string& text) {
    const char* blanks = " \t\r\n\v\f";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

WelcomeWindow::WelcomeWindow(HostAccess& host)
    : Frame(nullptr, 0, 0, COLS, LINES, kBlack, kWhite), _host(host) {
    Build();
}

std::string WelcomeWindow::MemoryLine(uint64_t totalBytes) {
    uint64_t unit = 1048576;
    int index = 0;
    for (int i = 0; i < 4 && totalBytes >= unit * 1024; ++i) {
        unit *= 1024;
        ++index;
    }
    const float tenths = static_cast<float>(totalBytes) * 10.0f / static_cast<float>(unit);
    // As a stream writes a float: six significant digits, no trailing zeros.
    char line[48];
    std::snprintf(line, sizeof line, "%g %ciB Memory",
                  static_cast<double>(static_cast<float>(static_cast<int64_t>(tenths)) / 10.0f),
                  "MGTP"[index]);
    return line;
}

std::string WelcomeWindow::ProductBlock() const {
    std::string line = Strings()->GetString(StringId::HostVersionLine);
    // A host that cannot tell its version yet shows its line unchanged rather than failing the screen.
    size_t at = line.find(kReleaseInVersionLine);
    if (at != std::string::npos) line.replace(at, strlen(kReleaseInVersionLine), kEditionLabel);
    return line + "\n" + kTipsLine + "\n" + "Note: THIS TECH PREVIEW IS NOT A PRODUCT\n";
}

std::string WelcomeWindow::HardwareLine() const {
    auto hardware = _host.Hardware();
    const std::string vendor = Trim(hardware->GetVendorName());
    const std::string product = Trim(hardware->GetProductName());
    if (product.rfind(vendor, 0) == 0) return product;
    return vendor + " " + product;
}

std::string WelcomeWindow::ProcessorLine() const {
    auto cpu = _host.Cpu();
    const std::string model = Trim(cpu->GetModelName());
    const uint32_t packages = cpu->GetNumCpuPackages();
    if (packages < 2) return model;
    return std::to_string(packages) + " x " + model;
}

std::string WelcomeWindow::AddressText() {
    _dhcpWaiting = false;
    std::string text = Strings()->GetString(StringId::ManageHostHeading);
    const std::string hostname = _host.Dns()->GetHostname();
    if (!hostname.empty() && hostname != "localhost") text += "\nhttps://" + hostname + "/ ";

    auto network = _host.Network();
    auto nic = network->GetManagementInterface();
    if (!nic) return text;
    const HostCtl::Network::IpConfig config = nic->GetIpConfig();
    if (!config.GetIpv4UseNone()) {
        const std::string address = config.GetIpv4Address().GetStringAddress();
        unsigned label = StringId::StaticAddressTag;
        if (config.GetUseDhcp()) {
            _dhcpWaiting = address == "0.0.0.0";
            label = _dhcpWaiting ? StringId::WaitingForDhcp : StringId::DhcpAddressTag;
        }
        text += "\nhttps://" + address + "/ (" + Strings()->GetString(label) + ")";
    }
    if (network->IsZenkIpv6Enabled()) {
        std::vector<std::string> lines;
        for (const auto& net : config.GetIpv6Network()) {
            std::string line = "https://[" + net.GetAddress().GetStringAddress() + "]/ ";
            switch (net.GetIpv6AddressType()) {
                case kIpv6Static:
                    line += std::string("(") + Strings()->GetString(StringId::StaticAddressTag) + ")";
                    break;
                case kIpv6Dhcp:
                    line += std::string("(") + Strings()->GetString(StringId::DhcpAddressTag) + ")";
                    break;
                case kIpv6Autoconf:
                    line += std::string("(") + Strings()->GetString(StringId::AutoconfAddressTag) + ")";
                    break;
                default:
                    break;
            }
            lines.push_back(line + "\n");
        }
        std::sort(lines.begin(), lines.end());
        if (!lines.empty()) text += "\n";
        for (const std::string& line : lines) text += line;
    }
    return text;
}

std::string WelcomeWindow::WarningText() {
    std::string text;
    if (_dhcpWaiting) text = Strings()->GetString(StringId::DhcpFailedWarning);
    bool auditMode = false;
    try {
        auditMode = _host.Identity()->GetBootOptions().auditMode == 1;
    } catch (const HostCtl::Lib::HostCtlException&) {
        // A host that cannot tell its boot options is taken to run normally, as it always has been.
    }
    if (auditMode) {
        if (!text.empty()) text += "\n";
        text += Strings()->GetString(StringId::AuditModeWarning);
    }
    return text;
}

void WelcomeWindow::FillIdentity() {
    // Each area on its own: a host that cannot tell one thing still shows the rest; the reason is logged.
    auto fill = [](TextArea* area, const std::function<std::string()>& text) {
        try {
            area->SetText(text());
        } catch (const HostCtl::Lib::HostCtlException& e) {
            LogFailure("Unable to read the host identity: ", e);
        }
    };
    fill(_product, [this] { return ProductBlock(); });
    fill(_oneRow, [this] { return HardwareLine(); });
    fill(_twoRow, [this] {
        auto memory = _host.Memory();
        return ProcessorLine() + "\n" + MemoryLine(memory->GetTotalPages() * memory->GetPageSize());
    });
    fill(_sevenRow, [this] {
        if (!_host.Network()->GetPnics().empty()) return AddressText();
        _host.SystemInfo()->SetSystemAlert(kNoAdapterAlert);
        return std::string(kNoAdapter);
    });
    fill(_warning, [this] { return WarningText(); });
}

void WelcomeWindow::Build() {
    const PaintBatch oneFrame;
    delete _upper;
    delete _lower;
    Erase();
    const int half = LINES / 2;
    const int areaWidth = COLS - 16;
    _upper = AddChild(0, 0, COLS, half, kDarkGrey, kWhite);
    _lower = AddChild(0, half, COLS, LINES - half, kYellow, kBlack);
    _product = new TextArea(_upper, 8, 3, areaWidth, 3);
    _oneRow = new TextArea(_upper, 8, 7, areaWidth, 1);
    _twoRow = new TextArea(_upper, 8, 9, areaWidth, 2);
    _sevenRow = new TextArea(_lower, 8, 1, areaWidth, 7);
    _warning = new TextArea(_lower, 8, 9, areaWidth, 2, -1, kRed);
    _keyLine = new TextArea(_lower, 0, _lower->Height() - 1, COLS, 1);
    FillIdentity();
    _keyLine->SetText(std::string("<F2> {color:dark-grey}") +
                      Strings()->GetString(StringId::CustomizeSystemKeyHint) +
                      "{/color}{align:right}<F12> {color:dark-grey}" +
                      Strings()->GetString(StringId::ShutDownRestartKeyHint) + "{/color}{/align}");
    Refresh();
}

void WelcomeWindow::Notification() {}

int WelcomeWindow::HandleKey() {
    for (;;) {
        const int key = GetKey(this, false);
        if (key == KEY_F(4) && can_change_color()) {
            bwColor = !bwColor;
            Build();
            continue;
        }
        if (key != KEY_F(2) && key != KEY_F(12)) {
            clearok(curscr, TRUE);
            Build();
            continue;
        }
        RunSession(key == KEY_F(2));
        SetLoggedIn(false);
        // A restart asked for while somebody was logged in happens once the session is over.
        if (Frame::_markForRestart) exit(0);
    }
}

bool WelcomeWindow::LoginAllowed() {
    try {
        return _host.SystemInfo()->IsConsoleLoginAllowed();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        // A host that cannot say keeps its console closed, as one without the permission would.
        LogFailure("Cannot tell whether console logins are allowed: ", e);
        return false;
    }
}

void WelcomeWindow::RunSession(bool customize) {
    try {
        if (!LoginAllowed()) {
            LoginDisabledDialog(this, _host).RunModal();
            return;
        }
        auto login = std::make_unique<LoginDialog>(this, _host);
        if (!login->RunModal()) return;
        if (customize) {
            SetLoggedIn(true);
            // Read anew at each login, so a time-out changed in the last session counts.
            LoadIdleTimeout([this] { return _host.Options(); });
            auto menu = std::make_unique<GeneralWindow>(this, _host);
            menu->RunModal();
            SetLoggedIn(false);
            LogInfo("User " + Frame::_loginName + " logged out");
            AuditLogin("login.disconnect", Frame::_loginName, true, "Session closed");
            Build();
        } else {
            ShutdownDialog(this, _host).RunModal();
            Build();
        }
    } catch (const KovoTimeout&) {
        LogInfo("User " + Frame::_loginName + " logged out due to time out");
        AuditLogin("login.disconnect", Frame::_loginName, true, "Time out");
        SetActive(true);
        clearok(curscr, TRUE);
        Build();
    }
}

}  // namespace Kovo
