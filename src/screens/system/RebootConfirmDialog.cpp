#include "system/RebootConfirmDialog.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 168, kBody = 169;
constexpr const char* kCommand = "reboot";
}  // namespace

RebootConfirmDialog::RebootConfirmDialog(Frame* parent, bool keepVms, HostAccess& host)
    : PowerConfirmDialog(parent, keepVms, kTitle, kBody, kCommand, host) {}

}  // namespace Kovo
