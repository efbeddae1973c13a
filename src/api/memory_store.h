// A Store held in memory, for unit tests: the same semantics as the SQLite
// store (transactions all or nothing, DNs compared by key), no persistence.
#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "store.h"

namespace lxrapi {

class MemoryStore : public Store {
  public:
    explicit MemoryStore(std::string name = "memory") : name_(std::move(name)) {}
    Status Read(const std::function<Status(StoreReader&)>& body) override;
    Status Write(const std::function<Status(StoreWriter&)>& body) override;
    const std::string& name() const override { return name_; }

    struct Data {
        std::vector<Entry> entries;
        std::vector<AuditRecord> audit;
    };

  private:
    std::string name_;
    std::mutex mutex_;
    Data data_;
};

// Provides MemoryStores by path; Add makes one available.
class MemoryStoreProvider : public StoreProvider {
  public:
    MemoryStore* Add(const std::string& path);
    Status Open(const std::string& path, Store** store) override;

  private:
    std::map<std::string, std::unique_ptr<MemoryStore>> stores_;
};

}  // namespace lxrapi
