// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyLoader.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>

// What both threads use.
class hoKeyLoader::Loading : public hoIPassphraseSource
{
public:
    explicit Loading(std::function<void()> onChange) : _onChange(std::move(onChange)) {}

    void run(const gtString& path, hoKeyNeed need)
    {
        hoKeyFileFacts facts;
        std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(path, this, facts, need, [this] { return goesOn(); });
        const std::lock_guard<std::mutex> lock(_mutex);
        _endsSoon = true;
        if (!_isGivenUp)
        {
            _pKey = std::move(pKey);
            _facts = facts;
            change(State::Finished);
        }
    }

    // On the thread inside.
    int getPassphrase(char* pBuffer, int size) override
    {
        std::unique_lock<std::mutex> lock(_mutex);
        if (_isGivenUp)
        {
            return -1;
        }
        _pBuffer = pBuffer;
        _size = static_cast<std::size_t>(size);
        _endsSoon = true;
        change(State::PassphraseWanted);
        _changed.wait(lock, [this] { return _state != State::PassphraseWanted || _isGivenUp; });
        _pBuffer = nullptr;
        _endsSoon = _isGivenUp;
        return _isGivenUp ? -1 : _lengthOfAnswer;
    }

    State waitFor(std::chrono::milliseconds time)
    {
        std::unique_lock<std::mutex> lock(_mutex);
        _changed.wait_for(lock, time, [this] { return _state != State::Busy; });
        return _state;
    }

    // pPassphrase: null for none.
    void answer(const std::string_view* pPassphrase)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_state != State::PassphraseWanted)
        {
            return;
        }
        _lengthOfAnswer = -1;
        if (pPassphrase != nullptr)
        {
            const std::size_t length = std::min(pPassphrase->size(), _size);
            std::copy_n(pPassphrase->data(), length, _pBuffer);
            // A longer one is told by its length.
            _lengthOfAnswer = static_cast<int>(std::min(pPassphrase->size(), _size + 1));
        }
        _state = State::Busy;
        _changed.notify_all();
    }

    // Whether the thread ends in a moment.
    bool giveUp()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isGivenUp = true;
        _pKey.reset();
        _changed.notify_all();
        return _endsSoon;
    }

    std::unique_ptr<const hoKey> takeKey(hoKeyFileFacts& facts)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        facts = _facts;
        return std::move(_pKey);
    }

private:
    // On the thread inside, once the file is decoded.
    bool goesOn()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _endsSoon = true;
        return !_isGivenUp;
    }

    void change(State state)
    {
        _state = state;
        _changed.notify_all();
        _onChange();
    }

    const std::function<void()> _onChange;
    std::mutex _mutex;  // guards all below
    std::condition_variable _changed;
    State _state = State::Busy;
    bool _isGivenUp = false;
    bool _endsSoon = false;    // the thread looks at _isGivenUp in a moment
    char* _pBuffer = nullptr;  // libcrypto's, while a passphrase is wanted
    std::size_t _size = 0;
    int _lengthOfAnswer = -1;
    std::unique_ptr<const hoKey> _pKey;
    hoKeyFileFacts _facts;
};

hoKeyLoader::hoKeyLoader(const gtString& path, hoKeyNeed need, std::function<void()> onChange)
    : _pLoading(std::make_shared<Loading>(std::move(onChange))),
      _thread([pLoading = _pLoading, path, need] { pLoading->run(path, need); })
{
}

hoKeyLoader::~hoKeyLoader()
{
    if (_pLoading->giveUp())
    {
        _thread.join();
    }
    else
    {
        _thread.detach();
    }
}

hoKeyLoader::State hoKeyLoader::waitFor(std::chrono::milliseconds time) const
{
    return _pLoading->waitFor(time);
}

void hoKeyLoader::answerPassphrase(std::string_view passphrase)
{
    _pLoading->answer(&passphrase);
}

void hoKeyLoader::refusePassphrase()
{
    _pLoading->answer(nullptr);
}

std::unique_ptr<const hoKey> hoKeyLoader::takeKey(hoKeyFileFacts& facts)
{
    return _pLoading->takeKey(facts);
}
