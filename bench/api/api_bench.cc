// In-process cost of the API calls against the demo directory: the store and
// the configuration are opened by the first call and kept, as a long-lived
// host would; a CGI process pays the opening once per request on top.
//
//   lxrapi_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "lxrapi.h"
#include "sqlite_store.h"
#include "tool/ldif_io.h"

namespace {

constexpr const char* kHelpdesk = "LDAP://ldap.example.com/uid=hd.lead,ou=admins,o=example";

// Builds the demo directory and its configuration in a private folder.
class DemoDirectory {
  public:
    DemoDirectory() {
        char pattern[] = "/tmp/lxrapi-bench-XXXXXX";
        folder_ = mkdtemp(pattern);
        std::string store = folder_ + "/demo.db";
        std::unique_ptr<lxrapi::SqliteStore> s;
        std::vector<lxrapi::Entry> entries;
        if (!lxrapi::SqliteStore::Create(store, &s).ok() ||
            !lxrapi::ReadLdifFile(LXR_SOURCE_DIR "/examples/demo.ldif", &entries).ok() ||
            !s->Write([&](lxrapi::StoreWriter& w) {
                  for (const lxrapi::Entry& e : entries) w.Put(e);
                  return lxrapi::Status::OK();
              }).ok())
            std::abort();
        std::ifstream in(LXR_SOURCE_DIR "/examples/lxrapi.toml");
        std::stringstream text;
        text << in.rdbuf();
        std::ofstream(folder_ + "/lxrapi.toml")
            << std::regex_replace(text.str(), std::regex("\\.\\./var/demo\\.db"), store);
        setenv("LXRAPI_CONFIG", (folder_ + "/lxrapi.toml").c_str(), 1);
        setenv("LXR_NOW", "1780315200", 1);
    }
    ~DemoDirectory() { std::system(("rm -rf '" + folder_ + "'").c_str()); }

  private:
    std::string folder_;
};

DemoDirectory& Demo() {
    static DemoDirectory demo;
    return demo;
}

void Read(benchmark::State& state, const char* userPath) {
    Demo();
    std::vector<char> reply(65536), message(8192);
    for (auto _ : state) {
        message[0] = '\0';
        int rc = LXRAdminRead("helpdesk", kHelpdesk, userPath, reply.data(), 65535, message.data(),
                              8192, "LXRAdmin=YES", "EN", "US", nullptr);
        if (rc < 0) state.SkipWithError(message.data());
        benchmark::DoNotOptimize(rc);
    }
}

void BM_ReadByName(benchmark::State& state) {
    Read(state, "staff/alice");
}
void BM_ReadByDn(benchmark::State& state) {
    Read(state, "staff/uid=rupert,ou=staff,o=example");
}

void BM_GetDirectory(benchmark::State& state) {
    Demo();
    std::vector<char> reply(65536), message(8192);
    for (auto _ : state) {
        int rc = LXRAdminGetDirectory("helpdesk", reply.data(), 65535, message.data(), 8192, "EN",
                                      "US", nullptr);
        if (rc < 0) state.SkipWithError(message.data());
    }
}

// A reset of the failure counter, alternating so that every write changes
// the entry and is audited.
void BM_WriteFailureCount(benchmark::State& state) {
    Demo();
    std::vector<char> message(8192);
    const std::string documents[2] = {
        "<User name=\"uid=judy,ou=staff,o=example\">\n    <Attribute name=\"kvlxrFailureCount\">\n"
        "        <Value>0 20260601120000Z</Value>\n    </Attribute>\n</User>\n",
        "<User name=\"uid=judy,ou=staff,o=example\">\n    <Attribute name=\"kvlxrFailureCount\">\n"
        "        <Value>1 20260601120000Z 10.0.0.9</Value>\n    </Attribute>\n</User>\n"};
    int i = 0;
    for (auto _ : state) {
        int rc = LXRAdminWrite("helpdesk", kHelpdesk, documents[i++ & 1].c_str(), message.data(),
                               8192, "LXRAdmin=YES", "EN", "US", nullptr);
        if (rc != 0) state.SkipWithError(message.data());
    }
}

}  // namespace

BENCHMARK(BM_ReadByName)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReadByDn)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_GetDirectory)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WriteFailureCount)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
