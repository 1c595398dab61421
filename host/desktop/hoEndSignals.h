// SPDX-License-Identifier: Apache-2.0
// The signals by which the desktop, a shell or the machine asks a program to end (terminate, hang-up, interrupt), as a
// call on the main thread, so that what is at work can be tidied up first.
//
// No toolkit here, GLib alone. Signals that are ignored when an object is made (nohup) stay ignored; the others have
// their default action again when it is gone. One object a process at a time.
#ifndef HO_END_SIGNALS_H
#define HO_END_SIGNALS_H

#include <functional>
#include <vector>

class hoEndSignals
{
public:
    // onSignal is called from GLib's main loop of the main thread, whatever loop that is in, with the signal's number.
    explicit hoEndSignals(std::function<void(int)> onSignal);
    ~hoEndSignals();
    hoEndSignals(const hoEndSignals&) = delete;
    hoEndSignals& operator=(const hoEndSignals&) = delete;

    // Ends the process by this signal, as if it had never been caught. Call it from onSignal.
    [[noreturn]] static void endBy(int signal);

private:
    struct Caught
    {
        hoEndSignals* _pOwner = nullptr;
        int _signal = 0;
        unsigned int _source = 0;
    };

    std::function<void(int)> _onSignal;
    std::vector<Caught> _caught;
};

#endif
