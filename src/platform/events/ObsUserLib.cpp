#include "platform/events/ObsUserLib.h"

#include <cerrno>

#include "platform/events/DatagramChannel.h"
#include "platform/events/EventPaths.h"

namespace {

ZenkCtl::Events::DatagramChannel& Channel() {
    static ZenkCtl::Events::DatagramChannel channel;
    return channel;
}

}  // namespace

int ObsUserLib_InitAt(const char* socketPath) {
    if (socketPath == nullptr) return EINVAL;
    return Channel().Connect(socketPath);
}

int ObsUserLib_Init() {
    return ObsUserLib_InitAt(ZenkCtl::Events::kEventSocket);
}

int ObsUserLib_AddEvent(const char* eventText) {
    if (eventText == nullptr) return EINVAL;
    return Channel().Send(eventText);
}

void ObsUserLib_Close() {
    Channel().Close();
}
