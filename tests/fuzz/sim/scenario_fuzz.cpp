// Feeds arbitrary bytes to the check every scenario and every value set from outside a host passes: a
// first line starting with "/" is the JSON pointer the value is set at, the rest the value. Whatever the
// bytes, the check answers with its list of faults; it never crashes or throws. A value it accepts at
// the root is a whole store it accepts again once written out and read back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <nlohmann/json.hpp>

#include "host/SimulationSchema.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string pointer;
    std::string text = input;
    if (!input.empty() && input[0] == '/') {
        const size_t end = input.find('\n');
        pointer = input.substr(0, end);
        text = end == std::string::npos ? std::string() : input.substr(end + 1);
    }
    const nlohmann::json value = nlohmann::json::parse(text, nullptr, false);
    if (value.is_discarded()) return 0;
    const auto faults = KovoSim::Simulation::Check(value, pointer);
    if (pointer.empty() && faults.empty() &&
        !KovoSim::Simulation::Check(nlohmann::json::parse(value.dump())).empty())
        std::abort();
    return 0;
}
