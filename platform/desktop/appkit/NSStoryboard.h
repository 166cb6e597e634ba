#pragma once

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "appkit/NSViewController.h"

namespace vantro {

/// A table from identifier to the factory of a view controller. The program's own part of the product: an identifier
/// or a class that is not there is a construction error and throws std::logic_error.
class NSStoryboard
{
  public:
    using Factory = std::function<std::unique_ptr<NSViewController>()>;

    NSStoryboard(std::string name, std::map<std::string, Factory, std::less<>> factories)
        : name_(std::move(name)), factories_(std::move(factories))
    {
    }

    /// Makes a storyboard known by its name; one that was known by that name before is kept. Main thread.
    static void install(const NSStoryboard& storyboard) { installed().try_emplace(storyboard.name_, storyboard); }

    /// The storyboard of this name that was installed. Main thread.
    [[nodiscard]] static const NSStoryboard& named(std::string_view name)
    {
        const auto found = installed().find(name);
        if (found == installed().end())
            throw std::logic_error("There is no storyboard " + std::string(name));
        return found->second;
    }

    /// Makes the controller of `identifier`, which must be of the class `Controller`.
    template <class Controller = NSViewController>
    [[nodiscard]] std::unique_ptr<Controller> instantiateController(std::string_view identifier) const
    {
        const auto factory = factories_.find(identifier);
        auto controller = factory == factories_.end() ? nullptr : factory->second();
        auto* const typed = dynamic_cast<Controller*>(controller.get());
        if (typed == nullptr)
            throw std::logic_error("Storyboard " + name_ + " has no such controller: " + std::string(identifier));
        static_cast<void>(controller.release());
        return std::unique_ptr<Controller>(typed);
    }

    [[nodiscard]] const std::map<std::string, Factory, std::less<>>& factories() const { return factories_; }

  private:
    static std::map<std::string, NSStoryboard, std::less<>>& installed()
    {
        static std::map<std::string, NSStoryboard, std::less<>> storyboards;
        return storyboards;
    }

    std::string name_;
    std::map<std::string, Factory, std::less<>> factories_;
};

} // namespace vantro
