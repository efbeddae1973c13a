// Results of the library's operations: a result code of the administration
// API and a message for the administrator, in the manner of a Status object.
#pragma once

#include <string>
#include <utility>

namespace lxrapi {

// The API's result codes; every failure inside the library carries one of
// these, so that the C boundary can return it unchanged.
enum Code : int {
    kOk = 0,
    kAccessDenied = -1,
    kAdminUnreadable = -2,
    kUserUnreadable = -3,
    kBadRequest = -4,
    kUpdateFailed = -5,
    kBufferTooSmall = -6,
    kUnreachable = -7,
};

class Status {
  public:
    Status() = default;
    Status(int code, std::string message) : code_(code), message_(std::move(message)) {}

    static Status OK() { return Status(); }
    static Status AccessDenied(std::string m) { return Status(kAccessDenied, std::move(m)); }
    static Status AdminUnreadable(std::string m) { return Status(kAdminUnreadable, std::move(m)); }
    static Status UserUnreadable(std::string m) { return Status(kUserUnreadable, std::move(m)); }
    static Status BadRequest(std::string m) { return Status(kBadRequest, std::move(m)); }
    static Status UpdateFailed(std::string m) { return Status(kUpdateFailed, std::move(m)); }
    static Status Unreachable(std::string m) { return Status(kUnreachable, std::move(m)); }

    bool ok() const { return code_ == kOk; }
    int code() const { return code_; }
    const std::string& message() const { return message_; }

  private:
    int code_ = kOk;
    std::string message_;
};

}  // namespace lxrapi
