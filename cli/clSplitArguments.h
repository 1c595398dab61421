// SPDX-License-Identifier: Apache-2.0
// Takes arguments apart into a command, its options with their values, and operands, by what the options take. What is
// wrong with them is found here, before the parser of the library sees any: it would take the next argument for a
// missing value.
//
// An option's value is the rest of its argument (--key=k.pem, -kk.pem) or the next argument. It is never empty, and one
// that begins with a dash has to stand in the option's own argument; "-" alone is a value and an operand like any
// other. Flags of one letter may stand together (-fd). Behind "--" there are operands only.
#ifndef COUNTERSIGN_CL_SPLIT_ARGUMENTS_H
#define COUNTERSIGN_CL_SPLIT_ARGUMENTS_H

#include "platform/baseTools/gtString.h"

#include <vector>

struct clOptionShape
{
    gtString _long;       // "--key"
    gtString _short;      // "-k", or empty
    gtString _valueName;  // "PEM"; empty: it takes no value
    bool _isRequired = false;
    bool _isRepeatable = false;  // of one with a value; flags always are
};

struct clCommandShape
{
    gtString _name;
    std::vector<clOptionShape> _options;
    gtString _operandName;  // "FILE"; empty: it takes none
    bool _isOperandRequired = false;
    bool _areOperandsMany = false;
};

struct clSplitOption
{
    gtString _name;   // the long one
    gtString _value;  // empty of a flag
};

struct clSplitArguments
{
    gtString _wrong;  // what is wrong, printable; empty: nothing, and all else is filled
    bool _isHelpWanted = false;
    bool _isVersionWanted = false;
    gtString _command;  // the command's own name; empty: none, for help and version only
    std::vector<clSplitOption> _options;
    std::vector<gtString> _operands;
};

// arguments: at least one.
// commands: the first has no name and the options that stand in front of a command.
clSplitArguments clSplit(const std::vector<gtString>& arguments, const std::vector<clCommandShape>& commands);

#endif
