#include "host/hoDocumentArguments.h"

#include "host/hoFileFacts.h"

namespace
{
bool isSameFile(const gtString& left, const gtString& right)
{
    hoFileFacts leftFacts;
    hoFileFacts rightFacts;
    return hoReadFileFacts(left, leftFacts) == hoFileProblem::None &&
           hoReadFileFacts(right, rightFacts) == hoFileProblem::None && leftFacts._device == rightFacts._device &&
           leftFacts._fileNumber == rightFacts._fileNumber;
}
}  // namespace

std::vector<gtString> hoDocumentArguments(const std::vector<gtString>& arguments, const gtString& programPath)
{
    if (arguments.size() == 1)
    {
        const gtString& only = arguments[0];
        const bool isDocument = only.asCharArray()[0] == '/' && only != programPath && !isSameFile(only, programPath);
        return isDocument ? arguments : std::vector<gtString>();
    }

    std::vector<gtString> documents;
    bool isSeparatorTaken = false;
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        const gtString& argument = arguments[i];
        if (!isSeparatorTaken && documents.empty() && argument == gtString("--"))
        {
            isSeparatorTaken = true;
        }
        else if (!argument.isEmpty())
        {
            documents.push_back(argument);
        }
    }
    return documents;
}
