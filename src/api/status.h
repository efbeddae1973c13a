// Results of the library's operations: a result code of the administration
// API and a message for the administrator, in the manner of a Status object.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "lxrapi.h"
#include "translation.h"

namespace lxrapi {

// The API's result codes; every failure inside the library carries one of
// these, so that the C boundary can return it unchanged.
enum Code : int {
    kOk = LXRAPI_OK,
    kAccessDenied = LXRAPI_ACCESS_DENIED,
    kAdminUnreadable = LXRAPI_ADMIN_UNREADABLE,
    kUserUnreadable = LXRAPI_USER_UNREADABLE,
    kBadRequest = LXRAPI_BAD_REQUEST,
    kUpdateFailed = LXRAPI_UPDATE_FAILED,
    kBufferTooSmall = LXRAPI_BUFFER_TOO_SMALL,
    kUnreachable = LXRAPI_UNREACHABLE,
};

class Status {
  public:
    Status() = default;
    Status(int code, std::string message) : code_(code), message_(std::move(message)) {}
    // A message the caller's language can be applied to at the C boundary;
    // message() says it in English.
    Status(int code, Text text)
        : code_(code),
          message_(InEnglish(text)),
          text_(std::make_shared<const Text>(std::move(text))) {}

    static Status OK() { return Status(); }
    static Status AccessDenied(std::string m) { return Status(kAccessDenied, std::move(m)); }
    static Status AccessDenied(Text t) { return Status(kAccessDenied, std::move(t)); }
    static Status AdminUnreadable(std::string m) { return Status(kAdminUnreadable, std::move(m)); }
    static Status AdminUnreadable(Text t) { return Status(kAdminUnreadable, std::move(t)); }
    static Status UserUnreadable(std::string m) { return Status(kUserUnreadable, std::move(m)); }
    static Status UserUnreadable(Text t) { return Status(kUserUnreadable, std::move(t)); }
    static Status BadRequest(std::string m) { return Status(kBadRequest, std::move(m)); }
    static Status BadRequest(Text t) { return Status(kBadRequest, std::move(t)); }
    static Status UpdateFailed(std::string m) { return Status(kUpdateFailed, std::move(m)); }
    static Status UpdateFailed(Text t) { return Status(kUpdateFailed, std::move(t)); }
    static Status Unreachable(std::string m) { return Status(kUnreachable, std::move(m)); }
    static Status Unreachable(Text t) { return Status(kUnreachable, std::move(t)); }

    bool ok() const { return code_ == kOk; }
    int code() const { return code_; }
    const std::string& message() const { return message_; }
    // The message as a Text, or null when it was written in English only.
    const Text* text() const { return text_.get(); }

  private:
    int code_ = kOk;
    std::string message_;
    std::shared_ptr<const Text> text_;
};

}  // namespace lxrapi
