// The user selection page: pick a directory and type a user.
#pragma once

void UserSelection(const char* document);
