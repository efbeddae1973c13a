// The administration API as the program calls it, and the messages for its
// result codes.
#pragma once

#include "lxrapi.h"
#include "state/request_state.h"

// Writes the message for an API result into `buffer`. Callers call it only
// while their message buffer is still empty.
void GetMsg(int result, char* buffer, int size);
