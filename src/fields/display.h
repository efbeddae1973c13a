// Display handlers: the read-only form of one attribute value.
#pragma once

void outStandard(const char* value, int index, bool first, bool last);
void outImmediateChange(const char* value, int index, bool first, bool last);
void outDateComment(const char* value, int index, bool first, bool last);
void outDateIP(const char* value, int index, bool first, bool last);
void outCountDateIP(const char* value, int index, bool first, bool last);
void outSomethingDateIP(const char* value, int index, bool first, bool last);
void outCountComment(const char* value, int index, bool first, bool last);
void outDaysOverride(const char* value, int index, bool first, bool last);
void outDateStatusIP(const char* value, int index, bool first, bool last);
void outHistory(const char* value, int index, bool first, bool last);
void outGenRedirect(const char* value, int index, bool first, bool last);
