// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoSignatureFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "host/signing/hoSignatureText.h"
#include "platform/baseTools/gtStartsWith.h"
#include "platform/osWrappers/osAtomicFile.h"
#include "platform/osWrappers/osFile.h"

namespace
{

constexpr std::string_view endOfSignaturePath = ".sig";

hoSignatureFileResult cannotBeWritten(int systemError)
{
    return hoSignatureFileResult(hoSignatureFileProblem::CannotBeWritten, systemError);
}

hoSignatureFileResult resultOf(const osWritingResult& writing)
{
    switch (writing._problem)
    {
    case osWritingProblem::None:
        return hoSignatureFileProblem::None;
    case osWritingProblem::Exists:
        return hoSignatureFileProblem::Exists;
    case osWritingProblem::IsFolder:
    case osWritingProblem::NotRegular:
        return hoSignatureFileProblem::NotRegular;
    case osWritingProblem::CannotBeWritten:
        break;
    }
    return cannotBeWritten(writing._systemError);
}

// Of a name that nothing is in the way of.
hoSignatureFileResult checkFolder(const gtString& path, bool mayOverwrite)
{
    try
    {
        const int error = osCheckFolderOfFile(path, mayOverwrite);
        return error == 0 ? hoSignatureFileProblem::None : cannotBeWritten(error);
    }
    catch (const std::bad_alloc&)
    {
        return hoSignatureFileProblem::NoMemory;
    }
}

}  // namespace

gtString hoSignaturePath(const gtString& path)
{
    gtString result(path);
    result.append(endOfSignaturePath);
    return result;
}

gtString hoDocumentOfSignature(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::string_view document = bytes.substr(0, bytes.size() - std::min(bytes.size(), endOfSignaturePath.size()));
    const bool isSignature = gtEndsWith(bytes, endOfSignaturePath) && !document.empty() && document.back() != '/';
    return isSignature ? gtString(document) : gtString();
}

hoSignatureFileResult hoReadSignatureFile(const gtString& path, gtString& signature)
{
    try
    {
        osFile file;
        if (!file.open(osFilePath(path), osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ))
        {
            return hoSignatureFileResult(hoSignatureFileProblem::CannotBeRead, file.errorNumber());
        }
        std::string text(hoLargestSignatureFile + 1, '\0');
        unsigned long amountRead = 0;
        static_cast<void>(file.readAvailableData(text.data(), text.size(), amountRead));
        if (file.hasReadError())
        {
            return hoSignatureFileResult(hoSignatureFileProblem::CannotBeRead, file.errorNumber());
        }
        if (amountRead > static_cast<unsigned long>(hoLargestSignatureFile))
        {
            return hoSignatureFileProblem::TooLarge;
        }
        text.resize(amountRead);
        signature = gtString(text);
        return hoSignatureFileProblem::None;
    }
    catch (const std::bad_alloc&)
    {
        return hoSignatureFileProblem::NoMemory;
    }
}

hoSignatureFileResult hoCheckSignaturePath(const gtString& path, bool mayOverwrite)
{
    if (std::strlen(path.asCharArray()) != static_cast<std::size_t>(path.length()))
    {
        return cannotBeWritten(EINVAL);
    }
    struct stat status = {};
    if (::stat(path.asCharArray(), &status) != 0)
    {
        if (errno != ENOENT)
        {
            return cannotBeWritten(errno);
        }
        // A link to a file that does not exist has the name, too. Overwriting follows it.
        const bool isLink = !mayOverwrite && ::lstat(path.asCharArray(), &status) == 0;
        return isLink ? hoSignatureFileProblem::Exists : checkFolder(path, mayOverwrite);
    }
    if (!S_ISREG(status.st_mode))
    {
        return hoSignatureFileProblem::NotRegular;
    }
    gtString bytes;
    const hoSignatureFileResult reading = hoReadSignatureFile(path, bytes);
    if (reading._problem == hoSignatureFileProblem::TooLarge)
    {
        return hoSignatureFileProblem::NotOurs;
    }
    if (!reading.isOk())
    {
        return reading;
    }
    try
    {
        if (!hoParseSignature(bytes.asStringView()).isSignature())
        {
            return hoSignatureFileProblem::NotOurs;
        }
    }
    catch (const std::bad_alloc&)
    {
        return hoSignatureFileProblem::NoMemory;
    }
    return mayOverwrite ? checkFolder(path, mayOverwrite) : hoSignatureFileProblem::Exists;
}

bool hoPreparedSignature::prepare(const gtString& path, const gtString& signature, bool mayOverwrite)
{
    try
    {
        struct stat status = {};
        const bool isThere = ::lstat(path.asCharArray(), &status) == 0;
        return hoCheckSignaturePath(path, mayOverwrite).isOk() &&
               _file.prepare(path, signature.asStringView(), mayOverwrite && isThere).isOk();
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

hoSignatureFileResult hoPreparedSignature::giveName()
{
    try
    {
        return resultOf(_file.giveName());
    }
    catch (const std::bad_alloc&)
    {
        return hoSignatureFileProblem::NoMemory;
    }
}

hoSignatureFileResult hoWriteSignatureFile(const gtString& path, const gtString& signature, bool mayOverwrite)
{
    try
    {
        // What comes after the check is not replaced: nobody has looked whose it is.
        struct stat status = {};
        const bool isThere = ::lstat(path.asCharArray(), &status) == 0;
        const hoSignatureFileResult check = hoCheckSignaturePath(path, mayOverwrite);
        if (!check.isOk())
        {
            return check;
        }
        return resultOf(osWriteFileAtomically(path, signature.asStringView(), mayOverwrite && isThere));
    }
    catch (const std::bad_alloc&)
    {
        return hoSignatureFileProblem::NoMemory;
    }
}
