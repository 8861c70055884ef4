#include "system/ShutdownConfirmDialog.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 164, kBody = 165;
constexpr const char* kCommand = "poweroff";
}  // namespace

ShutdownConfirmDialog::ShutdownConfirmDialog(Frame* parent, bool keepVms, HostAccess& host)
    : PowerConfirmDialog(parent, keepVms, kTitle, kBody, kCommand, host) {}

}  // namespace Kovo
