#include "config_image.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <tuple>

#include "test_support.h"

namespace lxrapi {

// Field-by-field equality, kept apart from the image's own list of fields so
// that the round trip is checked against something it does not share. Each
// struct is unpacked whole: a new field stops this from compiling until it
// is compared too.
namespace {
auto Fields(const NameSet& s) {
    const auto& [a, b, c] = s;
    return std::tie(a, b, c);
}
auto Fields(const GroupConfig& s) {
    const auto& [a, b, c, d] = s;
    return std::tie(a, b, c, d);
}
auto Fields(const DirectoryConfig& s) {
    const auto& [a, b, c, d, e, f, g] = s;
    return std::tie(a, b, c, d, e, f, g);
}
auto Fields(const LdapConfig& s) {
    const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o] = s;
    return std::tie(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o);
}
auto Fields(const PasswordRules& s) {
    const auto& [a, b, c, d, e, f, g, h] = s;
    return std::tie(a, b, c, d, e, f, g, h);
}
auto Fields(const Policy& s) {
    const auto& [a, b, c, d] = s;
    return std::tie(a, b, c, d);
}
auto Fields(const Role& s) {
    const auto& [a, b, c, d, e, f, g, h] = s;
    return std::tie(a, b, c, d, e, f, g, h);
}
auto Fields(const Config& s) {
    const auto& [a, b, c, d, e, f, g, h] = s;
    return std::tie(a, b, c, d, e, f, g, h);
}
}  // namespace

// Found by argument-dependent lookup from the comparisons of the tuples and
// vectors, for the structs that have their Fields.
template <typename T, typename = decltype(Fields(std::declval<const T&>()))>
bool operator==(const T& a, const T& b) {
    return Fields(a) == Fields(b);
}

namespace {

std::string Source(const std::string& relative) {
    std::string text;
    EXPECT_TRUE(ReadConfigFile(std::string(LXR_SOURCE_DIR) + "/" + relative, &text).ok())
        << relative;
    return text;
}

// Every configuration the project ships or tests with comes back from its
// image as it was parsed.
TEST(ConfigImageTest, EveryConfigurationRoundTrips) {
    const std::string texts[] = {
        testing::kConfigText,
        Source("examples/lxrapi.toml"),
        Source("examples/ldap/lxrapi.toml"),
        Source("fuzz/api/corpus/fuzz_api_config/demo.toml"),
        Source("fuzz/api/corpus/fuzz_api_config/ldap.toml"),
    };
    for (const std::string& text : texts) {
        Config parsed, back;
        Status s = ParseConfig(text, "/etc/lxr/lxrapi.toml", &parsed);
        ASSERT_TRUE(s.ok()) << s.message();
        std::string image = EncodeConfigImage(text, "/etc/lxr/lxrapi.toml", parsed);
        ASSERT_TRUE(DecodeConfigImage(image, text, "/etc/lxr/lxrapi.toml", &back)) << text;
        EXPECT_TRUE(back == parsed) << text;
        Config other = parsed;
        other.ldap.emplace_back();
        EXPECT_FALSE(other == parsed);  // the comparison itself sees a difference
    }
}

class ConfigImageCacheTest : public ::testing::Test {
  protected:
    void SetUp() override {
        cache_ = dir_.File("cache");
        ASSERT_EQ(::mkdir(cache_.c_str(), 0700), 0);
        setenv("LXRAPI_CACHE_DIR", cache_.c_str(), 1);
        image_ = cache_ + "/" + ConfigImageName(kPath);
        ASSERT_TRUE(ParseConfig(testing::kConfigText, kPath, &parsed_).ok());
    }
    void TearDown() override { unsetenv("LXRAPI_CACHE_DIR"); }

    // The history limit ParseConfigCached answers with: 50 parsed, 7 from
    // the planted image.
    int Loaded(const std::string& text = testing::kConfigText) {
        Config c;
        Status s = ParseConfigCached(text, kPath, &c);
        EXPECT_TRUE(s.ok()) << s.message();
        return c.historyLimit;
    }
    std::string Planted() {
        Config planted = parsed_;
        planted.historyLimit = 7;
        return EncodeConfigImage(testing::kConfigText, kPath, planted);
    }
    void Put(const std::string& file, const std::string& bytes) {
        ::unlink(file.c_str());
        std::ofstream(file, std::ios::binary) << bytes;
        ::chmod(file.c_str(), 0600);
    }
    bool ImageValid(const std::string& text = testing::kConfigText) {
        std::string image;
        Config c;
        return ReadConfigFile(image_, &image).ok() && DecodeConfigImage(image, text, kPath, &c);
    }

    static constexpr const char* kPath = "/etc/lxr/lxrapi.toml";
    testing::TempDir dir_;
    std::string cache_, image_;
    Config parsed_;
};

TEST_F(ConfigImageCacheTest, AnUnchangedTextIsTakenFromItsImage) {
    EXPECT_EQ(Loaded(), 50);
    EXPECT_TRUE(ImageValid());  // kept by the first parse
    Put(image_, Planted());
    EXPECT_EQ(Loaded(), 7);
    // Any change to the text, however small, is parsed and replaces the image.
    std::string changed = std::string(testing::kConfigText) + "\n";
    EXPECT_EQ(Loaded(changed), 50);
    EXPECT_TRUE(ImageValid(changed));
    // So is the same text read from another path.
    Config c;
    ASSERT_TRUE(ParseConfigCached(testing::kConfigText, "/etc/lxr/other.toml", &c).ok());
    EXPECT_EQ(c.path, "/etc/lxr/other.toml");
    // A faulty text is never kept, so its message always comes from the parse.
    ::unlink(image_.c_str());
    Status s = ParseConfigCached("broken = [\n", kPath, &c);
    EXPECT_EQ(s.message(), ParseConfig("broken = [\n", kPath, &c).message());
    EXPECT_FALSE(ReadConfigFile(image_, &changed).ok());
}

// A damaged or foreign image is not used, and the parse replaces it.
TEST_F(ConfigImageCacheTest, DamagedOrForeignImagesAreReplaced) {
    const std::string good = Planted();
    auto resum = [](std::string image) {
        uint64_t sum = std::hash<std::string_view>()(
            std::string_view(image).substr(0, image.size() - sizeof sum));
        image.replace(image.size() - sizeof sum, sizeof sum, reinterpret_cast<char*>(&sum),
                      sizeof sum);
        return image;
    };
    auto flip = [](std::string image, size_t at) {
        image[at] ^= 0x20;
        return image;
    };
    struct Case {
        const char* what;
        std::string image;
    } cases[] = {
        {"empty", ""},
        {"cut short", good.substr(0, good.size() - 1)},
        {"a byte changed", flip(good, good.size() / 2)},
        {"another format", resum(flip(good, 8))},
        {"another build", resum(flip(good, 16))},
        {"a byte too many", resum(good + "12345678")},
    };
    for (const Case& c : cases) {
        Put(image_, c.image);
        EXPECT_EQ(Loaded(), 50) << c.what;
        EXPECT_TRUE(ImageValid()) << c.what;
    }
}

// Neither a file nor a folder that someone else could have made or changed
// is used; the text is parsed and nothing is written through a link.
TEST_F(ConfigImageCacheTest, FilesAndFoldersNotOwnedAloneAreNotUsed) {
    const bool root = ::geteuid() == 0;
    std::string elsewhere = dir_.File("elsewhere");
    Put(elsewhere, Planted());
    // Each makes the image and says whether this user can make that case.
    struct FileCase {
        const char* what;
        std::function<bool()> make;
    } files[] = {
        {"a link", [&] { return ::symlink(elsewhere.c_str(), image_.c_str()) == 0; }},
        {"group-writable",
         [&] { return Put(image_, Planted()), ::chmod(image_.c_str(), 0620) == 0; }},
        {"another owner",
         [&] {
             return Put(image_, Planted()), root && ::chown(image_.c_str(), 12345, 12345) == 0;
         }},
    };
    for (const FileCase& c : files) {
        ::unlink(image_.c_str());
        if (c.make()) {
            EXPECT_EQ(Loaded(), 50) << c.what;
        }
    }
    std::string text;
    ASSERT_TRUE(ReadConfigFile(elsewhere, &text).ok());
    EXPECT_EQ(text, Planted());  // the link's target is untouched

    std::string linked = dir_.File("linked"), open = dir_.File("open"),
                theirs = dir_.File("theirs");
    ASSERT_EQ(::symlink(cache_.c_str(), linked.c_str()), 0);
    ASSERT_EQ(::mkdir(open.c_str(), 0770), 0);
    ASSERT_EQ(::chmod(open.c_str(), 0770), 0);
    std::vector<std::string> folders = {dir_.File("missing"), linked, open};
    if (root) {  // only root can give a folder away
        ASSERT_EQ(::mkdir(theirs.c_str(), 0700), 0);
        ASSERT_EQ(::chown(theirs.c_str(), 12345, 12345), 0);
        folders.push_back(theirs);
    }
    ::unlink(image_.c_str());
    for (const std::string& folder : folders) {
        setenv("LXRAPI_CACHE_DIR", folder.c_str(), 1);
        EXPECT_EQ(Loaded(), 50) << folder;
        struct stat st {};
        EXPECT_NE(::stat((folder + "/" + ConfigImageName(kPath)).c_str(), &st), 0) << folder;
    }
}

}  // namespace
}  // namespace lxrapi
