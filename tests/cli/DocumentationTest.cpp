// SPDX-License-Identifier: Apache-2.0
// Help, manual page and completion tell of the same options, and the README's example does what it shows.
#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <regex.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

namespace
{

using Options = std::set<std::string>;

// Of all commands.
const Options everywhere = {"-k", "--key", "-h", "--help", "--passphrase-fd", "--passphrase-file", "--no-warnings"};

const std::vector<std::string> commands = {"sign", "test", "encrypt", "decrypt", "key", "keygen", "digest"};

std::string sourceFile(const std::string& path)
{
    return readFile(std::string(COUNTERSIGN_SOURCE) + "/" + path);
}

// What the first group of the pattern (of POSIX, extended) matches, each time.
Options matches(const std::string& text, const std::string& pattern)
{
    regex_t expression;
    EXPECT_EQ(regcomp(&expression, pattern.c_str(), REG_EXTENDED), 0) << pattern;
    Options result;
    regmatch_t groups[2];
    const char* pNext = text.c_str();
    while (regexec(&expression, pNext, 2, groups, 0) == 0)
    {
        result.insert(std::string(pNext + groups[1].rm_so, pNext + groups[1].rm_eo));
        pNext += groups[1].rm_eo;
    }
    regfree(&expression);
    return result;
}

std::string help(const std::vector<std::string>& arguments)
{
    std::vector<std::string> all = {COUNTERSIGN_PROGRAM};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.push_back("--help");
    return tsRun(all)._output;
}

// The lines that describe options begin with them.
Options optionsOfHelp(const std::vector<std::string>& arguments)
{
    const std::string text = help(arguments);
    Options result = matches(text, "\n  -[a-zA-Z],(--[a-z-]+)");
    result.merge(matches(text, "\n  (-[a-zA-Z]),--[a-z-]+"));
    result.merge(matches(text, "\n  (--[a-z0-9-]+)"));
    return result;
}

std::string manual()
{
    std::string text = sourceFile("docs/man/countersign.1.in");
    for (std::size_t dash = text.find("\\-"); dash != std::string::npos; dash = text.find("\\-", dash))
    {
        text.erase(dash, 1);
    }
    return text;
}

Options linesOf(const std::string& text)
{
    Options result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        if (!line.empty())
        {
            result.insert(line);
        }
    }
    return result;
}

// What bash would offer behind these words.
Options completions(const std::vector<std::string>& words, const std::string& folder = "/")
{
    std::string script = "set -u; . \"$0/cli/completion/countersign\"; COMP_WORDS=(countersign";
    for (const std::string& word : words)
    {
        script += " '" + word + "'";
    }
    script += "); COMP_CWORD=" + std::to_string(words.size()) +
              "; COMPREPLY=(); _countersign; printf '%s\\n' \"${COMPREPLY[@]}\"";
    tsCommand bash;
    bash._arguments = {"bash", "-c", script, COUNTERSIGN_SOURCE};
    bash._folder = folder;
    const tsOutcome outcome = tsRun(bash);
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_EQ(outcome._errors, "");
    return linesOf(outcome._output);
}

// With the program that is tested, which the completions of zsh and fish ask.
void putProgramOnPath()
{
    const std::string program = COUNTERSIGN_PROGRAM;
    const std::string path = program.substr(0, program.rfind('/')) + ":" + getenv("PATH");
    setenv("PATH", path.c_str(), 1);
}

struct Shell
{
    std::string _name;
    // Prints what is offered at the end of the line $2; $1 is the folder of the sources.
    std::vector<std::string> _command;
};

const std::vector<Shell> otherShells = {
    {"zsh", {"zsh", "-f", "-c", "zsh -f $1/tests/cli/zshCompletion.zsh $1/cli/completion \"$2\"", "zsh"}},
    // What it says of an offer stands behind a tab. Without a name for $0 there.
    {"fish",
     {"fish", "--no-config", "-c",
      "source $argv[1]/cli/completion/countersign.fish; complete -C $argv[2] | string replace -r '\\t.*' ''; true"}}};

bool isThere(const std::string& program)
{
    return tsRun({program, "-c", "exit 0"})._exitStatus == 0;
}

Options completionsBy(const Shell& shell, const std::string& line, const std::string& folder = "/")
{
    tsCommand command;
    command._arguments = shell._command;
    command._arguments.insert(command._arguments.end(), {COUNTERSIGN_SOURCE, line});
    command._folder = folder;
    command._prepare = putProgramOnPath;
    const tsOutcome outcome = tsRun(command);
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
    EXPECT_EQ(outcome._errors, "");
    return linesOf(outcome._output);
}

// The offers that begin so.
Options beginningWith(const std::string& beginning, const Options& offers)
{
    Options result;
    for (const std::string& offer : offers)
    {
        if (offer.compare(0, beginning.size(), beginning) == 0)
        {
            result.insert(offer);
        }
    }
    return result;
}

std::string trimmedLine(const std::string& line)
{
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string::npos ? "" : line.substr(begin);
}

}  // namespace

TEST(Documentation, HelpNamesEveryCommandWithExamples)
{
    const std::string text = help({});
    EXPECT_EQ(matches(text, "\n  ([a-z]+) {4,}"), Options(commands.begin(), commands.end()));
    EXPECT_NE(text.find("Examples:"), std::string::npos);
    for (const std::string& command : commands)
    {
        EXPECT_NE(help({command}).find("Examples:\n  countersign " + command), std::string::npos) << command;
    }
}

TEST(Documentation, HelpFitsATerminalAndShowsWhatIsRequired)
{
    EXPECT_NE(help({}).find("\nUsage: countersign COMMAND "), std::string::npos);
    for (const std::string& command : commands)
    {
        const std::string text = help({command});
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
        {
            EXPECT_LE(line.size(), 80U) << command << ": " << line;
        }
        const std::size_t usage = text.find("\nUsage: countersign " + command + " ");
        ASSERT_NE(usage, std::string::npos) << text;
        const std::string usageLine = text.substr(usage + 1, text.find('\n', usage + 1) - usage - 1);
        // Without it each command says that it is missing.
        for (const char* pRequired : {"--key PEM", " FILE..."})
        {
            const bool isFile = pRequired[0] == ' ';
            const std::string complaint = isFile ? "no FILE is named" : "--key PEM";
            const tsOutcome without =
                isFile ? tsRun({COUNTERSIGN_PROGRAM, command, "-k", "k"}) : tsRun({COUNTERSIGN_PROGRAM, command, "f"});
            EXPECT_EQ(usageLine.find(pRequired) != std::string::npos,
                      without._errors.find(complaint) != std::string::npos)
                << usageLine << "\n"
                << without._errors;
        }
    }
    std::istringstream lines(help({}));
    for (std::string line; std::getline(lines, line);)
    {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

TEST(Documentation, ManualTellsTheSameOptions)
{
    const std::string text = manual();
    Options inHelp = optionsOfHelp({});
    // An option's line names the command that it belongs to, unless it belongs to all.
    for (const std::string& command : commands)
    {
        const Options options = optionsOfHelp({command});
        EXPECT_FALSE(options.empty());
        for (const std::string& option : options)
        {
            const bool isEverywhere = everywhere.count(option) != 0;
            std::ostringstream pattern;
            pattern << "(\n\\.BR? [^\n]*" << option << "([ \"][^\n]*)?";
            if (!isEverywhere)
            {
                // Others that it belongs to may come first.
                pattern << "(\n\\.RB \\( [a-z]+ \\))*\n\\.RB \\( " << command << " \\)";
            }
            pattern << ")";
            EXPECT_FALSE(matches(text, pattern.str()).empty()) << command << " " << option;
        }
        inHelp.insert(options.begin(), options.end());
        EXPECT_NE(text.find(".B countersign " + command + "\n"), std::string::npos);
    }
    Options inManual = matches(text, "\n\\.BR -[a-zA-Z] \", \" (--[a-z-]+)");
    inManual.merge(matches(text, "\n\\.BR (-[a-zA-Z]) "));
    inManual.merge(matches(text, "\n\\.BR? (--[a-z0-9-]+)[ \n]"));
    EXPECT_EQ(inManual, inHelp);
}

TEST(Documentation, ManualIsWellFormed)
{
    const tsOutcome outcome = tsRun({"man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z",
                                     std::string(COUNTERSIGN_SOURCE) + "/docs/man/countersign.1.in"});
    if (outcome._exitStatus == 127)
    {
        GTEST_SKIP() << "there is no man here";
    }
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_EQ(outcome._errors, "");
}

TEST(Documentation, CompletionOffersTheSameOptions)
{
    Options first = optionsOfHelp({});
    first.insert(commands.begin(), commands.end());
    first.insert({"help", "verify"});
    EXPECT_EQ(completions({""}), first);
    EXPECT_EQ(completions({"help", ""}), Options(commands.begin(), commands.end()));
    EXPECT_EQ(completions({"verify", "-"}), optionsOfHelp({"test"}));
    for (const std::string& command : commands)
    {
        EXPECT_EQ(completions({command, "-"}), optionsOfHelp({command})) << command;
    }
    EXPECT_EQ(completions({"s"}), Options{"sign"});
    EXPECT_EQ(completions({"sign", "--fo"}), Options{"--force"});
}

TEST(Documentation, CompletionOffersFiles)
{
    const TemporaryFolder folder;
    folder.write("key.pem", "");
    folder.write("a file.txt", "");
    folder.write("a file.txt.sig", "");
    folder.write("-dash", "");
    EXPECT_EQ(completions({"sign", "--key", ""}, folder.path()), Options{"key.pem"});
    EXPECT_EQ(completions({"test", "-s", ""}, folder.path()), Options{"a file.txt.sig"});
    EXPECT_EQ(completions({"sign", "-k", "key.pem", "a"}, folder.path()), (Options{"a file.txt", "a file.txt.sig"}));
    EXPECT_EQ(completions({"sign", "-k", "key.pem", "--", "-"}, folder.path()), Options{"-dash"});
    EXPECT_EQ(completions({"encrypt", "-k", "key.pem", "a"}, folder.path()), Options{});
    EXPECT_EQ(completions({"sign", "-o", "a"}, folder.path()), (Options{"a file.txt", "a file.txt.sig"}));
}

class CompletionIn : public ::testing::TestWithParam<Shell>
{
protected:
    void SetUp() override
    {
        if (!isThere(GetParam()._name))
        {
            GTEST_SKIP() << "there is no " << GetParam()._name << " here";
        }
    }

    static Options offers(const std::string& line, const std::string& folder = "/")
    {
        return completionsBy(GetParam(), "countersign " + line, folder);
    }
};

TEST_P(CompletionIn, OffersTheSameOptions)
{
    Options first(commands.begin(), commands.end());
    EXPECT_EQ(offers("help "), first);
    first.insert({"help", "verify"});
    EXPECT_EQ(offers(""), first);
    EXPECT_EQ(offers("-"), optionsOfHelp({}));
    EXPECT_EQ(offers("verify -"), optionsOfHelp({"test"}));
    for (const std::string& command : commands)
    {
        EXPECT_EQ(offers(command + " -"), optionsOfHelp({command})) << command;
    }
    EXPECT_EQ(offers("s"), Options{"sign"});
    // Some versions of fish also offer what has these letters in this order.
    EXPECT_EQ(offers("sign --for"), Options{"--force"});
    EXPECT_EQ(offers("keygen --bits "), Options{});
}

TEST_P(CompletionIn, OffersFiles)
{
    const TemporaryFolder folder;
    folder.write("key.pem", "");
    folder.write("file.txt", "");
    folder.write("file.txt.sig", "");
    folder.write("-dash", "");
    const auto files = [&](const std::string& line) { return offers(line, folder.path()); };
    EXPECT_EQ(beginningWith("k", files("sign --key ")), Options{"key.pem"});
    EXPECT_EQ(beginningWith("file", files("test -s file.txt.")), Options{"file.txt.sig"});
    EXPECT_EQ(files("sign -k key.pem f"), (Options{"file.txt", "file.txt.sig"}));
    EXPECT_EQ(files("sign -o f"), (Options{"file.txt", "file.txt.sig"}));
    EXPECT_EQ(files("sign -k key.pem -- -d"), Options{"-dash"});
    EXPECT_EQ(files("encrypt -k key.pem f"), Options{});
    EXPECT_EQ(files("keygen f"), Options{});
}

TEST(Documentation, CompletionSaysWhatTheHelpDoes)
{
    if (!isThere("fish"))
    {
        GTEST_SKIP() << "there is no fish here";
    }
    // More than a line of the help.
    tsCommand fish;
    fish._arguments = {"fish", "--no-config", "-c",
                       "source $argv[1]/cli/completion/countersign.fish; complete -C 'countersign sign --output'",
                       COUNTERSIGN_SOURCE};
    fish._prepare = putProgramOnPath;
    EXPECT_EQ(tsRun(fish)._output,
              "--output\tWhere the signature of a single FILE goes instead; - for standard output, "
              "also of many\n");
}

INSTANTIATE_TEST_SUITE_P(Documentation, CompletionIn, ::testing::ValuesIn(otherShells),
                         [](const ::testing::TestParamInfo<Shell>& parameter) { return parameter.param._name; });

TEST(Documentation, ManualsExamplesWork)
{
    std::string text = manual();
    const std::string begin = ".SH EXAMPLES\n.nf\n";
    const std::size_t examples = text.find(begin);
    ASSERT_NE(examples, std::string::npos);
    text = text.substr(examples + begin.size(), text.find("\n.fi", examples) - examples - begin.size());
    const std::pair<std::string, std::string> written[] = {
        {"\\(aq", "'"},
        {"\\e", "\\"},
        // It would ask for one.
        {"keygen --output", "keygen --no-passphrase --output"},
    };
    for (const auto& [before, after] : written)
    {
        ASSERT_NE(text.find(before), std::string::npos) << before;
        for (std::size_t found = text.find(before); found != std::string::npos; found = text.find(before, found))
        {
            text.replace(found, before.size(), after);
            found += after.size();
        }
    }
    const TemporaryFolder folder;
    folder.write("report.pdf", "contents");
    tsCommand bash;
    bash._arguments = {"bash", "-e", "-c", text};
    bash._folder = folder.path();
    bash._prepare = putProgramOnPath;
    const tsOutcome outcome = tsRun(bash);
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
    EXPECT_NE(outcome._output.find("report.pdf: signed, report.pdf.sig\nreport.pdf: good\nVerified OK\nat noon"),
              std::string::npos)
        << outcome._output;
}

class ReadmeExamples : public ::testing::TestWithParam<const char*>
{
};

TEST_P(ReadmeExamples, DoWhatTheyShow)
{
    const std::string readme = sourceFile("README.md");
    const std::size_t heading = readme.find(std::string("\n## ") + GetParam() + "\n");
    ASSERT_NE(heading, std::string::npos);
    const std::string fence = "```console\n";
    const std::size_t begin = readme.find(fence, heading);
    ASSERT_NE(begin, std::string::npos);
    const std::size_t end = readme.find("```", begin + fence.size());
    ASSERT_NE(end, std::string::npos);
    const std::string block = readme.substr(begin + fence.size(), end - begin - fence.size());

    // Every command is followed by what it printed; the commands run in one shell, which prints a line before each.
    std::string script = "exec 2>&1\n";
    std::istringstream lines(block);
    int amountOfCommands = 0;
    for (std::string line; std::getline(lines, line);)
    {
        line = trimmedLine(line);
        if (line.substr(0, 2) == "$ ")
        {
            // What the command before returned is kept for it.
            script.append("status=$?; cat <<'THE_COMMAND'\n").append(line).append("\nTHE_COMMAND\n(exit $status)\n");
            script.append(line, 2).append("\n");
            ++amountOfCommands;
        }
    }
    ASSERT_GT(amountOfCommands, 5);

    const TemporaryFolder folder;
    tsCommand bash;
    bash._arguments = {"bash", "-c", script};
    bash._folder = folder.path();
    bash._prepare = putProgramOnPath;
    EXPECT_EQ(tsRun(bash)._output, block);
}

INSTANTIATE_TEST_SUITE_P(Documentation, ReadmeExamples, ::testing::Values("A worked example", "Signatures"),
                         [](const ::testing::TestParamInfo<const char*>& parameter)
                         {
                             std::string name = parameter.param;
                             name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
                             return name;
                         });
