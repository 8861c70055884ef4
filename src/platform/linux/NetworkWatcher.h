#pragma once

namespace LinuxHost {

// Tells the console when the host's links, addresses or routes change (a lease arrives, a cable is
// pulled), as the other kind of host does: by SIGUSR1 to the console's own process, which redraws what it
// shows of the host. Changes that come in a burst are told once. Started once; runs for the process's
// life and fails quietly (the screens then show what they read when they drew).
void StartNetworkWatcher();

}  // namespace LinuxHost
