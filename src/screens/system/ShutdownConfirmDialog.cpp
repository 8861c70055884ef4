#include "system/ShutdownConfirmDialog.h"

#include "text/StringIds.h"

namespace Kovo {

namespace {
constexpr const char* kCommand = "poweroff";
}  // namespace

ShutdownConfirmDialog::ShutdownConfirmDialog(Frame* parent, bool keepVms, HostAccess& host)
    : PowerConfirmDialog(parent, keepVms, StringId::ShutDownHostTitle, StringId::ShutdownInProgress, kCommand,
                         host) {}

}  // namespace Kovo
