#include "platform/linux/Systemd.h"

#include <dlfcn.h>

#include <cstdarg>
#include <string>

#include "platform/hostctl/HostCtlException.h"

namespace LinuxHost::Systemd {

namespace {

struct Library {
    std::string error;  // why it could not be loaded; empty once it is
    decltype(&sd_bus_open_system) busOpenSystem = nullptr;
    decltype(&sd_bus_flush_close_unref) busFlushCloseUnref = nullptr;
    decltype(&sd_bus_message_new_method_call) newMethodCall = nullptr;
    decltype(&sd_bus_message_appendv) appendv = nullptr;
    decltype(&sd_bus_call) call = nullptr;
    decltype(&sd_bus_get_property_string) getPropertyString = nullptr;
    decltype(&sd_bus_message_readv) readv = nullptr;
    decltype(&sd_bus_message_unref) messageUnref = nullptr;
    decltype(&sd_bus_error_free) errorFree = nullptr;
    decltype(&sd_bus_error_set_errno) errorSetErrno = nullptr;
    decltype(&sd_bus_message_append_basic) appendBasic = nullptr;
    decltype(&sd_bus_message_open_container) openContainer = nullptr;
    decltype(&sd_bus_message_close_container) closeContainer = nullptr;
    decltype(&sd_bus_message_peek_type) peekType = nullptr;
    decltype(&sd_bus_message_read_basic) readBasic = nullptr;
    decltype(&sd_bus_message_enter_container) enterContainer = nullptr;
    decltype(&sd_bus_message_exit_container) exitContainer = nullptr;
    decltype(&sd_bus_message_at_end) atEnd = nullptr;
    decltype(&sd_hwdb_new) hwdbNew = nullptr;
    decltype(&sd_hwdb_get) hwdbGet = nullptr;
    decltype(&sd_hwdb_unref) hwdbUnref = nullptr;
};

template <typename Function>
void Resolve(void* handle, const char* name, Function& function, std::string& error) {
    function = reinterpret_cast<Function>(::dlsym(handle, name));
    if (!function && error.empty()) error = std::string("it has no ") + name;
}

Library LoadLibrary() {
    Library library;
    // Never closed: what it hands out lives as long as the process.
    void* handle = ::dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* reason = ::dlerror();
        library.error = reason ? reason : "it was not found";
        return library;
    }
    std::string& error = library.error;
    Resolve(handle, "sd_bus_open_system", library.busOpenSystem, error);
    Resolve(handle, "sd_bus_flush_close_unref", library.busFlushCloseUnref, error);
    Resolve(handle, "sd_bus_message_new_method_call", library.newMethodCall, error);
    Resolve(handle, "sd_bus_message_appendv", library.appendv, error);
    Resolve(handle, "sd_bus_call", library.call, error);
    Resolve(handle, "sd_bus_get_property_string", library.getPropertyString, error);
    Resolve(handle, "sd_bus_message_readv", library.readv, error);
    Resolve(handle, "sd_bus_message_unref", library.messageUnref, error);
    Resolve(handle, "sd_bus_error_free", library.errorFree, error);
    Resolve(handle, "sd_bus_error_set_errno", library.errorSetErrno, error);
    Resolve(handle, "sd_bus_message_append_basic", library.appendBasic, error);
    Resolve(handle, "sd_bus_message_open_container", library.openContainer, error);
    Resolve(handle, "sd_bus_message_close_container", library.closeContainer, error);
    Resolve(handle, "sd_bus_message_peek_type", library.peekType, error);
    Resolve(handle, "sd_bus_message_read_basic", library.readBasic, error);
    Resolve(handle, "sd_bus_message_enter_container", library.enterContainer, error);
    Resolve(handle, "sd_bus_message_exit_container", library.exitContainer, error);
    Resolve(handle, "sd_bus_message_at_end", library.atEnd, error);
    Resolve(handle, "sd_hwdb_new", library.hwdbNew, error);
    Resolve(handle, "sd_hwdb_get", library.hwdbGet, error);
    Resolve(handle, "sd_hwdb_unref", library.hwdbUnref, error);
    return library;
}

const Library& Loaded() {
    static const Library library = LoadLibrary();
    return library;
}

const Library& Load() {
    const Library& library = Loaded();
    if (!library.error.empty())
        throw HostCtl::Lib::HostCtlException("The host's libsystemd cannot be used: " + library.error);
    return library;
}

// For the calls that free: only a loaded library can have made what they free.
const Library* IfLoaded() {
    const Library& library = Loaded();
    return library.error.empty() ? &library : nullptr;
}

}  // namespace

int BusOpenSystem(sd_bus** bus) {
    return Load().busOpenSystem(bus);
}

sd_bus* BusFlushCloseUnref(sd_bus* bus) {
    const Library* library = bus ? IfLoaded() : nullptr;
    return library ? library->busFlushCloseUnref(bus) : nullptr;
}

int CallMethod(sd_bus* bus, const char* destination, const char* path, const char* interface,
               const char* member, sd_bus_error* error, sd_bus_message** reply, const char* types, ...) {
    const Library& library = Load();
    sd_bus_message* call = nullptr;
    int result = library.newMethodCall(bus, &call, destination, path, interface, member);
    if (result >= 0 && types && *types) {
        va_list arguments;
        va_start(arguments, types);
        result = library.appendv(call, types, arguments);
        va_end(arguments);
    }
    if (result >= 0)
        result = library.call(bus, call, 0, error, reply);
    else
        library.errorSetErrno(error, result);
    library.messageUnref(call);
    return result;
}

int GetPropertyString(sd_bus* bus, const char* destination, const char* path, const char* interface,
                      const char* member, sd_bus_error* error, char** value) {
    return Load().getPropertyString(bus, destination, path, interface, member, error, value);
}

int Read(sd_bus_message* message, const char* types, ...) {
    const Library& library = Load();
    va_list arguments;
    va_start(arguments, types);
    const int result = library.readv(message, types, arguments);
    va_end(arguments);
    return result;
}

sd_bus_message* MessageUnref(sd_bus_message* message) {
    const Library* library = message ? IfLoaded() : nullptr;
    return library ? library->messageUnref(message) : nullptr;
}

void ErrorFree(sd_bus_error* error) {
    const Library* library = error && (error->name || error->message) ? IfLoaded() : nullptr;
    if (library) library->errorFree(error);
}

int NewMethodCall(sd_bus* bus, sd_bus_message** message, const char* destination, const char* path,
                  const char* interface, const char* member) {
    return Load().newMethodCall(bus, message, destination, path, interface, member);
}

int Call(sd_bus* bus, sd_bus_message* message, uint64_t timeoutMicroseconds, sd_bus_error* error,
         sd_bus_message** reply) {
    return Load().call(bus, message, timeoutMicroseconds, error, reply);
}

int AppendBasic(sd_bus_message* message, char type, const void* value) {
    return Load().appendBasic(message, type, value);
}

int OpenContainer(sd_bus_message* message, char type, const char* contents) {
    return Load().openContainer(message, type, contents);
}

int CloseContainer(sd_bus_message* message) {
    return Load().closeContainer(message);
}

int PeekType(sd_bus_message* message, char* type, const char** contents) {
    return Load().peekType(message, type, contents);
}

int ReadBasic(sd_bus_message* message, char type, void* value) {
    return Load().readBasic(message, type, value);
}

int EnterContainer(sd_bus_message* message, char type, const char* contents) {
    return Load().enterContainer(message, type, contents);
}

int ExitContainer(sd_bus_message* message) {
    return Load().exitContainer(message);
}

int AtEnd(sd_bus_message* message, int complete) {
    return Load().atEnd(message, complete);
}

int HwdbNew(sd_hwdb** hwdb) {
    return Load().hwdbNew(hwdb);
}

int HwdbGet(sd_hwdb* hwdb, const char* modalias, const char* key, const char** value) {
    return Load().hwdbGet(hwdb, modalias, key, value);
}

sd_hwdb* HwdbUnref(sd_hwdb* hwdb) {
    const Library* library = hwdb ? IfLoaded() : nullptr;
    return library ? library->hwdbUnref(hwdb) : nullptr;
}

}  // namespace LinuxHost::Systemd
