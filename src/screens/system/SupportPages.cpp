#include "system/SupportPages.h"

#include <curses.h>

#include "frames/Log.h"
#include "platform/hostctl/HostCtlException.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

SupportPages::SupportPages()
    : SupportPages({
          {
              {"Serial Number", &TextArea::GetSerialNumberValue},
              {"Service Tag", &TextArea::GetServiceTag},
              {"Asset Tag", &TextArea::GetAssetTag},
              {"Support Start", &TextArea::GetSupportStart},
              {"Support Period", &TextArea::GetSupportPeriod},
          },
          {
              {"SSL Thumbprint (SHA1)", &TextArea::GetSSLThumbprintValue},
              {"SSH DSA Key Fingerprint", &TextArea::GetSSHDsaKeyFingerprintValue},
              {"SSH RSA Key Fingerprint", &TextArea::GetSSHRsaKeyFingerprintValue},
          },
          {
              {"BIOS Version", &TextArea::GetBIOSVersion},
              {"BMC Version", &TextArea::GetBMCVersion},
              {"CPLD Version", &TextArea::GetCPLDVersion},
              {"PLSA Version", &TextArea::GetPLSAVersion},
          },
      }) {}

SupportPages::SupportPages(std::vector<Page> pages) : _pages(std::move(pages)) {}

std::string SupportPages::Compose(unsigned index, const StringFactory& strings) const {
    if (index >= _pages.size()) return {};
    std::string text;
    for (const Value& value : _pages[index]) {
        std::string shown;
        try {
            shown = value.read();
        } catch (const HostCtl::Lib::HostCtlException& e) {
            // One value the host cannot give must not take the rest of the page with it.
            LogFailure("Unable to read " + value.label + ": ", e);
        }
        if (shown.empty()) shown = strings.GetString(StringId::Unknown);
        if (!text.empty()) text += "\n\n";
        text += "{color:white}" + value.label + ":{/color}\n  " + shown;
    }
    return text;
}

std::string SupportPages::Footer(unsigned index) const {
    return "{color:light-grey}<Page Up/Down>{/color} Page " + std::to_string(index + 1) + " of " +
           std::to_string(_pages.size());
}

bool SupportPages::Turn(unsigned& index, int key) const {
    if (key == KEY_NPAGE && index + 1 < Count()) {
        ++index;
        return true;
    }
    if (key == KEY_PPAGE && index > 0) {
        --index;
        return true;
    }
    return false;
}

}  // namespace Kovo
