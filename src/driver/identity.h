// Who is asking: the administrator the web agent names in the request's
// headers, and where a post came from. Shared by every program of the
// service, so that they all accept and refuse the same requests.
#pragma once

#include <string>

// The administrator's DN: HTTP_KV_USERDN, else HTTP_KVUSERDN. Null when
// neither is set; may be empty when one is set and empty.
const char* AdministratorDN();

// The administrator's own entry: HTTP_USERPATH as it stands, else
// namespace + "//" + server + "/" + DN. False when neither can be formed.
bool AdministratorPath(std::string& path);

// "LXRAdmin=YES", with ";" and the agent's context header when it has one.
// Built afresh for every call, as the header could differ.
std::string AdministratorContext();

// True when the server named its own origin (LXR_ORIGIN) and this post comes
// from another one: the browser says so in Sec-Fetch-Site, or sends an Origin
// that is not ours ("null" included). A post without either header (older
// browsers, scripts on the server) is not refused here.
bool ForeignPost();

// True when the server named its own origin (LXR_ORIGIN) and this post says
// it comes from exactly there: an Origin header equal to it (without regard
// to case) and no cross-site Sec-Fetch-Site. Stricter than !ForeignPost():
// a post without an Origin header does not pass.
bool OwnOriginPost();
