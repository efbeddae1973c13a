// Error and diagnostic pages. Texts from the caller and from the API are
// written as they are; only DumpXML and InvalidXML escape "<" and ">" of the
// document they show.
#pragma once

// The fragment of every page that tells the administrator `message` and moves
// on: a script that alerts it and then runs `navigate` (one statement, written
// as given), and for browsers without scripts the message as a heading with,
// when `linkHref` is not null, a link to it labelled `linkText`. `linkHref`
// and `linkText` go into the page as given; the caller escapes them.
void AlertAndNavigate(const char* message, const char* navigate, const char* linkHref,
                      const char* linkText);

// An error fragment inside a page whose header and head the caller has
// written: a script that alerts `message` and goes back, and for browsers
// without scripts the message as a heading with, when `returnURL` is not
// null, a link to it labelled with KV-LXR-12013 through LangWithID.
void DoError(const char* message, const char* returnURL);

// The ending every failure shares: a redirect to `message` when it is a URL
// (so that the API or a catalogue entry can send the browser to a page of the
// site's own), else a whole error page whose status is `statusKey` translated
// through Lang into `status` (statusSize bytes) and whose text is `message`.
// `status` may be the message's own buffer: the page then shows the status.
void ErrorPageOrRedirect(const char* message, const char* statusKey, char* status, int statusSize);

// A whole page ("KV-LXR-12200 " status) showing `xml` as text, "<" and ">"
// escaped, "&" not. Header and head are written only if not written yet.
void DumpXML(const char* xml);

// For a document that could not be read. When KV-LXR-15000 (LangWithID)
// translates to a URL, a redirect to it; otherwise a whole page with the
// KV-LXR-12503 status showing `xml` and then the text from `errorPosition`
// (a pointer into `xml`; null shows nothing) to the end. The message itself
// is not shown on the page. Header and head are written only if not yet.
void InvalidXML(const char* xml, const char* errorPosition);
