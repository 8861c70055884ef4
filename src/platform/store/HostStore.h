#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <nlohmann/json.hpp>

namespace ZenkCtl::Store {

// The host configuration store: one JSON document shared by every process of the host.
//
// Readers hold a shared lock and writers an exclusive one, both taken with flock() on a lock file beside
// the document (the document itself is replaced by rename, so it cannot carry the lock). A write is a
// complete new file: temp file, fsync, rename over the document, fsync of the directory. A crash at any
// instant therefore leaves either the old or the new document, never a mix and never an empty file.
//
// Every failure (missing, unreadable, malformed or unwritable store) is a HostCtl::Lib::HostCtlException.
class HostStore {
  public:
    static constexpr const char* kHostPath = "/etc/halvor/host.json";

    // The path is fixed on a host; another one is only for tests and tools that act on a host's disk
    // from outside it.
    explicit HostStore(std::string path = kHostPath);

    // The store of this host, shared by every platform object that is built without an explicit store.
    static std::shared_ptr<HostStore> System();

    const std::string& Path() const { return _path; }
    std::string LockPath() const { return _path + ".lock"; }

    // A consistent snapshot of the whole document.
    nlohmann::json Read() const;
    // The same without a copy. The document is parsed only when the file has changed since the last
    // read (its generation says so), so screens that ask many questions of one store pay one parse.
    std::shared_ptr<const nlohmann::json> Snapshot() const;

    // The value at a JSON pointer, or null when the pointer names nothing.
    nlohmann::json Get(const std::string& pointer) const;

    // Read-modify-write under the exclusive lock. When the mutator throws, nothing is written and the
    // exception passes on. An unchanged document is not rewritten.
    void Update(const std::function<void(nlohmann::json&)>& mutate);

    // Replaces the whole document; creates the store when it does not exist yet.
    void Replace(const nlohmann::json& document);

    // Identifies the document as it is now: every write replaces the file, so the token changes with
    // every write. Empty when the store does not exist. Lets objects keep a cached view until it is stale.
    std::string Generation() const;

    // Parses a document as the store does: the text must be one JSON object.
    static nlohmann::json Parse(const std::string& text, const std::string& origin);

  private:
    std::shared_ptr<const nlohmann::json> LoadLocked() const;
    void WriteLocked(const nlohmann::json& document);
    void RemoveStaleTempFiles() const;

    std::string _path;
    // The last document read or written and the generation of the file it came from.
    mutable std::mutex _cacheMutex;
    mutable std::shared_ptr<const nlohmann::json> _cached;
    mutable std::string _cachedGeneration;
};

}  // namespace ZenkCtl::Store
