#include "host/SimulationSchema.h"

namespace KovoSim::Simulation {

using namespace ZenkCtl::Store::Schema;

const std::vector<Node>& Table() {
    static const std::vector<Node> table = [] {
        std::vector<Node> rows = ZenkCtl::Store::Schema::Table();
        rows.insert(rows.end(), {
                                    {kMember, kObject},
                                    {kNames, kObject},
                                    {"/simulation/names/*", kText},
                                    {kAnswering, kList},
                                    {"/simulation/answering/*", kText},
                                    {kSilentNameServers, kList},
                                    {"/simulation/silentNameServers/*", kText},
                                    {kFaults, kObject},
                                    {"/simulation/faults/*", kText},
                                });
        return rows;
    }();
    return table;
}

std::vector<std::string> Check(const nlohmann::json& value, const std::string& pointer) {
    return ZenkCtl::Store::Schema::Check(Table(), value, pointer);
}

}  // namespace KovoSim::Simulation
