#pragma once

#include <string>

namespace ZenkCtl::Store {

class HostStore;

// The simulated host can make a named platform operation fail ("SystemInfo.LoadKeyboardMappings"): a
// text at "/simulation/faults/<operation>" in the store makes the operation throw HostCtlException with
// that text before it changes anything. A real host's store has no such member, so nothing ever fails
// this way there.
void ThrowIfInjected(const HostStore& store, const std::string& operation);

}  // namespace ZenkCtl::Store
