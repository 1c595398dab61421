// SPDX-License-Identifier: Apache-2.0
#include "cli/clSplitArguments.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "cli/clNearestWord.h"
#include "cli/clPrintableName.h"

namespace
{

const char* const helpCommand = "help";

struct Alias
{
    const char* _pName;
    const char* _pCommand;
};

constexpr Alias aliases[] = {{"verify", "test"}};

gtString commandOf(const gtString& name)
{
    for (const Alias& alias : aliases)
    {
        if (name == alias._pName)
        {
            return alias._pCommand;
        }
    }
    return name;
}

bool isOption(const gtString& argument)
{
    return argument.length() > 1 && argument[0] == '-';
}

gtString suggestion(const gtString& nearest)
{
    return nearest.isEmpty() ? gtString() : gtString("; did you mean ").append(nearest).append('?');
}

class Splitter
{
public:
    Splitter(const std::vector<gtString>& arguments, const std::vector<clCommandShape>& commands)
        : _arguments(arguments), _commands(commands), _pCommand(&commands.front())
    {
    }

    clSplitArguments split();

private:
    bool isWrong() const { return !_result._wrong.isEmpty(); }
    bool isDone() const { return isWrong() || _result._isHelpWanted || _result._isVersionWanted; }
    const clCommandShape* findCommand(const gtString& name) const;
    static const clOptionShape* findOption(const clCommandShape& command, std::string_view name);

    void takeFirst();
    void takeHelpCommand();
    void takeOption(const gtString& argument);
    void takeLetters(const gtString& argument);
    void add(const clOptionShape& option, const gtString& name, const gtString& value);
    void takeValue(const clOptionShape& option, const gtString& name);
    void checkWhatIsMissing();

    void reject(const gtString& reason) { _result._wrong = reason; }
    void rejectCommand(const gtString& name);
    void rejectOption(const gtString& name, const gtString& argument);
    void rejectEmptyValue(const clOptionShape& option, const gtString& name);

    const std::vector<gtString>& _arguments;
    const std::vector<clCommandShape>& _commands;
    const clCommandShape* _pCommand;
    std::size_t _next = 0;
    clSplitArguments _result;
};

clSplitArguments Splitter::split()
{
    takeFirst();
    bool isOperandsOnly = false;
    while (!isDone() && _next < _arguments.size())
    {
        const gtString& argument = _arguments[_next++];
        if (isOperandsOnly || !isOption(argument))
        {
            _result._operands.push_back(argument);
        }
        else if (argument == "--")
        {
            isOperandsOnly = true;
        }
        else
        {
            takeOption(argument);
        }
    }
    if (!isDone())
    {
        checkWhatIsMissing();
    }
    return _result;
}

const clCommandShape* Splitter::findCommand(const gtString& name) const
{
    const gtString command = commandOf(name);
    for (const clCommandShape& shape : _commands)
    {
        if (!shape._name.isEmpty() && shape._name == command)
        {
            return &shape;
        }
    }
    return nullptr;
}

const clOptionShape* Splitter::findOption(const clCommandShape& command, std::string_view name)
{
    for (const clOptionShape& option : command._options)
    {
        if (!name.empty() && (option._long.asStringView() == name || option._short.asStringView() == name))
        {
            return &option;
        }
    }
    return nullptr;
}

void Splitter::takeFirst()
{
    const gtString& first = _arguments[_next++];
    if (first == helpCommand)
    {
        takeHelpCommand();
        return;
    }
    if (isOption(first) && first != "--")
    {
        takeOption(first);
        return;
    }
    _pCommand = findCommand(first);
    if (_pCommand == nullptr)
    {
        _pCommand = &_commands.front();
        rejectCommand(first);
        return;
    }
    _result._command = _pCommand->_name;
}

void Splitter::takeHelpCommand()
{
    _result._isHelpWanted = true;
    if (_next == _arguments.size() || _arguments[_next] == "--help" || _arguments[_next] == "-h")
    {
        return;
    }
    const clCommandShape* const pCommand = findCommand(_arguments[_next]);
    if (pCommand == nullptr)
    {
        rejectCommand(_arguments[_next]);
        return;
    }
    _result._command = pCommand->_name;
}

void Splitter::takeOption(const gtString& argument)
{
    if (argument[1] != '-')
    {
        takeLetters(argument);
        return;
    }
    const std::string_view whole = argument.asStringView();
    const std::size_t equals = whole.find('=');
    const gtString name = whole.substr(0, equals);
    const clOptionShape* const pOption = findOption(*_pCommand, name.asStringView());
    if (pOption == nullptr)
    {
        rejectOption(name, argument);
    }
    else if (equals == std::string_view::npos)
    {
        takeValue(*pOption, name);
    }
    else if (pOption->_valueName.isEmpty())
    {
        reject(gtString(name).append(" takes no value, but it has one: ").append(clPrintableName(argument)));
    }
    else if (equals + 1 == whole.size())
    {
        rejectEmptyValue(*pOption, name);
    }
    else
    {
        add(*pOption, name, whole.substr(equals + 1));
    }
}

void Splitter::takeLetters(const gtString& argument)
{
    const std::string_view whole = argument.asStringView();
    if (whole.size() > 2)
    {
        // "-key" would be -k with the value "ey".
        const gtString withTwoDashes = gtString("-").append(argument);
        if (findOption(*_pCommand, withTwoDashes.asStringView()) != nullptr)
        {
            rejectOption(argument, argument);
            return;
        }
    }
    for (std::size_t i = 1; i < whole.size() && !isDone(); ++i)
    {
        const gtString name = gtString("-").append(whole[i]);
        const clOptionShape* const pOption = findOption(*_pCommand, name.asStringView());
        if (pOption == nullptr)
        {
            // A byte of a longer character says nothing by itself.
            const bool isPlain = whole[i] > ' ' && whole[i] < '\x7f';
            rejectOption(isPlain ? name : argument, argument);
        }
        else if (!pOption->_valueName.isEmpty() && i + 1 < whole.size())
        {
            add(*pOption, name, whole.substr(i + 1));
            return;
        }
        else
        {
            takeValue(*pOption, name);
        }
    }
}

// Of an option that has no value in its own argument.
void Splitter::takeValue(const clOptionShape& option, const gtString& name)
{
    if (option._long == "--help")
    {
        _result._isHelpWanted = true;
    }
    else if (option._long == "--version")
    {
        _result._isVersionWanted = true;
    }
    else if (option._valueName.isEmpty())
    {
        add(option, name, gtString());
    }
    else if (_next == _arguments.size())
    {
        reject(gtString(name).append(" needs a value (").append(option._valueName).append("), and nothing follows it"));
    }
    else if (_arguments[_next].isEmpty())
    {
        rejectEmptyValue(option, name);
    }
    else if (isOption(_arguments[_next]))
    {
        reject(gtString(name)
                   .append(" needs a value (")
                   .append(option._valueName)
                   .append("), and ")
                   .append(clPrintableName(_arguments[_next]))
                   .append(" follows it; a value that begins with a dash is written ")
                   .append(option._long)
                   .append("=-value"));
    }
    else
    {
        add(option, name, _arguments[_next++]);
    }
}

void Splitter::add(const clOptionShape& option, const gtString& name, const gtString& value)
{
    const bool isThere = std::any_of(_result._options.begin(), _result._options.end(),
                                     [&option](const clSplitOption& other) { return other._name == option._long; });
    if (isThere && !option._valueName.isEmpty() && !option._isRepeatable)
    {
        reject(gtString(name).append(" is given twice"));
    }
    else if (!isThere || !option._valueName.isEmpty())
    {
        _result._options.push_back({option._long, value});
    }
}

void Splitter::checkWhatIsMissing()
{
    for (const clOptionShape& option : _pCommand->_options)
    {
        if (option._isRequired &&
            std::none_of(_result._options.begin(), _result._options.end(),
                         [&option](const clSplitOption& given) { return given._name == option._long; }))
        {
            reject(gtString(option._long).append(' ').append(option._valueName).append(" is missing"));
            return;
        }
    }
    if (_pCommand->_isOperandRequired && _result._operands.empty())
    {
        reject(gtString("no ").append(_pCommand->_operandName).append(" is named"));
        return;
    }
    const std::size_t most = _pCommand->_operandName.isEmpty() ? 0 : 1;
    if (!_pCommand->_areOperandsMany && _result._operands.size() > most)
    {
        reject(gtString("one argument too many: ").append(clPrintableName(_result._operands[most])));
    }
}

void Splitter::rejectCommand(const gtString& name)
{
    std::vector<gtString> words;
    for (const clCommandShape& command : _commands)
    {
        words.push_back(command._name);
    }
    for (const Alias& alias : aliases)
    {
        words.emplace_back(alias._pName);
    }
    words.emplace_back(helpCommand);
    words.erase(words.begin());
    reject(
        gtString("there is no command ").append(clPrintableName(name)).append(suggestion(clNearestWord(name, words))));
}

void Splitter::rejectOption(const gtString& name, const gtString& argument)
{
    const clCommandShape* pOwner = nullptr;
    for (const clCommandShape& command : _commands)
    {
        if (pOwner == nullptr && findOption(command, name.asStringView()) != nullptr)
        {
            pOwner = &command;
        }
    }
    if (pOwner != nullptr && _pCommand->_name.isEmpty())
    {
        // The first command that follows.
        const auto command = std::find_if(_arguments.begin(), _arguments.end(),
                                          [this](const gtString& word) { return findCommand(word) != nullptr; });
        const gtString behind = command == _arguments.end() ? gtString("COMMAND") : *command;
        reject(gtString(name)
                   .append(" stands before the command; write: countersign ")
                   .append(behind)
                   .append(' ')
                   .append(name));
        return;
    }
    if (pOwner != nullptr)
    {
        const gtString owner = pOwner->_name.isEmpty() ? gtString("countersign") : pOwner->_name;
        reject(gtString(name).append(" is an option of ").append(owner).append(", not of ").append(_pCommand->_name));
        return;
    }
    std::vector<gtString> words;
    for (const clOptionShape& option : _pCommand->_options)
    {
        words.push_back(option._long);
    }
    // With one dash as with two.
    const gtString spelling = name.length() > 2 && name[1] != '-' ? gtString("-").append(name) : name;
    const gtString nearest = name.length() > 2 ? clNearestWord(spelling, words) : gtString();
    gtString text = gtString("there is no option ").append(clPrintableName(name));
    if (name.length() == 2 && argument.length() > 2)
    {
        text.append(" (in ").append(clPrintableName(argument)).append(')');
    }
    text.append(suggestion(nearest));
    if (nearest.isEmpty() && !_pCommand->_operandName.isEmpty())
    {
        text.append("; put -- in front of a ").append(_pCommand->_operandName).append(" that begins with a dash");
    }
    reject(text);
}

void Splitter::rejectEmptyValue(const clOptionShape& option, const gtString& name)
{
    reject(gtString("the value of ").append(name).append(" is empty; it needs a ").append(option._valueName));
}

}  // namespace

clSplitArguments clSplit(const std::vector<gtString>& arguments, const std::vector<clCommandShape>& commands)
{
    return Splitter(arguments, commands).split();
}
