#include "platform/zenkctl/UserAdvancedOptionImpl.h"

namespace ZenkCtl::Adv {

std::string UserAdvancedOptionImpl::Normalize(const std::string& path) const {
    static const std::string kUserVars = "/UserVars/";
    if (path.rfind(kUserVars, 0) == 0) return path;
    return kUserVars + (!path.empty() && path[0] == '/' ? path.substr(1) : path);
}

}  // namespace ZenkCtl::Adv
