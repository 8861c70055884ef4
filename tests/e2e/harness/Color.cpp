#include "Color.h"

#include <cstdio>

namespace KovoTerm {

std::string Color::Describe() const {
    char buf[64];
    if (isDefault)
        std::snprintf(buf, sizeof buf, "default(#%02x%02x%02x)", red, green, blue);
    else if (index >= 0)
        std::snprintf(buf, sizeof buf, "index %d(#%02x%02x%02x)", index, red, green, blue);
    else
        std::snprintf(buf, sizeof buf, "#%02x%02x%02x", red, green, blue);
    return buf;
}

}  // namespace KovoTerm
