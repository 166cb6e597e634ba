#pragma once

#include <string>

namespace vantro {

/// An item of the account pop-up.
struct AccountModel
{
    /// The display name; may be empty.
    std::string fullName;
    /// The login name: the item's title, and what is registered.
    std::string accountName;
};

} // namespace vantro
