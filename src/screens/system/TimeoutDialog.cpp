#include "system/TimeoutDialog.h"

#include <charconv>
#include <string>

#include "frames/MessageDialog.h"
#include "text/InputItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {
// Five digits hold every valid value; a longer number could only wrap around when read.
constexpr int kFieldWidth = 5;
}  // namespace

TimeoutDialog::TimeoutDialog(Frame* parent, const DialogLayout& layout, HostAccess& host)
    : Dialog(parent, layout), _host(host) {}

void TimeoutDialog::AddMinutesField(unsigned labelId, uint32_t minutes) {
    _fields.push_back(&AddField(Strings()->GetString(labelId), std::to_string(minutes), kFieldWidth,
                                FieldKeys::Digits, kFieldWidth));
    ShowItems();
}

std::optional<uint32_t> TimeoutDialog::ReadMinutes(std::size_t index) {
    const std::string& text = Field(index).GetValue();
    if (text.empty()) return std::nullopt;
    uint64_t minutes = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), minutes);
    if (error != std::errc() || end != text.data() + text.size() || minutes > kMaxMinutes) {
        MessageDialog(this, StringId::InvalidTimeoutTitle, StringId::InvalidTimeoutText).RunModal();
        return std::nullopt;
    }
    return static_cast<uint32_t>(minutes);
}

}  // namespace Kovo
