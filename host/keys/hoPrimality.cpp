// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoPrimality.h"

namespace
{

using Callback = std::unique_ptr<BN_GENCB, hoReleaser<BN_GENCB, BN_GENCB_free>>;

// May not throw.
int askWhetherItGoesOn(int /*event*/, int /*round*/, BN_GENCB* pCallback)
{
    return (*static_cast<const hoGoesOn*>(BN_GENCB_get_arg(pCallback)))() ? 1 : 0;
}

}  // namespace

hoPrimality hoTestPrimality(const BIGNUM* pNumber, BN_CTX* pContext, const hoGoesOn& goesOn)
{
    const Callback callback(BN_GENCB_new());
    if (callback == nullptr)
    {
        return hoPrimality::Unknown;
    }
    hoGoesOn question = goesOn;
    BN_GENCB_set(callback.get(), askWhetherItGoesOn, &question);
    switch (BN_check_prime(pNumber, pContext, question ? callback.get() : nullptr))
    {
    case 1:
        return hoPrimality::Prime;
    case 0:
        return hoPrimality::Composite;
    default:
        return hoPrimality::Unknown;
    }
}
