// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoSignatureFile.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <sys/stat.h>

#include "platform/osWrappers/osAtomicFile.h"
#include "platform/osWrappers/osFile.h"

namespace
{

hoSignatureFileFacts problemFacts(hoSignatureFileProblem problem, int systemError)
{
    hoSignatureFileFacts facts;
    facts._problem = problem;
    facts._systemError = systemError;
    return facts;
}

hoSignatureFileFacts cannotBeWritten(int systemError)
{
    return problemFacts(hoSignatureFileProblem::CannotBeWritten, systemError);
}

}  // namespace

gtString hoSignaturePath(const gtString& path)
{
    gtString result(path);
    result.append(".sig");
    return result;
}

hoSignatureFileFacts hoReadSignatureFile(const gtString& path, gtString& signature)
{
    try
    {
        osFile file;
        if (!file.open(osFilePath(path), osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ))
        {
            return problemFacts(hoSignatureFileProblem::CannotBeRead, file.errorNumber());
        }
        std::string text(hoLargestSignatureFile + 1, '\0');
        unsigned long amountRead = 0;
        static_cast<void>(file.readAvailableData(text.data(), text.size(), amountRead));
        if (file.hasReadError())
        {
            return problemFacts(hoSignatureFileProblem::CannotBeRead, file.errorNumber());
        }
        if (amountRead > static_cast<unsigned long>(hoLargestSignatureFile))
        {
            return problemFacts(hoSignatureFileProblem::TooLarge, 0);
        }
        text.resize(amountRead);
        text.resize(text.find_last_not_of(" \t\r\n") + 1);
        signature = gtString(text);
        return hoSignatureFileFacts();
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSignatureFileProblem::NoMemory, 0);
    }
}

hoSignatureFileFacts hoCheckSignaturePath(const gtString& path, bool mayOverwrite)
{
    if (std::strlen(path.asCharArray()) != static_cast<std::size_t>(path.length()))
    {
        return cannotBeWritten(EINVAL);
    }
    struct stat status = {};
    if (::stat(path.asCharArray(), &status) != 0)
    {
        return hoSignatureFileFacts();
    }
    if (!S_ISREG(status.st_mode))
    {
        return problemFacts(hoSignatureFileProblem::NotRegular, 0);
    }
    return problemFacts(mayOverwrite ? hoSignatureFileProblem::None : hoSignatureFileProblem::Exists, 0);
}

hoSignatureFileFacts hoWriteSignatureFile(const gtString& path, const gtString& signature, bool mayOverwrite)
{
    try
    {
        const hoSignatureFileFacts check = hoCheckSignaturePath(path, mayOverwrite);
        if (check._problem != hoSignatureFileProblem::None)
        {
            return check;
        }
        const int error = osWriteFileAtomically(path, gtString(signature).append('\n').asStringView(), mayOverwrite);
        if (error != 0)
        {
            return (!mayOverwrite && (error == EEXIST)) ? problemFacts(hoSignatureFileProblem::Exists, 0)
                                                        : cannotBeWritten(error);
        }
        return hoSignatureFileFacts();
    }
    catch (const std::bad_alloc&)
    {
        return problemFacts(hoSignatureFileProblem::NoMemory, 0);
    }
}
