#pragma once

#include <string>

#include "platform/hostctl/HostFactory.h"

namespace Kovo {

// The platform that the host values of markup and the version line read. Start-up installs the one it
// chose, once, before the first screen draws; it must live as long as the process. Until then a value
// that needs the host fails with HostCtl::Lib::HostCtlException, as an unreachable host would.
void InstallTextPlatform(const HostCtl::HostFactory* platform);
const HostCtl::HostFactory& TextPlatform();

// The host's version line (see FormatVersionLine); HostCtlException when the host cannot report it.
std::string ReadHostVersionLine();

}  // namespace Kovo
