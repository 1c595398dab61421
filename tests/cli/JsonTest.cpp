// SPDX-License-Identifier: Apache-2.0
// What --json prints, checked by the schema that is installed with the documents.
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Program.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace
{

class Json : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        if (check("")._exitStatus == 77)
        {
            GTEST_SKIP() << "there is no python3-jsonschema here";
        }
        _folder.write("a", "contents of a");
        _folder.write("b", "contents of b");
        outputOf({"sign", "-k", "private.pem", "b"});
        _shortFingerprint = fact("short-fingerprint");
        _key = "{\"bits\": 1024, \"file\": \"public.pem\", \"fingerprint\": \"" + fact("fingerprint") +
               "\", \"shortFingerprint\": \"" + _shortFingerprint + "\"}";
    }

    std::string fact(const std::string& name) const
    {
        const std::string text = outputOf({"key", "-k", "public.pem"});
        const std::size_t begin = text.find("\n" + name + " ") + name.size() + 2;
        return text.substr(begin, text.find('\n', begin) - begin);
    }

    static tsOutcome check(const std::string& lines)
    {
        const std::string source = COUNTERSIGN_SOURCE;
        tsCommand python;
        python._arguments = {"python3", source + "/tests/cli/checkJson.py",
                             source + "/docs/countersign-output.schema.json"};
        python._input = lines;
        return tsRun(python);
    }

    // The objects with their members sorted. Nothing else is printed.
    std::string objectsOf(const std::vector<std::string>& arguments, int status, const std::string& input = "") const
    {
        const tsOutcome outcome = run(arguments, input);
        EXPECT_EQ(outcome._exitStatus, status);
        EXPECT_EQ(outcome._errors, "");
        const tsOutcome checked = check(outcome._output);
        EXPECT_EQ(checked._exitStatus, 0) << checked._errors;
        return checked._output;
    }

    static std::string document(const std::string& command, const std::string& file, const std::string& messages,
                                const std::string& resultAndSignature, int status, const std::string& key = "")
    {
        return "{\"command\": \"" + command + "\", \"file\": \"" + file + "\", " +
               (key.empty() ? key : "\"key\": " + key + ", ") + "\"messages\": [" + messages + "], " +
               resultAndSignature + ", \"status\": " + std::to_string(status) +
               ", \"type\": \"document\", \"version\": 1}\n";
    }

    std::string _key;
    std::string _shortFingerprint;
};

std::string message(const std::string& text)
{
    return "{\"level\": \"error\", \"text\": \"" + text + "\"}";
}

}  // namespace

TEST_F(Json, TellsOfSignedDocuments)
{
    std::string key = _key;
    key.replace(key.find("public"), 6, "private");
    EXPECT_EQ(
        objectsOf({"sign", "--json", "-k", "private.pem", "a", "b"}, 2),
        document("sign", "a", "", R"("result": "signed", "signature": "a.sig")", 0, key) +
            document(
                "sign", "b",
                message("b.sig: it exists already and was kept; --skip-signed passes over what is still good, --force "
                        "overwrites it"),
                R"("result": "not-signed")", 2));
    EXPECT_EQ(objectsOf({"sign", "--json", "-nk", "private.pem", "b"}, 0),
              document("sign", "b", "", R"("result": "already-signed", "signature": "b.sig")", 0, key));
    ASSERT_EQ(chmod((_folder / "b.sig").c_str(), 0400), 0);
    EXPECT_THAT(objectsOf({"sign", "--json", "-fqk", "private.pem", "b"}, 0),
                HasSubstr(R"({"level": "warning", "text": "b.sig: a read-only signature was replaced"})"));
}

TEST_F(Json, TellsOfTestedDocuments)
{
    outputOf({"sign", "-k", "private.pem", "a"});
    _folder.write("a", "contents of A");
    const std::string fingerprint = "\"signatureFingerprint\": \"" + _shortFingerprint + "\"";
    EXPECT_EQ(
        objectsOf({"test", "--json", "--summary", "-k", "public.pem", "b", "a", "missing", "a.sig"}, 2),
        document("test", "b", "", R"("result": "good", "signature": "b.sig", )" + fingerprint, 0, _key) +
            document("test", "a", "", R"("result": "bad", "signature": "a.sig", )" + fingerprint, 1, _key) +
            document("test", "missing", message("missing: there is no such file"),
                     R"("result": "missing", "signature": "missing.sig")", 2) +
            R"({"command": "test", "documents": 3, "notBegun": 0, "results": {"bad": 1, "good": 1, "missing": 1}, )"
            R"("signaturesLeftOut": 1, "type": "summary", "version": 1})"
            "\n");
    // As without it, what is good is left out.
    EXPECT_EQ(objectsOf({"test", "--json", "--quiet", "-k", "public.pem", "b"}, 0), "");
    EXPECT_THAT(objectsOf({"test", "--json", "-k", "public.pem", "-s", "-", "b"}, 0, _folder.read("b.sig")),
                Not(HasSubstr("\"signature\":")));
    runOpenSSL(_folder, {"genrsa", "-out", "other.pem", "1024"});
    const std::string other = objectsOf({"test", "--json", "-k", "other.pem", "b"}, 2);
    EXPECT_THAT(other, HasSubstr("\"result\": \"another-key\""));
    EXPECT_THAT(other, Not(HasSubstr("\"key\": ")));
    for (const char* pName : {"unsigned", "spoilt", "orphan.sig"})
    {
        _folder.write(pName, "contents");
    }
    _folder.write("spoilt.sig", "spoilt\n");
    const std::string rest = objectsOf({"test", "--json", "-k", "public.pem", "unsigned", "spoilt", "orphan.sig"}, 2);
    EXPECT_THAT(rest, HasSubstr("\"result\": \"not-signed\""));
    EXPECT_THAT(rest, HasSubstr("\"result\": \"not-a-signature\""));
    EXPECT_THAT(rest, HasSubstr("\"result\": \"not-tested\""));
}

TEST_F(Json, TellsOfDigests)
{
    std::string digest = outputOf({"digest", "-k", "public.pem", "a"});
    digest.pop_back();
    EXPECT_EQ(
        objectsOf({"digest", "--json", "-k", "public.pem", "a", "missing"}, 2),
        "{\"command\": \"digest\", \"digest\": \"" + digest +
            "\", \"file\": \"a\", \"messages\": [], \"result\": \"read\", \"status\": 0, \"type\": \"document\", "
            "\"version\": 1}\n" +
            document("digest", "missing", message("missing: there is no such file"), R"("result": "not-read")", 2));
}

TEST_F(Json, TellsOfKeys)
{
    const std::string text = objectsOf({"key", "--json", "-k", "private.pem"}, 0);
    EXPECT_EQ(text, R"({"bits": 1024, "command": "key", "encrypted": false, "file": "private.pem", "fingerprint": ")" +
                        fact("fingerprint") + R"(", "kind": "private", "shortFingerprint": ")" + _shortFingerprint +
                        R"(", "type": "key", "version": 1})" + "\n");
    const std::string numbers = objectsOf({"key", "--json", "--numbers", "-k", "public.pem"}, 0);
    EXPECT_THAT(numbers, HasSubstr("\"exponent\": \"00010001\""));
    const std::string plain = outputOf({"key", "--numbers", "-k", "public.pem"});
    const std::size_t modulus = plain.find("\nmodulus ") + 9;
    EXPECT_THAT(numbers,
                HasSubstr("\"modulus\": \"" + plain.substr(modulus, plain.find('\n', modulus) - modulus) + "\""));
    runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes128", "-passout", "pass:sesame", "-out", "locked.pem"});
    _folder.write("secret", "sesame\n");
    EXPECT_THAT(objectsOf({"key", "--json", "--passphrase-file", "secret", "-k", "locked.pem"}, 0),
                HasSubstr("\"encrypted\": true"));
}

TEST_F(Json, TellsErrorsAndWarnings)
{
    const std::string missing = objectsOf({"test", "--json", "-k", "missing.pem", "a"}, 2);
    EXPECT_THAT(missing, HasSubstr(R"("level": "error", "text": "missing.pem: )"));
    EXPECT_THAT(missing, HasSubstr(R"("type": "message")"));
    EXPECT_THAT(objectsOf({"test", "--json", "-k", "public.pem", "a.sig", "b.sig"}, 2), HasSubstr("\"level\""));
    ASSERT_EQ(chmod((_folder / "private.pem").c_str(), 0644), 0);
    const std::string open = objectsOf({"key", "--json", "-k", "private.pem"}, 0);
    EXPECT_THAT(open, HasSubstr(R"("level": "warning", "text": "private.pem: others may read)"));
    EXPECT_THAT(open, HasSubstr(R"("type": "key")"));
}

TEST_F(Json, KeepsEveryName)
{
    const std::pair<std::string, std::string> names[] = {
        {"two\nlines \"q\" \\ \x7f", R"("file": "two\nlines \"q\" \\ \u007f")"},
        {"\xc3\xa4 \xf0\x9f\x94\x91 \xe2\x80\xae", R"("file": "\u00e4 \ud83d\udd11 \u202e")"},
        {"\xff", R"("fileBase64": "/w==")"},
        {"a\xff", R"("fileBase64": "Yf8=")"},
        {"a\xffz", R"("fileBase64": "Yf96")"},
        {"\xed\xa0\x80", R"("fileBase64": "7aCA")"},
    };
    for (const auto& [name, expected] : names)
    {
        _folder.write(name, "contents");
        const std::string object = objectsOf({"sign", "--json", "-k", "private.pem", name}, 0);
        EXPECT_THAT(object, HasSubstr(expected));
        const bool isBase64 = expected.find("fileBase64") != std::string::npos;
        EXPECT_THAT(object, HasSubstr(isBase64 ? "\"signatureBase64\": \"" : "\"signature\": \""));
        EXPECT_THAT(objectsOf({"test", "--json", "-k", "public.pem", name}, 0), HasSubstr(expected));
        EXPECT_THAT(objectsOf({"test", "--json", "-k", "public.pem", name + "x"}, 2), HasSubstr("missing"));
    }
}

TEST_F(Json, IsRefusedWhereItMakesNoSense)
{
    expectFailure(run({"test", "--json", "--status", "-k", "public.pem", "b"}), {"--status", "--json"});
    expectFailure(run({"sign", "--json", "-o", "-", "-k", "private.pem", "b"}), {"--json", "--output -"});
    expectFailure(run({"key", "--json", "--public", "-k", "public.pem"}), {"--json", "--public"});
    expectFailure(run({"key", "--json", "--private", "-k", "private.pem"}), {"--json", "--private"});
    expectFailure(run({"encrypt", "--json", "-k", "public.pem", "x"}), {"--json is an option of"});
    tsCommand toFull = command({"test", "--json", "-k", "public.pem", "b"});
    toFull._outputPath = "/dev/full";
    expectFailure(tsRun(toFull), {"standard output: cannot be written"});
}

TEST_F(Json, IsCheckedByASchemaThatRefuses)
{
    const std::string good =
        R"({"version":1,"type":"document","command":"test","file":"a","result":"good","status":0,"messages":[]})";
    EXPECT_EQ(check(good + "\n")._exitStatus, 0);
    const std::pair<std::string, std::string> changes[] = {
        {"\"version\":1", "\"version\":2"}, {"\"good\"", "\"GOOD\""},
        {"\"file\":\"a\"", "\"file\":7"},   {"\"file\":\"a\",", ""},
        {"\"status\":0", "\"status\":3"},   {"\"a\"", "\"a\",\"more\":1"},
    };
    for (const auto& [before, after] : changes)
    {
        std::string spoilt = good;
        spoilt.replace(spoilt.find(before), before.size(), after);
        EXPECT_EQ(check(spoilt + "\n")._exitStatus, 1) << spoilt;
    }
}
