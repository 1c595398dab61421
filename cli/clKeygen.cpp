// SPDX-License-Identifier: Apache-2.0
#include "cli/clKeygen.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/clCommands.h"
#include "cli/clInterrupt.h"
#include "cli/clPassphrase.h"
#include "cli/clPrintableName.h"
#include "cli/clStandardStreams.h"
#include "host/keys/hoNewKeyPair.h"
#include "host/messages/hoMessages.h"
#include "platform/baseTools/gtWipe.h"
#include "platform/osWrappers/osAtomicFile.h"

namespace
{

constexpr std::string_view ending = ".pem";

struct Names
{
    gtString _private;
    gtString _public;
};

Names namesFor(const gtString& output)
{
    std::string_view stem = output.asStringView();
    if (stem.size() > ending.size() && stem.substr(stem.size() - ending.size()) == ending)
    {
        stem.remove_suffix(ending.size());
    }
    return {gtString(stem).append(ending), gtString(stem).append(".pub").append(ending)};
}

class TypedPassphrase
{
public:
    TypedPassphrase() = default;
    ~TypedPassphrase() { gtWipe(_bytes, sizeof(_bytes)); }
    TypedPassphrase(const TypedPassphrase&) = delete;
    TypedPassphrase& operator=(const TypedPassphrase&) = delete;

    // False when there is none that can be used, which has been told then.
    bool read(const clArguments& arguments, const gtString& question)
    {
        clPassphrase source(arguments, question);
        _length = source.getPassphrase(_bytes, hoLongestPassphrase);
        if (clIsInterrupted())
        {
            return false;
        }
        if (_length < 0)
        {
            clComplain(source.reason().isEmpty() ? gtString("no passphrase was given") : source.reason());
        }
        else if (_length > hoLongestPassphrase)
        {
            clComplain(hoLongPassphraseReason());
        }
        else if (_length == 0)
        {
            clComplain("the passphrase is empty; --no-passphrase makes a key without one");
        }
        return _length > 0 && _length <= hoLongestPassphrase;
    }

    std::string_view text() const { return {_bytes, static_cast<std::size_t>(_length < 0 ? 0 : _length)}; }

private:
    char _bytes[hoLongestPassphrase] = {};
    int _length = 0;
};

bool readNewPassphrase(const clArguments& arguments, const gtString& name, TypedPassphrase& passphrase)
{
    if (!passphrase.read(arguments, gtString("New passphrase for ").append(name).append(": ")))
    {
        return false;
    }
    if (arguments._passphraseDescriptor >= 0 || !arguments._passphrasePath.isEmpty())
    {
        return true;
    }
    TypedPassphrase again;
    if (!again.read(arguments, "The same passphrase again: "))
    {
        return false;
    }
    if (again.text() != passphrase.text())
    {
        clComplain("the two passphrases differ");
        return false;
    }
    return true;
}

void complainOfWriting(const gtString& path, const osWritingResult& result)
{
    clComplain(clPrintableName(path).append(": ").append(hoWritingReason(result)));
}

// What can be seen to fail before a passphrase is asked for and a key is made.
bool canBeWritten(const gtString& path)
{
    struct stat entry = {};
    osWritingResult result;
    if (::lstat(path.asCharArray(), &entry) == 0)
    {
        result = osWritingResult(osWritingProblem::Exists, EEXIST);
    }
    else if (const int error = osCheckFolderOfFile(path, false); error != 0)
    {
        result = osWritingResult(osWritingProblem::CannotBeWritten, error);
    }
    if (!result.isOk())
    {
        complainOfWriting(path, result);
    }
    return result.isOk();
}

// Written to by the thread that makes the key, and waited for together with signals.
class FinishedPipe
{
public:
    FinishedPipe()
    {
        _isOpen = ::pipe(_ends) == 0;
        for (const int end : _ends)
        {
            static_cast<void>(::fcntl(end, F_SETFD, FD_CLOEXEC));
        }
    }
    ~FinishedPipe()
    {
        if (_isOpen)
        {
            ::close(_ends[0]);
            ::close(_ends[1]);
        }
    }
    FinishedPipe(const FinishedPipe&) = delete;
    FinishedPipe& operator=(const FinishedPipe&) = delete;

    bool isOpen() const { return _isOpen; }
    // A pipe that takes no byte is full, and wakes all the same.
    void notify() const { static_cast<void>(!::write(_ends[1], "", 1)); }
    // False after a signal that asks to end.
    bool wait() const { return clWaitForInput(_ends[0]); }

private:
    bool _isOpen = false;
    int _ends[2] = {-1, -1};
};

// Writes both files, or leaves none of them.
bool writeFiles(const hoNewKeyPair& pair, const Names& names, std::string_view passphrase)
{
    osWritingResult result = pair.writePrivateKey(names._private, passphrase, false);
    if (!result.isOk())
    {
        complainOfWriting(names._private, result);
        return false;
    }
    result = pair.writePublicKey(names._public, false);
    if (!result.isOk())
    {
        complainOfWriting(names._public, result);
    }
    else if (!clIsInterrupted())
    {
        return true;
    }
    else
    {
        ::unlink(names._public.asCharArray());
    }
    ::unlink(names._private.asCharArray());
    return false;
}

}  // namespace

int clPerformKeygen(const clArguments& arguments)
{
    const Names names = namesFor(arguments._outputPath);
    for (const gtString* const pPath : {&names._private, &names._public})
    {
        if (!canBeWritten(*pPath))
        {
            return clStatusNotChecked;
        }
    }
    TypedPassphrase passphrase;
    if (!arguments._isPassphraseLeftOut && !readNewPassphrase(arguments, clPrintableName(names._private), passphrase))
    {
        return clStatusNotChecked;
    }
    const FinishedPipe finished;
    if (!finished.isOpen())
    {
        clComplain(gtString("the key cannot be made: ").append(hoSystemErrorText(errno)));
        return clStatusNotChecked;
    }
    const hoNewKeyPair pair(arguments._bits, [&finished] { finished.notify(); });
    if (!finished.wait())
    {
        return clStatusNotChecked;
    }
    if (!pair.isMade())
    {
        clComplain("the key cannot be made; there may be too little memory");
        return clStatusNotChecked;
    }
    if (!writeFiles(pair, names, passphrase.text()))
    {
        return clStatusNotChecked;
    }
    clWriteOutput(clPrintableName(names._private).append(": private key, to be kept secret\n"));
    clWriteOutput(clPrintableName(names._public).append(": public key, to be given to others\n"));
    return clStatusGood;
}
