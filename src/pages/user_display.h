// The user display page: one user's password-services state with its
// controls, the SubmitForm() script and the hidden PostForm.
#pragma once

#include "state/request_state.h"

void UserDisplay(const char* document, int readResult);
