// SPDX-License-Identifier: Apache-2.0
// Any bytes as file name, function and message of a failed assertion, on their way into the texts of the report:
// nothing is lost, and a path comes back as it was.
#include <clocale>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include <wx/init.h>

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "fuzzInput.h"
#include "platform/osWrappers/osFilePath.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{

bool isNonEmptyFor(const gtString& bytes, const wxString& text)
{
    return bytes.isEmpty() == text.empty();
}

// The line goes to standard error, which nobody wants to see here.
void reportSilently(ahDialogBasedAssertionFailureHandler& handler, const gtString& function, const gtString& file,
                    int line, const gtString& message)
{
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const int kept = dup(STDERR_FILENO);
    dup2(nowhere, STDERR_FILENO);
    handler.outputAssertionMessageToStderr(function.asCharArray(), file.asCharArray(), line, message.asCharArray());
    dup2(kept, STDERR_FILENO);
    close(kept);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    static const wxInitializer initializer;
    FuzzInput input(pBytes, size);
    const bool isUtf8 = (input.byte() & 1U) != 0;
    FUZZ_CHECK(std::setlocale(LC_ALL, isUtf8 ? "C.UTF-8" : "C") != nullptr);
    const auto line = static_cast<int>(input.word());
    const std::string fileBytes = input.upTo('\n');
    const std::string functionBytes = input.upTo('\n');
    const std::string messageBytes = input.rest();
    const gtString file(fileBytes.data(), static_cast<int>(fileBytes.size()));
    const gtString function(functionBytes.data(), static_cast<int>(functionBytes.size()));
    const gtString message(messageBytes.data(), static_cast<int>(messageBytes.size()));

    for (const gtString* pText : {&file, &function, &message})
    {
        const wxString text = gtTextFromBytes(*pText);
        FUZZ_CHECK(isNonEmptyFor(*pText, text));
        FUZZ_CHECK(gtShowableText(text).length() == text.length());
        FUZZ_CHECK(gtPathBytesFromText(gtPathTextFromBytes(*pText)) == *pText);
        const gtString back = gtBytesFromText(text);
        FUZZ_CHECK(isNonEmptyFor(back, text));
    }

    const osFilePath path(file);
    gtString name;
    gtString extension;
    gtString whole;
    path.getFileName(name);
    path.getFileExtension(extension);
    path.getFullFileName(whole);
    FUZZ_CHECK(path.asString() == file);
    FUZZ_CHECK(name.length() + extension.length() <= whole.length());

    ahDialogBasedAssertionFailureHandler handler(1);
    handler.onAssertionFailure(function.asCharArray(), file.asCharArray(), line, message.asCharArray());
    reportSilently(handler, function, file, line, message);
    FUZZ_CHECK(!handler.isInIgnoredSourceLocations(path, line));
    handler.handleUsersDecision(8002, path, line);
    FUZZ_CHECK(handler.isInIgnoredSourceLocations(path, line));
    return 0;
}
