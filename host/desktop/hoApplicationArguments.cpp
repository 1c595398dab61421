// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoApplicationArguments.h"

#include "host/documents/hoDocumentArguments.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/app.h>
#include <wx/stdpaths.h>

namespace
{
bool isLostArgument(const gtString& argument)
{
    return !argument.isEmpty() && wxConvLocal.cMB2WC(argument.asCharArray()).length() == 0;
}

std::vector<gtString> applicationArguments()
{
    std::vector<gtString> arguments;
    const wxArrayString& texts = wxTheApp->argv.GetArguments();
    for (const wxString& text : texts)
    {
        arguments.push_back(gtBytesFromArgument(text));
    }
    const std::vector<gtString> ofProcess = hoProcessArguments();
    const bool isProgramName = !ofProcess.empty() && !arguments.empty() && arguments[0] == ofProcess[0];
    if (texts.size() == 1 && texts[0].StartsWith("/") && !isProgramName)
    {
        // A document that arrived before the window is kept as a path text.
        return {gtPathBytesFromText(texts[0])};
    }
    return hoRestoreLostArguments(arguments, ofProcess, isLostArgument);
}
}  // namespace

std::vector<gtString> hoApplicationDocuments()
{
    return wxTheApp == nullptr ? std::vector<gtString>()
                               : hoDocumentArguments(applicationArguments(), hoApplicationPath());
}

gtString hoApplicationPath()
{
    return gtPathBytesFromText(wxStandardPaths::Get().GetExecutablePath());
}
