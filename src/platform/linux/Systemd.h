#pragma once

// libsystemd (the bus and the hardware database), loaded the first time one of these is called: a
// console that never needs the host's service manager does not pay at start-up for the library and the
// compression and crypto libraries it brings. The names and contracts are sd-bus's and sd-hwdb's own.
// Every call that needs the library throws HostCtlException when it cannot be loaded; the ones that
// free something never load it (nothing they could free exists without it).

#include <systemd/sd-bus.h>
#include <systemd/sd-hwdb.h>

namespace LinuxHost::Systemd {

int BusOpenSystem(sd_bus** bus);
sd_bus* BusFlushCloseUnref(sd_bus* bus);
// sd_bus_call_method: a method call with its arguments as `types` says, and the reply.
int CallMethod(sd_bus* bus, const char* destination, const char* path, const char* interface,
               const char* member, sd_bus_error* error, sd_bus_message** reply, const char* types, ...);
int GetPropertyString(sd_bus* bus, const char* destination, const char* path, const char* interface,
                      const char* member, sd_bus_error* error, char** value);
// sd_bus_message_read.
int Read(sd_bus_message* message, const char* types, ...);
sd_bus_message* MessageUnref(sd_bus_message* message);

// A message built and read one value at a time, for values whose type is only known at run time.
int NewMethodCall(sd_bus* bus, sd_bus_message** message, const char* destination, const char* path,
                  const char* interface, const char* member);
int Call(sd_bus* bus, sd_bus_message* message, uint64_t timeoutMicroseconds, sd_bus_error* error,
         sd_bus_message** reply);
int AppendBasic(sd_bus_message* message, char type, const void* value);
int OpenContainer(sd_bus_message* message, char type, const char* contents);
int CloseContainer(sd_bus_message* message);
int PeekType(sd_bus_message* message, char* type, const char** contents);
int ReadBasic(sd_bus_message* message, char type, void* value);
int EnterContainer(sd_bus_message* message, char type, const char* contents);
int ExitContainer(sd_bus_message* message);
int AtEnd(sd_bus_message* message, int complete);
void ErrorFree(sd_bus_error* error);

int HwdbNew(sd_hwdb** hwdb);
int HwdbGet(sd_hwdb* hwdb, const char* modalias, const char* key, const char** value);
sd_hwdb* HwdbUnref(sd_hwdb* hwdb);

}  // namespace LinuxHost::Systemd
