#include "AdvancedOptionTool.h"

#include <charconv>

#include "StoreNodes.h"
#include "platform/store/StoreSchema.h"

namespace KovoSim::Host {

namespace Schema = ZenkCtl::Store::Schema;
namespace {

using nlohmann::json;

bool ParseInteger(const std::string& text, long long& value) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return !text.empty() && result.ec == std::errc() && result.ptr == end;
}

// Sets an integer option, checking its range; returns 0 or prints why not and returns 1.
int SetOption(HostContext& context, const std::string& option, const std::string& text) {
    const std::string pointer = StoreNodes::OptionPointer(option);
    long long value = 0;
    if (!ParseInteger(text, value)) {
        context.err << "Invalid value '" << text << "' for option " << option << ": not an integer\n";
        return 1;
    }
    int status = 0;
    context.store->Update([&](json& document) {
        const json::json_pointer where(pointer.empty() ? "/~invalid" : pointer);
        if (pointer.empty() || !document.contains(where) || !document.at(where).is_object()) {
            context.err << "Unable to find option " << option << "\n";
            status = 1;
            return;
        }
        json& node = document.at(where);
        const long long min = node.value("min", std::numeric_limits<long long>::min());
        const long long max = node.value("max", std::numeric_limits<long long>::max());
        if (value < min || value > max) {
            context.err << "Value " << value << " for option " << option << " is out of range [" << min
                        << ", " << max << "]\n";
            status = 1;
            return;
        }
        node["value"] = value;
    });
    return status;
}

}  // namespace

int AdvancedOptionTool::RunAdvCfg(HostContext& context) {
    const auto& argv = context.argv;
    bool quiet = false;
    std::string get, set, setValue;
    for (size_t i = 1; i < argv.size(); ++i) {
        if (argv[i] == "-q") {
            quiet = true;
        } else if (argv[i] == "-g" && i + 1 < argv.size()) {
            get = argv[++i];
        } else if (argv[i] == "-s" && i + 2 < argv.size()) {
            setValue = argv[++i];
            set = argv[++i];
        } else {
            context.err << "Usage: qorcfg-advcfg [-q] -g OPTION | -s VALUE OPTION\n";
            return 1;
        }
    }
    if (!set.empty()) return SetOption(context, set, setValue);
    if (get.empty()) {
        context.err << "Usage: qorcfg-advcfg [-q] -g OPTION | -s VALUE OPTION\n";
        return 1;
    }
    const std::string pointer = StoreNodes::OptionPointer(get);
    const json document = context.store->Read();
    if (pointer.empty() || !document.contains(json::json_pointer(pointer)) ||
        !document.at(json::json_pointer(pointer)).contains("value")) {
        context.err << "Unable to find option " << get << "\n";
        return 1;
    }
    const json& value = document.at(json::json_pointer(pointer))["value"];
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (quiet)
        context.out << text << "\n";
    else
        context.out << "Value of " << get.substr(get.rfind('/') + 1) << " is " << text << "\n";
    return 0;
}

int AdvancedOptionTool::RunCli(HostContext& context, bool local) {
    const auto& argv = context.argv;
    const std::vector<std::string> prefix = {"system", "settings", "advanced", "set"};
    bool matches = argv.size() >= 1 + prefix.size();
    for (size_t i = 0; matches && i < prefix.size(); ++i) matches = argv[1 + i] == prefix[i];
    std::string option, value;
    bool haveValue = false;
    for (size_t i = 1 + prefix.size(); matches && i < argv.size(); ++i) {
        if (argv[i] == "-o" && i + 1 < argv.size()) {
            option = argv[++i];
        } else if (argv[i] == "-i" && i + 1 < argv.size()) {
            value = argv[++i];
            haveValue = true;
        } else {
            matches = false;
        }
    }
    if (!matches || option.empty() || !haveValue) {
        context.err << "Error: Unknown command or namespace\n";
        return 1;
    }
    if (!local && !StoreNodes::Flag(context.store->Read(), Schema::kHostAgentRunning, true)) {
        context.err << "Connection failed\n";
        return 1;
    }
    return SetOption(context, option, value);
}

}  // namespace KovoSim::Host
