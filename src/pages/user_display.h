// The user display page: one user's password-services state with its
// controls, the SubmitForm() script and the hidden PostForm.
#pragma once

#include <string>

// The User element's `disabled` text, empty when absent.
extern std::string DisabledReason;
// Set by ProcessSection after a heading; cleared before each group or
// attribute is read.
extern bool bNewSection;

void UserDisplay(const char* document, int readResult);
