#include "system/KovoTimeoutDialog.h"

#include <climits>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "platform/hostctl/AdvancedOption.h"
#include "platform/hostctl/HostCtlException.h"
#include "terminal/Session.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

constexpr uint32_t kDefaultSeconds = 600;

}  // namespace

KovoTimeoutDialog::KovoTimeoutDialog(Frame* parent, HostAccess& host)
    : TimeoutDialog(parent,
                    {70, 15, 9, StringId::KovoTimeoutTitle, StringId::KovoTimeoutText, Footer::kOkCancel},
                    host),
      _seconds(ReadSeconds()) {
    AddMinutesField(StringId::KovoTimeoutLabel, _seconds / 60);
}

uint32_t KovoTimeoutDialog::ReadSeconds() {
    try {
        auto option = Host().Options()->FindOption(KOVO_TIMEOUT_VAR);
        if (!option || !option->IsInteger()) return kDefaultSeconds;
        const int64_t value = option->GetIntValue();
        if (value < 0) return kDefaultSeconds;
        return static_cast<uint32_t>(std::min<int64_t>(value, UINT32_MAX));
    } catch (const HostCtl::Lib::HostCtlException&) {
        return kDefaultSeconds;
    }
}

void KovoTimeoutDialog::Apply() {
    const std::optional<uint32_t> minutes = ReadMinutes(0);
    if (!minutes || *minutes * 60 == _seconds) return;
    try {
        auto option = Host().Options()->FindOption(KOVO_TIMEOUT_VAR);
        // A host without the option keeps its fixed time-out.
        if (!option || !option->IsInteger()) return;
        option->SetIntValue(*minutes * 60);
        // This session follows the stored value from the next key on.
        Frame::_idleTimeout = static_cast<uint32_t>(option->GetIntValue());
        _seconds = Frame::_idleTimeout;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to set KOVO timeout: ", e);
        MessageDialog(this, StringId::InvalidTimeoutTitle, e.what()).RunModal();
        return;
    }
    if (*minutes == 0) {
        LogInfo("Disabled Kovo timeout");
    } else {
        LogInfo("Modified Kovo timeout to " + std::to_string(*minutes) + " minutes");
    }
}

}  // namespace Kovo
