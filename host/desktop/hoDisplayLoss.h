// SPDX-License-Identifier: Apache-2.0
// A last call before the end, when the connection to the X server is lost: the session is over, the server has died, or
// somebody has cut the window off. The toolkit then ends the process on the spot, with threads in the middle of their
// work.
//
// Where there is no X (Wayland), nothing is ever called. One object a process at a time.
#ifndef HO_DISPLAY_LOSS_H
#define HO_DISPLAY_LOSS_H

#include <functional>

class hoDisplayLoss
{
public:
    // To be made when the toolkit has its connection. onLoss is called on the thread that finds the connection lost,
    // which is the main one; it may not use the toolkit. When it returns, what would have happened without it does.
    explicit hoDisplayLoss(std::function<void()> onLoss);
    ~hoDisplayLoss();
    hoDisplayLoss(const hoDisplayLoss&) = delete;
    hoDisplayLoss& operator=(const hoDisplayLoss&) = delete;
};

#endif
