#include "ZenkPing.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstring>
#include <exception>
#include <thread>

#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"

namespace KovoSim::Host {
namespace {

// Binding to an address succeeds only when it is assigned in this network namespace.
bool IsLocal(const sockaddr* address, socklen_t length) {
    const int fd = ::socket(address->sa_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    const bool local = ::bind(fd, address, length) == 0;
    ::close(fd);
    return local;
}

// A whole decimal number from `least` to 1000, the range the real tool takes for counts and times.
bool ReadNumber(const std::string& text, int least, int& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && value >= least &&
           value <= 1000;
}

enum class Interface { kUnknown, kMissing, kDisabled, kEnabled };

// What the store says of a kernel interface. A store that cannot be read says nothing, and the ping goes
// on without it.
Interface InterfaceState(const HostContext& context, const std::string& name) {
    namespace Json = ZenkCtl::Network::Json;
    try {
        if (!context.store) return Interface::kUnknown;
        const auto snapshot = context.store->Snapshot();
        const nlohmann::json* nic =
            Json::FindNamed(Json::At(*snapshot, ZenkCtl::Store::Schema::kZenkNics), name);
        if (nic == nullptr) return Interface::kMissing;
        return Json::Flag(*nic, "enabled", true) ? Interface::kEnabled : Interface::kDisabled;
    } catch (const std::exception&) {
        return Interface::kUnknown;
    }
}

}  // namespace

bool ZenkPing::Answers(const std::string& target) {
    const std::string address = target.substr(0, target.find('%'));
    sockaddr_in v4{};
    v4.sin_family = AF_INET;
    if (::inet_pton(AF_INET, address.c_str(), &v4.sin_addr) == 1)
        return IsLocal(reinterpret_cast<sockaddr*>(&v4), sizeof v4);
    sockaddr_in6 v6{};
    v6.sin6_family = AF_INET6;
    if (::inet_pton(AF_INET6, address.c_str(), &v6.sin6_addr) == 1)
        return IsLocal(reinterpret_cast<sockaddr*>(&v6), sizeof v6);
    return false;
}

int ZenkPing::Run(HostContext& context) {
    const auto& argv = context.argv;
    int count = 3;
    // How long the last echo is waited for when nothing answers, as "-W" sets it.
    int linger = 10;
    std::string target, device;
    for (size_t i = 1; i < argv.size(); ++i) {
        const std::string& arg = argv[i];
        if (arg == "-c" && i + 1 < argv.size()) {
            if (!ReadNumber(argv[++i], 1, count)) {
                context.err << "zenkping: bad count " << argv[i] << "\n";
                return 2;
            }
        } else if (arg == "-I" && i + 1 < argv.size()) {
            device = argv[++i];
        } else if (arg == "-W" && i + 1 < argv.size()) {
            if (!ReadNumber(argv[++i], 0, linger)) {
                context.err << "zenkping: bad linger time " << argv[i] << "\n";
                return 2;
            }
        } else if ((arg == "-i" || arg == "-s") && i + 1 < argv.size()) {
            ++i;
        } else if (!arg.empty() && arg[0] == '-') {
            context.err << "zenkping: unknown option " << arg << "\n";
            return 2;
        } else {
            target = arg;
        }
    }
    if (target.empty()) {
        context.err << "Usage: zenkping -c COUNT [-I INTERFACE] ADDRESS\n";
        return 2;
    }
    // Before the name is looked up: with its interface down the host may have no name server to ask, and
    // the answer must not wait for the lookup to give up.
    if (!device.empty()) {
        const Interface state = InterfaceState(context, device);
        if (state == Interface::kMissing) {
            context.err << "zenkping: SO_BINDTODEVICE " << device << ": No such device\n";
            return 2;
        }
        if (state == Interface::kDisabled) {
            context.err << "zenkping: connect: Network is unreachable\n";
            return 2;
        }
    }

    // A name is resolved the way every program of the host resolves names.
    std::string address = target;
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    addrinfo* found = nullptr;
    const std::string bare = target.substr(0, target.find('%'));
    if (::getaddrinfo(bare.c_str(), nullptr, &hints, &found) != 0) {
        hints.ai_flags = 0;
        hints.ai_socktype = SOCK_DGRAM;
        if (::getaddrinfo(target.c_str(), nullptr, &hints, &found) != 0) {
            context.err << "zenkping: unknown host " << target << "\n";
            return 2;
        }
        char text[INET6_ADDRSTRLEN] = {};
        ::getnameinfo(found->ai_addr, found->ai_addrlen, text, sizeof text, nullptr, 0, NI_NUMERICHOST);
        address = text;
    }
    if (found) ::freeaddrinfo(found);

    // One echo a second, as a real ping sends them: a reply is printed as it comes, and for an address
    // that does not answer the last echo is waited for (10 s unless "-W" says otherwise).
    const bool answers = Answers(address);
    context.out << "PING " << target << " (" << address << "): 56 data bytes" << std::endl;
    if (answers) {
        for (int i = 0; i < count; ++i) {
            if (i > 0) std::this_thread::sleep_for(std::chrono::seconds(1));
            context.out << "64 bytes from " << address << ": icmp_seq=" << i << " ttl=64 time=0.041 ms"
                        << std::endl;
        }
    } else {
        std::this_thread::sleep_for(std::chrono::seconds(count - 1 + linger));
    }
    context.out << "\n--- " << target << " ping statistics ---\n"
                << count << " packets transmitted, " << (answers ? count : 0) << " packets received, "
                << (answers ? "0" : "100") << "% packet loss" << std::endl;
    return answers ? 0 : 1;
}

}  // namespace KovoSim::Host
