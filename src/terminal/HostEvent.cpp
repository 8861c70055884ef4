#include "terminal/HostEvent.h"

#include "platform/events/ObsUserLib.h"
#include "terminal/CommandRunner.h"

namespace Kovo {

std::string HostEvent::Text(const std::string& id, const std::string& message) {
    return "@&!*@*@(" + id + ")" + message;
}

bool HostEvent::Post(const std::string& text) {
    // InitEvents logs the attempt and, on failure, the library's error code.
    if (InitEvents() != 0) return false;
    const bool delivered = ObsUserLib_AddEvent(text.c_str()) == 0;
    ObsUserLib_Close();
    return delivered;
}

}  // namespace Kovo
