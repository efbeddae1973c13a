#include "driver/command_line.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "driver/api_boundary.h"
#include "i18n/language.h"
#include "platform/console.h"
#include "platform/formatter.h"
#include "state/request_state.h"

namespace {

constexpr const char* kUsage =
    "Syntax:\n"
    "        LXRAdmin -A<adminPath> -C<adminCreds> -R<userPath>|-W<xmlPath> "
    "[<macro1>=<value1>]\n"
    "Where:\n"
    "        -A<adminPath>    Specifies the Admin USER (in directory)\n"
    "        -C<adminCreds>   Specifies the KV Admin credentials\n"
    "        -R<userPath>     Specifies the user to read\n"
    "        -W<xmlPath>      Specifies the file to write";

constexpr int kTextSize = 8192;     // one translated console message
constexpr int kMessageSize = 1024;  // the API's message buffer
constexpr int kReplySize = 32768;   // the API's reply buffer, all of it offered
constexpr int kLineSize = 4096;     // one line of the update file

// Stores `value` into `field` unless the field already holds a value.
bool Assign(std::string& field, const char* value) {
    if (!field.empty()) return false;
    field = value;
    return true;
}

// "LXRAdmin=YES" followed by ";" and each macro, in the order given.
std::string Context(const CMDLINE& cmd) {
    std::string context = "LXRAdmin=YES";
    for (const std::string& macro : cmd.macros) {
        context += ";";
        context += macro;
    }
    return context;
}

// Prints an API result with its message to standard output.
void Report(int result, const char* message) {
    char text[kTextSize];
    // The key carries a trailing blank and the default a leading one; both
    // are kept so that existing catalogues still match.
    LangWithID->Translate(text, sizeof text, "KV-LXR-12152 ", message, result,
                          " Error {1} returned.\nMessage: {0}");
    KvPrintBufferToConsole(text, 1);
}

int ReadUser(const CMDLINE& cmd, const std::string& context) {
    static char reply[kReplySize];
    char message[kMessageSize] = {};
    int result =
        LXRAdminRead(cmd.adminCreds.c_str(), cmd.adminPath.c_str(), cmd.userPath.c_str(), reply,
                     kReplySize, message, kMessageSize, context.c_str(), "EN", "US", Qualifier);
    if (result >= 0 && message[0] == '\0') {
        prtFormatter.printf("%s\n", reply);
        return 0;
    }
    if (message[0] == '\0') GetMsg(result, message, kMessageSize);
    Report(result, message);
    return result;
}

// Reads the update file as one line: its lines are joined with nothing
// between them, so the document reaches the API as a single line. A line that
// does not fit the line buffer fails the stream and ends the reading there;
// the document then holds what was read up to that point.
bool ReadDocument(const char* path, std::string& document, int& error) {
    std::ifstream in(path);
    if (!in.is_open()) {
        error = errno;
        return false;
    }
    char line[kLineSize];
    while (!in.eof()) {
        std::memset(line, 0, sizeof line);
        in.getline(line, sizeof line);
        size_t length = std::strlen(line);
        if (length > 0 && line[length - 1] == '\r') line[--length] = '\0';
        document.append(line, length);
        if (in.fail()) break;
    }
    return true;
}

int WriteFile(const CMDLINE& cmd, const std::string& context) {
    std::string document;
    int error = 0;
    if (!ReadDocument(cmd.xmlPath.c_str(), document, error)) {
        char text[kTextSize];
        LangWithID->Translate(text, sizeof text, "KV-LXR-12153", cmd.xmlPath.c_str(),
                              std::strerror(error), error,
                              "Unable to open: {0} ({2})\n       Message: {1}");
        KvPrintBufferToError(text, 1);
        return -2;
    }
    char message[kMessageSize] = {};
    int result = LXRAdminWrite(cmd.adminCreds.c_str(), cmd.adminPath.c_str(), document.c_str(),
                               message, kMessageSize, context.c_str(), "EN", "US", Qualifier);
    if (message[0] == '\0') GetMsg(result, message, kMessageSize);
    Report(result, message);
    return result;
}

}  // namespace

// Every argument is looked at, whatever went wrong before, so that a help
// request anywhere on the line is honoured. -A and -C count as given once
// they hold a value, as -R and -W do.
bool Parse(int argc, char** argv, bool& syntaxError, CMDLINE& cmd) {
    bool result = false;
    auto fault = [&] {
        syntaxError = true;
        result = true;
    };
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (arg[0] != '-' && arg[0] != '/') {
            if (std::strchr(arg, '=') != nullptr) {
                cmd.macros.emplace_back(arg);
            } else {
                fault();
            }
            continue;
        }
        char option = arg[1];
        if (option == '?' || option == 'H') {
            result = true;
            continue;
        }
        if (option != 'A' && option != 'C' && option != 'R' && option != 'W') {
            fault();
            continue;
        }
        // The value is attached (-Auid=a) or the next argument, whatever it
        // looks like (in "-A -C" the "-C" is the administrator path).
        const char* value = arg + 2;
        if (*value == '\0') {
            if (i + 1 >= argc) {
                fault();
                continue;
            }
            value = argv[++i];
        }
        bool accepted = false;
        switch (option) {
            case 'A':
                accepted = Assign(cmd.adminPath, value);
                break;
            case 'C':
                accepted = Assign(cmd.adminCreds, value);
                break;
            case 'R':
                accepted = cmd.xmlPath.empty() && Assign(cmd.userPath, value);
                break;
            case 'W':
                accepted = cmd.userPath.empty() && Assign(cmd.xmlPath, value);
                break;
        }
        if (!accepted) fault();
    }
    if (!result && (cmd.adminPath.empty() || cmd.adminCreds.empty() ||
                    (cmd.userPath.empty() && cmd.xmlPath.empty()))) {
        fault();
    }
    return result;
}

int CommandLine(int argc, char** argv) {
    CMDLINE cmd;
    bool syntaxError = false;
    if (Parse(argc, argv, syntaxError, cmd)) {
        char text[kTextSize];
        Lang->Translate(text, sizeof text, "KV-LXR-12150", kUsage);
        KvPrintBufferToError(text, 1);
        if (!syntaxError) return 0;
        Lang->Translate(text, sizeof text, "KV-LXR-12151", "\a");
        KvPrintBufferToError(text, 0);
        return 2;
    }
    std::string context = Context(cmd);
    if (!cmd.userPath.empty()) return ReadUser(cmd, context);
    return WriteFile(cmd, context);
}
