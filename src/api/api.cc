// The C boundary of the administration API. Everything behind it is C++;
// here the caller's buffers are filled, never past their sizes, and no
// exception gets out.
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "config.h"
#include "lxrapi.h"
#include "message.h"
#include "service.h"
#include "store_factory.h"
#include "translation.h"
#include "user_list.h"

namespace {

using lxrapi::Say;
using lxrapi::Status;
using lxrapi::Translator;

// Copies `text`, made safe for the program's pages (SafeMessage), into the
// caller's message buffer, cut to size - 1 bytes at a character boundary.
// Every message leaves the library through here, translated before it is
// made safe, so that no translation can break the page either.
void PutMessage(char* message, int size, const std::string& text) {
    if (!message || size <= 0) return;
    std::string safe = lxrapi::SafeMessage(text);
    std::string_view cut = lxrapi::CutAtCharacter(safe, static_cast<size_t>(size) - 1);
    std::memcpy(message, cut.data(), cut.size());
    message[cut.size()] = '\0';
}

int Fail(const Status& status, const Translator& words, char* message, int messageSize) {
    PutMessage(message, messageSize, status.text() ? words(*status.text()) : status.message());
    return status.code();
}

// Copies a reply with its terminating zero, or fails with -6 when it does not
// fit; a reply that does not fit leaves an empty text behind.
int PutReply(const std::string& document, char* reply, int replySize, const Translator& words,
             char* message, int messageSize) {
    if (!reply || replySize <= 0 || document.size() + 1 > static_cast<size_t>(replySize)) {
        if (reply && replySize > 0) reply[0] = '\0';
        return Fail(Status(lxrapi::kBufferTooSmall,
                           lxrapi::Words(Say::ReplyTooLarge, std::to_string(document.size() + 1),
                                         std::to_string(replySize < 0 ? 0 : replySize))),
                    words, message, messageSize);
    }
    std::memcpy(reply, document.data(), document.size());
    reply[document.size()] = '\0';
    return 0;
}

template <typename Fn>
int Guarded(char* message, int messageSize, Fn body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        PutMessage(message, messageSize, "Out of memory");
    } catch (const std::exception& e) {
        PutMessage(message, messageSize, "Internal error: " + lxrapi::Shown(e.what(), 200));
    } catch (...) {
        PutMessage(message, messageSize, "Internal error");
    }
    return lxrapi::kUnreachable;
}

std::string Text(const char* p) {
    return p ? p : "";
}

}  // namespace

extern "C" int LXRAdminGetDirectory(const char* identity, char* reply, int replySize, char* message,
                                    int messageSize, const char* language, const char* country,
                                    const char*) {
    return Guarded(message, messageSize, [&] {
        Translator words(language, country);
        std::shared_ptr<const lxrapi::Config> config;
        Status s = lxrapi::CurrentConfig(&config);
        std::string document;
        if (s.ok()) s = lxrapi::GetDirectories(*config, Text(identity), &document);
        if (!s.ok()) return Fail(s, words, message, messageSize);
        int rc = PutReply(document, reply, replySize, words, message, messageSize);
        if (rc == 0) PutMessage(message, messageSize, "");
        return rc;
    });
}

extern "C" int LXRAdminRead(const char* identity, const char* administratorPath,
                            const char* userPath, char* reply, int replySize, char* message,
                            int messageSize, const char*, const char* language, const char* country,
                            const char*) {
    return Guarded(message, messageSize, [&] {
        Translator words(language, country);
        std::shared_ptr<const lxrapi::Config> config;
        Status s = lxrapi::CurrentConfig(&config);
        std::string document;
        int count = 0;
        if (s.ok()) {
            lxrapi::ConfiguredStores stores(*config);
            // The room for the document itself; its terminating zero takes the last byte.
            size_t room = replySize > 0 ? static_cast<size_t>(replySize) - 1 : 0;
            s = lxrapi::ReadUser(*config, stores, Text(identity), Text(administratorPath),
                                 Text(userPath), room, &document, &count, words);
        }
        // A reply that cannot be made to fit leaves an empty text, as PutReply does.
        if (s.code() == lxrapi::kBufferTooSmall && reply && replySize > 0) reply[0] = '\0';
        if (!s.ok()) return Fail(s, words, message, messageSize);
        int rc = PutReply(document, reply, replySize, words, message, messageSize);
        if (rc != 0) return rc;
        PutMessage(message, messageSize, "");
        return count;
    });
}

extern "C" int LXRAdminWrite(const char* identity, const char* administratorPath,
                             const char* updateDocument, char* message, int messageSize,
                             const char*, const char* language, const char* country, const char*) {
    return Guarded(message, messageSize, [&] {
        Translator words(language, country);
        std::shared_ptr<const lxrapi::Config> config;
        Status s = lxrapi::CurrentConfig(&config);
        if (s.ok()) {
            if (!updateDocument) {
                s = Status::BadRequest(lxrapi::Words(Say::NoUpdateDocument));
            } else {
                lxrapi::ConfiguredStores stores(*config);
                s = lxrapi::WriteUser(*config, stores, Text(identity), Text(administratorPath),
                                      updateDocument);
            }
        }
        if (!s.ok()) return Fail(s, words, message, messageSize);
        PutMessage(message, messageSize, "");
        return 0;
    });
}

extern "C" int LXRAdminList(const char* identity, const char* administratorPath,
                            const char* listRequest, char* reply, int replySize, char* message,
                            int messageSize, const char* language, const char* country,
                            const char*) {
    return Guarded(message, messageSize, [&] {
        Translator words(language, country);
        if (reply && replySize > 0) reply[0] = '\0';
        std::shared_ptr<const lxrapi::Config> config;
        Status s = lxrapi::CurrentConfig(&config);
        std::string document;
        int count = 0;
        if (s.ok() && !listRequest) s = Status::BadRequest(lxrapi::Words(Say::NoListRequest));
        if (s.ok()) {
            lxrapi::ConfiguredStores stores(*config);
            size_t room = replySize > 0 ? static_cast<size_t>(replySize) - 1 : 0;
            s = lxrapi::ListUsers(*config, stores, Text(identity), Text(administratorPath),
                                  listRequest, room, &document, &count, words);
        }
        if (!s.ok()) return Fail(s, words, message, messageSize);
        int rc = PutReply(document, reply, replySize, words, message, messageSize);
        if (rc != 0) return rc;
        PutMessage(message, messageSize, "");
        return count;
    });
}
