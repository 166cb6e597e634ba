#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace vantro {

/// An array property that is observed by key: every store through set() tells the observer, in constant time. To grow
/// the array one store at a time without copying it, take it out, change it, and store it back. Main thread.
template <class Element>
class KeyValueArray
{
  public:
    [[nodiscard]] const std::vector<Element>& get() const { return elements_; }

    /// Takes the elements out; until the next store the property holds none and its observer is not told.
    [[nodiscard]] std::vector<Element> take() { return std::exchange(elements_, {}); }

    void set(std::vector<Element> elements)
    {
        elements_ = std::move(elements);
        if (onChange_)
            onChange_();
    }

    /// Stores the array with one more element.
    void append(Element element)
    {
        auto elements = take();
        elements.push_back(std::move(element));
        set(std::move(elements));
    }

    /// The one observer; called after each store, on the storing thread.
    void observe(std::function<void()> onChange) { onChange_ = std::move(onChange); }

  private:
    std::vector<Element> elements_;
    std::function<void()> onChange_;
};

} // namespace vantro
