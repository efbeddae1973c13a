// The one request of this process, CGI or command line.
#pragma once

int KvMainEnvUTF8(int argc, char** argv, char** envp);
