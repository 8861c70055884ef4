#pragma once

#include <filesystem>

#include "platform/hostctl/AdvancedOption.h"

namespace LinuxHost {

// The console's own options on a Linux host, which has no option tree: the idle time-outs, kept in one
// JSON file ("/var/lib/kovo/options.json") that holds only what was set. An option never set reads its
// default. `userNames` takes bare names ("KovoTimeOut") for "/UserVars/KovoTimeOut".
class LinuxOptions : public HostCtl::Adv::AdvancedOption {
  public:
    static constexpr const char* kPath = "/var/lib/kovo/options.json";

    LinuxOptions(std::filesystem::path file, bool userNames);
    std::unique_ptr<HostCtl::Adv::Option> FindOption(const std::string& path) override;

  private:
    std::filesystem::path _file;
    bool _userNames;
};

}  // namespace LinuxHost
