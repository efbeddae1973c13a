#include "config_image.h"

#include <elf.h>
#include <link.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <type_traits>
#include <vector>

#include "cache_dir.h"

namespace lxrapi {
namespace {

// Raised whenever the layout below changes in a way the build identity would
// not show (it always does today; the number says so in the file as well).
constexpr uint32_t kImageFormat = 1;
constexpr char kMagic[8] = {'L', 'X', 'R', 'C', 'O', 'N', 'F', '\n'};

template <typename T, typename S>
inline constexpr bool kIs = std::is_same_v<std::remove_const_t<S>, T>;

// Every field of every configuration struct, in the image's order: the one
// list that both the writer and the reader walk (S is const for the writer).
// Each struct is unpacked whole, so a field added to one of them stops this
// from compiling until it is listed here: no field can be silently dropped
// from the image.
template <typename S, typename F>
void EachField(S& s, F& f) {
    if constexpr (kIs<NameSet, S>) {
        auto& [all, names, dns] = s;
        f(all), f(names), f(dns);
    } else if constexpr (kIs<GroupConfig, S>) {
        auto& [id, dn, prompt, reason] = s;
        f(id), f(dn), f(prompt), f(reason);
    } else if constexpr (kIs<DirectoryConfig, S>) {
        auto& [id, name, store, base, naming, groups, line] = s;
        f(id), f(name), f(store), f(base), f(naming), f(groups), f(line);
    } else if constexpr (kIs<LdapConfig, S>) {
        auto& [url, bindDn, passwordFile, passwordEnv, startTls, caFile, verifyCertificate,
               timeoutMs, audit, auxiliaryClass, serverPolicy, defaultPolicy, accessLog, policyBase,
               line] = s;
        f(url), f(bindDn), f(passwordFile), f(passwordEnv), f(startTls), f(caFile);
        f(verifyCertificate), f(timeoutMs), f(audit), f(auxiliaryClass), f(serverPolicy);
        f(defaultPolicy), f(accessLog), f(policyBase), f(line);
    } else if constexpr (kIs<PasswordRules, S>) {
        auto& [minLength, maxLength, minDigits, minUpper, minLower, minOther, rejectUserName,
               scheme] = s;
        f(minLength), f(maxLength), f(minDigits), f(minUpper), f(minLower), f(minOther);
        f(rejectUserName), f(scheme);
    } else if constexpr (kIs<Policy, S>) {
        auto& [maxFailures, passwordExpireDays, inactivityDays, password] = s;
        f(maxFailures), f(passwordExpireDays), f(inactivityDays), f(password);
    } else if constexpr (kIs<Role, S>) {
        auto& [name, administrators, directories, read, write, groupsRead, groupsWrite, line] = s;
        f(name), f(administrators), f(directories), f(read), f(write), f(groupsRead);
        f(groupsWrite), f(line);
    } else if constexpr (kIs<Config, S>) {
        auto& [path, adminStore, busyTimeoutMs, historyLimit, policy, directories, roles, ldap] = s;
        f(path), f(adminStore), f(busyTimeoutMs), f(historyLimit), f(policy), f(directories);
        f(roles), f(ldap);
    } else {
        static_assert(sizeof(S) == 0, "a configuration struct the image does not know");
    }
}

// Numbers in the machine's own order: an image never leaves the machine, and
// the build identity ties it to one architecture anyway.
class ImageWriter {
  public:
    void operator()(bool b) { out_.push_back(b ? '\1' : '\0'); }
    void operator()(int v) { Raw(&v, sizeof v); }
    void operator()(uint32_t v) { Raw(&v, sizeof v); }
    void operator()(std::string_view s) {
        (*this)(static_cast<uint32_t>(s.size()));
        out_.append(s);
    }
    void operator()(const std::string& s) { (*this)(std::string_view(s)); }
    template <typename T>
    void operator()(const std::vector<T>& items) {
        (*this)(static_cast<uint32_t>(items.size()));
        for (const T& item : items) (*this)(item);
    }
    template <typename S>
    void operator()(const S& s) {
        EachField(s, *this);
    }
    void Raw(const void* p, size_t n) { out_.append(static_cast<const char*>(p), n); }
    std::string& out() { return out_; }

  private:
    std::string out_;
};

// Consumes the image from the front; the first fault stops all later reads.
class ImageReader {
  public:
    explicit ImageReader(std::string_view in) : in_(in) {}

    bool ok() const { return ok_; }
    bool done() const { return ok_ && in_.empty(); }

    void operator()(bool& b) {
        std::string_view byte = Take(1);
        if (ok_ && byte[0] != '\0' && byte[0] != '\1') ok_ = false;
        if (ok_) b = byte[0] == '\1';
    }
    void operator()(int& v) { Raw(&v, sizeof v); }
    void operator()(uint32_t& v) { Raw(&v, sizeof v); }
    void operator()(std::string_view& s) {
        uint32_t n = 0;
        (*this)(n);
        s = Take(n);
    }
    void operator()(std::string& s) {
        std::string_view view;
        (*this)(view);
        if (ok_) s.assign(view);
    }
    template <typename T>
    void operator()(std::vector<T>& items) {
        uint32_t n = 0;
        (*this)(n);
        // Each item takes a byte at least: a count beyond the rest is damage,
        // and must not become a huge allocation.
        if (n > in_.size()) ok_ = false;
        if (!ok_) return;
        items.assign(n, T());
        for (T& item : items)
            if (ok_) (*this)(item);
    }
    template <typename S>
    void operator()(S& s) {
        if (ok_) EachField(s, *this);
    }
    void Raw(void* p, size_t n) {
        std::string_view bytes = Take(n);
        if (ok_) std::memcpy(p, bytes.data(), n);
    }
    std::string_view Take(size_t n) {
        if (!ok_ || n > in_.size()) {
            ok_ = false;
            return {};
        }
        std::string_view part = in_.substr(0, n);
        in_.remove_prefix(n);
        return part;
    }

  private:
    std::string_view in_;
    bool ok_ = true;
};

struct BuildIdSearch {
    uintptr_t address;
    std::string id;
};

// Called by dl_iterate_phdr for each loaded object: in the one whose
// segments hold `address`, finds the NT_GNU_BUILD_ID note and stops.
int FindBuildId(dl_phdr_info* info, size_t, void* data) {
    auto* search = static_cast<BuildIdSearch*>(data);
    bool here = false;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& p = info->dlpi_phdr[i];
        if (p.p_type == PT_LOAD && search->address - (info->dlpi_addr + p.p_vaddr) < p.p_memsz)
            here = true;
    }
    if (!here) return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& p = info->dlpi_phdr[i];
        if (p.p_type != PT_NOTE) continue;
        const size_t align = p.p_align > 4 ? p.p_align : 4;
        auto pad = [align](size_t n) { return (n + align - 1) / align * align; };
        const char* note = reinterpret_cast<const char*>(info->dlpi_addr + p.p_vaddr);
        const char* end = note + p.p_memsz;
        while (static_cast<size_t>(end - note) >= sizeof(ElfW(Nhdr))) {
            ElfW(Nhdr) header;
            std::memcpy(&header, note, sizeof header);
            const char* name = note + sizeof header;
            const char* desc = name + pad(header.n_namesz);
            if (desc > end || static_cast<size_t>(end - desc) < header.n_descsz) break;
            if (header.n_type == NT_GNU_BUILD_ID && header.n_namesz == 4 &&
                std::memcmp(name, "GNU", 4) == 0) {
                search->id.assign(desc, header.n_descsz);
                return 1;
            }
            note = desc + pad(header.n_descsz);
        }
    }
    return 1;
}

// The GNU build identity of the object this code is linked into (the shared
// library, or a program that links the library statically): a new build of
// the library never takes an older build's image. Empty when the object
// carries none, and then no image is read or written.
const std::string& BuildId() {
    static const std::string id = [] {
        BuildIdSearch search{reinterpret_cast<uintptr_t>(&FindBuildId), {}};
        dl_iterate_phdr(FindBuildId, &search);
        return search.id;
    }();
    return id;
}

uint64_t Checksum(std::string_view bytes) {
    return static_cast<uint64_t>(std::hash<std::string_view>()(bytes));
}

}  // namespace

std::string ConfigImageName(const std::string& path) {
    char name[16];
    std::snprintf(name, sizeof name, "config-%02x",
                  static_cast<unsigned>(std::hash<std::string_view>()(path) & 0xff));
    return name;
}

// magic, format, build identity, path, text, the Config's fields, and a
// checksum of all that.
std::string EncodeConfigImage(std::string_view text, const std::string& path,
                              const Config& config) {
    ImageWriter w;
    w.Raw(kMagic, sizeof kMagic);
    w(kImageFormat);
    w(std::string_view(BuildId()));
    w(std::string_view(path));
    w(text);
    w(config);
    uint64_t sum = Checksum(w.out());
    w.Raw(&sum, sizeof sum);
    return std::move(w.out());
}

bool DecodeConfigImage(std::string_view image, std::string_view text, const std::string& path,
                       Config* config) {
    uint64_t sum = 0;
    if (image.size() < sizeof kMagic + sizeof sum) return false;
    std::string_view body = image.substr(0, image.size() - sizeof sum);
    std::memcpy(&sum, image.data() + body.size(), sizeof sum);
    ImageReader r(body);
    uint32_t format = 0;
    std::string_view build, imagePath, imageText;
    bool header = r.Take(sizeof kMagic) == std::string_view(kMagic, sizeof kMagic);
    r(format), r(build), r(imagePath), r(imageText);
    if (!header || !r.ok() || format != kImageFormat || build != BuildId() || imagePath != path ||
        imageText != text || Checksum(body) != sum)
        return false;
    r(*config);
    return r.done();
}

Status ParseConfigCached(std::string_view text, const std::string& path, Config* config) {
    if (BuildId().empty()) return ParseConfig(text, path, config);
    int dir = OpenCacheDir();
    const std::string name = ConfigImageName(path);
    std::string image;
    if (dir >= 0 && ReadCacheFile(dir, name, &image) &&
        DecodeConfigImage(image, text, path, config)) {
        ::close(dir);
        return Status::OK();
    }
    Status s = ParseConfig(text, path, config);
    if (s.ok() && dir >= 0) WriteCacheFile(dir, name, EncodeConfigImage(text, path, *config));
    if (dir >= 0) ::close(dir);
    return s;
}

}  // namespace lxrapi
