// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtPtrVector.h"

#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/failingAllocation.h"

namespace
{
// Writes its number down when it is deleted.
class Base
{
public:
    explicit Base(std::vector<int>& deleted, int number) : _deleted(deleted), _number(number) {}
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base() { _deleted.push_back(_number); }

    int number() const { return _number; }

private:
    std::vector<int>& _deleted;
    int _number;
};

class Derived : public Base
{
public:
    Derived(std::vector<int>& deleted, int number) : Base(deleted, number), _pMemory(new int(number)) {}

private:
    std::unique_ptr<int> _pMemory;  // lost, and reported, if the derived destructor is not reached
};

using Numbers = std::vector<int>;

static_assert(!std::is_copy_constructible<gtPtrVector<int*>>::value, "every object has one owner");
static_assert(!std::is_copy_assignable<gtPtrVector<int*>>::value, "every object has one owner");
static_assert(std::is_nothrow_move_constructible<gtPtrVector<int*>>::value, "");
static_assert(std::is_nothrow_move_assignable<gtPtrVector<int*>>::value, "");

TEST(gtPtrVector, StartsEmpty)
{
    gtPtrVector<int*> vector;
    EXPECT_EQ(vector.size(), 0);
    EXPECT_TRUE(vector.isEmpty());
    EXPECT_EQ(vector.begin(), vector.end());
    vector.deleteElementsAndClear();
    EXPECT_EQ(vector.size(), 0);
}

TEST(gtPtrVector, KeepsOrderAndDeletesOnceInOrder)
{
    Numbers deleted;
    {
        gtPtrVector<Base*> vector;
        for (int i = 0; i < 100; ++i)
        {
            vector.push_back(i % 2 == 0 ? new Base(deleted, i) : new Derived(deleted, i));
            EXPECT_EQ(vector.size(), i + 1);
        }
        EXPECT_FALSE(vector.isEmpty());
        const gtPtrVector<Base*>& constant = vector;
        int expected = 0;
        for (const Base* pBase : constant)
        {
            EXPECT_EQ(pBase->number(), expected);
            EXPECT_EQ(constant[expected], pBase);
            EXPECT_EQ(vector[expected], pBase);
            ++expected;
        }
        EXPECT_EQ(expected, 100);
        EXPECT_TRUE(deleted.empty());
    }
    ASSERT_EQ(deleted.size(), 100U);
    for (int i = 0; i < 100; ++i)
    {
        EXPECT_EQ(deleted[static_cast<std::size_t>(i)], i);
    }
}

TEST(gtPtrVector, DeleteElementsAndClearLeavesItUsable)
{
    Numbers deleted;
    gtPtrVector<Base*> vector;
    vector.push_back(new Base(deleted, 1));
    vector.push_back(new Base(deleted, 2));
    vector.deleteElementsAndClear();
    EXPECT_EQ(deleted, (Numbers{1, 2}));
    EXPECT_EQ(vector.size(), 0);
    vector.push_back(new Base(deleted, 3));
    EXPECT_EQ(vector.size(), 1);
    EXPECT_EQ(vector[0]->number(), 3);
    vector.deleteElementsAndClear();
    EXPECT_EQ(deleted, (Numbers{1, 2, 3}));
}

TEST(gtPtrVector, NullIsAnElement)
{
    Numbers deleted;
    gtPtrVector<Base*> vector;
    vector.push_back(nullptr);
    vector.push_back(new Base(deleted, 1));
    vector.push_back(nullptr);
    EXPECT_EQ(vector.size(), 3);
    EXPECT_EQ(vector[0], nullptr);
    EXPECT_EQ(vector[2], nullptr);
    vector.deleteElementsAndClear();
    EXPECT_EQ(deleted, Numbers{1});
}

TEST(gtPtrVector, ElementsCanBeReplacedAndTakenOut)
{
    Numbers deleted;
    gtPtrVector<Base*> vector;
    vector.push_back(new Base(deleted, 1));
    const std::unique_ptr<Base> pTaken(vector[0]);
    vector[0] = nullptr;
    vector.deleteElementsAndClear();
    EXPECT_TRUE(deleted.empty());
}

TEST(gtPtrVector, MovesHandTheElementsOver)
{
    Numbers deleted;
    gtPtrVector<Base*> first;
    first.push_back(new Base(deleted, 1));
    gtPtrVector<Base*> second(std::move(first));
    EXPECT_EQ(first.size(), 0);  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is documented
    ASSERT_EQ(second.size(), 1);
    EXPECT_TRUE(deleted.empty());

    gtPtrVector<Base*> third;
    third.push_back(new Base(deleted, 2));
    third = std::move(second);
    EXPECT_EQ(deleted, Numbers{2});
    EXPECT_EQ(second.size(), 0);  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is documented
    ASSERT_EQ(third.size(), 1);
    EXPECT_EQ(third[0]->number(), 1);

    gtPtrVector<Base*>& same = third;
    third = std::move(same);
    ASSERT_EQ(third.size(), 1);
    EXPECT_EQ(third[0]->number(), 1);
    EXPECT_EQ(deleted, Numbers{2});
}

TEST(gtPtrVector, ObjectStaysTheCallersWhenThereIsNoMemory)
{
    Numbers deleted;
    deleted.reserve(10);
    gtPtrVector<Base*> vector;
    vector.push_back(new Base(deleted, 1));
    for (int number = 2;; ++number)
    {
        ASSERT_LT(number, 100);
        std::unique_ptr<Base> pBase(new Base(deleted, number));
        try
        {
            const FailingAllocation failing(0);
            vector.push_back(pBase.get());
            static_cast<void>(pBase.release());
        }
        catch (const std::bad_alloc&)
        {
            EXPECT_EQ(vector.size(), number - 1);
            EXPECT_EQ(vector[number - 2]->number(), number - 1);
            pBase.reset();
            EXPECT_EQ(deleted, Numbers{number});
            break;
        }
    }
}

// Looks at, and adds to, the vector that is deleting it.
class Meddler
{
public:
    Meddler(gtPtrVector<Meddler*>& vector, std::vector<int>& sizes, bool isAdding)
        : _vector(vector), _sizes(sizes), _isAdding(isAdding)
    {
    }
    Meddler(const Meddler&) = delete;
    Meddler& operator=(const Meddler&) = delete;
    ~Meddler()
    {
        _sizes.push_back(_vector.size());
        _vector.deleteElementsAndClear();
        if (_isAdding)
        {
            _vector.push_back(new (std::nothrow) Meddler(_vector, _sizes, false));
        }
    }

private:
    gtPtrVector<Meddler*>& _vector;
    std::vector<int>& _sizes;
    bool _isAdding;
};

TEST(gtPtrVector, IsEmptyBeforeTheFirstObjectIsDeleted)
{
    std::vector<int> sizes;
    gtPtrVector<Meddler*> vector;
    vector.push_back(new Meddler(vector, sizes, false));
    vector.push_back(new Meddler(vector, sizes, true));
    vector.deleteElementsAndClear();
    EXPECT_EQ(sizes, (std::vector<int>{0, 0}));
    EXPECT_EQ(vector.size(), 1);
    vector.deleteElementsAndClear();
    EXPECT_EQ(sizes, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(vector.size(), 0);
}
}  // namespace
