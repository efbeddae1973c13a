#include "bulk.h"

#include <strings.h>

#include <cstdio>

#include "driver/api_boundary.h"
#include "driver/identity.h"
#include "driver/update_document.h"
#include "fields/dates.h"
#include "fields/field_model.h"
#include "i18n/language.h"
#include "pages/elements.h"

const BulkAction kBulkActions[3] = {
    {BulkKind::kUnlock, "unlock", {"kvlxrFailureCount", "kvfpsLockoutCounter"}},
    {BulkKind::kEnable, "enable", {"kvlxrDisableUntil", "kvlxrDisableAfter"}},
    {BulkKind::kMustChange, "mustchange", {"kvlxrImmediateChange", nullptr}},
};

namespace {

constexpr int kMessageSize = 8192;
constexpr int kReplyRoom = 65535;
char reply[kReplyRoom + 1];

// The reset-to-now value of a counter: "0 " and the stamp of `now`.
std::string ResetValue(time_t now) {
    struct tm utc = {};
    PA::GMTIME(&now, &utc);
    char text[64];
    std::snprintf(text, sizeof text, "0 %04d%02d%02d%02d%02d%02dZ", utc.tm_year + 1900,
                  utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return text;
}

// The rows of one document, collected by the reader callbacks.
std::vector<CurrentValue>* collected = nullptr;

bool SkipSection(const char*& cursor) {
    SectionElement section;
    return ReadSection(cursor, section);
}

bool SkipGroup(const char*& cursor) {
    GroupElement group;
    return ReadGroup(cursor, group);
}

bool CollectAttribute(const char*& cursor) {
    AttributeElement attribute;
    if (!ReadAttribute(cursor, attribute)) return false;
    CurrentValue value;
    value.name = attribute.name;
    value.write = attribute.write;
    if (!attribute.values.empty()) value.value = attribute.values.front();
    collected->push_back(value);
    return true;
}

bool IsBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

}  // namespace

const BulkAction* FindBulkAction(const std::string& word) {
    for (const BulkAction& action : kBulkActions) {
        if (word == action.word) return &action;
    }
    return nullptr;
}

bool BulkFields(const BulkAction& action, const std::string& dn,
                const std::vector<CurrentValue>& attributes, time_t now, FieldMap& fields) {
    fields.clear();
    for (const char* name : action.attributes) {
        if (name == nullptr) continue;
        for (const CurrentValue& current : attributes) {
            if (strcasecmp(current.name.c_str(), name) != 0 || !current.write) continue;
            bool set = !IsBlank(current.value);
            switch (action.kind) {
                case BulkKind::kUnlock:
                    // A counter already at zero has nothing to reset.
                    if (set && current.value.compare(0, 2, "0 ") != 0 && current.value != "0") {
                        fields[current.name] = ResetValue(now);
                    }
                    break;
                case BulkKind::kEnable:
                    if (set) fields[current.name] = "";
                    break;
                case BulkKind::kMustChange:
                    if (!set) fields[current.name] = "YES via LXRAdmin";
                    break;
            }
        }
    }
    if (fields.empty()) return false;
    fields["LXR-USERDN"] = dn;
    return true;
}

bool ReadCurrentValues(const char* document, std::string& dn, std::vector<CurrentValue>& values) {
    const char* cursor = document;
    UserElement user;
    if (!ReadUserStart(document, cursor, user)) return false;
    values.clear();
    collected = &values;
    bool ok = ReadUserRows(cursor, UserRowReaders{SkipSection, SkipGroup, CollectAttribute});
    collected = nullptr;
    dn = user.name;
    return ok;
}

std::vector<BulkOutcome> RunBulkAction(const BulkAction& action,
                                       const std::vector<std::string>& userPaths,
                                       const char* identity, const std::string& adminPath) {
    std::vector<BulkOutcome> outcomes;
    std::string context = AdministratorContext();
    for (const std::string& userPath : userPaths) {
        BulkOutcome outcome;
        outcome.userPath = userPath;
        char message[kMessageSize] = {};
        reply[0] = '\0';
        int result =
            LXRAdminRead(identity, adminPath.c_str(), userPath.c_str(), reply, kReplyRoom, message,
                         kMessageSize, context.c_str(), Lang->ISO(), Lang->Country(), Qualifier);
        std::string dn;
        std::vector<CurrentValue> values;
        FieldMap fields;
        std::string document;
        if (result < 0) {
            if (message[0] == '\0') GetMsg(result, message, kMessageSize);
        } else if (!ReadCurrentValues(reply, dn, values)) {
            GetMsg(-4, message, kMessageSize);
        } else if (!BulkFields(action, dn, values, Now, fields)) {
            outcome.result = BulkOutcome::kUnchanged;
        } else if (BuildUpdateDocument(fields, document)) {
            result =
                LXRAdminWrite(identity, adminPath.c_str(), document.c_str(), message, kMessageSize,
                              context.c_str(), Lang->ISO(), Lang->Country(), Qualifier);
            if (result == 0) {
                outcome.result = BulkOutcome::kChanged;
            } else if (message[0] == '\0') {
                GetMsg(result, message, kMessageSize);
            }
        }
        outcome.message = message;
        outcomes.push_back(outcome);
    }
    return outcomes;
}
