#include "system/RebootConfirmDialog.h"

#include "text/StringIds.h"

namespace Kovo {

namespace {
constexpr const char* kCommand = "reboot";
}  // namespace

RebootConfirmDialog::RebootConfirmDialog(Frame* parent, bool keepVms, HostAccess& host)
    : PowerConfirmDialog(parent, keepVms, StringId::RestartHostTitle, StringId::RestartInProgress, kCommand,
                         host) {}

}  // namespace Kovo
