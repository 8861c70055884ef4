#pragma once

#include <sys/socket.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "TempDir.h"
#include "platform/linux/KernelNetwork.h"
#include "platform/linux/LinuxHostFactory.h"

// A Debian 12 host's files under a scratch root, and a kernel that answers with the addresses and routes
// a test gives it: a virtual machine with one virtio adapter (ens3) under a bridge (br0) that holds a DHCP
// address and the default route.
class LinuxHostTree {
  public:
    class Kernel : public LinuxHost::KernelNetwork {
      public:
        std::vector<LinuxHost::KernelAddress> addresses;
        std::vector<LinuxHost::KernelRoute> routes;
        std::vector<LinuxHost::KernelAddress> Addresses() const override { return addresses; }
        std::vector<LinuxHost::KernelRoute> DefaultRoutes() const override { return routes; }
    };

    explicit LinuxHostTree(const TempDir& dir)
        : _root(dir.Path() / "root"), kernel(std::make_shared<Kernel>()) {
        Write("/etc/os-release",
              "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n"
              "VERSION=\"12 (bookworm)\"\nID=debian\n");
        Write("/etc/debian_version", "12.8\n");
        Write("/proc/sys/kernel/osrelease", "6.1.0-28-amd64\n");
        Write("/proc/sys/kernel/version", "#1 SMP PREEMPT_DYNAMIC Debian 6.1.119-1 (2024-11-22)\n");
        Write("/proc/sys/kernel/hostname", "kovo-guest\n");
        Write("/etc/hosts", "127.0.0.1\tlocalhost\n127.0.1.1\tkovo-guest.lab.example kovo-guest\n");
        Write("/etc/resolv.conf",
              "# from the lease\nsearch lab.example example\nnameserver 192.168.77.1\n"
              "nameserver fd77::1\n");
        Write("/proc/meminfo", "MemTotal:        1003456 kB\nMemFree:          500000 kB\n");
        Write("/proc/cpuinfo",
              "processor\t: 0\nmodel name\t: QEMU Virtual CPU version 2.5+\n\n"
              "processor\t: 1\nmodel name\t: QEMU Virtual CPU version 2.5+\n\n");
        for (const auto& [name, value] :
             std::map<std::string, std::string>{{"sys_vendor", "QEMU"},
                                                {"product_name", "Standard PC (i440FX + PIIX, 1996)"},
                                                {"product_serial", "Not Specified"},
                                                {"bios_version", "1.16.2-debian-1.16.2-1"},
                                                {"bios_date", "04/01/2014"},
                                                {"bios_release", "0.0"},
                                                {"chassis_asset_tag", ""}})
            Write("/sys/class/dmi/id/" + name, value + "\n");
        Interface("lo", false);
        Interface("br0", false);
        Interface("ens3", true);
        Write("/sys/class/net/ens3/address", "52:54:00:12:34:56\n");
        Write("/sys/class/net/ens3/carrier", "1\n");
        Write("/sys/class/net/ens3/speed", "-1\n");
        Write("/sys/class/net/br0/address", "52:54:00:12:34:56\n");
        Write("/sys/class/net/br0/flags", "0x1003\n");
        std::filesystem::create_directories(_root / "sys/bus/virtio/drivers/virtio_net");
        std::filesystem::create_directory_symlink(_root / "sys/bus/virtio/drivers/virtio_net",
                                                  _root / "sys/class/net/ens3/device/driver");
        kernel->addresses = {Address("lo", AF_INET, "127.0.0.1", 8),
                             Address("br0", AF_INET, "192.168.77.50", 24, 3600),
                             Address("br0", AF_INET6, "fe80::5054:ff:fe12:3456", 64)};
        kernel->routes = {{"br0", AF_INET, "192.168.77.1", 425}};
    }

    static LinuxHost::KernelAddress Address(const std::string& interface, int family,
                                            const std::string& address, int prefix,
                                            uint32_t lifetime = 0xFFFFFFFFu, uint32_t flags = 0) {
        LinuxHost::KernelAddress a;
        a.interface = interface;
        a.family = family;
        a.address = address;
        a.prefixLength = prefix;
        a.validLifetime = lifetime;
        a.flags = flags;
        return a;
    }

    void Write(const std::string& path, const std::string& text) const {
        const std::filesystem::path file = _root / std::filesystem::path(path).relative_path();
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    void Remove(const std::string& path) const {
        std::filesystem::remove_all(_root / std::filesystem::path(path).relative_path());
    }

    std::unique_ptr<LinuxHost::LinuxHostFactory> Host() const {
        return std::make_unique<LinuxHost::LinuxHostFactory>(LinuxHost::HostFiles(_root), kernel);
    }
    LinuxHost::HostFiles Files() const { return LinuxHost::HostFiles(_root); }

  private:
    void Interface(const std::string& name, bool physical) const {
        Write("/sys/class/net/" + name + "/ifindex", "1\n");
        if (physical) std::filesystem::create_directories(_root / "sys/class/net" / name / "device");
    }

    std::filesystem::path _root;

  public:
    std::shared_ptr<Kernel> kernel;
};
