#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ZenkCtl::Store {
class HostStore;
}

namespace Kovo {

class Frame;

// Everything the system-action screens do to the host beyond drawing: programs, shell command lines,
// questions to the host tool, events, the live-core thread and the wait for the host to go down. The
// screens take one by reference so that the order of these calls can be observed; the console itself
// always uses System().
class ActionHost {
  public:
    explicit ActionHost(std::shared_ptr<ZenkCtl::Store::HostStore> store);
    virtual ~ActionHost();
    ActionHost(const ActionHost&) = delete;
    ActionHost& operator=(const ActionHost&) = delete;

    // The host the console runs on.
    static ActionHost& System();

    // A program with its argument vector (argv[0] included); the exit status, or -1 when it could not run.
    virtual int Run(const std::string& program, const std::vector<std::string>& argv);
    // The same, keeping at most `capacity` bytes of each output stream.
    virtual int RunCaptured(const std::string& program, const std::vector<std::string>& argv,
                            std::string& output, std::string& error, int capacity);
    // A command line through "/bin/sh -c".
    virtual int Shell(const std::string& commandLine);
    // The host's auto-stop sequence, then the virtual machines off (forced unless graceful).
    virtual void PowerOffVms(bool graceful);
    // A yes/no question to the host tool, asked as the console's own user.
    virtual bool Query(const char* commandPath);
    // A command line through the platform's runner, waited for, output discarded.
    virtual int Exec(const std::string& commandLine);
    virtual void PostEvent(const std::string& text);
    // Starts `body` on a thread that is never joined; 0, or the error number of the failure.
    virtual int StartThread(void* (*body)(void*));

    // For screens whose work is done once the host goes down, which ends this process: reads and
    // discards keys meanwhile. Callers loop on it.
    virtual void WaitForHostDown(Frame* frame);
    // The same without reading anything, so nothing typed can reach the console any more.
    virtual void SpinForHostDown();

    // The configuration store the platform objects of these screens work on.
    const std::shared_ptr<ZenkCtl::Store::HostStore>& Store() const { return _store; }

  private:
    std::shared_ptr<ZenkCtl::Store::HostStore> _store;
};

}  // namespace Kovo
