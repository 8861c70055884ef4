#include "platform/zenkctl/AdvancedOptionValue.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;

namespace ZenkCtl::Adv {
namespace {

json LoadNode(const Store::HostStore& store, const std::string& path) {
    json node = store.Get(AdvancedOptionValue::PointerOf(path));
    if (!node.is_object() || !node.contains("type")) {
        throw HostCtlException("Advanced option " + path + " does not exist");
    }
    return node;
}

bool IsIntegerNode(const json& node) {
    return node.value("type", "") == "integer" && node.contains("value") && node["value"].is_number_integer();
}

}  // namespace

AdvancedOptionValue::AdvancedOptionValue(std::string path, std::shared_ptr<Store::HostStore> store)
    : _path(std::move(path)), _store(std::move(store)) {}

std::string AdvancedOptionValue::PointerOf(const std::string& path) {
    std::string pointer = Store::Schema::kAdvancedOptions;
    size_t start = path.empty() || path[0] != '/' ? 0 : 1;
    for (;;) {
        const size_t end = path.find('/', start);
        std::string segment = path.substr(start, end == std::string::npos ? std::string::npos : end - start);
        pointer += '/';
        for (char c : segment) {
            if (c == '~') {
                pointer += "~0";
            } else {
                pointer += c;
            }
        }
        if (end == std::string::npos) break;
        start = end + 1;
    }
    return pointer;
}

bool AdvancedOptionValue::IsInteger() const {
    return IsIntegerNode(LoadNode(*_store, _path));
}

int64_t AdvancedOptionValue::GetIntValue() const {
    const json node = LoadNode(*_store, _path);
    if (!IsIntegerNode(node))
        throw HostCtlException("Advanced option " + _path + " is not an integer option");
    return node["value"].get<int64_t>();
}

std::string AdvancedOptionValue::GetStringValue() const {
    const json node = LoadNode(*_store, _path);
    const json& value = node.contains("value") ? node["value"] : json();
    return value.is_string() ? value.get<std::string>() : value.dump();
}

void AdvancedOptionValue::SetIntValue(int64_t value) {
    const std::string pointer = PointerOf(_path);
    _store->Update([&](json& document) {
        const json::json_pointer ptr(pointer);
        if (!document.contains(ptr) || !document[ptr].is_object()) {
            throw HostCtlException("Advanced option " + _path + " does not exist");
        }
        json& node = document[ptr];
        if (!IsIntegerNode(node))
            throw HostCtlException("Advanced option " + _path + " is not an integer option");
        const int64_t min = node.value("min", INT64_MIN);
        const int64_t max = node.value("max", INT64_MAX);
        if (value < min || value > max) {
            throw HostCtlException("Value " + std::to_string(value) + " of advanced option " + _path +
                                   " is outside " + std::to_string(min) + " to " + std::to_string(max));
        }
        node["value"] = value;
    });
}

}  // namespace ZenkCtl::Adv
