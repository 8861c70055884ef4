#include "platform/linux/HostNames.h"

#include <system_error>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/WholeFile.h"
#include "platform/linux/Bus.h"

namespace LinuxHost {

namespace {
constexpr const char* kService = "org.freedesktop.hostname1";
constexpr const char* kPath = "/org/freedesktop/hostname1";
constexpr const char* kHosts = "/etc/hosts";
}  // namespace

HostNames::HostNames(HostFiles files) : _files(std::move(files)) {}

std::string HostNames::Static() {
    return Bus::System().Property(kService, kPath, kService, "StaticHostname").get<std::string>();
}

void HostNames::Set(const std::string& name) {
    Bus bus = Bus::System();
    // Not interactive: nobody is asked for a password on the console's behalf.
    bus.Call(kService, kPath, kService, "SetStaticHostname", "sb", Bus::Value::array({name, false}));
    bus.Call(kService, kPath, kService, "SetHostname", "sb", Bus::Value::array({name, false}));
}

std::string HostNames::HostsText() const {
    return _files.Read(kHosts).value_or("");
}

void HostNames::SetHostsText(const std::string& text) const {
    try {
        HostCtl::WriteWholeFile(_files.Under(kHosts).string(), text);
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
}

}  // namespace LinuxHost
