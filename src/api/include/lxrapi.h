/*
 * The password-services administration API: calls that exchange small XML
 * documents with the directory. Three serve the one-user page; LXRAdminList
 * serves the lists of users that need attention.
 *
 * Buffers: the caller owns every buffer. `reply` receives a zero-terminated
 * document of at most replySize - 1 bytes; `message` (zero-filled by the
 * caller) may receive a zero-terminated message, cut to messageSize - 1
 * bytes. Nothing is ever written past replySize or messageSize.
 *
 * Results: 0 or more is success (LXRAdminRead: the number of attributes in
 * the reply; LXRAdminList: the number of users in it); negative values are
 * failures, named below. The values are part of the interface: callers built
 * against any version compare against them.
 */
#ifndef LXRAPI_H
#define LXRAPI_H

#ifdef __cplusplus
extern "C" {
#endif

#define LXRAPI_EXPORT __attribute__((visibility("default")))

enum LXRAPIResult {
    LXRAPI_OK = 0,
    LXRAPI_ACCESS_DENIED = -1,    /* the identity may not administer this user */
    LXRAPI_ADMIN_UNREADABLE = -2, /* the administrator's entry cannot be read */
    LXRAPI_USER_UNREADABLE = -3,  /* the user's entry cannot be read */
    LXRAPI_BAD_REQUEST = -4,      /* a request or update document is malformed */
    LXRAPI_UPDATE_FAILED = -5,    /* the store refused the update; nothing changed */
    LXRAPI_BUFFER_TOO_SMALL = -6, /* the reply does not fit into replySize - 1 bytes */
    LXRAPI_UNREACHABLE = -7       /* configuration or store cannot be reached */
};

LXRAPI_EXPORT int LXRAdminGetDirectory(const char* identity, char* reply, int replySize,
                                       char* message, int messageSize, const char* language,
                                       const char* country, const char* qualifier);

LXRAPI_EXPORT int LXRAdminRead(const char* identity, const char* administratorPath,
                               const char* userPath, char* reply, int replySize, char* message,
                               int messageSize, const char* context, const char* language,
                               const char* country, const char* qualifier);

LXRAPI_EXPORT int LXRAdminWrite(const char* identity, const char* administratorPath,
                                const char* updateDocument, char* message, int messageSize,
                                const char* context, const char* language, const char* country,
                                const char* qualifier);

/*
 * One bounded page of the users of one directory that are on a list, or
 * whose name starts with a prefix. listRequest:
 *   <ListRequest directory="ID" list="locked|disabled|expired|expiring|idle|mustchange|search"
 *                days="N" start="PREFIX" size="N" continuation="TOKEN"/>
 * reply:
 *   <UserList directory="ID" list="..." continuation="TOKEN or empty" writable="NAMES">
 *   <User name="..." dn="..." userPath="ID/DN" lastLogin="..."
 * failures="N"><Reason>...</Reason></User>
 *   </UserList>
 * The continuation of a reply fetches the next page; empty means the list
 * is complete. docs/api.md gives every rule of both documents.
 */
LXRAPI_EXPORT int LXRAdminList(const char* identity, const char* administratorPath,
                               const char* listRequest, char* reply, int replySize, char* message,
                               int messageSize, const char* language, const char* country,
                               const char* qualifier);

#ifdef __cplusplus
}
#endif

#endif /* LXRAPI_H */
