#include "system/SystemLogs.h"

#include <curses.h>

#include "frames/Frame.h"
#include "frames/HostAccess.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/SystemInfo.h"
#include "system/LogPager.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

const std::array<SystemLogs::Log, SystemLogs::kCount>& SystemLogs::Table() {
    static const std::array<Log, kCount> table{{
        {"Syslog", "/var/log/syslog.log"},
        {"ZenKernel", "/var/log/zenkernel.log"},
        {"Config", "/var/log/sysboot.log"},
        {"Management Agent (hagentd)", "/var/log/hagentd.log"},
        {"xCenter Agent (hostagent2)", "/var/log/hostagent2.log"},
        {"High Availibility Agent (haagent)", "/var/log/haagent.log"},
        {"Halvor Qori Observation log (obsd)", "/var/log/obsd.log"},
    }};
    return table;
}

std::optional<int> SystemLogs::RowForDigit(int digit, const Availability& available) {
    if (digit < 0 || digit > 9) return std::nullopt;
    int count = 0;
    for (int row = 0; row < kCount; ++row) {
        if (available[static_cast<std::size_t>(row)]) ++count;
        if (count == digit) return row;
    }
    if (count < kCount) return count;
    return std::nullopt;
}

void SystemLogs::Refresh(const std::function<bool(const std::string& path)>& kept) {
    for (int row = 0; row < kCount; ++row)
        _available[static_cast<std::size_t>(row)] = kept(Table()[static_cast<std::size_t>(row)].path);
}

void SystemLogs::Refresh(HostAccess& host) {
    Refresh([&host](const std::string& path) {
        try {
            return host.SystemInfo()->IsLogKept(path);
        } catch (const HostCtl::Lib::HostCtlException&) {
            return false;  // a host that cannot say offers no log rather than a broken one
        }
    });
}

void SystemLogs::Open(int key, Frame& menu) const {
    if (key < '0' || key > '9') return;
    const auto row = RowForDigit(key - '0', _available);
    if (!row) return;
    Frame::fgFrame = nullptr;
    LogPager().Show(Table()[static_cast<std::size_t>(*row)].path);
    menu.SetActive(false);
    menu.SetActive(true);
    Frame::fgFrame = &menu;
    clearok(curscr, TRUE);
    refresh();
}

std::string SystemLogs::Details(const StringFactory& strings) const {
    std::string text = strings.GetString(StringId::SystemLogsHelp);
    text += "\n";
    int digit = 0;
    for (int row = 0; row < kCount; ++row) {
        if (!_available[static_cast<std::size_t>(row)]) continue;
        text += "\n{color:white}<" + std::to_string(++digit) + ">{/color} " +
                Table()[static_cast<std::size_t>(row)].label;
    }
    return text;
}

}  // namespace Kovo
