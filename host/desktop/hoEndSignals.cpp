// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoEndSignals.h"

#include <glib-unix.h>

#include <csignal>
#include <cstdlib>
#include <utility>

hoEndSignals::hoEndSignals(std::function<void(int)> onSignal) : _onSignal(std::move(onSignal))
{
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
    {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_DFL)
        {
            _caught.push_back({this, number, 0});
        }
    }
    // The vector stays as it is from now on: its elements are known to GLib.
    const auto onSource = [](gpointer pData) -> gboolean
    {
        const Caught& caught = *static_cast<Caught*>(pData);
        caught._pOwner->_onSignal(caught._signal);
        return G_SOURCE_CONTINUE;
    };
    for (Caught& caught : _caught)
    {
        caught._source = g_unix_signal_add(caught._signal, onSource, &caught);
    }
}

hoEndSignals::~hoEndSignals()
{
    for (const Caught& caught : _caught)
    {
        g_source_remove(caught._source);
    }
}

void hoEndSignals::endBy(int signal)
{
    static_cast<void>(std::signal(signal, SIG_DFL));
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    static_cast<void>(std::raise(signal));
    std::abort();
}
