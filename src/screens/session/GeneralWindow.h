#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/RootWindow.h"
#include "system/MenuFacts.h"
#include "system/SupportPages.h"
#include "system/SystemLogs.h"

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

class LabelItem;

// "System Customization": the menu an operator reaches after logging in. Entries on the left, a
// description of the selected one on the right, the host's version line at the bottom. View System Logs
// and View Support Information act inside the menu (digits open a log; Page Up/Down turn pages).
class GeneralWindow : public RootWindow {
  public:
    // Builds the menu for the host as it is now.
    explicit GeneralWindow(Frame* parent, HostAccess& host);
    // Builds the menu for a host described by `facts`.
    GeneralWindow(Frame* parent, const MenuFacts& facts, HostAccess& host);
    ~GeneralWindow() override;

    // The menu loop; returns 1 when the operator leaves with Esc.
    int HandleKey() override;
    void Notification() override;
    void UpdateDetails() override;

    // Reads the host for the menu: the lockdown queries, the management interface (cached in
    // _mgmtIntf), the network-boot option and the keyboard.
    static MenuFacts ReadHostFacts(HostAccess& host);

    // The host's management interface as last looked up; null when the host has none.
    static std::unique_ptr<HostCtl::Network::ZenkNic> _mgmtIntf;

  protected:
    // Acts on one key; false when the operator leaves the menu.
    bool OnKey(int key);
    // The code of the selected entry.
    unsigned SelectedCode() const;

  private:
    void DrawStatusLine();
    void DrawDetails();
    std::string NetworkDetails() const;
    void Choose(unsigned code);
    void OpenLog(int row);

    HostAccess& _host;
    std::vector<unsigned> _codes;
    std::vector<std::unique_ptr<LabelItem>> _items;
    unsigned _supportPage = 0;
    bool _lockdownEnabled = false;
    SystemLogs _logs;
    SupportPages _support;
};

}  // namespace Kovo
