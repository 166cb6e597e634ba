#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace vantro {

/// A row of a key list: one token. The text is always the decimal text of the number. Never changed after it was made.
class KeyModel
{
  public:
    explicit KeyModel(std::uint64_t serial) : serial_(std::to_string(serial)), serialUInt_(serial) {}

    [[nodiscard]] const std::string& serial() const { return serial_; }
    [[nodiscard]] std::uint64_t serialUInt() const { return serialUInt_; }

  private:
    std::string serial_;
    std::uint64_t serialUInt_;
};

/// A row of the user key list: one token of one account.
class UserKeyModel : public KeyModel
{
  public:
    UserKeyModel(std::string account, std::uint64_t serial) : KeyModel(serial), account_(std::move(account)) {}

    /// The login name.
    [[nodiscard]] const std::string& account() const { return account_; }

  private:
    std::string account_;
};

/// A row of the master key list.
class MasterKeyModel : public KeyModel
{
  public:
    using KeyModel::KeyModel;
};

/// A row of the administrator key list.
class AdminKeyModel : public KeyModel
{
  public:
    using KeyModel::KeyModel;
};

} // namespace vantro
