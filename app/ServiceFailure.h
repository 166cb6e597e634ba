#pragma once

#include <string>
#include <utility>

#include <QString>

#include "xpc/NSXPCConnection.h"

namespace vantro {

/// Why a request to the privileged service failed, as far as that is known: the service's own word for it
/// (failure_reason), or what kept the request from the service. A value. Any thread.
class ServiceFailure
{
  public:
    /// Nothing is known.
    ServiceFailure() = default;

    /// `word` is what the service answered; one that the tool does not know counts as nothing.
    explicit ServiceFailure(std::string word) : word_(std::move(word)) {}

    /// What the connection said instead of handing a reply on.
    explicit ServiceFailure(const NSError& error);

    bool operator==(const ServiceFailure&) const = default;

    /// What happened and what to do, for people; empty when nothing is known.
    [[nodiscard]] QString sentence() const;

    /// `text`, and the sentence below it as a paragraph of its own where there is one.
    [[nodiscard]] QString below(const QString& text) const;

  private:
    /// A key of the string table "ServiceFailure".
    std::string word_;
};

} // namespace vantro
