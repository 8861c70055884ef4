#pragma once

#include "platform/zenkctl/AdvancedOptionImpl.h"

namespace ZenkCtl::Adv {

// The user-defined options under "/UserVars". A bare name ("PXEBootEnabled") means "/UserVars/<name>";
// a full "/UserVars/..." path is accepted as it stands.
class UserAdvancedOptionImpl : public AdvancedOptionImpl {
  public:
    using AdvancedOptionImpl::AdvancedOptionImpl;

  protected:
    std::string Normalize(const std::string& path) const override;
};

}  // namespace ZenkCtl::Adv
