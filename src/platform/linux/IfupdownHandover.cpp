#include "platform/linux/IfupdownHandover.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

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

// A process's arguments, from /proc/PID/cmdline (each ended by a null byte).
std::vector<std::string> Arguments(const std::string& commandLine) {
    std::vector<std::string> words;
    for (std::size_t at = 0; at < commandLine.size();) {
        const std::size_t end = std::min(commandLine.find('\0', at), commandLine.size());
        words.push_back(commandLine.substr(at, end - at));
        at = end + 1;
    }
    return words;
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
    for (const std::string& interface : Interfaces()) {
        if (HasAddress(kernel, interface)) continue;
        // A client still running for it would fight the one ifup starts.
        StopClients(interface);
        try {
            Run(kIfup, interface);
        } catch (const HostCtl::Lib::HostCtlException& e) {
            throw HostCtl::Lib::HostCtlException(
                std::string("ifupdown could not bring the management network back up: ") + e.what());
        }
    }
}

void IfupdownHandover::Run(const char* program, const std::string& interface) {
    const std::string name = std::filesystem::path(program).filename();
    std::string errors;
    const int status = LinuxPrograms::RunDetached({program, {name, "--force", interface}}, &errors);
    if (status != 0)
        throw HostCtl::Lib::HostCtlException(
            name + " " + interface + " failed: " +
            (errors.empty() ? "it ended with status " + std::to_string(status) : WithoutLineEnd(errors)));
}

void IfupdownHandover::StopClients() {
    for (const std::string& interface : Interfaces()) StopClients(interface);
}

void IfupdownHandover::StopClients(const std::string& interface) {
    // Found by the pid file each names on its command line, not by the file's content: a client started
    // again over a running one leaves two, and the file names only the second.
    const std::string pidFiles[] = {"/run/dhclient." + interface + ".pid",
                                    "/run/dhclient6." + interface + ".pid"};
    for (const std::string& pid : _files.List("/proc")) {
        if (pid.find_first_not_of("0123456789") != std::string::npos) continue;
        const std::optional<std::string> commandLine = _files.Read("/proc/" + pid + "/cmdline");
        if (!commandLine || commandLine->rfind("dhclient", 0) != 0) continue;
        const std::vector<std::string> words = Arguments(*commandLine);
        for (const std::string& pidFile : pidFiles)
            if (std::find(words.begin(), words.end(), pidFile) != words.end())
                // Killed, not asked: asked to end, the client would take the address off as it goes.
                ::kill(std::stoi(pid), SIGKILL);
    }
}

void IfupdownHandover::Forget() {
    const std::string record = _files.Under(kRecord);
    if (::unlink(record.c_str()) != 0 && errno != ENOENT)
        throw HostCtl::Lib::HostCtlException("Cannot remove " + record + ": " + std::strerror(errno));
    HostCtl::SyncDirectoryOf(record);
}

}  // namespace LinuxHost
