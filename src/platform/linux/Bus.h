#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "platform/hostctl/HostCtlException.h"

struct sd_bus;
struct sd_bus_message;

namespace LinuxHost {

// A refusal by a service on the bus: its reason, and the error's name for callers that tell them apart.
class BusError : public HostCtl::Lib::HostCtlException {
  public:
    BusError(std::string name, const std::string& reason)
        : HostCtlException(reason), _name(std::move(name)) {}
    const std::string& Name() const { return _name; }
    // The object asked about is not (or no longer) there.
    bool NoSuchObject() const;

  private:
    std::string _name;
};

// A connection to the host's system bus, for services whose values are typed only at run time (the
// network service's settings are dictionaries of variants). Values are JSON:
// - numbers, strings (object paths and signatures too) and booleans as themselves;
// - arrays and structs as arrays;
// - a dictionary as an object when its keys are strings, otherwise as an array of [key, value] pairs;
// - a variant as {"t": its signature, "v": its value}.
// Every failure, the service's own refusals included, is a HostCtl::Lib::HostCtlException with the
// service's reason.
class Bus {
  public:
    using Value = nlohmann::json;

    // The system bus, as the host's services are reached (DBUS_SYSTEM_BUS_ADDRESS, else the standard socket).
    static Bus System();
    ~Bus();
    Bus(Bus&& other) noexcept;
    Bus& operator=(Bus&&) = delete;
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    // `member` with `arguments`, an array of one value per complete type of `signature`; the reply's
    // values, in order. A time-out of 0 is the bus's default (25 s).
    Value Call(const char* destination, const std::string& path, const char* interface, const char* member,
               std::string_view signature = "", const Value& arguments = Value::array(),
               uint64_t timeoutMicroseconds = 0);
    // A property's value (unwrapped from its variant), and all of an interface's properties by name.
    Value Property(const char* destination, const std::string& path, const char* interface, const char* name);
    Value Properties(const char* destination, const std::string& path, const char* interface);

    // A variant of the given type.
    static Value Variant(std::string signature, Value value);
    // Appends `value`, of the single complete type `signature`; throws when it does not have that type.
    static void Append(sd_bus_message* message, std::string_view signature, const Value& value);
    // Reads the message's next value, whatever its type.
    static Value ReadNext(sd_bus_message* message);

  private:
    explicit Bus(sd_bus* bus) : _bus(bus) {}
    sd_bus* _bus;
};

}  // namespace LinuxHost
