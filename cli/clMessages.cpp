// SPDX-License-Identifier: Apache-2.0
#include "cli/clMessages.h"

#include <cerrno>
#include <system_error>

namespace
{

std::string bitsText(int bits)
{
    return std::to_string(bits) + " bits";
}

std::string bytesText(int bytes)
{
    return std::to_string(bytes) + ((bytes == 1) ? " byte" : " bytes");
}

std::string fileReason(const hoSigningFacts& facts)
{
    switch (facts._fileProblem)
    {
    case osFileProblem::NoName:
        return "the name is empty";
    case osFileProblem::NotThere:
        return "there is no such file";
    case osFileProblem::NotPermitted:
        return "you may not read it";
    case osFileProblem::IsFolder:
        return "is a directory; name the files in it";
    case osFileProblem::NotRegular:
        return "is a pipe, a socket or a device, not a file";
    case osFileProblem::NameTooLong:
        return "the name is too long";
    case osFileProblem::TooManyLinks:
        return "its symbolic links lead in a circle";
    case osFileProblem::NotLocal:
        return "is not on this machine; name a file that is";
    case osFileProblem::None:
    case osFileProblem::CannotBeRead:
        break;
    }
    return "cannot be read: " + clSystemErrorText(facts._systemError);
}

}  // namespace

std::string clSystemErrorText(int systemError)
{
    // Other than strerror, this may be called from any thread.
    return std::generic_category().message(systemError);
}

std::string clKeyMessage(const std::string& name, const hoKeyFileFacts& facts, bool isWithoutTerminal)
{
    switch (facts._problem)
    {
    case hoKeyFileProblem::None:
        break;
    case hoKeyFileProblem::CannotBeRead:
        return name + ": the key cannot be read: " + clSystemErrorText(facts._systemError);
    case hoKeyFileProblem::IsFolder:
        return name + ": is a directory, not a key; name a PEM file";
    case hoKeyFileProblem::NotRegular:
        return name + ": is a pipe, a socket or a device, not a key; name a PEM file";
    case hoKeyFileProblem::TooLarge:
        return name + ": is too large for a key; name a PEM file";
    case hoKeyFileProblem::NoKey:
        return name + ": there is no PEM key in it; openssl genrsa makes one";
    case hoKeyFileProblem::OpenSshFormat:
        return name + ": is a key in OpenSSH's own format; ssh-keygen -p -m PEM -f FILE turns a copy into PEM";
    case hoKeyFileProblem::NotRsa:
        return name + ": is not an RSA key; openssl genrsa makes one";
    case hoKeyFileProblem::PassphraseNeeded:
        return name + (isWithoutTerminal ? ": is encrypted, and there is no terminal to ask for the passphrase on"
                                         : ": is encrypted, and no passphrase was given");
    case hoKeyFileProblem::WrongPassphrase:
        return name + ": does not open with this passphrase";
    case hoKeyFileProblem::Damaged:
        return name + ": the key in it is damaged";
    case hoKeyFileProblem::SizeNotSupported:
        return name + ": the key has " + bitsText(facts._bits) + "; it takes a multiple of 32, up to " +
               std::to_string(hoLargestKeyBits);
    case hoKeyFileProblem::NoMemory:
        return name + ": there is not enough memory for the key";
    }
    return name + ": the key is fine";
}

std::string clOpenKeyWarning(const std::string& name)
{
    return "warning: " + name + ": others than you may read or change this private key; chmod 600 keeps it to you";
}

std::string clSigningMessage(const std::string& name, const std::string& keyName, int keyBits,
                             const hoSigningFacts& facts)
{
    switch (facts._problem)
    {
    case hoSigningProblem::None:
        break;
    case hoSigningProblem::NoPrivateKey:
        return keyName + ": is a public key; signing takes the private one";
    case hoSigningProblem::KeyTooSmall:
        return keyName + ": the key has " + bitsText(keyBits) + " and its digest is empty; files take " +
               bitsText(hoSmallestSigningKeyBits) + " or more";
    case hoSigningProblem::FileCannotBeRead:
        return name + ": " + fileReason(facts);
    case hoSigningProblem::FileChanged:
        return name + ": was changed while it was being read; try again when nothing writes to it";
    case hoSigningProblem::Cancelled:
        return name + ": interrupted";
    case hoSigningProblem::SelfTestFailed:
        return name +
               ": the new signature does not test good, and was thrown away; something is wrong with this machine";
    case hoSigningProblem::NoMemory:
        return name + ": there is not enough memory";
    }
    return name + ": is fine";
}

std::string clSignatureFileMessage(const std::string& name, const hoSignatureFileFacts& facts)
{
    switch (facts._problem)
    {
    case hoSignatureFileProblem::None:
        break;
    case hoSignatureFileProblem::CannotBeRead:
        if (facts._systemError == ENOENT)
        {
            return name + ": there is no such signature; countersign sign makes one, --signature names another";
        }
        return name + ": the signature cannot be read: " + clSystemErrorText(facts._systemError);
    case hoSignatureFileProblem::TooLarge:
        return name + ": is too large for a signature";
    case hoSignatureFileProblem::Exists:
        return name + ": is there already and was kept; --force overwrites it";
    case hoSignatureFileProblem::NotRegular:
        return name + ": is a directory or a device, and is not overwritten; name a file with --output";
    case hoSignatureFileProblem::CannotBeWritten:
        return name + ": the signature cannot be written: " + clSystemErrorText(facts._systemError) +
               "; --output puts it elsewhere";
    case hoSignatureFileProblem::NoMemory:
        return name + ": there is not enough memory";
    }
    return name + ": is fine";
}

std::string clEncryptionMessage(hoTextProblem problem, int lengthOfText, int longestText, int keyBits)
{
    switch (problem)
    {
    case hoTextProblem::TooLong:
        return "the text has " + bytesText(lengthOfText) + ((lengthOfText > longestText * 2) ? " or more" : "") +
               ", and a key of " + bitsText(keyBits) + " takes " + std::to_string(longestText) +
               " at most: a longer one would not come back";
    case hoTextProblem::HoldsNul:
        return "the text holds a NUL byte, and would end there when it is decrypted";
    case hoTextProblem::TooLargeForKey:
        return "the text is as long as the key takes and ends with too high a byte: it would not come back; make it "
               "one "
               "byte shorter";
    default:
        return "there is not enough memory for the text";
    }
}

std::string clDecryptionMessage(hoTextProblem problem, int lengthOfCipherText, int wantedLength, int longestText,
                                const std::string& keyName, int keyBits)
{
    switch (problem)
    {
    case hoTextProblem::NotACipherText:
        return "this is not a cipher text: it takes hexadecimal characters and nothing else";
    case hoTextProblem::OtherSize:
        return "the cipher text has " + std::to_string(lengthOfCipherText) + " characters, and one for a key of " +
               bitsText(keyBits) + " has " + std::to_string(wantedLength) +
               " and begins with the length of its text, " + bytesText(longestText) + " at most";
    case hoTextProblem::DoesNotComeOut:
        return keyName + ": does not decrypt this text: it takes the partner of the key that encrypted it, or the text "
                         "is damaged";
    default:
        return "there is not enough memory for the text";
    }
}
