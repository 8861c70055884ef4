#include "platform/linux/Bus.h"

#include <cstring>
#include <limits>
#include <memory>

#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/Systemd.h"

namespace LinuxHost {

namespace {

using Value = Bus::Value;

[[noreturn]] void Fail(const std::string& what) {
    throw HostCtl::Lib::HostCtlException(what);
}

// A negative sd-bus result as an exception naming what was being done.
int Check(int result, const char* doing) {
    if (result < 0) Fail(std::string("D-Bus: ") + doing + ": " + std::strerror(-result));
    return result;
}

struct MessageUnref {
    void operator()(sd_bus_message* message) const { Systemd::MessageUnref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageUnref>;

// The length of the single complete type that starts `signature` at `at`; 0 when there is none.
std::size_t CompleteTypeLength(std::string_view signature, std::size_t at) {
    if (at >= signature.size()) return 0;
    const char type = signature[at];
    if (type == 'a') {
        const std::size_t element = CompleteTypeLength(signature, at + 1);
        return element == 0 ? 0 : element + 1;
    }
    if (type == '(' || type == '{') {
        const char close = type == '(' ? ')' : '}';
        std::size_t end = at + 1;
        while (end < signature.size() && signature[end] != close) {
            const std::size_t inner = CompleteTypeLength(signature, end);
            if (inner == 0) return 0;
            end += inner;
        }
        return end < signature.size() ? end - at + 1 : 0;
    }
    return std::strchr("ybnqiuxtdsogvh", type) ? 1 : 0;
}

// The single complete types of `signature`, in order; throws on a signature that is not one.
std::vector<std::string_view> CompleteTypes(std::string_view signature) {
    std::vector<std::string_view> types;
    for (std::size_t at = 0; at < signature.size();) {
        const std::size_t length = CompleteTypeLength(signature, at);
        if (length == 0) Fail("D-Bus: not a type signature: " + std::string(signature));
        types.push_back(signature.substr(at, length));
        at += length;
    }
    return types;
}

template <typename T>
T Integer(const Value& value, std::string_view signature) {
    auto refuse = [&] { Fail("D-Bus: " + value.dump() + " is not of type " + std::string(signature)); };
    if (!value.is_number_integer()) refuse();
    if constexpr (std::numeric_limits<T>::is_signed) {
        if (value.is_number_unsigned() &&
            value.get<uint64_t>() > static_cast<uint64_t>(std::numeric_limits<T>::max()))
            refuse();
        const int64_t n = value.get<int64_t>();
        if (n < std::numeric_limits<T>::min() || n > std::numeric_limits<T>::max()) refuse();
        return static_cast<T>(n);
    } else {
        if (!value.is_number_unsigned() && value.get<int64_t>() < 0) refuse();
        const uint64_t n = value.get<uint64_t>();
        if (n > std::numeric_limits<T>::max()) refuse();
        return static_cast<T>(n);
    }
}

void AppendBasic(sd_bus_message* message, char type, const Value& value, std::string_view signature) {
    auto put = [&](const void* p) { Check(Systemd::AppendBasic(message, type, p), "append"); };
    switch (type) {
        case 'y': {
            const uint8_t v = Integer<uint8_t>(value, signature);
            return put(&v);
        }
        case 'b': {
            if (!value.is_boolean()) Fail("D-Bus: " + value.dump() + " is not a boolean");
            const int v = value.get<bool>() ? 1 : 0;
            return put(&v);
        }
        case 'n': {
            const int16_t v = Integer<int16_t>(value, signature);
            return put(&v);
        }
        case 'q': {
            const uint16_t v = Integer<uint16_t>(value, signature);
            return put(&v);
        }
        case 'i': {
            const int32_t v = Integer<int32_t>(value, signature);
            return put(&v);
        }
        case 'u': {
            const uint32_t v = Integer<uint32_t>(value, signature);
            return put(&v);
        }
        case 'x': {
            const int64_t v = Integer<int64_t>(value, signature);
            return put(&v);
        }
        case 't': {
            const uint64_t v = Integer<uint64_t>(value, signature);
            return put(&v);
        }
        case 'd': {
            if (!value.is_number()) Fail("D-Bus: " + value.dump() + " is not a number");
            const double v = value.get<double>();
            return put(&v);
        }
        case 's':
        case 'o':
        case 'g': {
            if (!value.is_string()) Fail("D-Bus: " + value.dump() + " is not a string");
            const std::string& text = value.get_ref<const std::string&>();
            return put(text.c_str());
        }
        default:
            Fail("D-Bus: values of type " + std::string(1, type) + " are not sent");
    }
}

Value ReadBasic(sd_bus_message* message, char type) {
    auto get = [&](void* p) { Check(Systemd::ReadBasic(message, type, p), "read"); };
    switch (type) {
        case 'y': {
            uint8_t v = 0;
            get(&v);
            return v;
        }
        case 'b': {
            int v = 0;
            get(&v);
            return v != 0;
        }
        case 'n': {
            int16_t v = 0;
            get(&v);
            return v;
        }
        case 'q': {
            uint16_t v = 0;
            get(&v);
            return v;
        }
        case 'i': {
            int32_t v = 0;
            get(&v);
            return v;
        }
        case 'u': {
            uint32_t v = 0;
            get(&v);
            return v;
        }
        case 'x': {
            int64_t v = 0;
            get(&v);
            return v;
        }
        case 't': {
            uint64_t v = 0;
            get(&v);
            return v;
        }
        case 'd': {
            double v = 0;
            get(&v);
            return v;
        }
        case 's':
        case 'o':
        case 'g': {
            const char* v = nullptr;
            get(&v);
            return v ? v : "";
        }
        case 'h': {
            // A file descriptor means nothing once copied out of the message.
            int v = -1;
            get(&v);
            return nullptr;
        }
        default:
            Fail("D-Bus: a value of unknown type " + std::string(1, type));
    }
}

}  // namespace

bool BusError::NoSuchObject() const {
    return _name == "org.freedesktop.DBus.Error.UnknownObject" ||
           _name == "org.freedesktop.DBus.Error.UnknownMethod";
}

Bus Bus::System() {
    sd_bus* bus = nullptr;
    Check(Systemd::BusOpenSystem(&bus), "cannot reach the system bus");
    return Bus(bus);
}

Bus::~Bus() {
    Systemd::BusFlushCloseUnref(_bus);
}

Bus::Bus(Bus&& other) noexcept : _bus(other._bus) {
    other._bus = nullptr;
}

Value Bus::Variant(std::string signature, Value value) {
    return Value{{"t", std::move(signature)}, {"v", std::move(value)}};
}

void Bus::Append(sd_bus_message* message, std::string_view signature, const Value& value) {
    if (CompleteTypeLength(signature, 0) != signature.size() || signature.empty())
        Fail("D-Bus: not a single complete type: " + std::string(signature));
    const char type = signature[0];
    if (type == 'v') {
        if (!value.is_object() || !value.contains("t") || !value["t"].is_string() || !value.contains("v"))
            Fail("D-Bus: a variant needs its type and value: " + value.dump());
        const std::string inner = value["t"].get<std::string>();
        Check(Systemd::OpenContainer(message, 'v', inner.c_str()), "open a variant");
        Append(message, inner, value["v"]);
        Check(Systemd::CloseContainer(message), "close a variant");
        return;
    }
    if (type == '(') {
        const std::string inner(signature.substr(1, signature.size() - 2));
        const std::vector<std::string_view> fields = CompleteTypes(inner);
        if (!value.is_array() || value.size() != fields.size())
            Fail("D-Bus: " + value.dump() + " is not a struct " + std::string(signature));
        Check(Systemd::OpenContainer(message, 'r', inner.c_str()), "open a struct");
        for (std::size_t i = 0; i < fields.size(); ++i) Append(message, fields[i], value[i]);
        Check(Systemd::CloseContainer(message), "close a struct");
        return;
    }
    if (type == 'a') {
        const std::string element(signature.substr(1));
        // The value's shape is checked before the container opens, so a refusal leaves nothing half-built.
        const bool dictionary = element[0] == '{';
        if (!value.is_array() && !(dictionary && value.is_object()))
            Fail("D-Bus: " + value.dump() + " is not " + (dictionary ? "a dictionary " : "an array ") +
                 std::string(signature));
        Check(Systemd::OpenContainer(message, 'a', element.c_str()), "open an array");
        if (dictionary) {
            const std::string entry = element.substr(1, element.size() - 2);
            const std::string_view key = std::string_view(entry).substr(0, 1);
            const std::string_view item = std::string_view(entry).substr(1);
            auto appendEntry = [&](const Value& k, const Value& v) {
                Check(Systemd::OpenContainer(message, 'e', entry.c_str()), "open a dictionary entry");
                Append(message, key, k);
                Append(message, item, v);
                Check(Systemd::CloseContainer(message), "close a dictionary entry");
            };
            if (value.is_object()) {
                for (const auto& [k, v] : value.items()) appendEntry(k, v);
            } else {
                for (const Value& pair : value)
                    if (!pair.is_array() || pair.size() != 2)
                        Fail("D-Bus: " + pair.dump() + " is not a [key, value] pair");
                for (const Value& pair : value) appendEntry(pair[0], pair[1]);
            }
        } else {
            for (const Value& item : value) Append(message, element, item);
        }
        Check(Systemd::CloseContainer(message), "close an array");
        return;
    }
    AppendBasic(message, type, value, signature);
}

Value Bus::ReadNext(sd_bus_message* message) {
    char type = 0;
    const char* contents = nullptr;
    if (Check(Systemd::PeekType(message, &type, &contents), "peek") == 0) Fail("D-Bus: no more values");
    if (type == 'v') {
        const std::string inner = contents;
        Check(Systemd::EnterContainer(message, 'v', contents), "enter a variant");
        Value value = Variant(inner, ReadNext(message));
        Check(Systemd::ExitContainer(message), "leave a variant");
        return value;
    }
    if (type == 'r') {
        Check(Systemd::EnterContainer(message, 'r', contents), "enter a struct");
        Value fields = Value::array();
        while (Check(Systemd::AtEnd(message, 0), "read") == 0) fields.push_back(ReadNext(message));
        Check(Systemd::ExitContainer(message), "leave a struct");
        return fields;
    }
    if (type == 'a') {
        const std::string element = contents;
        Check(Systemd::EnterContainer(message, 'a', element.c_str()), "enter an array");
        Value items;
        if (element[0] == '{') {
            const std::string entry = element.substr(1, element.size() - 2);
            const bool named = entry[0] == 's' || entry[0] == 'o' || entry[0] == 'g';
            items = named ? Value::object() : Value::array();
            while (Check(Systemd::EnterContainer(message, 'e', entry.c_str()), "enter a dictionary entry") >
                   0) {
                Value key = ReadNext(message);
                Value item = ReadNext(message);
                Check(Systemd::ExitContainer(message), "leave a dictionary entry");
                if (named)
                    items[key.get<std::string>()] = std::move(item);
                else
                    items.push_back(Value::array({std::move(key), std::move(item)}));
            }
        } else {
            items = Value::array();
            while (Check(Systemd::AtEnd(message, 0), "read") == 0) items.push_back(ReadNext(message));
        }
        Check(Systemd::ExitContainer(message), "leave an array");
        return items;
    }
    return ReadBasic(message, type);
}

Value Bus::Call(const char* destination, const std::string& path, const char* interface, const char* member,
                std::string_view signature, const Value& arguments, uint64_t timeoutMicroseconds) {
    const std::vector<std::string_view> types = CompleteTypes(signature);
    if (!arguments.is_array() || arguments.size() != types.size())
        Fail(std::string("D-Bus: ") + member + " takes " + std::string(signature) + ", not " +
             arguments.dump());
    sd_bus_message* raw = nullptr;
    Check(Systemd::NewMethodCall(_bus, &raw, destination, path.c_str(), interface, member), member);
    const Message call(raw);
    for (std::size_t i = 0; i < types.size(); ++i) Append(call.get(), types[i], arguments[i]);

    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* rawReply = nullptr;
    const int result = Systemd::Call(_bus, call.get(), timeoutMicroseconds, &error, &rawReply);
    const Message reply(rawReply);
    if (result < 0) {
        const std::string name = error.name ? error.name : "";
        const std::string reason = error.message ? error.message : std::strerror(-result);
        Systemd::ErrorFree(&error);
        throw BusError(name, reason);
    }
    Value values = Value::array();
    while (Check(Systemd::AtEnd(reply.get(), 0), "read") == 0) values.push_back(ReadNext(reply.get()));
    return values;
}

Value Bus::Property(const char* destination, const std::string& path, const char* interface,
                    const char* name) {
    Value reply = Call(destination, path, "org.freedesktop.DBus.Properties", "Get", "ss",
                       Value::array({interface, name}));
    return std::move(reply.at(0).at("v"));
}

Value Bus::Properties(const char* destination, const std::string& path, const char* interface) {
    Value reply =
        Call(destination, path, "org.freedesktop.DBus.Properties", "GetAll", "s", Value::array({interface}));
    Value properties = Value::object();
    for (auto& [name, variant] : reply.at(0).items()) properties[name] = std::move(variant.at("v"));
    return properties;
}

}  // namespace LinuxHost
