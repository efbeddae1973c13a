// Console input and output for the CGI body and the command line.
#pragma once

// Reads up to size - 1 bytes from standard input into `buffer` and ends them
// with a NUL. Stops early at end of input. Returns the number of bytes read.
int KvGetStringInputFromConsole(int size, char* buffer, int flag);

// Writes `text` to standard output (Console) or standard error (Error),
// followed by a line end when `flag` is 1. Standard output is the stream the
// formatter writes to, so the two stay in order.
void KvPrintBufferToConsole(const char* text, int flag);
void KvPrintBufferToError(const char* text, int flag);
