#include "platform/linux/IfupdownHandover.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/WholeFile.h"
#include "platform/linux/InterfacesFile.h"
#include "platform/linux/LinuxPrograms.h"
#include "platform/linux/SystemServices.h"

namespace LinuxHost {

namespace {

std::string WithoutLineEnd(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

// An address other than a link-local IPv6 one: what the host is reached at.
bool HasAddress(const KernelNetwork& kernel, const std::string& interface) {
    for (const KernelAddress& address : kernel.Addresses())
        if (address.interface == interface && address.address.rfind("fe80:", 0) != 0) return true;
    return false;
}

}  // namespace

bool IfupdownHandover::Configures(const std::string& interface) const {
    const std::optional<std::string> text = _files.Read(kInterfaces);
    return text && InterfacesFile::Configures(*text, {interface});
}

void IfupdownHandover::HandOver(const std::set<std::string>& interfaces,
                                const std::set<std::string>& profiles) {
    const std::string file = _files.Under(kInterfaces);
    const std::string record = _files.Under(kRecord);
    try {
        const std::string text = HostCtl::ReadWholeFile(file);
        std::error_code ignored;
        std::filesystem::create_directories(std::filesystem::path(record).parent_path(), ignored);
        const nlohmann::json what = {{"interfaces", interfaces}, {"profiles", profiles}, {"file", text}};
        HostCtl::WriteWholeFile(record, what.dump(2) + "\n");
        HostCtl::WriteWholeFile(file, InterfacesFile::Without(text, interfaces));
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
    SystemServices().Restart(kService);
}

bool IfupdownHandover::Pending() const {
    return _files.Exists(kRecord);
}

nlohmann::json IfupdownHandover::Record() const {
    try {
        nlohmann::json what = nlohmann::json::parse(HostCtl::ReadWholeFile(_files.Under(kRecord)));
        what.at("file").get<std::string>();
        return what;
    } catch (const std::exception& e) {
        throw HostCtl::Lib::HostCtlException(std::string("Cannot read what was taken over from ifupdown: ") +
                                             e.what());
    }
}

std::set<std::string> IfupdownHandover::Interfaces() const {
    return Record().value("interfaces", std::set<std::string>());
}

std::set<std::string> IfupdownHandover::ProfilesBefore() const {
    return Record().value("profiles", std::set<std::string>());
}

void IfupdownHandover::RestoreFile() {
    try {
        HostCtl::WriteWholeFile(_files.Under(kInterfaces), Record().at("file").get<std::string>());
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
    SystemServices().Restart(kService);
}

void IfupdownHandover::BringUp(const KernelNetwork& kernel) {
    std::string failed;
    for (const std::string& interface : Interfaces()) {
        if (HasAddress(kernel, interface)) continue;
        std::string errors;
        const int status = LinuxPrograms::RunDetached({kIfup, {"ifup", "--force", interface}}, &errors);
        if (status != 0)
            failed += (failed.empty() ? "" : "; ") + interface + ": " +
                      (errors.empty() ? "ifup ended with status " + std::to_string(status)
                                      : WithoutLineEnd(errors));
    }
    if (!failed.empty())
        throw HostCtl::Lib::HostCtlException("ifupdown could not bring the management network back up (" +
                                             failed + ")");
}

void IfupdownHandover::Forget() {
    const std::string record = _files.Under(kRecord);
    if (::unlink(record.c_str()) != 0 && errno != ENOENT)
        throw HostCtl::Lib::HostCtlException("Cannot remove " + record + ": " + std::strerror(errno));
    HostCtl::SyncDirectoryOf(record);
}

}  // namespace LinuxHost
