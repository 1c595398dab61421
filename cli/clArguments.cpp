// SPDX-License-Identifier: Apache-2.0
#include "cli/clArguments.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "cli/clHelpLayout.h"
#include "cli/clPrintableName.h"
#include "cli/clSplitArguments.h"
#include "countersignVersion.h"
#include "host/keys/hoNewKeyPair.h"

namespace
{

// The parser takes an argument that stands in brackets for a list. With a mark behind them they are what they are.
constexpr char mark = '\x1f';

std::string marked(const gtString& text)
{
    std::string argument = text.asStdString();
    const bool isBracketed = argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
    const bool hasMark = !argument.empty() && argument.back() == mark;
    if (isBracketed || hasMark)
    {
        argument += mark;
    }
    return argument;
}

gtString unmarked(std::string_view argument)
{
    const bool hasMark = !argument.empty() && argument.back() == mark;
    return argument.substr(0, argument.size() - (hasMark ? 1 : 0));
}

const char* const mainFooter = R"(Examples:
  countersign sign --key private.pem report.pdf     writes report.pdf.sig
  countersign test --key public.pem report.pdf      tells whether it is the same
  countersign encrypt --key public.pem < note.txt   prints the cipher text
  countersign help sign                             tells a command's options

Make a pair of keys, alice.pem and alice.pub.pem:
  countersign keygen --output alice

Put -- in front of names that begin with a dash. Exit status: 0 good, 1 checked and not good, 2 not checked or
wrong use. A signature has two lines: an exclusive-or digest under textbook RSA, which finds accidents, and a
countersignature (RSASSA-PSS with SHA-256), which openssl can check, too. Texts are textbook RSA: no secrets in them.)";

const char* const signFooter = R"(Examples:
  countersign sign --key private.pem *.iso
  countersign sign --key private.pem --output - report.pdf > report.sig
  countersign sign --key private.pem -- -odd-name
  tar -c folder | countersign sign --key private.pem --output folder.sig -

A signature that is there already is kept unless --force is given. A file of that name that is no signature of
countersign is never overwritten, nor is a FILE or the key, whatever links lead there. FILE.sig is left out where it
is named together with FILE. A key under 1024 bits cannot countersign: it takes --digest-only, and what it signs
tests weak.)";

const char* const testFooter = R"(Examples:
  countersign test --key public.pem *.iso
  countersign test --key public.pem --signature report.sig report.pdf
  countersign test --key alice.pem --key bob.pem --key-dir keys report.pdf

One key is required, by --key or --key-dir. In a folder of keys the files that hold none are passed over.

Prints one line a file with the verdict, and on standard error what is behind it:
  good              both lines of the signature hold                  status 0
  BAD               the signature is the key's, the file is another   status 1
  weak              the digest holds, there is no countersignature    status 2
  another key       the signature is not this key's                   status 2
  not a signature   FILE.sig is damaged, or of another program        status 2
  not signed, missing, unreadable, changed while read, not tested     status 2
With --accept-weak the status of a weak signature is 0.
With many files the status is the highest.)";

const char* const encryptFooter = R"(Examples:
  countersign encrypt --key public.pem < note.txt > note.cipher
  printf 'at noon' | countersign encrypt --key public.pem

A TEXT that is given as an argument can be seen by others on this machine.

What is encrypted with public.pem is decrypted with private.pem. With --private it is the other way round, and no
secret. The text is taken byte by byte, a line end included, and has to fit one block: 127 bytes with a key of 1024
bits.)";

const char* const decryptFooter = R"(Examples:
  countersign decrypt --key private.pem < note.cipher
  countersign encrypt --key public.pem < note.txt |
      countersign decrypt --key private.pem

The text is printed byte by byte; a line end is added on a terminal only. Exit status 1: another key's, or damaged.)";

const char* const keyFooter = R"(Examples:
  countersign key --key public.pem
  countersign key --key private.pem --public > public.pem

Prints one line each: the size in bits, whether the file has a private key, whether that is encrypted, the fingerprint
(SHA-256 of the public key in DER), and the short fingerprint that countersignatures name. With --numbers modulus and
exponent follow, eight hexadecimal characters a digit of 32 bits, the highest digit first. --private prints the private
exponent, which nobody else must see. --public prints the public key and nothing else.)";

const char* const keygenFooter = R"(Examples:
  countersign keygen
  countersign keygen --bits 4096 --output alice

Writes NAME.pem, the private key, which nobody but its owner can read, and NAME.pub.pem, the public key. The passphrase
that encrypts the private one is asked for twice. Nothing is overwritten, and an interrupt leaves no file.)";

const char* const digestFooter = R"(Examples:
  countersign digest --key public.pem report.pdf

The digest depends on the key's size only. With more than one file each line ends with two blanks and the name.)";

// More threads than this are of no use to anybody.
constexpr int mostJobs = 1024;

// What CLI11 fills in. It speaks std::string.
struct ParsedValues
{
    std::vector<std::string> _keyPaths;
    std::vector<std::string> _keyFolders;
    std::vector<std::string> _files;
    std::string _namesPath;
    std::string _outputPath;
    std::string _signaturePath;
    std::string _plainText;
    std::string _passphraseDescriptor;
    std::string _bits;
    std::string _newKeyName = "countersign-key";
    std::string _passphrasePath;
    std::string _jobs;
};

// CLI11 needs addresses that stay.
class Parser
{
public:
    Parser();
    clArguments parse(const std::vector<gtString>& arguments);

private:
    CLI::App* addCommand(clCommand command, const std::string& name, const std::string& description,
                         const std::string& footer, const std::string& keyDescription);
    void addKeygen();
    void addPassphrase(CLI::App* pCommand, const std::string& what);
    void addFiles(CLI::App* pCommand, const std::string& description);
    void addText(CLI::App* pCommand, const std::string& description);
    void addOutputFlags(CLI::App* pCommand, const std::string& nameOfGood);
    void addJson(CLI::App* pCommand);
    static clCommandShape shapeOf(const CLI::App& app, const std::string& name);
    std::vector<clCommandShape> shapes() const;
    static gtString helpOf(const CLI::App& app);
    clArguments textFor(const clSplitArguments& arguments) const;
    void takeNewKey(clArguments& result) const;
    void takeJobs(clArguments& result, const gtString& command) const;
    void takePassphraseDescriptor(clArguments& result, const gtString& command) const;
    static void checkNames(clArguments& result, const gtString& command);
    static void checkStandardInput(clArguments& result, const gtString& command);
    void checkWhatParserCannot(clArguments& result) const;
    static clArguments wrongUse(const gtString& what, const gtString& command);

    CLI::App _app{"Signs and tests files, and encrypts short texts, with RSA keys from PEM files.", "countersign"};
    std::vector<std::pair<clCommand, CLI::App*>> _commands;
    ParsedValues _values;
    bool _isRecursive = false;
    bool _isForced = false;
    bool _isDigestOnly = false;
    bool _isWeakAccepted = false;
    bool _isPrivateWanted = false;
    bool _isPublicWanted = false;
    bool _areNumbersWanted = false;
    bool _areWarningsLeftOut = false;
    bool _areSignaturesWanted = false;
    bool _isSignedSkipped = false;
    bool _isQuiet = false;
    bool _isStatusOnly = false;
    bool _isSummaryWanted = false;
    bool _isJsonWanted = false;
    bool _isPassphraseLeftOut = false;
    CLI::Option* _pOutput = nullptr;
    CLI::Option* _pSignature = nullptr;
    std::vector<CLI::Option*> _texts;
};

Parser::Parser()
{
    _app.require_subcommand(1);
    _app.set_help_flag("-h,--help", "Print this help and end");
    _app.set_version_flag("-V,--version", "countersign " COUNTERSIGN_VERSION, "Print the version and end");
    _app.footer(clFillParagraphs(mainFooter));

    CLI::App* pSign = addCommand(clCommand::Sign, "sign", "Sign files: write FILE.sig beside each FILE", signFooter,
                                 "The private key, a PEM or DER file");
    _pOutput =
        pSign->add_option("-o,--output", _values._outputPath,
                          "Where the signature of a single FILE goes instead; - for standard output, also of many");
    _pOutput->type_name("PATH");
    pSign->add_flag("-f,--force", _isForced, "Overwrite signatures that are there already");
    pSign->add_flag("-d,--digest-only", _isDigestOnly, "Write the digest's line alone, without a countersignature");
    pSign->add_flag("-n,--skip-signed", _isSignedSkipped, "Leave files alone whose signature is good by this key");
    pSign->add_flag("-a,--also-signatures", _areSignaturesWanted, "Sign files named *.sig, too");
    addOutputFlags(pSign, "files that are signed");
    addFiles(pSign, "The files to sign; - for standard input");

    CLI::App* pTest =
        addCommand(clCommand::Test, "test", "Test files against FILE.sig beside each FILE (also: verify)", testFooter,
                   "A public key, a PEM or DER file (of a private key the public half); of several the line "
                   "names the one that holds");
    _pSignature = pTest->add_option("-s,--signature", _values._signaturePath,
                                    "Where the signature of a single FILE is instead; - for standard input");
    _pSignature->type_name("PATH");
    pTest->add_flag("-w,--accept-weak", _isWeakAccepted, "Take a signature without a countersignature for good");
    pTest->add_flag("-a,--also-signatures", _areSignaturesWanted, "Test files named *.sig, too");
    addOutputFlags(pTest, "good files");
    addFiles(pTest, "The files to test; - for standard input");

    CLI::App* pEncrypt = addCommand(clCommand::Encrypt, "encrypt", "Encrypt a short text", encryptFooter,
                                    "The public key, a PEM or DER file (of a private key the public half is taken)");
    pEncrypt->add_flag("-p,--private", _isPrivateWanted,
                       "Encrypt with the private exponent; everybody with the public key can read it");
    addText(pEncrypt, "The text; standard input without it");
    addText(addCommand(clCommand::Decrypt, "decrypt", "Decrypt a text", decryptFooter,
                       "The partner of the key that encrypted, a PEM or DER file, private or public"),
            "The cipher text; standard input without it");

    CLI::App* pKey = addCommand(clCommand::Key, "key", "Show a key, or print its public half", keyFooter,
                                "The key, a PEM or DER file, private or public");
    pKey->add_flag("-p,--private", _isPrivateWanted, "Print the numbers, with the private exponent");
    pKey->add_flag("-P,--public", _isPublicWanted, "Print the public half as PEM, and nothing else");
    pKey->add_flag("-n,--numbers", _areNumbersWanted, "Print modulus and exponent, too");
    addJson(pKey);

    addKeygen();

    CLI::App* pDigest = addCommand(clCommand::Digest, "digest", "Print the digest text of files", digestFooter,
                                   "A key of the size that shall sign, a PEM or DER file, private or public");
    addJson(pDigest);
    addFiles(pDigest, "The files to read; - for standard input");
}

CLI::App* Parser::addCommand(clCommand command, const std::string& name, const std::string& description,
                             const std::string& footer, const std::string& keyDescription)
{
    CLI::App* pCommand = _app.add_subcommand(name, description);
    pCommand->set_help_flag("-h,--help", "Print this help and end");
    pCommand->footer(clFillParagraphs(footer));
    CLI::Option* const pKeys = pCommand->add_option("-k,--key", _values._keyPaths, keyDescription);
    pKeys->type_name("PEM")->allow_extra_args(false);
    if (command == clCommand::Test)
    {
        pCommand
            ->add_option("--key-dir", _values._keyFolders,
                         "Try the keys in this folder, too; instead of --key or besides")
            ->type_name("DIR")
            ->allow_extra_args(false);
    }
    else
    {
        pKeys->expected(1)->required();
    }
    addPassphrase(pCommand, "the key's passphrase");
    pCommand->add_flag("--no-warnings", _areWarningsLeftOut, "Do not warn of what is risky");
    _commands.emplace_back(command, pCommand);
    return pCommand;
}

void Parser::addKeygen()
{
    CLI::App* pCommand = _app.add_subcommand("keygen", "Make a pair of keys: NAME.pem and NAME.pub.pem");
    pCommand->set_help_flag("-h,--help", "Print this help and end");
    pCommand->footer(clFillParagraphs(keygenFooter));
    pCommand->add_option("-b,--bits", _values._bits, "The size: a multiple of 32 from 512 to 4096; 2048 without it")
        ->type_name("N");
    pCommand->add_option("-o,--output", _values._newKeyName, "The files' name; countersign-key without it")
        ->type_name("NAME");
    pCommand->add_flag("--no-passphrase", _isPassphraseLeftOut, "Do not encrypt the private key");
    addPassphrase(pCommand, "the new passphrase");
    _commands.emplace_back(clCommand::Keygen, pCommand);
}

void Parser::addPassphrase(CLI::App* pCommand, const std::string& what)
{
    const std::string description = "Read " + what + " from this descriptor: a line";
    pCommand->add_option("--passphrase-fd", _values._passphraseDescriptor, description)->type_name("N");
    pCommand->add_option("--passphrase-file", _values._passphrasePath, "Read it from the first line of this file")
        ->type_name("PATH");
}

void Parser::addFiles(CLI::App* pCommand, const std::string& description)
{
    pCommand->add_flag("-r,--recursive", _isRecursive, "Take the files below a FILE that is a folder");
    pCommand
        ->add_option("--files0-from", _values._namesPath, "Take the names of files from PATH, too, a NUL behind each")
        ->type_name("PATH");
    pCommand->add_option("-j,--jobs", _values._jobs, "Work on N files at a time; without it on one for each processor")
        ->type_name("N");
    pCommand->add_option("FILE", _values._files, description)->type_name("");
}

void Parser::addText(CLI::App* pCommand, const std::string& description)
{
    _texts.push_back(pCommand->add_option("TEXT", _values._plainText, description)->type_name(""));
}

void Parser::addOutputFlags(CLI::App* pCommand, const std::string& nameOfGood)
{
    pCommand->add_flag("-q,--quiet", _isQuiet, "Print no line for " + nameOfGood + ", and no progress");
    pCommand->add_flag("--status", _isStatusOnly, "Print nothing at all; the exit status tells");
    pCommand->add_flag("--summary", _isSummaryWanted, "Print at the end how many files there were of each kind");
    addJson(pCommand);
}

void Parser::addJson(CLI::App* pCommand)
{
    pCommand->add_flag("--json", _isJsonWanted, "Print results and messages for programs: a JSON object a line");
}

clCommandShape Parser::shapeOf(const CLI::App& app, const std::string& name)
{
    clCommandShape shape;
    shape._name = name;
    for (const CLI::Option* pOption : app.get_options())
    {
        const bool isMany = pOption->get_items_expected_max() > 1;
        if (pOption->get_positional())
        {
            shape._operandName = pOption->get_name(true);
            shape._isOperandRequired = pOption->get_required();
            shape._areOperandsMany = isMany;
            continue;
        }
        clOptionShape option;
        option._long = gtString("--").append(pOption->get_lnames().front());
        option._short = pOption->get_snames().empty() ? "" : gtString("-").append(pOption->get_snames().front());
        option._valueName = pOption->get_items_expected_max() > 0 ? pOption->get_type_name() : "";
        option._isRequired = pOption->get_required();
        option._isRepeatable = isMany;
        shape._options.push_back(option);
    }
    return shape;
}

std::vector<clCommandShape> Parser::shapes() const
{
    std::vector<clCommandShape> result = {shapeOf(_app, "")};
    for (const auto& [command, pCommand] : _commands)
    {
        result.push_back(shapeOf(*pCommand, pCommand->get_name()));
    }
    return result;
}

// The parser's text, with what is required in the line that tells the usage.
gtString Parser::helpOf(const CLI::App& app)
{
    static const std::map<std::string, std::string> usages = {
        {"countersign", "countersign COMMAND [OPTION...] [ARGUMENT...]"},
        {"sign", "countersign sign --key PEM [OPTION...] FILE..."},
        {"test", "countersign test {--key PEM | --key-dir DIR} [OPTION...] FILE..."},
        {"encrypt", "countersign encrypt --key PEM [OPTION...] [TEXT]"},
        {"decrypt", "countersign decrypt --key PEM [OPTION...] [TEXT]"},
        {"key", "countersign key --key PEM [OPTION...]"},
        {"keygen", "countersign keygen [OPTION...]"},
        {"digest", "countersign digest --key PEM [OPTION...] FILE..."},
    };
    std::string text = app.help();
    const std::string begin = "\nUsage: ";
    const std::size_t usage = text.find(begin) + begin.size();
    text.replace(usage, text.find('\n', usage) - usage, usages.at(app.get_name()));
    text = clFitLines(text);
    // Behind the footer there are two.
    text.erase(text.find_last_not_of('\n') + 2);
    return gtString(text);
}

clArguments Parser::textFor(const clSplitArguments& arguments) const
{
    clArguments result;
    result._command = clCommand::ShowText;
    if (arguments._isVersionWanted)
    {
        result._text = gtString(_app.version()).append('\n');
        return result;
    }
    const CLI::App* const pApp =
        arguments._command.isEmpty() ? &_app : _app.get_subcommand(arguments._command.asStdString());
    result._text = helpOf(*pApp);
    return result;
}

clArguments Parser::parse(const std::vector<gtString>& arguments)
{
    if (arguments.empty())
    {
        // Whoever names no command learns of them, and a script that expands to nothing has not succeeded.
        clArguments result;
        result._text = helpOf(_app);
        return result;
    }
    const clSplitArguments split = clSplit(arguments, shapes());
    if (!split._wrong.isEmpty())
    {
        return wrongUse(split._wrong, split._command);
    }
    if (split._isHelpWanted || split._isVersionWanted)
    {
        return textFor(split);
    }
    std::vector<std::string> toParse = {split._command.asStdString()};
    for (const clSplitOption& option : split._options)
    {
        toParse.push_back(option._name.asStdString());
        if (!option._value.isEmpty())
        {
            toParse.back().append("=").append(marked(option._value));
        }
    }
    toParse.emplace_back("--");
    for (const gtString& operand : split._operands)
    {
        toParse.push_back(marked(operand));
    }
    try
    {
        // The parser takes the last argument first.
        std::reverse(toParse.begin(), toParse.end());
        _app.parse(std::move(toParse));
    }
    catch (const CLI::Error&)
    {
        return wrongUse("these arguments do not go together", split._command);
    }

    clArguments result;
    for (const auto& [command, pCommand] : _commands)
    {
        if (pCommand->parsed())
        {
            result._command = command;
        }
    }
    for (const std::string& file : _values._files)
    {
        result._files.push_back(unmarked(file));
    }
    for (const std::string& key : _values._keyPaths)
    {
        result._keyPaths.push_back(unmarked(key));
    }
    result._keyPath = result._keyPaths.empty() ? gtString() : result._keyPaths.front();
    for (const std::string& folder : _values._keyFolders)
    {
        result._keyFolders.push_back(unmarked(folder));
    }
    result._outputPath = unmarked(_values._outputPath);
    result._signaturePath = unmarked(_values._signaturePath);
    result._plainText = unmarked(_values._plainText);
    result._isForced = _isForced;
    result._isRecursive = _isRecursive;
    result._namesPath = unmarked(_values._namesPath);
    result._isDigestOnly = _isDigestOnly;
    result._isWeakAccepted = _isWeakAccepted;
    result._isPrivateWanted = _isPrivateWanted;
    result._isPublicWanted = _isPublicWanted;
    result._areNumbersWanted = _areNumbersWanted;
    result._passphrasePath = unmarked(_values._passphrasePath);
    result._areWarningsLeftOut = _areWarningsLeftOut;
    result._areSignaturesWanted = _areSignaturesWanted;
    result._isSignedSkipped = _isSignedSkipped;
    result._isQuiet = _isQuiet;
    result._isStatusOnly = _isStatusOnly;
    result._isSummaryWanted = _isSummaryWanted;
    result._isJsonWanted = _isJsonWanted;
    result._isPassphraseLeftOut = _isPassphraseLeftOut;
    result._hasOutput = _pOutput->count() > 0;
    result._hasSignature = _pSignature->count() > 0;
    result._hasPlainText =
        std::any_of(_texts.begin(), _texts.end(), [](const CLI::Option* pText) { return pText->count() > 0; });
    takePassphraseDescriptor(result, split._command);
    takeJobs(result, split._command);
    if (result._command == clCommand::Keygen)
    {
        takeNewKey(result);
    }
    checkWhatParserCannot(result);
    checkNames(result, split._command);
    checkStandardInput(result, split._command);
    return result;
}

void Parser::takeNewKey(clArguments& result) const
{
    const std::string& text = _values._bits;
    const char* const pEnd = text.data() + text.size();
    result._outputPath = unmarked(_values._newKeyName);
    result._bits = hoUsualNewKeyBits;
    if (!text.empty())
    {
        const auto [pRest, error] = std::from_chars(text.data(), pEnd, result._bits);
        if (error != std::errc() || pRest != pEnd || !hoIsNewKeySize(result._bits))
        {
            result = wrongUse(gtString("--bits takes a multiple of 32 from 512 to 4096, and not ")
                                  .append(clPrintableName(unmarked(text))),
                              "keygen");
            return;
        }
    }
    if (result._isPassphraseLeftOut && (result._passphraseDescriptor >= 0 || !result._passphrasePath.isEmpty()))
    {
        result = wrongUse("--no-passphrase does not go together with a passphrase", "keygen");
    }
}

void Parser::takePassphraseDescriptor(clArguments& result, const gtString& command) const
{
    const std::string& text = _values._passphraseDescriptor;
    if (text.empty())
    {
        return;
    }
    const char* const pEnd = text.data() + text.size();
    const auto [pRest, error] = std::from_chars(text.data(), pEnd, result._passphraseDescriptor);
    if (error != std::errc() || pRest != pEnd || result._passphraseDescriptor < 0)
    {
        result = wrongUse(gtString("--passphrase-fd takes the number of a descriptor, and not ")
                              .append(clPrintableName(unmarked(text))),
                          command);
    }
    else if (!result._passphrasePath.isEmpty())
    {
        result = wrongUse("--passphrase-fd and --passphrase-file do not go together", command);
    }
}

void Parser::takeJobs(clArguments& result, const gtString& command) const
{
    const std::string& text = _values._jobs;
    const char* const pEnd = text.data() + text.size();
    if (text.empty())
    {
        return;
    }
    const auto [pRest, error] = std::from_chars(text.data(), pEnd, result._jobs);
    if (error != std::errc() || pRest != pEnd || result._jobs < 1 || result._jobs > mostJobs)
    {
        result = wrongUse(gtString("--jobs takes a number from 1 to ")
                              .append(std::to_string(mostJobs))
                              .append(", and not ")
                              .append(clPrintableName(unmarked(text))),
                          command);
    }
}

void Parser::checkNames(clArguments& result, const gtString& command)
{
    const bool takesFiles = result._command == clCommand::Sign || result._command == clCommand::Test ||
                            result._command == clCommand::Digest;
    const bool mayBeMany = result._isRecursive || !result._namesPath.isEmpty();
    const bool isOneOutput = result._hasOutput && result._outputPath != "-";
    if (result._command == clCommand::Test && result._keyPaths.empty() && result._keyFolders.empty())
    {
        result = wrongUse("--key PEM or --key-dir DIR is missing", command);
    }
    else if (takesFiles && result._files.empty() && result._namesPath.isEmpty())
    {
        result = wrongUse("no FILE is named", command);
    }
    else if (takesFiles && mayBeMany && (isOneOutput || result._hasSignature))
    {
        const gtString option = isOneOutput ? "--output" : "--signature";
        result = wrongUse(gtString(option).append(
                              " names one signature; it goes together with neither --recursive nor --files0-from"),
                          command);
    }
}

void Parser::checkStandardInput(clArguments& result, const gtString& command)
{
    const gtString dash = "-";
    std::vector<gtString> readers;
    for (const gtString& path : result._keyPaths)
    {
        if (path == dash)
        {
            readers.emplace_back("--key -");
        }
    }
    if (!readers.empty() && result._passphraseDescriptor == 0)
    {
        readers.emplace_back("--passphrase-fd 0");
    }
    const bool isTextRead = result._command == clCommand::Encrypt || result._command == clCommand::Decrypt;
    if (isTextRead && !result._hasPlainText)
    {
        readers.emplace_back("the missing TEXT");
    }
    if (result._hasSignature && result._signaturePath == dash)
    {
        readers.emplace_back("--signature -");
    }
    if (result._namesPath == dash)
    {
        readers.emplace_back("--files0-from -");
    }
    const std::size_t amountOfOthers = readers.size();
    for (const gtString& file : result._files)
    {
        if (file == dash)
        {
            readers.emplace_back("FILE -");
        }
    }
    if (readers.size() > 1)
    {
        result = wrongUse(gtString("standard input can be read only once, and both ")
                              .append(readers[0])
                              .append(" and ")
                              .append(readers[1])
                              .append(" read it"),
                          command);
    }
    else if (readers.size() == amountOfOthers)
    {
        return;
    }
    else if (result._command == clCommand::Sign && !result._hasOutput)
    {
        result = wrongUse("standard input has no place for a signature beside it; --output PATH or --output - tells "
                          "where it goes",
                          command);
    }
    else if (result._command == clCommand::Sign && result._isSignedSkipped)
    {
        result = wrongUse("--skip-signed reads a FILE twice, and standard input can be read only once", command);
    }
    else if (result._command == clCommand::Test && !result._hasSignature)
    {
        result = wrongUse("standard input has no signature beside it; --signature PATH names it", command);
    }
}

void Parser::checkWhatParserCannot(clArguments& result) const
{
    if (result._isPublicWanted && (result._isPrivateWanted || result._areNumbersWanted))
    {
        result = wrongUse("--public prints nothing else; leave --private and --numbers out", "key");
        return;
    }
    if (result._isJsonWanted && (result._isPublicWanted || result._isPrivateWanted))
    {
        const gtString other = result._isPublicWanted ? "--public" : "--private";
        result = wrongUse(gtString("--json tells what a key is, and ").append(other).append(" prints a key"), "key");
        return;
    }
    const gtString command = result._command == clCommand::Sign ? "sign" : "test";
    const bool isForOutput = result._hasOutput && result._outputPath == "-";
    if (result._isJsonWanted && isForOutput)
    {
        result = wrongUse("--json and --output - both ask for standard output", command);
        return;
    }
    if (result._isStatusOnly && (result._isSummaryWanted || result._isJsonWanted || isForOutput))
    {
        const gtString other = result._isSummaryWanted ? "--summary" : result._isJsonWanted ? "--json" : "--output -";
        result = wrongUse(gtString("--status prints nothing, and ").append(other).append(" asks for output"), command);
        return;
    }
    if (result._isSignedSkipped && isForOutput)
    {
        result = wrongUse("--skip-signed looks at signatures that are there, and --output - leaves none", command);
        return;
    }
    if (result._files.size() < 2)
    {
        return;
    }
    const gtString files = gtString(" names one signature, but there are ")
                               .append(std::to_string(result._files.size()))
                               .append(" files; ");
    if (result._hasOutput && result._outputPath != "-")
    {
        result =
            wrongUse(gtString("--output").append(files).append("sign them one by one, or leave --output out"), "sign");
    }
    else if (result._hasSignature)
    {
        result = wrongUse(
            gtString("--signature").append(files).append("test them one by one, or leave --signature out"), "test");
    }
}

clArguments Parser::wrongUse(const gtString& what, const gtString& command)
{
    clArguments result;
    result._text = gtString("countersign: ").append(what).append("\nSee countersign ");
    result._text.append(command).append(command.isEmpty() ? "" : " ").append("--help\n");
    return result;
}

}  // namespace

clArguments clParseArguments(const std::vector<gtString>& arguments)
{
    return Parser().parse(arguments);
}
