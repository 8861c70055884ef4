#include "access/SmartCardLogin.h"

#include <cstdlib>
#include <functional>

#include "frames/Frame.h"
#include "frames/Log.h"
#include "platform/hostctl/HardwareInfo.h"
#include "platform/hostctl/HostCtlException.h"

namespace Kovo {

namespace {

// Calls `visit` with each user id of each present card, in slot order, until it returns true.
// A failing reader counts as no card at all.
bool VisitUserIds(HostCtl::Hardware::SmartCardInfo& cards,
                  const std::function<bool(const std::string&)>& visit) {
    try {
        for (const auto& slot : cards.GetAllSlots()) {
            HostCtl::Hardware::SmartCardToken token;
            if (!cards.GetToken(slot, token)) continue;
            for (const std::string& id : token.userIds)
                if (visit(id)) return true;
        }
    } catch (const HostCtl::Lib::HostCtlException&) {
        LogError("Error trying to lookup smart card tokens.");
    }
    return false;
}

}  // namespace

std::string FindSmartCardUser(HostCtl::Hardware::SmartCardInfo& cards) {
    std::string found;
    VisitUserIds(cards, [&](const std::string& id) {
        found = id;
        return !id.empty();
    });
    return found;
}

bool HasSmartCardForUser(HostCtl::Hardware::SmartCardInfo& cards, const std::string& user) {
    return VisitUserIds(cards, [&](const std::string& id) { return id == user; });
}

bool CheckSmartCard(HostCtl::Hardware::SmartCardInfo& cards) {
    if (!Frame::_loggedIn) {
        Frame::_smartCardLoginId = FindSmartCardUser(cards);
        if (!Frame::_smartCardLoginId.empty())
            LogInfo("Found smart card with user id '" + Frame::_smartCardLoginId + "'");
        return false;
    }
    if (Frame::_isLoggedWithSmartCard && !HasSmartCardForUser(cards, Frame::_loginName)) {
        LogInfo("Logging out user id '" + Frame::_loginName + "'");
        return true;
    }
    return false;
}

std::string FindSmartCardUser(HostAccess& host) {
    return FindSmartCardUser(*host.SmartCards());
}

bool HasSmartCardForUser(const std::string& user, HostAccess& host) {
    return HasSmartCardForUser(*host.SmartCards(), user);
}

void CheckSmartCard(HostAccess& host) {
    if (CheckSmartCard(*host.SmartCards())) exit(0);
}

}  // namespace Kovo
