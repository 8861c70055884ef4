#pragma once

#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

// The English table. Stateless: the texts are compiled in, and the one computed text (the host's
// version line) is cached process-wide, not per object.
class en_US_Factory : public StringFactory {
  public:
    static constexpr unsigned int kLastId = kStringIdCount - 1;

    const char* GetString(unsigned int id) const override;
};

}  // namespace Kovo
