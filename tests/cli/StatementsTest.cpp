// SPDX-License-Identifier: Apache-2.0
// Statements of the manual page and the README that no other test tries, each with what a shell shows of it.
#include <cstdlib>
#include <string>
#include <sys/stat.h>

#include "Program.h"

namespace
{

const char* const manual = "docs/man/countersign.1.in";
const char* const readme = "README.md";

struct Statement
{
    std::string _file;
    std::string _words;   // in one of the file's lines
    std::string _script;  // in a folder with private.pem and public.pem, the file f and another one, g
    std::string _output;
};

const Statement statements[] = {
    {manual, "Two names of one command.",
     "countersign sign -k private.pem f; countersign verify -k public.pem f; countersign test -k public.pem f",
     "f: signed, f.sig\nf: good\nf: good\n"},
    {manual, "What is behind one is told on standard error.",
     "countersign test -k public.pem f 2>e; cut -d: -f1-2 e; countersign test -k public.pem none 2>&1 >/dev/null | wc "
     "-l",
     "f: not signed\ncountersign: f.sig\n1\n"},
    {manual, "Of several files, the highest counts.",
     "countersign sign -q -k private.pem f g; echo other >f; countersign test -q -k public.pem g; echo $?; "
     "countersign test -k public.pem g f g; echo $?; countersign test -q -k public.pem f none g 2>/dev/null; echo $?",
     "0\ng: good\nf: BAD\ng: good\n1\nf: BAD\nnone: missing\n2\n"},
    {manual, "equal texts give",
     "for i in 1 2; do echo text | countersign encrypt -k public.pem; done | sort -u | wc -l", "1\n"},
    {manual, "byte by byte: a line end belongs to the text.",
     "echo x | countersign encrypt -k public.pem | countersign decrypt -k private.pem | od -An -c", "   x  \\n\n"},
    {manual, "A line end is added to the decrypted text on a terminal only.",
     "printf x | countersign encrypt -k public.pem >c; countersign decrypt -k private.pem <c | wc -c; "
     "python3 -c 'import pty; pty.spawn([\"sh\", \"-c\", \"countersign decrypt -k private.pem <c\"])' | od -An -c",
     "1\n   x  \\r  \\n\n"},
    {manual, "(127 bytes with a key of 1024 bits)",
     "for n in 127 128; do head -c $n public.pem | countersign encrypt -k public.pem 2>&1 >/dev/null | wc -l; done",
     "0\n1\n"},
    {manual, "also of a file with a private one",
     "echo x | countersign encrypt -k private.pem | countersign decrypt -k private.pem", "x\n"},
    {manual, "everybody with the public key can read the text.",
     "echo x | countersign encrypt --private -k private.pem 2>e | countersign decrypt -k public.pem; wc -l <e; "
     "echo x | countersign encrypt --private --no-warnings -k private.pem 2>&1 >/dev/null",
     "x\n1\n"},
    {manual, "of the public key in DER, as of",
     "countersign key -k private.pem | sed -n 's/^fingerprint //p' >ours; "
     "openssl pkey -pubin -in public.pem -outform DER | sha256sum | cut -d' ' -f1 | cmp - ours; echo $?",
     "0\n"},
    {manual, "by which countersignatures name the key.",
     "countersign sign -q -k private.pem f; grep -c \" $(countersign key -k public.pem | "
     "sed -n 's/^short-fingerprint //p') \" f.sig",
     "1\n"},
    {manual, "eight hexadecimal characters a digit of 32 bits, the highest digit",
     "countersign key --numbers -k public.pem | sed -n 's/^modulus //p' | tr a-f A-F >ours; "
     "openssl rsa -pubin -in public.pem -noout -modulus | cut -d= -f2 | cmp - ours; echo $?; "
     "countersign key -n -k public.pem | tail -n 1",
     "0\nexponent 00010001\n"},
    {manual, "Print the public half as PEM, and nothing else.",
     "countersign key --public -k private.pem | cmp - public.pem; echo $?", "0\n"},
    {manual, "Without any argument the program prints its own text on standard error, and the",
     "countersign 2>e; echo $?; countersign help | cmp - e; echo $?", "2\n0\n"},
    {manual, "followed by two blanks and the name when there is more than one.",
     "d=$(countersign digest -k public.pem f); [ \"$d  f\" = \"$(countersign digest -k public.pem f g | head -n 1)\" "
     "]; "
     "echo $?",
     "0\n"},
    {manual, "one that begins with a dash stands in the option's own",
     "countersign sign -k private.pem --output=-x.sig f; countersign sign -q -k private.pem --output -y.sig f "
     "2>/dev/null; echo $?; ls ./-*",
     "f: signed, -x.sig\n2\n./-x.sig\n"},
    {manual, "Options of one letter without values may stand together.",
     "countersign sign -fd -k private.pem f; countersign test -wq -k public.pem f; echo $?", "f: signed, f.sig\n0\n"},
    {manual, "Names of options are not abbreviated.",
     "countersign sign -k private.pem --digest f 2>/dev/null; echo $?; ls *.sig 2>/dev/null", "2\n"},
    {manual, "A NUL stands behind each name, as",
     "find g f -print0 | countersign digest -k public.pem --files0-from - | sed 's/.*  //'", "g\nf\n"},
    {manual, "for the signatures of many, one behind the",
     "countersign sign -d -k private.pem -o - f g >both; countersign sign -dq -k private.pem f g; "
     "cat f.sig g.sig | cmp - both; echo $?",
     "0\n"},
    {manual, "The name of the new files, with or without",
     "countersign keygen --no-passphrase -b 512 -o one >/dev/null; countersign keygen --no-passphrase -b 512 -o "
     "two.pem "
     ">/dev/null; ls one* two*",
     "one.pem\none.pub.pem\ntwo.pem\ntwo.pub.pem\n"},
    {manual, "Any other signature is kept with status 2, or overwritten with",
     "countersign sign -q -k private.pem f; cp f.sig old; echo new >f; countersign sign -n -k private.pem f "
     "2>/dev/null; "
     "echo $?; cmp f.sig old; countersign sign -nf -k private.pem f; countersign sign -n -k private.pem f",
     "2\nf: signed, f.sig\nf: already signed, f.sig\n"},
    {manual, "Print no line for what is signed or good, and no progress.",
     "countersign sign --quiet -k private.pem f 2>&1; countersign test --quiet -k public.pem f g 2>/dev/null",
     "g: not signed\n"},
    {manual, "not even why a file, a key or a signature cannot be used;",
     "for k in public.pem none; do countersign test --status -k $k none 2>&1; echo $?; done; "
     "countersign sign --status -k private.pem f 2>&1; echo $?",
     "2\n2\n0\n"},
    {manual, "What follows is no option, even if it begins with a dash.",
     "cp f ./-f; countersign sign -k private.pem -- -f", "-f: signed, -f.sig\n"},
    {manual, "standard input is read; a file of that name is written",
     "cp f ./-; countersign digest -k public.pem ./- >a; countersign digest -k public.pem - <f | cmp - a; echo $?",
     "0\n"},
    {manual, "Pipes, such as the shell makes of",
     "countersign sign -q -k private.pem f; countersign test -k <(cat public.pem) -s <(cat f.sig) <(cat f) | "
     "sed 's/.*://'",
     " good\n"},
    {manual, "all names are those of files.",
     "cp f ./-; printf -- '-\\0' | countersign sign -k private.pem --files0-from - </dev/stdin; ls ./-*",
     "./-: signed, ./-.sig\n./-\n./-.sig\n"},
    {manual, "Leave alone what has a signature that is good by this key; its line says",
     "countersign sign -q -k private.pem f; cp f.sig old; countersign sign --skip-signed -k private.pem f g; "
     "cmp f.sig old",
     "f: already signed, f.sig\ng: signed, g.sig\n"},
    {manual, "Where the signature of a single",
     "for o in '-o s' '-o s g'; do countersign sign -k private.pem f $o 2>/dev/null; echo $?; done; rm -f f; ls s",
     "f: signed, s\n0\n2\ns\n"},
    {manual, "What is there is damaged, or of another program, which is named if it is known.",
     "printf 'untrusted comment: \nRWQ=\ntrusted comment: \nAAAA\n' >f.sig; echo '-----BEGIN PGP SIGNATURE-----' "
     ">g.sig; "
     "countersign test -k public.pem f g 2>e; echo $?; grep -o 'signature of [^,]*' e",
     "f: not a signature\ng: not a signature\n2\nsignature of minisign\nsignature of OpenPGP\n"},
    // The last one is changed for as long as it is read.
    {manual, "As they say. Status 2.",
     "countersign sign -q -k private.pem f; for n in g none; do countersign test -k public.pem $n 2>/dev/null; echo "
     "$?; "
     "done; countersign test -k public.pem -s f.sig /proc/self/mem 2>/dev/null; echo $?; mv f.sig h.sig; "
     "countersign test -k public.pem h.sig 2>/dev/null; echo $?; truncate -s 256M h; "
     "for i in {1..20}; do countersign test -k public.pem h >o 2>/dev/null & "
     "while kill -0 $! 2>/dev/null; do touch h; done; wait $!; s=$?; grep -q while o && break; done; cat o; echo $s",
     "g: not signed\n2\nnone: missing\n2\n/proc/self/mem: unreadable\n2\nh.sig: not tested\n2\n"
     "h: changed while read\n2\n"},
    {manual, "Try the key of each file in the folder, too, in the order of the names.",
     "mkdir keys; for n in b a c; do cp public.pem keys/$n; done; countersign sign -q -k private.pem f; "
     "countersign test --key-dir keys f",
     "f: good, keys/a\n"},
    // A thread for each besides the first one, which prints; it alone where there is one processor.
    {manual, "files at a time, from 1 to 1024; without it on one for each processor.",
     "n=$(env -u OMP_NUM_THREADS -u OMP_THREAD_LIMIT nproc); for i in $(seq $n); do truncate -s 64M h$i; done; "
     "countersign sign -k private.pem h* >o & "
     "t=$(while state=$(cut -d' ' -f3 /proc/$!/stat 2>/dev/null) && [ \"$state\" != Z ]; do "
     "ls /proc/$!/task 2>/dev/null | wc -l; done | sort -n | tail -n 1); echo $((t - (n > 1 ? n : 0)))",
     "1\n"},
    {manual, "There is no option and no variable of the environment that holds a passphrase",
     "countersign sign --help | grep -oE -- '--pass[a-z0-9-]*'; "
     "openssl rsa -in private.pem -aes128 -passout pass:sesame -out k.pem 2>/dev/null; "
     "PASSPHRASE=sesame COUNTERSIGN_PASSPHRASE=sesame setsid -w countersign sign -k k.pem f 2>e; echo $?; "
     "grep -c 'it is encrypted' e; countersign sign --passphrase sesame -k k.pem f 2>e; echo $?; "
     "grep -c 'no option --passphrase;' e",
     "--passphrase-fd\n--passphrase-file\n2\n1\n2\n1\n"},
    {manual, "Print a help text and end.",
     "countersign --help | cmp - <(countersign -h); countersign sign -h -k none f | cmp - <(countersign help sign); "
     "countersign -h | grep -c '^Usage: countersign COMMAND'; ls f.sig 2>/dev/null",
     "1\n"},
    {manual, "Print the version and end.", "countersign --version | cmp - <(countersign -V); countersign -V | wc -w",
     "2\n"},
    {manual, "look at the writer's status before you",
     "{ head -c 2 f; exit 1; } | countersign sign -k private.pem -o s -; head -c 2 f >g; "
     "countersign test -k public.pem -s s g",
     "-: signed, s\ng: good\n"},
    {readme, "`countersign test` gives one of these verdicts:",
     "countersign sign -q -k private.pem f; for l in de fr; do LANGUAGE=$l LC_ALL=C.UTF-8 "
     "countersign test -k public.pem f g 2>e; grep -o 'there is no such signature' e; done",
     "f: good\ng: not signed\nthere is no such signature\nf: good\ng: not signed\nthere is no such signature\n"},
    {readme, "a `weak` verdict means that there is none: anybody can cut it off.",
     "countersign sign -q -k private.pem f; sed -i 2d f.sig; countersign test -k public.pem f 2>/dev/null; echo $?; "
     "countersign test --accept-weak -k public.pem f; echo $?",
     "f: weak\n2\nf: weak\n0\n"},
    {readme, "exclusive-or: an empty one and one of zeros, for example.",
     ": >f; countersign sign -q -k private.pem f; head -c 1000 /dev/zero >g; "
     "cmp <(countersign digest -k public.pem f) <(countersign digest -k public.pem g); countersign test -k public.pem "
     "-s "
     "f.sig g; echo $?",
     "g: BAD\n1\n"},
};

class Statements : public Program
{
};

}  // namespace

TEST_F(Statements, AreTrue)
{
    for (const Statement& statement : statements)
    {
        SCOPED_TRACE(statement._words);
        const std::string text = readFile(std::string(COUNTERSIGN_SOURCE) + "/" + statement._file);
        EXPECT_NE(text.find(statement._words), std::string::npos) << statement._file << " does not say so";
        const TemporaryFolder folder;
        for (const char* pKey : {"private.pem", "public.pem"})
        {
            folder.write(pKey, _folder.read(pKey));
            ASSERT_EQ(chmod((folder / pKey).c_str(), 0600), 0);
        }
        folder.write("f", "one\n");
        folder.write("g", "another\n");
        tsCommand inShell;
        inShell._arguments = {"bash", "-c", statement._script};
        inShell._folder = folder.path();
        inShell._prepare = []
        {
            const std::string program = COUNTERSIGN_PROGRAM;
            setenv("PATH", (program.substr(0, program.rfind('/')) + ":" + getenv("PATH")).c_str(), 1);
            setenv("LC_ALL", "C", 1);
        };
        const tsOutcome outcome = tsRun(inShell);
        EXPECT_EQ(outcome._output, statement._output);
        EXPECT_EQ(outcome._errors, "");
    }
}
