#include "pages/attribute_list.h"

#include "pages/xml_reader.h"

namespace {

// The word of a boolean or membership value; blanks around it are allowed.
bool ReadWord(const char*& cursor, const AttrSlot& slot) {
    if (Consume(cursor, "true")) {
        if (slot.kind == AttrSlot::kBool) *slot.flag = true;
        if (slot.kind == AttrSlot::kMember) *slot.member = Membership::kMember;
    } else if (Consume(cursor, "false")) {
        if (slot.kind == AttrSlot::kBool) *slot.flag = false;
        if (slot.kind == AttrSlot::kMember) *slot.member = Membership::kNotMember;
    } else if (slot.kind == AttrSlot::kMember && Consume(cursor, "restricted")) {
        *slot.member = Membership::kUnknown;
    } else {
        return false;
    }
    cursor = LTrim(cursor);
    return true;
}

// The value after the opening quotation mark, up to the closing one.
bool ReadValue(const char*& cursor, AttrSlot& slot) {
    cursor = LTrim(cursor);
    if (slot.kind == AttrSlot::kText || slot.kind == AttrSlot::kFlag) {
        const char* close = std::strchr(cursor, '"');
        if (close == nullptr) close = cursor + std::strlen(cursor);
        if (slot.kind == AttrSlot::kText)
            slot.text->append(cursor, static_cast<size_t>(close - cursor));
        if (slot.kind == AttrSlot::kFlag) *slot.flag = true;
        cursor = close;
    } else if (!ReadWord(cursor, slot)) {
        return false;
    }
    return *cursor == '"';
}

}  // namespace

bool ReadAttributeList(const char*& cursor, AttrSlot* slots, size_t count, const char* end) {
    while (*cursor != '\0' && !LookingAt(cursor, end)) {
        AttrSlot* slot = nullptr;
        for (size_t i = 0; i < count && slot == nullptr; ++i) {
            if (LookingAt(cursor, slots[i].literal)) slot = &slots[i];
        }
        if (slot == nullptr) return false;
        // Once only; a text that is still empty may be supplied again.
        bool repeat = slot->kind == AttrSlot::kText ? !slot->text->empty() : slot->seen;
        if (repeat) return false;
        slot->seen = true;
        cursor += std::strlen(slot->literal);
        if (!ReadValue(cursor, *slot)) return false;
        cursor = LTrim(cursor + 1);
    }
    return *cursor != '\0';
}
