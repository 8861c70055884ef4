#include "text/HostPlatform.h"

#include "platform/hostctl/HostCtlException.h"
#include "text/VersionLine.h"

namespace Kovo {

namespace {
const HostCtl::HostFactory* g_platform = nullptr;
}  // namespace

void InstallTextPlatform(const HostCtl::HostFactory* platform) {
    g_platform = platform;
}

const HostCtl::HostFactory& TextPlatform() {
    if (g_platform == nullptr) throw HostCtl::Lib::HostCtlException("No host platform");
    return *g_platform;
}

std::string ReadHostVersionLine() {
    auto identity = TextPlatform().GetSystemIdentity();
    return FormatVersionLine(identity->GetVersionRecord(), identity->GetProductNames().kernel);
}

}  // namespace Kovo
