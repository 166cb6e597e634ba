#pragma once

#include <utility>
#include <variant>

namespace vantro {

/// What an operation gave: its value, or why there is none.
template <class Value, class Failure>
class Outcome
{
  public:
    Outcome(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
    Outcome(Failure failure) : content_(std::in_place_index<1>, std::move(failure)) {}

    explicit operator bool() const { return content_.index() == 0; }

    /// Only after a success.
    [[nodiscard]] Value& operator*() { return std::get<0>(content_); }
    [[nodiscard]] const Value& operator*() const { return std::get<0>(content_); }
    [[nodiscard]] Value* operator->() { return &std::get<0>(content_); }
    [[nodiscard]] const Value* operator->() const { return &std::get<0>(content_); }

    /// Only after a failure.
    [[nodiscard]] const Failure& failure() const { return std::get<1>(content_); }

  private:
    std::variant<Value, Failure> content_;
};

} // namespace vantro
