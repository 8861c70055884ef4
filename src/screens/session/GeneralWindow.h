#pragma once

#include <string>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/MenuWindow.h"
#include "system/MenuFacts.h"
#include "system/SupportPages.h"
#include "system/SystemLogs.h"

namespace Kovo {

// "System Customization": the menu an operator reaches after logging in. Entries on the left, a
// description of the selected one on the right, the host's version line at the bottom. View System Logs
// and View Support Information act inside the menu (digits open a log; Page Up/Down turn pages).
// Returns 1 when the operator leaves with Esc.
class GeneralWindow : public MenuWindow {
  public:
    // Builds the menu for the host as it is now.
    explicit GeneralWindow(Frame* parent, HostAccess& host);
    // Builds the menu for a host described by `facts`.
    GeneralWindow(Frame* parent, const MenuFacts& facts, HostAccess& host);

    void Notification() override;

  protected:
    bool OnKey(int key) override;

  private:
    std::vector<Row> Rows() override;
    Row RowFor(const MenuEntry& entry);
    bool Opens() override;
    void DrawStatusLine();
    std::string NetworkDetails() const;

    HostAccess& _host;
    std::vector<MenuEntry> _entries;
    // Whether the last look-up found a management interface; its address is shown only then.
    bool _managementInterface;
    bool _lockdownEnabled;
    unsigned _supportPage = 0;
    SystemLogs _logs;
    SupportPages _support;
};

}  // namespace Kovo
