#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

namespace Kovo {

class Frame;
class HostAccess;
class StringFactory;

// The host logs the menu offers for viewing, and which of them the host has right now. The digit keys
// count only the logs that are there.
class SystemLogs {
  public:
    static constexpr int kCount = 7;
    struct Log {
        const char* label;
        const char* path;
    };
    using Availability = std::array<bool, kCount>;

    static const std::array<Log, kCount>& Table();

    // The row a digit opens, or nothing. Rows are counted as the available ones are met; when the digit
    // names none of them, the row just past the last counted one opens, unless every log was counted.
    // Both quirks are relied on by operators and are kept: with rows 1-3 there, 5 opens row 4; with row 1
    // missing, 0 opens row 1.
    static std::optional<int> RowForDigit(int digit, const Availability& available);

    // Asks the host again which logs it keeps (by their documented paths).
    void Refresh(const std::function<bool(const std::string& path)>& kept);
    // The same, through the host's system information; a host that cannot say offers no log.
    void Refresh(HostAccess& host);
    // A digit key: the log it names in the pager, then `menu` on the screen again.
    void Open(int key, Frame& menu) const;
    void SetAvailable(const Availability& available) { _available = available; }
    const Availability& Available() const { return _available; }

    // The detail-pane text: how to use the keys, then the available logs with the digit of each.
    std::string Details(const StringFactory& strings) const;

  private:
    Availability _available{};
};

}  // namespace Kovo
