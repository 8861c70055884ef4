#pragma once

// Host events: records posted to the host's event daemon. Init connects to the daemon's socket,
// AddEvent sends one event text as one datagram, Close disconnects.

// 0 on success; otherwise a positive error code (the errno of the failed connection) when the event
// daemon cannot be reached.
int ObsUserLib_Init();
// 0 when the event was handed to the daemon; otherwise a positive error code (not initialised, daemon gone).
int ObsUserLib_AddEvent(const char* eventText);
void ObsUserLib_Close();

// Only for tests and tools outside the host: the same, connected to another socket.
int ObsUserLib_InitAt(const char* socketPath);
