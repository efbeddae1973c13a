#include "memory_store.h"

#include "message.h"
#include "text.h"

namespace lxrapi {

namespace {

class MemoryTransaction : public StoreWriter {
  public:
    explicit MemoryTransaction(MemoryStore::Data* data) : data_(data) {}

    Status Get(std::string_view dn, Entry* entry, bool* found) override {
        const Entry* e = FindEntry(dn);
        *found = e != nullptr;
        if (e) *entry = *e;
        return Status::OK();
    }
    Status FindByValue(std::string_view base, const std::vector<std::string>& attributes,
                       std::string_view value, std::vector<std::string>* dns) override {
        dns->clear();
        for (const Entry& e : data_->entries) {
            if (!IsBelow(e.dn, base)) continue;
            bool match = false;
            for (const std::string& a : attributes)
                for (const std::string& v : e.Values(a)) match = match || EqualsNoCase(v, value);
            if (match) dns->push_back(e.dn);
        }
        return Status::OK();
    }
    Status IsMember(std::string_view group, std::string_view member, bool* result) override {
        *result = false;
        if (const Entry* g = FindEntry(group))
            for (const std::string& v : g->Values("member"))
                *result = *result || DnKey(v) == DnKey(member);
        return Status::OK();
    }
    Status ListDns(std::vector<std::string>* dns) override {
        dns->clear();
        for (const Entry& e : data_->entries) dns->push_back(e.dn);
        return Status::OK();
    }
    Status ListAudit(std::string_view user, std::vector<AuditRecord>* records) override {
        records->clear();
        for (const AuditRecord& r : data_->audit)
            if (user.empty() || DnKey(r.user) == DnKey(user)) records->push_back(r);
        return Status::OK();
    }
    Status Put(const Entry& entry) override {
        if (Entry* e = FindEntry(entry.dn))
            *e = entry;
        else
            data_->entries.push_back(entry);
        return Status::OK();
    }
    Status Replace(std::string_view dn, std::string_view attribute,
                   const std::vector<std::string>& values) override {
        Entry* e = FindEntry(dn);
        if (!e) return Status::UpdateFailed("No entry " + Quoted(dn));
        e->Set(attribute, values);
        return Status::OK();
    }
    Status AppendAudit(const AuditRecord& record) override {
        data_->audit.push_back(record);
        data_->audit.back().id = static_cast<long long>(data_->audit.size());
        return Status::OK();
    }

  private:
    Entry* FindEntry(std::string_view dn) {
        std::string key = DnKey(dn);
        for (Entry& e : data_->entries)
            if (DnKey(e.dn) == key) return &e;
        return nullptr;
    }
    MemoryStore::Data* data_;
};

}  // namespace

Status MemoryStore::Read(const std::function<Status(StoreReader&)>& body) {
    std::lock_guard<std::mutex> lock(mutex_);
    MemoryTransaction tx(&data_);
    return body(tx);
}

Status MemoryStore::Write(const std::function<Status(StoreWriter&)>& body) {
    std::lock_guard<std::mutex> lock(mutex_);
    Data copy = data_;  // all or nothing: the body works on a copy
    MemoryTransaction tx(&copy);
    Status s = body(tx);
    if (s.ok()) data_ = std::move(copy);
    return s;
}

MemoryStore* MemoryStoreProvider::Add(const std::string& path) {
    auto& slot = stores_[path];
    if (!slot) slot = std::make_unique<MemoryStore>(path);
    return slot.get();
}

Status MemoryStoreProvider::Open(const std::string& path, Store** store) {
    auto it = stores_.find(path);
    if (it == stores_.end())
        return Status::Unreachable("Directory store " + Shown(path) +
                                   " cannot be opened: no such store");
    *store = it->second.get();
    return Status::OK();
}

}  // namespace lxrapi
