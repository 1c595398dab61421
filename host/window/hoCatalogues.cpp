// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoCatalogues.h"

#include "host/messages/hoLanguage.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"

#include <wx/log.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include <locale.h>

namespace
{
const char* const domain = "countersign";

std::filesystem::path catalogueOf(const gtString& folder, const gtString& language)
{
    return std::filesystem::path(folder.asStdString()) / language.asStdString() / "LC_MESSAGES" /
           (std::string(domain) + ".mo");
}

// One language of one folder. The toolkit's own loader would look at the whole system.
class Loader : public wxTranslationsLoader
{
public:
    Loader(const gtString& folder, const gtString& language) : _folder(folder), _language(language) {}

    // The toolkit may ask for the language with an encoding behind it.
    wxMsgCatalog* LoadCatalog(const wxString& name, const wxString&) override
    {
        // A damaged catalogue is none.
        const wxLogNull silence;
        return wxMsgCatalog::CreateFromFile(gtPathTextFromBytes(catalogueOf(_folder, _language).string()), name);
    }
    wxArrayString GetAvailableTranslations(const wxString&) const override
    {
        return wxArrayString(1, {gtTextFromBytes(_language)});
    }

private:
    const gtString _folder;
    const gtString _language;
};

gtString translate(const char* pText)
{
    return gtBytesFromText(wxGetTranslation(pText));
}

gtString translatePlural(const char* pOne, const char* pMany, std::uint64_t amount)
{
    return gtBytesFromText(wxGetTranslation(pOne, pMany, hoAmountForPlural(amount)));
}

bool isPlain(std::string_view locale)
{
    return locale.empty() || locale == "C" || locale == "POSIX";
}

hoNumberMarks marksOfLanguage()
{
    hoNumberMarks marks;
    // Between groups of three digits.
    marks._group = gtBytesFromText(wxGETTEXT_IN_CONTEXT("number", ","));
    // Before the first decimal.
    marks._decimal = gtBytesFromText(wxGETTEXT_IN_CONTEXT("number", "."));
    return marks;
}

// Those of the environment's locale. The program's own stays C in this respect: libraries read numbers from files.
hoNumberMarks marksOfUser()
{
    hoNumberMarks marks = marksOfLanguage();
    const locale_t locale = newlocale(LC_NUMERIC_MASK | LC_CTYPE_MASK, "", locale_t());
    if (locale == locale_t())
    {
        return marks;
    }
    const locale_t before = uselocale(locale);
    const lconv& conventions = *std::localeconv();
    // The locale C has no groups.
    if (*conventions.thousands_sep != '\0' || std::string_view(conventions.decimal_point) != ".")
    {
        marks._group = gtBytesFromText(gtTextFromBytes(conventions.thousands_sep));
        marks._decimal = gtBytesFromText(gtTextFromBytes(conventions.decimal_point));
        marks._sizes = conventions.grouping;
    }
    uselocale(before);
    freelocale(locale);
    return marks;
}

void useLanguage(const hoNumberMarks& marks)
{
    hoLanguage language;
    language._translate = &translate;
    language._translatePlural = &translatePlural;
    language._marks = marks;
    hoSetLanguage(language);
}
}  // namespace

std::vector<gtString> hoLanguagesWanted(std::string_view locale, std::string_view languages)
{
    std::vector<gtString> wanted;
    if (isPlain(locale))
    {
        return wanted;
    }
    const std::string_view list = languages.empty() ? locale : languages;
    for (std::size_t begin = 0; begin <= list.size();)
    {
        const std::size_t end = std::min(list.find(':', begin), list.size());
        const std::string_view name = list.substr(begin, end - begin);
        begin = end + 1;
        if (isPlain(name) || name.substr(0, 2) == "C.")
        {
            continue;
        }
        // language_COUNTRY.encoding@variant
        const std::size_t behindCountry = std::min(name.find_first_of(".@"), name.size());
        const std::string_view country = name.substr(0, behindCountry);
        const std::string_view language = country.substr(0, country.find('_'));
        const std::size_t at = name.find('@');
        if (at != std::string_view::npos)
        {
            wanted.push_back(gtString(country).append(name.substr(at)));
            wanted.push_back(gtString(language).append(name.substr(at)));
        }
        wanted.emplace_back(country);
        wanted.emplace_back(language);
        if (language == "en")
        {
            break;
        }
    }
    return wanted;
}

gtString hoCatalogueFolder(const gtString& program)
{
    const std::filesystem::path folder = std::filesystem::path(program.asStdString()).parent_path();
    return (folder / COUNTERSIGN_CATALOGUES).lexically_normal().string();
}

void hoUseCatalogue(const gtString& folder, const std::vector<gtString>& languages)
{
    auto pTranslations = std::make_unique<wxTranslations>();
    for (const gtString& language : languages)
    {
        std::error_code error;
        if (language == "en")
        {
            break;
        }
        if (std::filesystem::is_regular_file(catalogueOf(folder, language), error))
        {
            pTranslations->SetLoader(new Loader(folder, language));
            pTranslations->SetLanguage(gtTextFromBytes(language));
            pTranslations->AddCatalog(domain);
            break;
        }
    }
    wxTranslations::Set(pTranslations.release());
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the toolkit deletes the translations
    useLanguage(marksOfLanguage());
}

void hoUseLanguageOfUser(const gtString& program)
{
    for (const int category : {LC_CTYPE, LC_COLLATE, LC_MESSAGES, LC_TIME})
    {
        static_cast<void>(std::setlocale(category, ""));
    }
    const char* const pLocale = std::setlocale(LC_MESSAGES, nullptr);
    const char* const pLanguages = std::getenv("LANGUAGE");
    hoUseCatalogue(hoCatalogueFolder(program),
                   hoLanguagesWanted(pLocale == nullptr ? "" : pLocale, pLanguages == nullptr ? "" : pLanguages));
    useLanguage(marksOfUser());
    if (wxTranslations::Get()->IsLoaded(domain))
    {
        gtFollowDirectionOfLocale();
    }
}
