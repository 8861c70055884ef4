#include "text/en_US_Factory.h"

#include <iterator>

#include "text/HostPlatform.h"
#include "text/VersionLine.h"

namespace Kovo {

namespace {

// Indexed by id; kept as one reviewable data file.
constexpr const char* kTexts[] = {
#include "text/en_US_Strings.inc"
};
static_assert(std::size(kTexts) == en_US_Factory::kLastId + 1, "one text per id, 0 to the last id");

}  // namespace

const char* en_US_Factory::GetString(unsigned int id) const {
    if (id == kVersionLineId) {
        static VersionLine versionLine([] { return ReadHostVersionLine(); });
        return versionLine.Get();
    }
    if (id >= std::size(kTexts)) return "";
    return kTexts[id];
}

}  // namespace Kovo
