#include "platform/linux/IfupdownHandover.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <vector>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/UniqueFd.h"
#include "platform/hostctl/WholeFile.h"
#include "platform/linux/InterfacesFile.h"
#include "platform/linux/LinuxPrograms.h"

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

bool RoutesOut(const KernelNetwork& kernel, const std::string& interface) {
    for (const KernelRoute& route : kernel.DefaultRoutes())
        if (route.interface == interface && route.family == AF_INET) return true;
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

// Whether process `pid` is a DHCP client of this host's network (not a container's) that names one of
// `pidFiles` on its command line.
bool IsClientOf(const std::string& pid, const std::vector<std::string>& pidFiles) {
    const HostFiles proc("/");
    const std::optional<std::string> commandLine = proc.Read("/proc/" + pid + "/cmdline");
    if (!commandLine) return false;
    const std::vector<std::string> words = Arguments(*commandLine);
    if (words.empty() || std::filesystem::path(words[0]).filename() != "dhclient") return false;
    const std::string network = proc.LinkName("/proc/self/ns/net");
    if (network.empty() || proc.LinkName("/proc/" + pid + "/ns/net") != network) return false;
    return std::any_of(pidFiles.begin(), pidFiles.end(), [&words](const std::string& file) {
        return std::find(words.begin(), words.end(), file) != words.end();
    });
}

}  // namespace

bool IfupdownHandover::Configures(const std::string& interface) const {
    const std::optional<std::string> text = _files.Read(kInterfaces);
    return text && InterfacesFile::Configures(*text, {interface});
}

void IfupdownHandover::HandOver(const std::set<std::string>& interfaces,
                                const std::set<std::string>& profiles, const KernelNetwork& kernel) {
    try {
        Record record{interfaces, profiles, {}, HostCtl::ReadWholeFile(_files.Under(kInterfaces)), {}, false};
        for (const std::string& interface : interfaces)
            if (RoutesOut(kernel, interface)) record.routed.insert(interface);
        record.written = InterfacesFile::Without(record.before, interfaces);
        Write(record);
        HostCtl::WriteWholeFile(_files.Under(kInterfaces), record.written);
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
}

void IfupdownHandover::Write(const Record& record) {
    const std::filesystem::path path = _files.Under(kRecord);
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    // Made readable by root alone before anything is in it: the file it keeps may hold secrets.
    HostCtl::UniqueFd(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const nlohmann::json what = {{"interfaces", record.interfaces}, {"profiles", record.profiles},
                                 {"routed", record.routed},         {"before", record.before},
                                 {"written", record.written},       {"keeping", record.keeping}};
    HostCtl::WriteWholeFile(path, what.dump(2) + "\n");
}

bool IfupdownHandover::Pending() const {
    return _files.Exists(kRecord);
}

IfupdownHandover::Record IfupdownHandover::Read() const {
    try {
        const nlohmann::json what = nlohmann::json::parse(HostCtl::ReadWholeFile(_files.Under(kRecord)));
        return {what.at("interfaces").get<std::set<std::string>>(),
                what.at("profiles").get<std::set<std::string>>(),
                what.at("routed").get<std::set<std::string>>(),
                what.at("before").get<std::string>(),
                what.at("written").get<std::string>(),
                what.at("keeping").get<bool>()};
    } catch (const std::exception& e) {
        throw HostCtl::Lib::HostCtlException(std::string("Cannot read what was taken over from ifupdown (") +
                                             kRecord + "): " + e.what());
    }
}

void IfupdownHandover::MarkKeeping() {
    Record record = Read();
    record.keeping = true;
    try {
        Write(record);
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
}

void IfupdownHandover::RestoreFile(const Record& record) {
    try {
        if (HostCtl::ReadWholeFile(_files.Under(kInterfaces)) != record.written)
            throw HostCtl::Lib::HostCtlException(std::string(kInterfaces) +
                                                 " was changed after the console took the management network "
                                                 "over from ifupdown: it is left as "
                                                 "it is");
        HostCtl::WriteWholeFile(_files.Under(kInterfaces), record.before);
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
}

void IfupdownHandover::BringUp(const Record& record, const KernelNetwork& kernel) {
    for (const std::string& interface : record.interfaces) {
        if (HasAddress(kernel, interface) &&
            (!record.routed.count(interface) || RoutesOut(kernel, interface)))
            continue;
        // A client still running for it would fight the one ifup starts; what is left of the interface's
        // configuration would make ifup fail.
        StopClients(interface);
        try {
            Run(kIfdown, interface);
        } catch (const HostCtl::Lib::HostCtlException&) {
            // Down already, as far as it could be taken down.
        }
        try {
            Run(kIfup, interface);
        } catch (const HostCtl::Lib::HostCtlException& e) {
            throw HostCtl::Lib::HostCtlException(
                std::string("ifupdown could not bring the management network back up: ") + e.what());
        }
    }
}

void IfupdownHandover::StopClients() {
    for (const std::string& interface : Read().interfaces) StopClients(interface);
}

void IfupdownHandover::StopClients(const std::string& interface) {
    // Found by the pid file each names on its command line, not by the file's content: a client started
    // again over a running one leaves two, and the file names only the second.
    const std::vector<std::string> pidFiles = {"/run/dhclient." + interface + ".pid",
                                               "/run/dhclient6." + interface + ".pid"};
    for (const std::string& pid : HostFiles("/").List("/proc")) {
        if (pid.find_first_not_of("0123456789") != std::string::npos || !IsClientOf(pid, pidFiles)) continue;
        // Held by a descriptor, and looked at again through it: the number cannot be another's by then.
        // (Through syscall: this C library's declarations of both cannot be linked from C++.)
        const HostCtl::UniqueFd process(static_cast<int>(::syscall(SYS_pidfd_open, std::stoi(pid), 0)));
        if (process.Get() >= 0 && IsClientOf(pid, pidFiles))
            ::syscall(SYS_pidfd_send_signal, process.Get(), SIGKILL, nullptr, 0);
    }
}

void IfupdownHandover::Forget() {
    const std::string record = _files.Under(kRecord);
    if (::unlink(record.c_str()) != 0 && errno != ENOENT)
        throw HostCtl::Lib::HostCtlException("Cannot remove " + record + ": " + std::strerror(errno));
    HostCtl::SyncDirectoryOf(record);
}

void IfupdownHandover::Run(const char* program, const std::string& interface) {
    const std::string name = std::filesystem::path(program).filename();
    std::string errors;
    const int status = LinuxPrograms::RunDetached({program, {name, "--force", "--", interface}}, &errors);
    if (status != 0)
        throw HostCtl::Lib::HostCtlException(
            name + " " + interface + " failed: " +
            (errors.empty() ? "it ended with status " + std::to_string(status) : WithoutLineEnd(errors)));
}

}  // namespace LinuxHost
