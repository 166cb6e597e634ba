#pragma once

#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

#include "usbip/PluggedToken.h"
#include "usbip/UsbToken.h"

namespace vantro::lab::usbip {

/// The lab's tokens on the table beside the machine, and what can be done with them. One thread.
class TokenTable
{
  public:
    TokenTable();

    /// Does what a line says and answers "ok", with what there is to tell, or "error: " and why not:
    ///
    ///     plug SERIAL | unplug SERIAL     a token that is plugged in already, or is not, stays so
    ///     touch SERIAL
    ///     hang SERIAL | recover SERIAL    a hung token answers nothing
    ///     delay SERIAL MILLISECONDS       how long each transfer of a feature report takes from now on
    ///     list                            one line a token: serial, "plugged-in" or "out", "blinks" while it waits
    [[nodiscard]] std::string command(const std::string& line);

    /// Adds what is to be polled for the tokens that are plugged in.
    void addTo(std::vector<pollfd>& polled) const;

    /// Serves the tokens for which something has come or is due.
    void serve(const std::vector<pollfd>& polled);

    /// How long nothing is due, for poll(); negative for ever.
    [[nodiscard]] int pause() const;

  private:
    struct Entry
    {
        UsbToken token;
        PluggedToken::Mood mood;
        std::optional<PluggedToken> plugged;
    };

    [[nodiscard]] Entry& find(const std::string& serial);
    [[nodiscard]] std::string list() const;

    /// Each stays where it is, since what is plugged in refers to it.
    std::vector<std::unique_ptr<Entry>> entries_;
};

} // namespace vantro::lab::usbip
