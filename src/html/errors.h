// Error and diagnostic pages.
#pragma once

// An error fragment (alert and go back, noscript text, optional link) inside
// a page whose header and head the caller has written.
void DoError(const char* message, const char* returnURL);
// A whole page showing `xml` as text.
void DumpXML(const char* xml);
// A whole page (or a redirect) for a document that could not be read;
// `errorPosition` points into `xml` where reading stopped.
void InvalidXML(const char* xml, const char* errorPosition);
