// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoTexts.h"

#include "host/messages/hoFilledText.h"
#include "host/messages/hoNumbers.h"
#include "platform/toolkit/gtTextConversion.h"

#include <string>

namespace
{

wxString filled(const wxString& format, const std::vector<std::wstring>& values)
{
    const std::wstring& places = format.ToStdWstring();
    return hoFill(std::wstring_view(places), values);
}

}  // namespace

wxString hoFilledText(const wxString& format, std::initializer_list<wxString> values)
{
    std::vector<std::wstring> texts;
    texts.reserve(values.size());
    for (const wxString& value : values)
    {
        texts.push_back(value.ToStdWstring());
    }
    return filled(format, texts);
}

wxString hoNumber(std::uint64_t number)
{
    return gtTextFromBytes(hoNumberText(number));
}

wxString hoPlainNumber(int number)
{
    return std::to_string(number);
}

unsigned int hoAmountForPlural(std::uint64_t amount)
{
    // The toolkit takes fewer digits. No language looks at more than the last six.
    const std::uint64_t enough = 1000000;
    return static_cast<unsigned int>(amount < enough ? amount : enough + amount % enough);
}

wxString hoCounted(const char* pOne, const char* pMany, std::size_t amount, std::initializer_list<wxString> others)
{
    std::vector<std::wstring> texts = {hoNumber(amount).ToStdWstring()};
    texts.insert(texts.end(), others.size(), std::wstring());
    std::size_t i = 0;
    for (const wxString& other : others)
    {
        texts[++i] = other.ToStdWstring();
    }
    return filled(wxGetTranslation(pOne, pMany, hoAmountForPlural(amount)), texts);
}

wxString hoListed(const std::vector<wxString>& texts)
{
    wxString list;
    for (const wxString& text : texts)
    {
        if (!text.empty())
        {
            // Between two parts of an enumeration.
            list += (list.empty() ? wxString() : _(", ")) + text;
        }
    }
    return list;
}
