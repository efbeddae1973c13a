// Markup the two user pages and their rows share.
#pragma once

// Opens the centred dialog box with its title bar holding `title`, and the
// inner table of class `innerClass` that the page's rows go into.
void WriteDialogOpen(const char* title, const char* innerClass);

// The label cell of a row and the opening of its data cell; an empty label
// lets the data cell take both columns.
void WriteLabelCell(const char* label);
