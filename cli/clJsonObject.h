// SPDX-License-Identifier: Apache-2.0
// An object of JSON on one line, made member by member. What the program writes is described by
// docs/countersign-output.schema.json.
//
// All characters are ASCII: what is not, and what would be invisible or change a terminal, is escaped. Names of members
// are those of the program and need no escapes.
#ifndef COUNTERSIGN_CL_JSON_OBJECT_H
#define COUNTERSIGN_CL_JSON_OBJECT_H

#include "cli/clMessage.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <vector>

class clJsonObject
{
public:
    // Bytes that are no UTF-8 become U+FFFD.
    clJsonObject& add(const char* pName, const gtString& text);
    clJsonObject& addNumber(const char* pName, std::size_t number);
    clJsonObject& addFlag(const char* pName, bool flag);
    clJsonObject& addObject(const char* pName, const clJsonObject& object);
    clJsonObject& addMessages(const char* pName, const std::vector<clMessage>& messages);

    // A file's name, which may be any bytes. If it is UTF-8 it is a text. If not, the member's name gets "Base64" at
    // its end, and the value is the bytes in base64, so that no name is changed or mistaken for another.
    clJsonObject& addFileName(const char* pName, const gtString& path);

    // The members of the other one behind these.
    clJsonObject& append(const clJsonObject& other);

    // With the brackets, without a line end.
    gtString text() const;

private:
    nlohmann::ordered_json _object = nlohmann::ordered_json::object();
};

#endif
