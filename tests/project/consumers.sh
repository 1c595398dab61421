#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Uses the libraries as projects of others do: builds a project of tests/consumers, installs it, moves what was installed,
# and runs it from there.
#
#   consumers.sh install BUILD-FOLDER INSTALLED-FOLDER      installs our build once for those of the next
#   consumers.sh CASE INSTALLED-FOLDER SOURCE-FOLDER        uses that, or the sources
set -eu
# Programs must find their libraries without help.
unset LD_LIBRARY_PATH
case=$1

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT

complain() {
    printf '%s\n' "$*" >&2
    exit 1
}
expect() {
    [ "$2" = "$3" ] || complain "$1: expected"$'\n'"$2"$'\n'"but found"$'\n'"$3"
}

if [ "$case" = install ]; then
    build=$2 installed=$3
    rm -rf "$installed" "$installed.first"
    cmake --install "$build" --prefix "$installed.first" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
    # What a project sees may not depend on where it was installed first.
    mv "$installed.first" "$installed"
    exit 0
fi
installed=$2 source=$3
# Several build the same sources of ours.
if command -v ccache >/dev/null 2>&1; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
consumers=$source/tests/consumers
libraries=$(dirname "$(find "$installed" -name 'libKXBaseTools.so' | head -n 1)")
: >"$here/empty"
# 4 digits give a digest of one digit, eight characters 0 behind the marker.
digestOfEmpty=0000000830303001303030306464643064646464
plainCOutput="39 340282366920938463426481119284349108225"
pemSignature() {
    # From the toolkit's command line, whose own tests compare it with others.
    "$installed/bin/countersign" sign --key "$here/key.pem" "$here/empty" >/dev/null && head -n 1 "$here/empty.sig"
}

# make CONSUMER [CMAKE-ARGUMENT...]: configures, builds and installs it, and moves that to "$moved".
generator=Ninja
moved="$here/another place"
make() {
    local consumer=$1
    shift
    cmake -S "$consumers/$consumer" -B "$here/$consumer" -G "$generator" -DCMAKE_PREFIX_PATH="$installed" \
        -DCMAKE_INSTALL_PREFIX="$here/one" "$@" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
    cmake --build "$here/$consumer" -j 2 >"$here/log" 2>&1 || complain "$(cat "$here/log")"
    cmake --install "$here/$consumer" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
    rm -rf "$moved"
    mv "$here/one" "$moved"
    # Nothing may be found in the build folder.
    mv "$here/$consumer" "$here/$consumer.old"
}

# expectCleanRunPath FILE: what is installed looks in no folder that it was built in, nor in the current one, for which an
# empty part stands.
expectCleanRunPath() {
    local runPath
    runPath=$(readelf -d "$1" | sed -nE 's/^.*\((RPATH|RUNPATH)\).*(\[.*\])$/\2/p')
    [ -n "$runPath" ] || complain "$1 has no run path"
    ! grep -E "$here/[a-zA-Z]+[/:]|\[:|::|:\]" <<<"$runPath" || complain "the run path of $1"
}

# expectDigests: the moved programs of the subproject.
expectDigests() {
    local build=$here/subproject.old
    expect "the installed program's output" "$digestOfEmpty" "$("$moved/bin/digest" "$here/empty")"
    expectCleanRunPath "$moved/bin/digest"
    openssl genrsa -out "$here/key.pem" 1024 2>"$here/log" || complain "$(cat "$here/log")"
    chmod 600 "$here/key.pem"
    expect "the installed signer's output" "$(pemSignature)" \
        "$("$moved/bin/signer" "$here/key.pem" "$here/empty" | head -n 1)"
    [ -x "$build/digest" ] || complain "the program is not in $build"
}

# expectKit: the program with the assertion kit runs, built by CMake and by pkg-config.
expectKit() {
    local expected
    expected="OnExceptionInMainLoop: Unhandled exception of type std::runtime_error: from a handler
OnExit: Assertion failure (1 + 1 == 3): a check
OnExit: Assertion failure (1 + 1 == 3): the toolkit's check"
    expect "the program's output" "$expected" \
        "$("$source/scripts/with-display.sh" "$moved/bin/windowWithAssertions" 2>"$here/errors")"
    [ "$(grep -c ' - Assertion failure: ' "$here/errors")" = 3 ] || complain "$(cat "$here/errors")"
    PKG_CONFIG_PATH=$(dirname "$(find "$installed" -name countersign-assertionReporting.pc)")
    export PKG_CONFIG_PATH
    # shellcheck disable=SC2046
    c++ -std=c++17 "$consumers/assertionKit/main.cpp" -o "$here/byPkgConfig" \
        $(pkg-config --cflags --libs countersign-assertionReporting)
    expect "the program's output" "$expected" \
        "$("$source/scripts/with-display.sh" "$here/byPkgConfig" 2>"$here/errors")"
}

# expectOnlyPublicSymbols LIBRARY PATTERN: all symbols of ours match.
expectOnlyPublicSymbols() {
    local symbols
    symbols=$(nm -DC --defined-only "$1" | cut -d ' ' -f 3-) || complain "$1 cannot be read"
    [ "$(wc -l <<<"$symbols")" -gt 3 ] || complain "$1 has no symbols"
    symbols=$(grep -vE "\bstd::|__gnu_cxx|^_(init|fini)|^((vtable|typeinfo|typeinfo name) for )?($2)" <<<"$symbols") || return 0
    complain "$1 shows what is not public: $symbols"
}

case $case in
    findPackage)
        # How ours is compiled is no other project's affair.
        ! grep -rnE -- '-fstack-|-fcf-|FORTIFY|-Wl,-z|-Werror|-Wall' "$libraries/cmake" "$libraries/pkgconfig" ||
            complain "the way ours is compiled reaches the projects that link"
        make findPackage -DCOUNTERSIGN_HEADERS="$installed/include/countersign"
        expect "the program's output" $'000000036362610164646464\n1 handler' "$("$moved/bin/signerWithAssertions")"
        expectCleanRunPath "$moved/bin/signerWithAssertions"
        ;;
    assertionKit)
        make assertionKit
        expectKit
        ;;
    examples)
        cmake -S "$source/examples" -B "$here/examples" -G Ninja -DCMAKE_PREFIX_PATH="$installed" >"$here/log" 2>&1 ||
            complain "$(cat "$here/log")"
        cmake --build "$here/examples" -j 2 >"$here/log" 2>&1 || complain "$(cat "$here/log")"
        # expectInReadme COMMAND OUTPUT: README shows the command with this output.
        expectInReadme() {
            [[ $(cat "$source/README.md") == *"$ $1"$'\n'"$2"$'\n'* ]] ||
                complain "README shows no '$1' with this output: $2"
        }
        openssl genrsa -out "$here/key.pem" 1024 2>"$here/log" || complain "$(cat "$here/log")"
        chmod 600 "$here/key.pem"
        expectInReadme "build-examples/powers" "$("$here/examples/powers")"
        expectInReadme "build-examples/signFile private.pem report.txt" \
            "$("$here/examples/signFile" "$here/key.pem" "$here/empty")"
        expectInReadme "build-examples/assertionWindow 2>/dev/null" "$("$source/scripts/with-display.sh" \
            "$source/tests/project/pressAndDecide.sh" "$here/examples/assertionWindow" 2>"$here/errors")"
        [ "$(grep -c ' - Assertion failure: ' "$here/errors")" = 2 ] || complain "$(cat "$here/errors")"
        status=0
        said=$("$here/examples/testsWithAssertions" --gtest_brief=1) || status=$?
        [ "$status" = 1 ] || complain "the tests' status is $status: $said"
        said=$(sed -nE 's|^.*/(testsWithAssertions.cpp:[0-9]+: Failure)|\1|p; /^Assertion failure/p; /^.  PASSED/p' <<<"$said")
        expectInReadme "build-examples/testsWithAssertions --gtest_brief=1" "$said"
        ;;
    headers)
        # What may be included is a promise: a header that comes or goes is noticed here.
        expected=$(sort <<'END'
assertionHandling/ahAssertDialog.h
assertionHandling/ahDialogBasedAssertionFailureHandler.h
assertionHandling/ahSourceCodeLocation.h
assertionReporting/arAssertionKit.h
assertionReporting/arAssertionReport.h
assertionReporting/arAssertionReportText.h
assertionReporting/arAssertionReportWindow.h
assertionReporting/arInteractiveAssertionFailureHandler.h
assertionReporting/arStackTrace.h
assertionReporting/arToolkitBridge.h
bigdigits.h
countersignVersion.h
crypto/crBlowfishEncryptionKey.h
crypto/crRSADigitalSigner.h
crypto/crRSAEncryptionKey.h
crypto/crRSAStringEncryptor.h
host/keys/hoKeyFile.h
platform/baseTools/gtAssert.h
platform/baseTools/gtAssertionFailureHandlerRegistry.h
platform/baseTools/gtCharacters.h
platform/baseTools/gtIAssertionFailureHandler.h
platform/baseTools/gtNumberText.h
platform/baseTools/gtPtrVector.h
platform/baseTools/gtString.h
platform/baseTools/gtUtf8.h
platform/baseTools/gtWipe.h
platform/osWrappers/osAtomicFile.h
platform/osWrappers/osChannel.h
platform/osWrappers/osFile.h
platform/osWrappers/osFileFacts.h
platform/osWrappers/osFilePath.h
platform/osWrappers/osProcess.h
platform/osWrappers/osResult.h
platform/osWrappers/osTime.h
platform/osWrappers/osWriteAll.h
END
        )
        expect "the installed headers" "$expected" \
            "$(find "$installed/include/countersign" -type f -printf '%P\n' | sort)"
        for library in "$libraries"/libKXBaseTools.so "$libraries"/libKXOSWrappers.so; do
            expectOnlyPublicSymbols "$library" 'gt[A-Z]|os[A-Z]|operator<<\(std::ostream&, gtString'
        done
        ;;
    keys)
        make keys
        openssl genrsa -out "$here/key.pem" 1024 2>"$here/log" || complain "$(cat "$here/log")"
        chmod 600 "$here/key.pem"
        expect "the program's output" "$(pemSignature)"$'\n'"$("$installed/bin/countersign" --version | grep -oE '[0-9.]+')" \
            "$("$moved/bin/signer" "$here/key.pem" "$here/empty")"
        # README's function, in a program.
        awk '/^```/ { if (text ~ /hoLoadKeyFile/) { printf "%s", text; exit } inside = /^```cpp$/; text = ""; next }
            inside { text = text $0 "\n" }' "$source/README.md" >"$here/readme.cpp"
        cat >>"$here/readme.cpp" <<'END'

#include <iostream>

int main(int, char** argv)
{
    gtString signature;
    const bool isSigned = sign(argv[1], osFilePath(gtString(argv[2])), signature);
    std::cout << signature;
    return isSigned ? 0 : 1;
}
END
        # shellcheck disable=SC2046
        PKG_CONFIG_PATH=$libraries/pkgconfig c++ -std=c++17 -Wall -Wextra -Werror "$here/readme.cpp" -o "$here/readme" \
            $(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --cflags --libs countersign-keys)
        expect "README's function" "$(head -n 1 "$here/empty.sig")" "$("$here/readme" "$here/key.pem" "$here/empty")"
        ;;
    pkgConfig)
        export PKG_CONFIG_PATH=$libraries/pkgconfig
        # shellcheck disable=SC2046
        cc -std=c99 -pedantic -Werror "$consumers/plainC/main.c" -o "$here/program" \
            $(pkg-config --cflags --libs countersign-bigdigits)
        expect "the program's output" "$plainCOutput" "$("$here/program")"
        # shellcheck disable=SC2046
        c++ -std=c++17 "$consumers/findPackage/main.cpp" -o "$here/withToolkit" \
            $(pkg-config --cflags --libs countersign-assertionHandling countersign-crypto)
        expect "the program's output" $'000000036362610164646464\n1 handler' "$("$here/withToolkit")"
        # shellcheck disable=SC2046
        c++ -std=c++17 "$consumers/keys/main.cpp" -o "$here/signer" $(pkg-config --cflags --libs countersign-keys)
        ! "$here/signer" /nonexistent "$here/empty" || complain "a key was loaded from nowhere"
        ;;
    plainC)
        for sources in "" "$source"; do
            # Whatever else the libraries stand on, the module asks for nothing of it.
            make plainC -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON -DCMAKE_DISABLE_FIND_PACKAGE_wxWidgets=ON \
                -DCMAKE_DISABLE_FIND_PACKAGE_Threads=ON -DCOUNTERSIGN_SOURCE="$sources"
            expect "the program's output" "$plainCOutput" "$("$moved/bin/square")"
            ! ldd "$moved/bin/square" | grep -E 'KX|crypto|wx|stdc\+\+' ||
                complain "the plain C program depends on more than the module"
            rm -rf "$here/plainC.old"
        done
        ;;
    subproject)
        make subproject -DCOUNTERSIGN_SOURCE="$source"
        expectDigests
        [ -n "$(find "$moved" -name countersignConfig.cmake)" ] || complain "the package is not installed"
        ;;
    excluded)
        # Link options are written differently by this generator.
        generator="Unix Makefiles"
        make subproject -DCOUNTERSIGN_SOURCE="$source" -DEXCLUDED=ON
        expectDigests
        [ -z "$(find "$moved" -name '*.h' -o -name '*.cmake' -o -name '*.a')" ] || complain "more is installed than was asked for"
        ;;
    notInstalled)
        make subproject -DCOUNTERSIGN_SOURCE="$source" -DCOUNTERSIGN_INSTALL=OFF
        expect "what is installed" $'digest\nsigner' "$(find "$moved" -type f -printf '%f\n' | sort)"
        ;;
    sharedKit)
        cmake -S "$source" -B "$here/kit" -G "$generator" -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
            -DCOUNTERSIGN_COMPONENTS=assertionReporting -DCMAKE_INSTALL_PREFIX="$here/first" >"$here/log" 2>&1 ||
            complain "$(cat "$here/log")"
        cmake --build "$here/kit" -j 2 >"$here/log" 2>&1 || complain "$(cat "$here/log")"
        cmake --install "$here/kit" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
        installed=$here/kitInstalled
        mv "$here/first" "$installed"
        mv "$here/kit" "$here/kit.old"
        libraries=$(dirname "$(find "$installed" -name 'libKXBaseTools.so')")
        for library in assertionHandling assertionReporting; do
            file=$libraries/libcountersign-$library.so
            ldd "$file" | grep -F 'not found' && complain "$file finds not all that it needs"
        done
        # What the toolkit's headers define is in every library that includes them.
        expectOnlyPublicSymbols "$libraries/libcountersign-assertionReporting.so" \
            'ar[A-Z]|wx[A-Z]|(__bss_start|_edata|_end)$'
        make assertionKit
        expectKit
        used=$(ldd "$moved/bin/windowWithAssertions")
        grep -qE 'libcountersign-assertionReporting\.so\.[0-9]+ => /' <<<"$used" ||
            complain "the program does not use the shared library: $used"
        ;;
    shared)
        make subproject -DCOUNTERSIGN_SOURCE="$source" -DBUILD_SHARED_LIBS=ON
        expectDigests
        libraries=$(dirname "$(find "$moved" -name 'libKXBaseTools.so')")
        abi=$(sed -n 's/^set(countersignAbiVersion \([0-9]*\))$/\1/p' "$source/CMakeLists.txt")
        for library in bigdigits crypto keys; do
            file=$libraries/libcountersign-$library.so
            readelf -d "$file" | grep -qF "soname: [libcountersign-$library.so.$abi]" || complain "$file has another name"
            ldd "$moved/bin/signer" "$file" | grep -F 'not found' && complain "$file finds not all that it needs"
        done
        expectOnlyPublicSymbols "$libraries/libcountersign-bigdigits.so" \
            '(mp|sp)[A-Z][A-Za-z0-9]*$|conv_to_base$|ceilToUnsigned$|copyright_notice$'
        # Digit functions and new keys are for our own libraries and programs.
        expectOnlyPublicSymbols "$libraries/libcountersign-crypto.so" 'cr[A-Z]'
        expectOnlyPublicSymbols "$libraries/libcountersign-keys.so" 'ho(Load|Key|Is(KeyFile|LibcryptoMemoryWiped|SamePair|SameRing)|NewKeyPair|IPassphraseSource|FixedWidthText|(Short)?Fingerprint|PublicKeyPem|TryKeyFolder)'
        # And the package of shared libraries: whoever links it needs nothing of what they stand on.
        installed=$moved
        moved="$here/third place"
        make keys -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON
        "$moved/bin/signer" "$here/key.pem" "$here/empty" >/dev/null || complain "the program does not run"
        ;;
    exporting)
        make exporting -DCOUNTERSIGN_SOURCE="$source"
        ! grep -rnF -e "$here" -e "$source" "$moved" --include='*.cmake' || complain "the package points into the build"
        installed=$moved
        moved="$here/third place"
        make usingExported
        expect "the program's output" "$digestOfEmpty" "$("$moved/bin/digest" "$here/empty")"
        ;;
    components)
        look() {
            rm -rf "$here/look"
            cmake -S "$consumers/components" -B "$here/look" -G Ninja -DCMAKE_PREFIX_PATH="$installed" "$@" >"$here/log" 2>&1
        }
        all="platform;bigdigits;crypto;keys;assertionHandling"
        without=-DCMAKE_DISABLE_FIND_PACKAGE
        look -DEXPECTED="$all" || complain "all: $(cat "$here/log")"
        look -DASKED="COMPONENTS;bigdigits" -DEXPECTED=bigdigits || complain "one: $(cat "$here/log")"
        look -DASKED="COMPONENTS;keys" -DEXPECTED="platform;bigdigits;crypto;keys" || complain "below: $(cat "$here/log")"
        # Without components there are those that can be had.
        look "${without}_wxWidgets=ON" -DEXPECTED="platform;bigdigits;crypto;keys" -DMISSING=assertionHandling ||
            complain "no toolkit: $(cat "$here/log")"
        grep -qF 'reason for assertionHandling: wxWidgets 3.2 was not found' "$here/log" || complain "$(cat "$here/log")"
        PKG_CONFIG_LIBDIR=$here/none look -DEXPECTED=bigdigits -DMISSING=assertionHandling ||
            complain "nothing below the toolkit: $(cat "$here/log")"
        grep -q 'reason for assertionHandling: GTK 3' "$here/log" || complain "$(cat "$here/log")"
        # What is optional may be missing; what is not, may not, and the reason is told.
        look "${without}_OpenSSL=ON" -DASKED="COMPONENTS;bigdigits;OPTIONAL_COMPONENTS;keys;nonsense;assertionHandling" \
            -DEXPECTED="bigdigits;assertionHandling;platform" -DMISSING="keys;nonsense" || complain "optional: $(cat "$here/log")"
        grep -qF 'reason for keys: OpenSSL 3 (libcrypto) was not found' "$here/log" || complain "$(cat "$here/log")"
        grep -qF 'reason for nonsense: there is no component of this name' "$here/log" || complain "$(cat "$here/log")"
        ! look "${without}_OpenSSL=ON" -DASKED="COMPONENTS;crypto" || complain "crypto was found without OpenSSL"
        grep -qF 'crypto: OpenSSL 3 (libcrypto) was not found' "$here/log" || complain "$(cat "$here/log")"
        ! look -DASKED="COMPONENTS;nonsense" || complain "nonsense was found"
        grep -qF 'nonsense: there is no component of this name' "$here/log" || complain "$(cat "$here/log")"
        ;;
    asked)
        # What is built of the sources when somebody asks for parts of them.
        configure() {
            rm -rf "$here/asked"
            cmake -S "$source" -B "$here/asked" -G Ninja "$@" >"$here/log" 2>&1
        }
        ! configure -DCOUNTERSIGN_COMPONENTS="bigdigits;nonsense" || complain "nonsense is built"
        grep -qF "there is no 'nonsense'" "$here/log" || complain "$(cat "$here/log")"
        ! configure -DCOUNTERSIGN_COMPONENTS=crypto -DCMAKE_DISABLE_FIND_PACKAGE_OpenSSL=ON || complain "crypto is built"
        grep -qF "crypto cannot be built: OpenSSL 3 (libcrypto) was not found" "$here/log" || complain "$(cat "$here/log")"
        ! configure -DCOUNTERSIGN_COMPONENTS=crypto -DCOUNTERSIGN_BUILD_CLI=ON || complain "a program is built of a part"
        configure -DCOUNTERSIGN_COMPONENTS=crypto || complain "$(cat "$here/log")"
        expect "the libraries" $'bigdigits\ncrypto\nKXBaseTools\nKXOSWrappers' \
            "$(ninja -C "$here/asked" -t targets all | sed -n 's/^countersign_\([A-Za-z]*\): phony$/\1/p' | LC_ALL=C sort -f)"
        ;;
    *)
        complain "unknown case '$case'"
        ;;
esac
