// Reads the update document that the program sends to LXRAdminWrite:
//
//   <User name="DN">
//       <Group name="GROUP" member="1"/>            (GROUP: identifier or DN)
//       <Attribute name="NAME"/>                     (clear a history)
//       <Attribute name="NAME">
//           <Value>raw text</Value>  or  <Value/>
//       </Attribute>
//   </User>
//
// The program inserts names and values without escaping, so values may hold
// "<", "&" and quotation marks: the text is read by its fixed layout, not as
// XML. In a document of several lines a value runs raw up to the last
// "</Value>" on its line (the page writes one value per line, so a posted
// value cannot close its element and open others); in a document on one line
// up to the next "</Value>". Names and attribute values run up to the next
// quotation mark. Between elements any blanks, tabs, CR and LF are allowed,
// or none (the command line joins the file's lines).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "status.h"

namespace lxrapi {

struct GroupUpdate {
    std::string name;    // as posted: the group's identifier or DN, maybe percent-encoded
    std::string member;  // "1" add, "0" remove (anything else is refused later)
};

struct AttributeUpdate {
    std::string name;
    std::vector<std::string> values;  // "" for <Value/>; none for <Attribute .../>
    bool selfClosing = false;         // written <Attribute name="..."/>
};

struct UpdateDocument {
    std::string userDn;
    std::vector<GroupUpdate> groups;          // in document order
    std::vector<AttributeUpdate> attributes;  // in document order
};

// Fails with kBadRequest and a message giving the byte offset of the fault
// (in words: the message must not hold markup), or naming an element name
// that holds a character the pages cannot show (page_text.h; DNs may hold an
// apostrophe or a backslash).
Status ParseUpdateDocument(std::string_view text, UpdateDocument* document);

}  // namespace lxrapi
