// The state of the one request this process serves. A CGI process serves a
// single request from top to bottom, so the program keeps what every layer
// shares as process-wide variables; all of them are declared here, each with
// who writes it and when. Everything else is passed as an argument.
//
// This is the lowest layer above the platform: every other folder may read
// it. The translators are declared with their class left incomplete, so that
// this header names no layer above it.
#pragma once

#include <strings.h>

#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "platform/formatter.h"

class CLanguage;

// Orders field names without regard to case (despite its name it is a
// less-than), so "Password" and "PASSWORD" are one field.
struct my_equal {
    bool operator()(const std::string& a, const std::string& b) const {
        return strcasecmp(a.c_str(), b.c_str()) < 0;
    }
};

using FieldMap = std::map<std::string, std::string, my_equal>;

// One hidden field of PostForm: the attribute name and its initial value.
struct OUTPUTFIELD {
    std::string name;
    std::string value;
};

// --- Request input -----------------------------------------------------------

// Query arguments. Written by ParseQueryString when the request starts (and
// for a redirect's unclosed "<NAME" by Redirect); read by every page.
extern FieldMap Args;
// Posted form fields. Written once by GetFields in a POST; read by the update
// document builder.
extern FieldMap PostData;

// --- Translators ---------------------------------------------------------------

// Created by SetLanguage (CGI) or the command-line start, once, and never
// freed; null before that, and pages then write English defaults.
extern CLanguage* Lang;        // page text, titles, status lines
extern CLanguage* LangWithID;  // error and validation messages, with "[key] "

// --- Output ------------------------------------------------------------------

// Every page byte goes through this one formatter.
extern CKvFormatter prtFormatter;
// The character set every Content-Type header names. Written once by
// SetCharSet before any output; empty before that.
extern std::string charsetUsed;
// Set by HTTPHeader once the header block is out; the error page tests it so
// the block is never written twice.
extern bool bOutputHTTPHeader;
// Set by HTMLHeader at the end of the head; a second call writes nothing.
extern bool bOutputHTMLHeader;

// --- What the user display page collects while its rows are written ------------

// Hidden fields of PostForm, added through AddOutputField by the group rows,
// the attribute rows and the edit handlers; read by the page writer at the end.
extern std::vector<OUTPUTFIELD> OutputFields;
// Script expressions, true when a control's entry is invalid; added by the
// edit handlers, read by the page writer for SubmitForm().
extern std::vector<std::string> DataEdits;
// Script statements that copy DisplayForm controls into PostForm; added by
// the edit handlers, read by the page writer for SubmitForm().
extern std::vector<std::string> DataMoves;

// Appends one hidden field to OutputFields.
void AddOutputField(std::string name, std::string value);

// The fixed labels every handler prints. Written once per page by FillTags
// (through Lang), before the page head, whose script library carries
// tagDisabled; read by the handlers.
extern std::string tagLocal, tagComment, tagWhen, tagTimes, tagDays, tagDay, tagWeeks, tagWeek,
    tagIP, tagClear, tagNotSet, tagNow, tagStatus, tagYES, tagNO, tagUseConfig, tagNever,
    tagForever, tagDisabled, tagRedisable;

// The time the process started. Written once by InitNow at start-up; every
// reset-to-now choice of a page and the script library's Now() use it, so all
// of them carry the same instant.
extern time_t Now;
// Sets Now to the current time, or to LXR_NOW (decimal seconds since the
// epoch) when that is set, so that tests and golden pages are reproducible.
void InitNow();

// The User element's `disabled` text, empty when absent. Written by
// UserDisplay when it reads the root, read by its disabled row.
extern std::string DisabledReason;

// --- The API boundary --------------------------------------------------------

// Passed as the last argument of every API call. Nothing assigns it, so it is
// null for the life of the process; the API has always been called so.
extern const char* Qualifier;

// Puts every variable above back as it is at process start (Qualifier is
// never assigned and stays null), and the output profile to the default one.
// For tests, which serve many requests in one process. The translators are
// not freed: whoever installed them owns them.
void ResetRequestState();
