#pragma once

#include <string>

#include "frames/HostAccess.h"

namespace HostCtl::Hardware {
class SmartCardInfo;
}

namespace Kovo {

// The user id of the present smart card: the first non-empty id of the first card that carries one;
// empty when no card does or the readers cannot be read.
std::string FindSmartCardUser(HostAccess& host);
std::string FindSmartCardUser(HostCtl::Hardware::SmartCardInfo& cards);

// True when a present smart card carries exactly this user id.
bool HasSmartCardForUser(const std::string& user, HostAccess& host);
bool HasSmartCardForUser(HostCtl::Hardware::SmartCardInfo& cards, const std::string& user);

// Run by the key reader at every host notification. While nobody is logged in it remembers the
// present card's user id for the next login; in a smart-card session whose card is gone it ends the
// process (status 0) so that the console starts afresh.
void CheckSmartCard(HostAccess& host);
// The same decision without ending the process: true when the session must end (already logged).
bool CheckSmartCard(HostCtl::Hardware::SmartCardInfo& cards);

}  // namespace Kovo
