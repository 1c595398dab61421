// SPDX-License-Identifier: Apache-2.0
// Random arguments out of a grammar of options and names, in a folder of documents, links, keys and signatures:
// whatever is asked for, no document changes.
//
// COUNTERSIGN_RANDOM_USES sets how many times the program is run (120 without it), and COUNTERSIGN_SEED where the
// random numbers begin. A failure tells the seed and the arguments.
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "Program.h"
#include "tests/support/tsEnvironment.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace
{

using Words = std::vector<std::string>;

class RandomUse : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        fs::create_directory(_folder / "folder");
        const std::pair<const char*, std::string> documents[] = {
            {"thesis.tex", "All that I know."},
            {"notes.txt", std::string(70000, 'n')},
            {"empty", ""},
            {"-dash", "of a name that begins with a dash"},
            {"-", "of a name that stands for standard input"},
            {"a b\n\xff", "of a name that is hard to print"},
            {"folder/inner", "in a folder"},
            // What is no signature is nobody's to overwrite.
            {"folder/inner.sig", "of another program"},
            {"orphan.sig", "a document by this name"},
            {"list", "thesis.tex\0folder\0-\0missing\0"s},
            {"secret", "sesame\n"},
        };
        for (const auto& [name, contents] : documents)
        {
            _folder.write(name, contents);
        }
        fs::create_symlink("thesis.tex", _folder / "link");
        fs::create_symlink("thesis.tex", _folder / "thesis.tex.sig");
        fs::create_symlink("../private.pem", _folder / "folder/key.sig");
        fs::create_hard_link(_folder / "notes.txt", _folder / "hard");
        fs::create_hard_link(_folder / "notes.txt", _folder / "empty.sig");
        _documents = snapshot();
        // A signature is the one thing that may be overwritten, with --force.
        outputOf({"sign", "-k", "private.pem", "notes.txt"});
    }

    // What each name in the folder is: a link's target, a file's bytes.
    std::map<std::string, std::string> snapshot() const
    {
        std::map<std::string, std::string> result;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(_folder.path()))
        {
            const std::string name = entry.path().lexically_relative(_folder.path()).string();
            if (entry.is_symlink())
            {
                result[name] = "-> " + fs::read_symlink(entry.path()).string();
            }
            else if (entry.is_regular_file())
            {
                result[name] = readFile(entry.path().string());
            }
        }
        return result;
    }

    // The first document that is not as it was, or a temporary file; empty: none.
    std::string findDamage() const
    {
        const std::map<std::string, std::string> found = snapshot();
        for (const auto& [name, contents] : _documents)
        {
            const auto there = found.find(name);
            if (there == found.end() || there->second != contents)
            {
                return name;
            }
        }
        for (const auto& [name, contents] : found)
        {
            if (name.find(".tmp") != std::string::npos)
            {
                return name;
            }
        }
        return "";
    }

    std::size_t below(std::size_t limit) { return _random() % limit; }
    bool isLucky(std::size_t one) { return below(one) == 0; }
    const std::string& oneOf(const Words& words) { return words[below(words.size())]; }

    std::string name()
    {
        static const Words names = {"thesis.tex",
                                    "notes.txt",
                                    "empty",
                                    "-dash",
                                    "-",
                                    "./-",
                                    "a b\n\xff",
                                    "folder/inner",
                                    "folder/inner.sig",
                                    "orphan.sig",
                                    "list",
                                    "link",
                                    "thesis.tex.sig",
                                    "hard",
                                    "empty.sig",
                                    "folder/key.sig",
                                    "private.pem",
                                    "public.pem",
                                    "notes.txt.sig",
                                    "folder",
                                    "folder/",
                                    ".",
                                    "missing",
                                    "missing/new.sig",
                                    "new.sig",
                                    "new",
                                    "",
                                    "./thesis.tex",
                                    "folder/../notes.txt",
                                    "secret"};
        return oneOf(names);
    }

    // Mostly what the option needs.
    std::string valueOf(const std::string& option)
    {
        if (isLucky(8))
        {
            return name();
        }
        if (option == "--key" || option == "-k")
        {
            return isLucky(6) ? "public.pem" : "private.pem";
        }
        if (option == "--bits")
        {
            return isLucky(4) ? "511" : "512";
        }
        if (option == "--jobs")
        {
            return isLucky(4) ? "x" : "2";
        }
        if (option == "--passphrase-fd")
        {
            return isLucky(4) ? "x" : "0";
        }
        return name();
    }

    void addOption(Words& words, const std::string& option, bool hasValue)
    {
        if (!hasValue)
        {
            words.push_back(isLucky(40) ? option + "=" + name() : option);
        }
        else if (isLucky(3) && option[1] == '-')
        {
            words.push_back(option + "=" + valueOf(option));
        }
        else
        {
            words.push_back(option);
            if (!isLucky(40))
            {
                words.push_back(valueOf(option));
            }
        }
    }

    // The command's own flags and options, and now and then another's.
    const Words& ofCommand(const std::map<std::string, Words>& words, const std::string& command)
    {
        return words.at(isLucky(25) ? "others" : command);
    }

    Words arguments()
    {
        static const std::map<std::string, Words> flags = {
            {"sign", {"--force", "--force", "-f", "-fd", "--skip-signed", "-n", "-a", "-q", "--json", "-r"}},
            {"test", {"--also-signatures", "--quiet", "--status", "--summary", "--json", "-r", "--accept-weak"}},
            {"digest", {"--json", "--recursive"}},
            {"key", {"--json", "--numbers", "--public", "--private"}},
            {"keygen", {"--no-passphrase"}},
            {"encrypt", {"--private", "--no-warnings"}},
            {"others", {"--bogus", "--", "-1", "--help", "--force", "--numbers", "--digest-only", "--status"}},
        };
        static const std::map<std::string, Words> options = {
            {"sign", {"--output", "--output", "-o", "--files0-from", "--jobs", "-k"}},
            {"test", {"--signature", "--files0-from", "--key-dir", "--jobs", "-k"}},
            {"digest", {"--files0-from", "--jobs"}},
            {"key", {"--passphrase-file"}},
            {"keygen", {"--output", "-o", "--bits"}},
            {"encrypt", {"--passphrase-fd"}},
            {"others", {"--output", "--signature", "--bits", "--passphrase-fd", "--passphrase-file", "--key-dir"}},
        };
        static const Words commands = {"sign", "sign", "sign", "sign", "test", "digest", "key", "keygen", "encrypt"};
        const std::string& command = oneOf(commands);
        Words words = {isLucky(40) ? "sgin" : command};
        const bool isKeygen = command == "keygen";
        if (isKeygen)
        {
            // Without this it would ask for a passphrase, and large keys take long.
            words.insert(words.end(), {"--no-passphrase", "--bits", "512"});
        }
        else if (!isLucky(20))
        {
            addOption(words, "--key", true);
        }
        for (std::size_t amount = below(3); amount > 0; --amount)
        {
            addOption(words, oneOf(ofCommand(flags, command)), false);
        }
        for (std::size_t amount = isLucky(2) ? 1 + below(2) : 0; amount > 0; --amount)
        {
            addOption(words, oneOf(ofCommand(options, command)), true);
        }
        if (command != "key" && !isKeygen)
        {
            for (std::size_t amount = command == "encrypt" ? below(2) : 1 + below(3); amount > 0; --amount)
            {
                words.push_back(name());
            }
        }
        return words;
    }

    std::map<std::string, std::string> _documents;
    std::mt19937 _random;
};

std::string shown(const Words& words)
{
    std::string result;
    for (const std::string& word : words)
    {
        result += " '" + word + "'";
    }
    return result;
}

}  // namespace

TEST_F(RandomUse, ChangesNoDocument)
{
    const unsigned long seed = tsNumberFromEnvironment("COUNTERSIGN_SEED", 20261122);
    const unsigned long uses = tsNumberFromEnvironment("COUNTERSIGN_RANDOM_USES", 120);
    _random.seed(static_cast<std::mt19937::result_type>(seed));
    std::map<int, unsigned long> amounts;
    for (unsigned long use = 0; use < uses; ++use)
    {
        const Words words = arguments();
        const tsOutcome outcome = run(words, isLucky(2) ? "" : "text");
        ++amounts[outcome._exitStatus];
        const std::string where = "COUNTERSIGN_SEED=" + std::to_string(seed) + ", use " + std::to_string(use) + ":" +
                                  shown(words) + "\n" + outcome._errors;
        ASSERT_TRUE(outcome._exitStatus >= 0 && outcome._exitStatus <= 2) << where;
        ASSERT_EQ(findDamage(), "") << where;
    }
    // It is no good if all uses are wrong ones.
    if (uses >= 100)
    {
        EXPECT_GT(amounts[0], uses / 20);
        EXPECT_GT(amounts[2], uses / 20);
    }
}

TEST_F(RandomUse, WouldNoticeAChange)
{
    EXPECT_EQ(findDamage(), "");
    _folder.write("folder/inner.sig", "of this program");
    EXPECT_EQ(findDamage(), "folder/inner.sig");
    _folder.write("folder/inner.sig", "of another program");
    EXPECT_EQ(findDamage(), "");
    fs::remove(_folder / "thesis.tex.sig");
    _folder.write("thesis.tex.sig", "All that I know.");
    EXPECT_EQ(findDamage(), "thesis.tex.sig");
    fs::remove(_folder / "thesis.tex.sig");
    EXPECT_EQ(findDamage(), "thesis.tex.sig");
    fs::create_symlink("thesis.tex", _folder / "thesis.tex.sig");
    _folder.write(".countersign-1-1.tmp", "");
    EXPECT_EQ(findDamage(), ".countersign-1-1.tmp");
}
