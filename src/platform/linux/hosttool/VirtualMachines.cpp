#include "platform/linux/hosttool/VirtualMachines.h"

#include <libvirt/libvirt.h>
#include <libvirt/virterror.h>
#include <sys/stat.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "platform/hostctl/HostCtlException.h"

namespace LinuxHost {

namespace {

constexpr const char* kDaemonSocket = "/run/libvirt/libvirt-sock";

struct ConnectCloser {
    void operator()(virConnectPtr c) const { virConnectClose(c); }
};
using Connection = std::unique_ptr<virConnect, ConnectCloser>;

std::string LastError() {
    const virErrorPtr error = virGetLastError();
    return error && error->message ? error->message : "no reason given";
}

// nullptr when the host has no hypervisor service to ask.
Connection Open(const std::string& uri) {
    // libvirt reports errors on stderr by default; the console's screen is no place for them.
    virSetErrorFunc(nullptr, [](void*, virErrorPtr) {});
    Connection connection(virConnectOpen(uri.c_str()));
    if (connection) return connection;
    struct stat info {};
    if (uri == VirtualMachines::kSystemUri && stat(kDaemonSocket, &info) != 0) return nullptr;
    throw HostCtl::Lib::HostCtlException("The hypervisor service does not answer: " + LastError());
}

struct Domains {
    virDomainPtr* list = nullptr;
    int count = 0;
    ~Domains() {
        for (int i = 0; i < count; ++i) virDomainFree(list[i]);
        free(list);
    }
};

int Running(virConnectPtr connection, Domains& domains) {
    domains.count = virConnectListAllDomains(connection, &domains.list, VIR_CONNECT_LIST_DOMAINS_ACTIVE);
    if (domains.count < 0) {
        domains.count = 0;
        throw HostCtl::Lib::HostCtlException("The hypervisor service cannot list machines: " + LastError());
    }
    return domains.count;
}

}  // namespace

VirtualMachines::VirtualMachines(std::string uri) : _uri(std::move(uri)) {}

int VirtualMachines::CountRunning() const {
    Connection connection = Open(_uri);
    if (!connection) return 0;
    Domains domains;
    return Running(connection.get(), domains);
}

int VirtualMachines::ShutDown(bool force, int graceSeconds) const {
    Connection connection = Open(_uri);
    if (!connection) return 0;
    {
        Domains domains;
        Running(connection.get(), domains);
        // Forced, a machine is switched off as it is; asked, one that ignores the request (no guest agent,
        // no ACPI) is left to the wait below.
        for (int i = 0; i < domains.count; ++i)
            force ? virDomainDestroy(domains.list[i]) : virDomainShutdown(domains.list[i]);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(force ? 0 : graceSeconds);
    for (;;) {
        Domains domains;
        if (Running(connection.get(), domains) == 0 || std::chrono::steady_clock::now() >= deadline)
            return domains.count;
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
}

}  // namespace LinuxHost
