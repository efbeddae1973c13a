// The configuration image: the parsed and checked Config of one
// configuration text, kept in the cache folder (cache_dir.h) so that the
// processes after the first need not parse the TOML again. A CGI process
// reads the configuration at every request, and parsing and checking it costs
// more than the rest of reading a user from the store.
//
// An image belongs to exactly one input of ParseConfig: the text itself and
// the path it was read from (the path is in messages and anchors relative
// stores), and to the build of the library that made it, since another build
// may parse the same text differently. Nothing else goes into a parse: the
// LDAP password and everything the configuration names are read when used.
#pragma once

#include <string>
#include <string_view>

#include "config.h"

namespace lxrapi {

// ParseConfig(text, path, config), answered from the image of the same text
// and path when the cache folder holds one made by this build of the library.
// Otherwise the text is parsed, and a configuration without faults is kept
// as the image for the next process; one with faults never is, so its message
// always comes from the parse. A cache folder that cannot be used only means
// that the text is parsed.
Status ParseConfigCached(std::string_view text, const std::string& path, Config* config);

// The name, in the cache folder, of the image of the configuration at `path`.
// Paths share one of 256 names, so the folder stays small whatever paths
// tests and sites use; two configurations on one name replace each other's
// image and are parsed more often, never mixed up.
std::string ConfigImageName(const std::string& path);

// The image of `config`, the result of parsing `text` read from `path`.
std::string EncodeConfigImage(std::string_view text, const std::string& path, const Config& config);

// Reads back an image: true, with `config` filled, only when the image is
// whole and undamaged, was made by this build of the library, and belongs to
// `text` at `path`. On false `config` holds no meaning.
bool DecodeConfigImage(std::string_view image, std::string_view text, const std::string& path,
                       Config* config);

}  // namespace lxrapi
