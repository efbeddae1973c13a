// Command-line mode: read a user or write an update file.
#pragma once

#include <string>
#include <vector>

struct CMDLINE {
    std::string adminPath;            // -A
    std::string adminCreds;           // -C
    std::string userPath;             // -R
    std::string xmlPath;              // -W
    std::vector<std::string> macros;  // name=value arguments, in order
};

// Fills `cmd`; true when the usage must be shown and the run end, with
// `syntaxError` telling a faulty command line from a request for help.
bool Parse(int argc, char** argv, bool& syntaxError, CMDLINE& cmd);

// The whole command-line run; the result is the exit status.
int CommandLine(int argc, char** argv);
