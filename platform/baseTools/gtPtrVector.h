// SPDX-License-Identifier: Apache-2.0
// A vector that owns the objects its pointers point to.
//
// - T is a pointer type, gtPtrVector<Thing*>; each object was made with new and is deleted through T, so a base class
//   needs a virtual destructor and the object's class must be complete where the vector is destroyed.
// - Null is allowed as an element and counts as one.
// - Elements keep the order in which they came. There are at most INT_MAX of them, which the caller must keep to.
// - An index is 0 to size() - 1, which the caller must keep to.
// - The vector can be moved, not copied: every object has one owner.
// - Threads may read one vector together; whoever changes it must be alone with it.
#ifndef GT_PTR_VECTOR_H
#define GT_PTR_VECTOR_H

#include <type_traits>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)

template <class T>
class gtPtrVector
{
    static_assert(std::is_pointer<T>::value, "gtPtrVector holds pointers: gtPtrVector<Thing*>");

public:
    gtPtrVector() noexcept = default;
    gtPtrVector(const gtPtrVector&) = delete;
    gtPtrVector& operator=(const gtPtrVector&) = delete;

    // Takes the other's elements; the other is empty afterwards.
    gtPtrVector(gtPtrVector&& other) noexcept { _elements.swap(other._elements); }

    // The same, after deleting the elements that were here (a vector moved to itself stays what it is).
    gtPtrVector& operator=(gtPtrVector&& other) noexcept
    {
        if (this != &other)
        {
            deleteElementsAndClear();
            _elements.swap(other._elements);
        }
        return *this;
    }

    ~gtPtrVector() { deleteElementsAndClear(); }

    // Appends the pointer, and with it the ownership. When there is no memory for it std::bad_alloc is thrown, the
    // vector is what it was, and the object stays the caller's.
    void push_back(T pElement) { _elements.push_back(pElement); }

    int size() const noexcept { return static_cast<int>(_elements.size()); }
    bool isEmpty() const noexcept { return _elements.empty(); }

    // The element at an index. Putting another pointer in its place neither deletes the old object nor keeps it owned.
    T& operator[](int index) noexcept { return _elements[static_cast<std::size_t>(index)]; }
    const T& operator[](int index) const noexcept { return _elements[static_cast<std::size_t>(index)]; }

    // For range-based loops, first to last.
    const T* begin() const noexcept { return _elements.data(); }
    const T* end() const noexcept { return _elements.data() + _elements.size(); }

    // Deletes the objects, first to last, and leaves the vector empty. It is empty before the first object is deleted:
    // a destructor that looks at the vector, or adds to it, does no harm; what it adds stays. (It must not add to a
    // vector that is being destroyed or assigned to: nobody would delete that.)
    void deleteElementsAndClear() noexcept
    {
        static_assert(std::is_destructible<typename std::remove_pointer<T>::type>::value,
                      "gtPtrVector deletes its elements: their class must be complete");
        std::vector<T> elements;
        elements.swap(_elements);
        for (T pElement : elements)
        {
            delete pElement;
        }
    }

private:
    std::vector<T> _elements;
};

#pragma GCC visibility pop

#endif
