// SPDX-License-Identifier: Apache-2.0
// How a program that is started at the user's request comes to the front. Main thread, once the toolkit runs.
#ifndef COUNTERSIGN_HO_LAUNCH_CONTEXT_H
#define COUNTERSIGN_HO_LAUNCH_CONTEXT_H

// GIO's GAppLaunchContext.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
struct _GAppLaunchContext;

class hoLaunchContext
{
public:
    // For what the present event asks for.
    hoLaunchContext();
    ~hoLaunchContext();
    hoLaunchContext(const hoLaunchContext&) = delete;
    hoLaunchContext& operator=(const hoLaunchContext&) = delete;

    // Null where the toolkit has none. Belongs to this object; whoever needs it longer takes a reference.
    _GAppLaunchContext* get() const { return _pContext; }

private:
    _GAppLaunchContext* _pContext;
};

#endif
