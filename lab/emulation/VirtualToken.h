#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "emulation/HidNode.h"
#include "emulation/OtpApplication.h"
#include "emulation/TokenBed.h"
#include "emulation/TokenProfile.h"

namespace vantro::lab {

/// A token that can be plugged into a bed, touched and pulled out, as often as wanted. Any thread. The bed must outlive
/// it; destroying it pulls it out.
class VirtualToken
{
  public:
    VirtualToken(TokenBed& bed, TokenProfile profile);
    ~VirtualToken();
    VirtualToken(const VirtualToken&) = delete;
    VirtualToken& operator=(const VirtualToken&) = delete;

    /// Plugs in every interface of the profile that is not there yet. When it returns, their events are sent.
    void plugIn();

    /// Plugs in one interface alone, for an interface that comes later than another.
    void plugIn(TokenInterface interface);

    /// Pulls the token out, in the middle of an exchange too: its open nodes answer ENODEV from now on.
    void unplug();

    [[nodiscard]] bool isPluggedIn() const;

    /// A finger on the token.
    void touch();

    /// Whether the token blinks.
    [[nodiscard]] bool isWaitingForTouch() const;

    /// The device node of an interface, for example /dev/hidraw0; empty while the interface is not there.
    [[nodiscard]] std::string deviceNode(TokenInterface interface) const;

    [[nodiscard]] const TokenProfile& profile() const { return profile_; }

  private:
    void plugInDevice();
    [[nodiscard]] bool exchange(bool isWrite, std::span<std::uint8_t> report);

    TokenBed& bed_;
    const TokenProfile profile_;
    /// Held while plugging in and out; the emulation's thread never takes it.
    mutable std::mutex plugMutex_;
    std::string usbName_;
    std::string usbPath_;
    std::unique_ptr<HidNode> keyboard_;
    std::unique_ptr<HidNode> fido_;
    mutable std::mutex otpMutex_;
    OtpApplication otp_;
};

} // namespace vantro::lab
