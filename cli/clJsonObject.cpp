// SPDX-License-Identifier: Apache-2.0
#include "cli/clJsonObject.h"

#include "host/signing/hoBase64.h"
#include "platform/baseTools/gtUtf8.h"

clJsonObject& clJsonObject::add(const char* pName, const gtString& text)
{
    _object[pName] = text.asStdString();
    return *this;
}

clJsonObject& clJsonObject::addNumber(const char* pName, std::size_t number)
{
    _object[pName] = number;
    return *this;
}

clJsonObject& clJsonObject::addFlag(const char* pName, bool flag)
{
    _object[pName] = flag;
    return *this;
}

clJsonObject& clJsonObject::addObject(const char* pName, const clJsonObject& object)
{
    _object[pName] = object._object;
    return *this;
}

clJsonObject& clJsonObject::addMessages(const char* pName, const std::vector<clMessage>& messages)
{
    auto& values = _object[pName] = nlohmann::ordered_json::array();
    for (const clMessage& message : messages)
    {
        clJsonObject object;
        object.add("level", message._isWarning ? "warning" : "error").add("text", message._text);
        values.push_back(object._object);
    }
    return *this;
}

clJsonObject& clJsonObject::addFileName(const char* pName, const gtString& path)
{
    return gtIsUtf8(path.asStringView())
               ? add(pName, path)
               : add(gtString(pName).append("Base64").asCharArray(), hoBase64(path.asStringView()));
}

clJsonObject& clJsonObject::append(const clJsonObject& other)
{
    _object.update(other._object);
    return *this;
}

gtString clJsonObject::text() const
{
    return _object.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
}
