#include "system/ActionHost.h"

#include <pthread.h>

#include <thread>

#include "app/CommandRunner.h"
#include "app/KeyReader.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/ZenkCtlExec.h"
#include "app/HostEvent.h"

namespace Kovo {

namespace {

std::vector<const char*> ArgvOf(const std::vector<std::string>& argv) {
    std::vector<const char*> pointers;
    pointers.reserve(argv.size() + 1);
    for (const std::string& arg : argv) pointers.push_back(arg.c_str());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ActionHost::ActionHost(std::shared_ptr<ZenkCtl::Store::HostStore> store) : _store(std::move(store)) {}

ActionHost::~ActionHost() = default;

ActionHost& ActionHost::System() {
    static ActionHost host(ZenkCtl::Store::HostStore::System());
    return host;
}

int ActionHost::Run(const std::string& program, const std::vector<std::string>& argv) {
    return RunCommand(program.c_str(), ArgvOf(argv).data());
}

int ActionHost::RunCaptured(const std::string& program, const std::vector<std::string>& argv,
                            std::string& output, std::string& error, int capacity) {
    std::string outBuffer(static_cast<size_t>(capacity), '\0'),
        errBuffer(static_cast<size_t>(capacity), '\0');
    int outLength = capacity, errLength = capacity;
    const int status = RunCommand(program.c_str(), ArgvOf(argv).data(), outBuffer.data(), &outLength,
                                  errBuffer.data(), &errLength);
    // Each text ends where the capture ended.
    output.assign(outBuffer.data(), static_cast<size_t>(outLength));
    error.assign(errBuffer.data(), static_cast<size_t>(errLength));
    return status;
}

int ActionHost::Shell(const std::string& commandLine) {
    return RunShell(commandLine);
}

void ActionHost::PowerOffVms(bool graceful) {
    Kovo::PowerOffVms(graceful);
}

bool ActionHost::Query(const char* commandPath) {
    return HclCmdQuery(commandPath);
}

int ActionHost::Exec(const std::string& commandLine) {
    return ZenkCtl::Util::ZenkCtl_Exec(commandLine, false, true, false);
}

void ActionHost::PostEvent(const std::string& text) {
    HostEvent::Post(text);
}

int ActionHost::StartThread(void* (*body)(void*)) {
    pthread_attr_t attributes;
    int rc = pthread_attr_init(&attributes);
    if (rc != 0) return rc;
    // Nobody ever waits for it, so it releases itself when done.
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    rc = pthread_create(&thread, &attributes, body, nullptr);
    pthread_attr_destroy(&attributes);
    return rc;
}

void ActionHost::WaitForHostDown(Frame* frame) {
    GetKey(frame, true);
}

// Not even the signal pipe is read: the host ends the process from outside.
void ActionHost::SpinForHostDown() {
    std::this_thread::yield();
}

}  // namespace Kovo
